// The user's main journeys, walked as a hand walks them: through the windows, their editors and
// their menu items, with the real controller and the real simulated service. After every step
// three places must agree: the model, what the next start would load (the written store with the
// recovery journal over it) and the service's own copy of the configuration.
#include "TestConfig.h"
#include "ViewsFixture.h"
#include "actions/TVKBuiltInAction.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "app/TVKMenuCommand.h"
#include "app/TVKRecoveryJournal.h"
#include "core/FourCharCode.h"
#include "core/PlistCodec.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "service/ConfigurationEdits.h"
#include "views/InspectorController.h"
#include "views/KeysetSummaryController.h"
#include "views/TVKEditorView.h"
#include "views/TVKMainWindow.h"
#include "views/cpkr_ColorPicker.h"
#include "views/editors/TVKBuiltInActionEditorView.h"
#include "views/editors/TVKDisplayPreview.h"
#include "views/editors/TVKDisplayTextEditorView.h"
#include "views/editors/TVKEmulationActionEditorView.h"
#include "views/editors/TVKKeySequenceActionEditorView.h"
#include "views/editors/TVKKeystrokeEntryView.h"
#include "views/editors/TVKMIDIActionEditorView.h"

#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

using namespace corvane;
using namespace corvane::test;
using Command = TVKMenuCommand;

namespace {

// The application the journeys make a keyset for: one the built-in command catalogue knows.
const QString kAppID = QStringLiteral("org.audacityteam.Audacity");
const QString kAppName = QStringLiteral("Audacity");

// Where two configurations first differ, as a path of keys and indices.
std::string difference(const PlistValue& a, const PlistValue& b, const QString& path = {})
{
    if (a.isDict() && b.isDict()) {
        QStringList keys = a.keys() + b.keys();
        keys.removeDuplicates();
        for (const QString& key : keys) {
            const std::string inner = difference(a.value(key), b.value(key), path + u'/' + key);
            if (!inner.empty())
                return inner;
        }
        return {};
    }
    if (a.isArray() && b.isArray() && a.size() == b.size()) {
        for (qsizetype i = 0; i < a.size(); ++i) {
            const std::string inner =
                difference(a.at(i), b.at(i), path + u'/' + QString::number(i));
            if (!inner.empty())
                return inner;
        }
        return {};
    }
    if (a == b)
        return {};
    return (path + QStringLiteral(": ") +
            QString::fromUtf8(PlistCodec::write(a)).section(u'\n', 3, -2) +
            QStringLiteral(" against ") +
            QString::fromUtf8(PlistCodec::write(b)).section(u'\n', 3, -2))
        .toStdString();
}

// The lock is the user's guard against his own edits: it is kept with the keyset but never sent
// to the service, so the service's copy and the journal do not carry it.
PlistValue withoutLocks(PlistValue configuration)
{
    PlistValue keysets = configuration.value(u"TVKKeysets");
    for (qsizetype k = 0; k < keysets.size(); ++k) {
        PlistValue keyset = keysets.at(k);
        keyset.remove(u"TVKLock");
        keysets.set(k, std::move(keyset));
    }
    configuration.insert(QStringLiteral("TVKKeysets"), std::move(keysets));
    return configuration;
}

class JourneyTest : public ViewsTest
{
protected:
    void SetUp() override
    {
        ViewsTest::SetUp();
        installCatalogue();
        // The configuration the first-run page leaves: the "Default" keyset alone.
        storeConfiguration(CorvaneModelData());
        const QString entry = home.path() + QStringLiteral("/data/applications/") + kAppID +
                              QStringLiteral(".desktop");
        QDir().mkpath(QFileInfo(entry).path());
        QFile file(entry);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Desktop Entry]\nType=Application\nName=Audacity\nExec=audacity\n");
    }

    InspectorController& begin()
    {
        startApplication();
        controller->showInspector();
        EXPECT_NE(app->inspector(), nullptr);
        return *app->inspector();
    }

    // What the next start would load: the store as written, with the recovery journal's edits
    // applied over it, in the parts the service keeps.
    PlistValue whatTheNextStartLoads() const
    {
        TVKUserDefaults store(storePath);
        const PlistValue& archive = store.objectForKey(u"TVKModelData");
        auto model =
            std::make_unique<CorvaneModelData>(archive.isDict() ? archive : PlistValue::makeDict());
        TVKRecoveryJournal journal(TVKRecoveryJournal::pathBeside(storePath));
        const TVKRecoveryJournal::Contents contents = journal.read();
        const QString epoch = store.objectForKey(u"TVKJournalEpoch").toString();
        if (epoch.isEmpty() || epoch != QString::number(contents.epoch)) {
            for (const TVKRecoveryJournal::Record& record : contents.records) {
                // A compacted journal starts from its snapshot of the configuration.
                if (record.id == TVKRecoveryJournal::Snapshot) {
                    const PlistReadResult snapshot = PlistCodec::read(record.body);
                    EXPECT_TRUE(snapshot.ok);
                    model =
                        std::make_unique<CorvaneModelData>(snapshot.value.value(u"TVKModelData"));
                    continue;
                }
                QString reason;
                EXPECT_TRUE(applyConfigurationMessage(*model, record.id, record.body,
                                                      record.editedKeyset, &reason))
                    << reason.toStdString();
            }
        }
        PlistValue dict = PlistValue::makeDict();
        model->writeTo(dict);
        return servicePart(dict);
    }

    ::testing::AssertionResult storeInStep() const
    {
        const PlistValue loads = withoutLocks(whatTheNextStartLoads());
        const PlistValue mine = withoutLocks(controllerConfiguration());
        if (loads == mine)
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure()
               << "the store with its journal would not give the configuration back at "
               << difference(loads, mine) << " (store first)";
    }

    ::testing::AssertionResult mirrorInStep()
    {
        // The messages travel over the socket, the dump command over the service's input: a
        // loaded machine may answer the dump first, so look again for a while.
        PlistValue mirror;
        PlistValue mine;
        for (int attempt = 0; attempt < 15; ++attempt) {
            spinFor(attempt == 0 ? 20 : 200);
            mirror = withoutLocks(mirrorConfiguration());
            mine = withoutLocks(controllerConfiguration());
            if (mirror == mine)
                return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure() << "the service's configuration differs at "
                                             << difference(mirror, mine) << " (service first)";
    }

    // The three places agree after the step.
    void inStep(const char* step)
    {
        SCOPED_TRACE(step);
        EXPECT_TRUE(mirrorInStep()) << step;
        EXPECT_TRUE(storeInStep()) << step;
    }

    QAction* item(Command command, qint64 tag = 0) const
    {
        controller->validateMenuItems();
        return controller->menuItem(command, tag);
    }

    // Chooses a menu item as the user does; it must be enabled.
    void choose(Command command, qint64 tag = 0)
    {
        QAction* action = item(command, tag);
        ASSERT_NE(action, nullptr);
        ASSERT_TRUE(action->isEnabled()) << action->text().toStdString() << " is disabled";
        action->trigger();
    }

    TVKKeyset* keyset() const { return controller->modelData()->selectedKeyset(); }
    TVKControl* inLayer(const TVKControl& control, int layer) const
    {
        return control.keyset()->layerAtIndex(layer)->controlForGroup(control.groupID(),
                                                                      control.index());
    }

    template <typename Editor>
    Editor& tab(const char (&identifier)[5])
    {
        nextFrame();
        TVKEditorView& view = *app->inspector()->currentEditor();
        view.selectActionEditorWithIdentifier(fourCC(identifier));
        EXPECT_EQ(view.currentTabID(), fourCC(identifier));
        return dynamic_cast<Editor&>(*view.actionEditor(fourCC(identifier)));
    }

    // Types into a field as the user does: everything selected, the text, then Return.
    static void typeInto(QWidget* field, const QString& text)
    {
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Return);
    }

    // --- The gestures the journeys are made of ---

    // 1. File → New Keyset for Application…, choosing the application.
    TVKKeyset* newKeysetForTheApplication()
    {
        views.chosenApplication = DesktopApplication{};
        views.chosenApplication->id = kAppID;
        views.chosenApplication->name = kAppName;
        const int before = controller->modelData()->numberOfKeysets();
        choose(Command::HandleNewKeyset);
        EXPECT_EQ(controller->modelData()->numberOfKeysets(), before + 1);
        EXPECT_EQ(controller->selectedKeyset(), before);
        EXPECT_EQ(keyset()->name(), kAppName);
        EXPECT_EQ(keyset()->bundleID(), kAppID);
        EXPECT_EQ(app->mainWindow()->windowTitle(), QStringLiteral("Audacity — Corvane"));
        return keyset();
    }

    // 2. Ctrl+S typed into the key sequence box of a button.
    TVKControl* typeAKeySequence()
    {
        TVKControl* button = selectFirstOfType(ControlType::Button);
        EXPECT_NE(button, nullptr);
        auto& keys = tab<TVKKeySequenceActionEditorView>("KEYS");
        QTest::mouseClick(keys.entryView(), Qt::LeftButton);
        QTest::keyClick(keys.entryView(), Qt::Key_S, Qt::ControlModifier);
        const auto* sequence = dynamic_cast<const TVKButtonKeySequenceAction*>(button->action());
        EXPECT_NE(sequence, nullptr);
        if (sequence) {
            EXPECT_EQ(sequence->sequence().size(), 1u);
            EXPECT_EQ(sequence->sequence()[0].character(), QStringLiteral("s"));
        }
        return button;
    }

    // 3. A note on, typed into the MIDI editor of an encoder.
    TVKControl* assignAMIDINote()
    {
        TVKControl* encoder = selectFirstOfType(ControlType::Encoder);
        EXPECT_NE(encoder, nullptr);
        auto& midi = tab<TVKMIDIActionEditorView>("MIDI");
        midi.modeGroup()->button(2)->click();
        QComboBox* command = midi.commandPopUp();
        command->setCurrentIndex(command->findData(0x90));
        Q_EMIT command->activated(command->currentIndex());
        typeInto(midi.data1(), QStringLiteral("60"));
        typeInto(midi.data2(), QStringLiteral("100"));
        const auto* note = dynamic_cast<const TVKEncoderMIDIAction*>(encoder->action());
        EXPECT_NE(note, nullptr);
        EXPECT_EQ(midi.messageLabel()->text(), QStringLiteral("90 3c 64"));
        return encoder;
    }

    // 4. A command of the application's catalogue, found by searching.
    TVKControl* assignABuiltInCommand()
    {
        // The second button: the first carries the key sequence.
        TVKControl* first = selectFirstOfType(ControlType::Button);
        EXPECT_NE(first, nullptr);
        if (!first)
            return nullptr;
        controller->selectionChangedInSummaryWindowToGroup(first->groupID(), first->index() + 1);
        TVKControl* button = app->inspector()->theControl();
        EXPECT_NE(button, first);
        auto& builtIn = tab<TVKBuiltInActionEditorView>("BILT");
        builtIn.searchField()->setText(QStringLiteral("record"));
        QTreeWidgetItem* found = nullptr;
        for (int g = 0; g < builtIn.browser()->topLevelItemCount() && !found; ++g)
            for (int c = 0; c < builtIn.browser()->topLevelItem(g)->childCount(); ++c)
                if (!builtIn.browser()->topLevelItem(g)->child(c)->isHidden()) {
                    found = builtIn.browser()->topLevelItem(g)->child(c);
                    break;
                }
        EXPECT_NE(found, nullptr) << "the catalogue has nothing to record with";
        if (!found)
            return button;
        const QString command = found->text(0); // the browser is redrawn on the choice
        Q_EMIT builtIn.browser()->itemActivated(found, 0);
        EXPECT_NE(button->action(), nullptr);
        if (button->action()) {
            EXPECT_EQ(button->action()->actionType(), TVKButtonBuiltInAction::kActionType);
        }
        EXPECT_EQ(button->userName(), command);
        return button;
    }

    // 5. Emulation mode A for the keyset, and an encoder that emulates.
    TVKControl* assignAnEncoderEmulation()
    {
        choose(Command::HandleEmulationMenu, 1);
        EXPECT_EQ(keyset()->emulationMode(), corvane::EmulationMode::A);
        TVKControl* encoders = selectFirstOfType(ControlType::Encoder);
        EXPECT_NE(encoders, nullptr);
        if (!encoders)
            return nullptr;
        // The second encoder: the first sends its note.
        controller->selectionChangedInSummaryWindowToGroup(encoders->groupID(),
                                                           encoders->index() + 1);
        TVKControl* encoder = app->inspector()->theControl();
        auto& emulation = tab<TVKEmulationActionEditorView>("EMUL");
        emulation.emulateBox()->click();
        EXPECT_NE(encoder->action(), nullptr);
        if (encoder->action()) {
            EXPECT_EQ(encoder->action()->editorTabID(), fourCC("EMUL"));
        }
        return encoder;
    }

    // 6. A colour chosen in the picker of a multi-colour button.
    TVKControl* setAnLEDColour()
    {
        auto* lit = dynamic_cast<TVKMultiColorButtonControl*>(
            selectFirstOfType(ControlType::MultiColorButton));
        EXPECT_NE(lit, nullptr);
        if (!lit)
            return nullptr;
        cpkr_ColorPickerController* picker = app->inspector()->currentEditor()->hiResColorEditor();
        EXPECT_NE(picker, nullptr);
        if (!picker)
            return lit;
        const int before = lit->onColor();
        constexpr int cell = cpkr_ColorPickerView::kCell;
        QTest::mouseClick(picker->colorPickerView(), Qt::LeftButton, Qt::NoModifier,
                          QPoint(cell * 5 + cell / 2, cell * 2 + cell / 2));
        EXPECT_NE(lit->onColor(), before) << "the click chose no colour";
        EXPECT_EQ(lit->onColor(), int(picker->sixBitColor()));
        return lit;
    }

    // 6. A text typed for a display.
    TVKControl* setADisplayText()
    {
        TVKControl* display = selectFirstOfType(ControlType::LCDDisplay);
        EXPECT_NE(display, nullptr);
        auto& text = tab<TVKDisplayTextEditorView>("TEXT");
        typeInto(text.textField(), QStringLiteral("Take 3"));
        const auto* shown = dynamic_cast<const TVKLCDDisplayTextAction*>(display->action());
        EXPECT_NE(shown, nullptr);
        if (shown) {
            EXPECT_EQ(shown->storedText(), QStringLiteral("Take 3"));
        }
        return display;
    }

    // 7. "Copy to all layers", then latching a button.
    TVKControl* latchOnAllLayers()
    {
        TVKControl* first = selectFirstOfType(ControlType::Button);
        EXPECT_NE(first, nullptr);
        if (!first)
            return nullptr;
        controller->selectionChangedInSummaryWindowToGroup(first->groupID(), first->index() + 2);
        TVKControl* button = app->inspector()->theControl();
        QCheckBox* copy = app->inspector()->allLayersCopyCheckbox();
        if (!copy->isChecked())
            copy->click();
        app->inspector()->currentEditor()->latchedCheckbox()->click();
        copy->click();
        EXPECT_FALSE(app->inspector()->copyToAllLayers());
        for (int layer = 0; layer < 4; ++layer)
            EXPECT_TRUE(inLayer(*button, layer)->latched()) << "layer " << layer;
        return button;
    }

    // Undo and Redo from the Edit menu until there is nothing left; how many steps were taken.
    int undoAll()
    {
        int steps = 0;
        while (controller->undoMenuItem()->isEnabled() && steps < 100) {
            controller->undoMenuItem()->trigger();
            ++steps;
        }
        return steps;
    }
    int redoAll()
    {
        int steps = 0;
        while (controller->redoMenuItem()->isEnabled() && steps < 100) {
            controller->redoMenuItem()->trigger();
            ++steps;
        }
        return steps;
    }

    QToolButton* lockButton() const
    {
        for (QToolButton* button : app->mainWindow()->findChildren<QToolButton*>())
            if (button->accessibleName() == QStringLiteral("Lock keyset"))
                return button;
        ADD_FAILURE() << "the main window has no lock button";
        return nullptr;
    }

    // The keysets as they are now, to compare with later.
    PlistValue snapshot() const { return controllerConfiguration(); }
};

} // namespace

TEST_F(JourneyTest, NewKeysetForAnApplication)
{
    begin();
    inStep("started");
    const qsizetype from = mark();
    TVKKeyset* made = newKeysetForTheApplication();
    ASSERT_TRUE(waitForCount(QStringLiteral("TAdK"), 1, from));
    EXPECT_EQ(made->signature(), fourCC("????"));
    EXPECT_EQ(controller->keysetsMenu().back()->text(), kAppName);
    inStep("new keyset");

    // The same application again is refused with the question's answer alone.
    choose(Command::HandleNewKeyset);
    EXPECT_EQ(controller->modelData()->numberOfKeysets(), 2);
    ASSERT_FALSE(views.alerts.empty());
    EXPECT_EQ(views.alerts.back().message, QStringLiteral("Keyset Already Exists"));
    inStep("the same application again");
}

TEST_F(JourneyTest, AssignAKeySequenceByTyping)
{
    begin();
    newKeysetForTheApplication();
    const qsizetype from = mark();
    TVKControl* button = typeAKeySequence();
    ASSERT_NE(button, nullptr);
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 1, from));
    EXPECT_EQ(app->inspector()->currentEditor()->actionDescriptor(),
              button->action()->actionDescriptor());
    EXPECT_EQ(controller->undoMenuItem()->text(), QStringLiteral("Undo Edit Control Action"));
    inStep("key sequence");
}

TEST_F(JourneyTest, AssignAMIDINote)
{
    begin();
    newKeysetForTheApplication();
    TVKControl* encoder = assignAMIDINote();
    ASSERT_NE(encoder, nullptr);
    ASSERT_NE(encoder->action(), nullptr);
    EXPECT_EQ(app->inspector()->currentEditor()->actionDescriptor(),
              encoder->action()->actionDescriptor());
    inStep("MIDI note");
}

TEST_F(JourneyTest, AssignABuiltInCommand)
{
    begin();
    newKeysetForTheApplication();
    TVKControl* button = assignABuiltInCommand();
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(app->inspector()->userNameField()->text(), button->userName());
    inStep("built-in command");
}

TEST_F(JourneyTest, AssignAnEncoderEmulation)
{
    begin();
    newKeysetForTheApplication();
    const qsizetype from = mark();
    TVKControl* encoder = assignAnEncoderEmulation();
    ASSERT_NE(encoder, nullptr);
    ASSERT_TRUE(waitForCount(QStringLiteral("Emul"), 1, from));
    inStep("encoder emulation");
}

TEST_F(JourneyTest, SetAnLEDColourAndADisplayText)
{
    begin();
    newKeysetForTheApplication();
    qsizetype from = mark();
    TVKControl* lit = setAnLEDColour();
    ASSERT_NE(lit, nullptr);
    ASSERT_TRUE(waitForCount(QStringLiteral("ChCo"), 1, from));
    EXPECT_EQ(controller->undoMenuItem()->text(), QStringLiteral("Undo Change Color"));
    inStep("LED colour");

    from = mark();
    TVKControl* display = setADisplayText();
    ASSERT_NE(display, nullptr);
    ASSERT_TRUE(waitForCount(QStringLiteral("IDAc"), 1, from));
    EXPECT_EQ(app->inspector()->currentEditor()->preview()->text(), QStringLiteral("Take 3"));
    inStep("display text");
}

TEST_F(JourneyTest, CopyAnEditToAllLayers)
{
    begin();
    newKeysetForTheApplication();
    const qsizetype from = mark();
    TVKControl* button = latchOnAllLayers();
    ASSERT_NE(button, nullptr);
    ASSERT_TRUE(waitForCount(QStringLiteral("ChLa"), 4, from)) << "one message per layer";
    inStep("latched on every layer");
    // One step takes all four back.
    controller->undoMenuItem()->trigger();
    for (int layer = 0; layer < 4; ++layer)
        EXPECT_FALSE(inLayer(*button, layer)->latched()) << "layer " << layer;
    inStep("undone on every layer");
}

TEST_F(JourneyTest, UndoEverythingThenRedoEverything)
{
    begin();
    newKeysetForTheApplication();
    const PlistValue before = snapshot();
    typeAKeySequence();
    assignAMIDINote();
    setAnLEDColour();
    setADisplayText();
    latchOnAllLayers();
    const PlistValue after = snapshot();
    inStep("every edit made");

    const int undone = undoAll();
    EXPECT_GE(undone, 5);
    EXPECT_FALSE(controller->undoMenuItem()->isEnabled());
    // The keyset is as it was made, on every side; the new keyset itself is not an undo step.
    EXPECT_TRUE(snapshot() == before) << "undoing everything did not give the new keyset back: "
                                      << difference(snapshot(), before);
    EXPECT_EQ(controller->modelData()->numberOfKeysets(), 2);
    inStep("everything undone");

    const int redone = redoAll();
    EXPECT_EQ(redone, undone);
    EXPECT_FALSE(controller->redoMenuItem()->isEnabled());
    EXPECT_TRUE(snapshot() == after)
        << "redoing everything did not give the edits back: " << difference(snapshot(), after);
    inStep("everything redone");

    // A built-in command names its control; undoing the command takes the name too, and redoing
    // it brings both back.
    assignABuiltInCommand();
    const PlistValue named = snapshot();
    inStep("built-in command");
    controller->undoMenuItem()->trigger();
    inStep("built-in command undone");
    EXPECT_TRUE(snapshot() == after)
        << "undoing a built-in command left something behind: " << difference(snapshot(), after);
    controller->redoMenuItem()->trigger();
    EXPECT_TRUE(snapshot() == named) << difference(snapshot(), named);
    inStep("built-in command redone");
}

TEST_F(JourneyTest, Lock)
{
    InspectorController& inspector = begin();
    newKeysetForTheApplication();
    TVKControl* button = typeAKeySequence();
    ASSERT_NE(button, nullptr);
    inStep("edited");
    const PlistValue edited = snapshot();

    choose(Command::HandleLockUnlockMenu);
    EXPECT_TRUE(keyset()->locked());
    EXPECT_TRUE(lockButton()->isChecked()) << "the lock button does not show the lock";
    EXPECT_TRUE(inspector.panel()->locked());
    EXPECT_EQ(item(Command::HandleLockUnlockMenu)->text(),
              QStringLiteral("Unlock Audacity keyset"));
    for (const Command disabled :
         {Command::HandlePasteKeyset, Command::HandleClearKeyset, Command::HandleDeleteKeyset})
        EXPECT_FALSE(item(disabled)->isEnabled()) << item(disabled)->text().toStdString();
    // The editors take nothing while locked.
    auto& keys = tab<TVKKeySequenceActionEditorView>("KEYS");
    EXPECT_FALSE(keys.entryView()->isEnabled());
    QTest::mouseClick(keys.entryView(), Qt::LeftButton);
    QTest::keyClick(keys.entryView(), Qt::Key_F7);
    EXPECT_TRUE(withoutLocks(snapshot()) == withoutLocks(edited)) << "a locked keyset was edited";
    inStep("locked");

    choose(Command::HandleLockUnlockMenu);
    EXPECT_FALSE(keyset()->locked());
    EXPECT_FALSE(inspector.panel()->locked());
    EXPECT_FALSE(lockButton()->isChecked());
    EXPECT_TRUE(item(Command::HandleClearKeyset)->isEnabled());
    inStep("unlocked");

    // Locked again, Undo and Redo leave the keyset alone too.
    choose(Command::HandleLockUnlockMenu);
    EXPECT_FALSE(controller->undoMenuItem()->isEnabled());
    controller->undoManager().undo();
    EXPECT_TRUE(withoutLocks(snapshot()) == withoutLocks(edited));
    EXPECT_TRUE(keyset()->locked());
    inStep("undo while locked");
}

TEST_F(JourneyTest, ExportDeleteAndImport)
{
    begin();
    TVKKeyset* made = newKeysetForTheApplication();
    typeAKeySequence();
    setADisplayText();
    inStep("edited");
    PlistValue exported = PlistValue::makeDict();
    made->writeTo(exported);

    const QString file = home.path() + QStringLiteral("/Audacity.CvKs");
    views.savePanelAnswers.push_back(file);
    choose(Command::HandleExportKeyset);
    EXPECT_EQ(views.proposedNames.back(), QStringLiteral("Audacity.CvKs"));
    const PlistReadResult written = PlistCodec::readFile(file);
    ASSERT_TRUE(written.ok);
    EXPECT_TRUE(written.value == exported) << "the file is not the keyset";
    inStep("exported");

    qsizetype from = mark();
    views.alertAnswers = {0};
    choose(Command::HandleDeleteKeyset);
    EXPECT_EQ(views.alerts.back().message, QStringLiteral("Delete Keyset?"));
    EXPECT_EQ(controller->modelData()->numberOfKeysets(), 1);
    EXPECT_EQ(controller->selectedKeyset(), 0);
    ASSERT_TRUE(waitForCount(QStringLiteral("TDlK"), 1, from));
    inStep("deleted");

    from = mark();
    views.openPanelAnswers.push_back(file);
    choose(Command::HandleImportKeyset);
    ASSERT_EQ(controller->modelData()->numberOfKeysets(), 2);
    EXPECT_EQ(controller->selectedKeyset(), 1);
    PlistValue imported = PlistValue::makeDict();
    keyset()->writeTo(imported);
    EXPECT_TRUE(imported == exported) << "the imported keyset is not the exported one";
    ASSERT_TRUE(waitForCount(QStringLiteral("TAdK"), 1, from));
    inStep("imported");

    // Imported again: the same application's keyset is there, and is replaced only if asked.
    const size_t alerts = views.alerts.size();
    views.openPanelAnswers.push_back(file);
    views.alertAnswers = {1};
    choose(Command::HandleImportKeyset);
    ASSERT_EQ(views.alerts.size(), alerts + 1);
    EXPECT_EQ(views.alerts.back().message, QStringLiteral("Keyset Already Exists"));
    EXPECT_EQ(controller->modelData()->numberOfKeysets(), 2);
    inStep("imported again, not replaced");
}

TEST_F(JourneyTest, CopyAndPasteAKeyset)
{
    begin();
    TVKKeyset* made = newKeysetForTheApplication();
    typeAKeySequence();
    setAnLEDColour();
    inStep("edited");

    // Nothing copied yet: nothing to paste.
    QGuiApplication::clipboard()->clear();
    EXPECT_FALSE(item(Command::HandlePasteKeyset)->isEnabled());
    choose(Command::HandleCopyKeyset);
    EXPECT_TRUE(item(Command::HandlePasteKeyset)->isEnabled());

    // Into the "Default" keyset, chosen from the Keysets menu.
    PlistValue defaultBefore = PlistValue::makeDict();
    controller->modelData()->keysetAtIndex(0)->writeTo(defaultBefore);
    controller->keysetsMenu()[1]->trigger();
    ASSERT_EQ(controller->selectedKeyset(), 0);
    const qsizetype from = mark();
    choose(Command::HandlePasteKeyset);
    ASSERT_TRUE(waitForCount(QStringLiteral("TUpK"), 1, from));
    TVKKeyset* pasted = controller->modelData()->keysetAtIndex(0);
    EXPECT_EQ(pasted->name(), QStringLiteral("Default")) << "which application it serves stays";
    EXPECT_EQ(pasted->signature(), fourCC("----"));
    PlistValue source = PlistValue::makeDict();
    made->writeTo(source);
    PlistValue target = PlistValue::makeDict();
    pasted->writeTo(target);
    EXPECT_TRUE(source.value(u"TVKLayers") == target.value(u"TVKLayers"))
        << "the layers did not come over";
    EXPECT_EQ(controller->undoMenuItem()->text(), QStringLiteral("Undo Paste Keyset"));
    inStep("pasted");

    controller->undoMenuItem()->trigger();
    PlistValue undone = PlistValue::makeDict();
    controller->modelData()->keysetAtIndex(0)->writeTo(undone);
    EXPECT_TRUE(undone == defaultBefore) << "undo did not give the \"Default\" keyset back";
    inStep("paste undone");
}

TEST_F(JourneyTest, QuitAndRestart)
{
    begin();
    newKeysetForTheApplication();
    typeAKeySequence();
    assignAMIDINote();
    setADisplayText();
    app->show(TVKWindow::Summary);
    choose(Command::HandleLockUnlockMenu);
    inStep("edited and locked");
    const PlistValue before = snapshot();
    const qint64 selected = controller->selectedKeyset();

    app->quit();
    // Written on quit, the store holds everything by itself; the journal is empty.
    {
        TVKUserDefaults store(storePath);
        CorvaneModelData stored(store.objectForKey(u"TVKModelData"));
        PlistValue dict = PlistValue::makeDict();
        stored.writeTo(dict);
        EXPECT_TRUE(servicePart(dict) == before) << "the store misses edits";
        TVKRecoveryJournal journal(TVKRecoveryJournal::pathBeside(storePath));
        EXPECT_TRUE(journal.read().records.empty());
    }
    app.reset();
    controller.reset();

    startApplication();
    EXPECT_TRUE(snapshot() == before) << "the restart lost edits";
    EXPECT_EQ(controller->selectedKeyset(), selected) << "the service's selection is taken up";
    EXPECT_TRUE(keyset()->locked()) << "the lock did not survive";
    EXPECT_TRUE(app->inspector() && app->inspector()->panel()->locked());
    EXPECT_TRUE(std::none_of(views.alerts.begin(), views.alerts.end(), [](const TVKAlert& a) {
        return a.message == QStringLiteral("Unsaved Edits Recovered");
    })) << "a clean quit left edits to recover";
    ASSERT_NE(app->summary(), nullptr);
    EXPECT_TRUE(app->summary()->isVisible()) << "the summary was open";
    inStep("restarted");
}

TEST_F(JourneyTest, ExportAllDeleteAndImport)
{
    begin();
    TVKKeyset* made = newKeysetForTheApplication();
    typeAKeySequence();
    assignAMIDINote();
    setADisplayText();
    inStep("edited");
    const PlistValue edited = snapshot();
    PlistValue exported = PlistValue::makeDict(6);
    made->writeTo(exported);

    const QString folder = home.path() + QStringLiteral("/Backup");
    QDir().mkpath(folder);
    views.folderAnswers.push_back(folder);
    choose(Command::HandleExportAllKeysets);
    // Keyset 0 is never exported; the keyset made is, under its name.
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList{QStringLiteral("Audacity.CvKs")});
    const QString file = folder + QStringLiteral("/Audacity.CvKs");
    const PlistReadResult written = PlistCodec::readFile(file);
    ASSERT_TRUE(written.ok);
    EXPECT_TRUE(written.value == exported) << "the file is not the keyset";
    inStep("exported all");

    qsizetype from = mark();
    views.alertAnswers = {0};
    choose(Command::HandleDeleteKeyset);
    EXPECT_EQ(controller->modelData()->numberOfKeysets(), 1);
    ASSERT_TRUE(waitForCount(QStringLiteral("TDlK"), 1, from));
    inStep("deleted");

    from = mark();
    views.openPanelAnswers.push_back(file);
    choose(Command::HandleImportKeyset);
    ASSERT_TRUE(waitForCount(QStringLiteral("TAdK"), 1, from));
    EXPECT_TRUE(snapshot() == edited) << difference(snapshot(), edited);
    inStep("imported");

    // Exported again into the same folder, the file there is replaced only when the user says.
    const size_t alerts = views.alerts.size();
    QFile::remove(file);
    ASSERT_TRUE(
        QFile::copy(QStringLiteral(CORVANE_SOURCE_DIR "/resources/samples/Studio.plist"), file));
    const QByteArray other = [&] {
        QFile f(file);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }();
    views.folderAnswers.push_back(folder);
    views.alertAnswers = {0}; // Skip
    choose(Command::HandleExportAllKeysets);
    ASSERT_EQ(views.alerts.size(), alerts + 1);
    EXPECT_EQ(views.alerts.back().message, QStringLiteral("“Audacity.CvKs” Already Exists"));
    QFile kept(file);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), other) << "a skipped file was written";
    kept.close();
    views.folderAnswers.push_back(folder);
    views.alertAnswers = {2}; // Replace
    choose(Command::HandleExportAllKeysets);
    EXPECT_TRUE(PlistCodec::readFile(file).value == exported);
    inStep("exported all again");
}
