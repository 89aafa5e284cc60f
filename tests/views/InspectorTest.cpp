// The inspector driven as a user drives it, against the real controller and simulated service:
// every edit must reach the model, the service and the undo stack.
#include "ViewsFixture.h"
#include "actions/TVKActionContainer.h"
#include "actions/TVKBuiltInAction.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/TVKMouseAction.h"
#include "actions/TVKSpecialAction.h"
#include "core/Notifications.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "views/InspectorController.h"
#include "views/TVKEditorView.h"
#include "views/editors/TVKBuiltInActionEditorView.h"
#include "views/editors/TVKDisplayPreview.h"
#include "views/editors/TVKDisplayTextEditorView.h"
#include "views/editors/TVKEmulationActionEditorView.h"
#include "views/editors/TVKHiResTextEditorView.h"
#include "views/editors/TVKIconEditorView.h"
#include "views/editors/TVKKeySequenceActionEditorView.h"
#include "views/editors/TVKKeystrokeEntryView.h"
#include "views/editors/TVKMIDIActionEditorView.h"
#include "views/editors/TVKModifierBoxes.h"
#include "views/editors/TVKMouseActionEditorView.h"
#include "views/editors/TVKSpecialActionEditorView.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>
#include <QUndoStack>

using namespace corvane;
using namespace corvane::test;

namespace {

class InspectorTest : public ViewsTest
{
protected:
    InspectorController& openInspector()
    {
        startApplication();
        controller->showInspector();
        EXPECT_NE(app->inspector(), nullptr);
        return *app->inspector();
    }

    template <typename Editor>
    Editor& tab(InspectorController& inspector, const char (&identifier)[5])
    {
        nextFrame();
        TVKEditorView& view = *inspector.currentEditor();
        view.selectActionEditorWithIdentifier(fourCC(identifier));
        EXPECT_EQ(view.currentTabID(), fourCC(identifier));
        return dynamic_cast<Editor&>(*view.actionEditor(fourCC(identifier)));
    }

    // The same control in another layer of the selected keyset.
    TVKControl* inLayer(const TVKControl& control, int layer) const
    {
        return control.keyset()->layerAtIndex(layer)->controlForGroup(control.groupID(),
                                                                      control.index());
    }

    static void choose(QComboBox* box, int data)
    {
        box->setCurrentIndex(box->findData(data));
        Q_EMIT box->activated(box->currentIndex());
    }
};

} // namespace

TEST_F(InspectorTest, FollowsTheSelectionWithTheEditorOfEachKind)
{
    InspectorController& inspector = openInspector();
    EXPECT_EQ(inspector.nibName(), QStringLiteral("ExpandersInspector"));
    EXPECT_EQ(inspector.panel()->objectName(), QStringLiteral("TVKInsPos"));
    const char* const ids[] = {"BTN", "ENC", "4WY", "STL", "JOG", "LCD", "TC",
                               "FAD", "JOY", "MCB", "LCB", "",    "BTN"};
    for (int type = 0; type < InspectorController::kEditorCount; ++type)
        EXPECT_EQ(inspector.editor(type)->iD(), QString::fromLatin1(ids[type])) << type;
    EXPECT_EQ(inspector.editor(12), inspector.editor(0));
    EXPECT_EQ(inspector.dzDisplayEditor()->iD(), QString());

    TVKControl* button = selectFirstOfType(ControlType::Button);
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(inspector.theControl(), button);
    EXPECT_EQ(inspector.selectedEditor(), 0);
    EXPECT_FALSE(inspector.controlIsADisplay());
    EXPECT_EQ(inspector.panel()->windowTitle(), QStringLiteral("Inspector - %1 (%2 Layer 1)")
                                                    .arg(button->name(), button->keyset()->name()));
    EXPECT_FALSE(inspector.brightnessSlider()->isVisibleTo(inspector.panel()));

    TVKControl* trackball = selectFirstOfType(ControlType::FourWay);
    ASSERT_NE(trackball, nullptr);
    EXPECT_EQ(inspector.selectedEditor(), 2);
    EXPECT_TRUE(inspector.brightnessSlider()->isVisibleTo(inspector.panel()));
    EXPECT_TRUE(inspector.editor(0)->isHidden());

    // A display is a display; its empty slot has no function rather than no action.
    TVKControl* display = selectFirstOfType(ControlType::LCDDisplay);
    ASSERT_NE(display, nullptr);
    EXPECT_TRUE(inspector.controlIsADisplay());
    EXPECT_EQ(inspector.selectedEditor(), 5);
    inspector.handleDeleteAction();
    EXPECT_EQ(inspector.currentEditor()->actionDescriptor(),
              QStringLiteral("No Function Assigned"));
    EXPECT_FALSE(inspector.deleteActionButton()->isEnabled());
    // A control touched on the surface after it is not a display.
    selectFirstOfType(ControlType::Encoder);
    EXPECT_FALSE(inspector.controlIsADisplay());
    EXPECT_EQ(inspector.selectedEditor(), 1);
}

TEST_F(InspectorTest, KeystrokesTypedIntoTheBoxAreEditsOfTheModelAndTheService)
{
    InspectorController& inspector = openInspector();
    TVKControl* button = selectFirstOfType(ControlType::Button);
    ASSERT_NE(button, nullptr);
    auto& keys = tab<TVKKeySequenceActionEditorView>(inspector, "KEYS");

    // Tab and Escape are keystrokes here, not focus moves or cancels; Ctrl+Q is not Quit.
    qsizetype from = mark();
    QTest::mouseClick(keys.entryView(), Qt::LeftButton);
    ASSERT_TRUE(keys.entryView()->armed());
    QTest::keyClick(keys.entryView(), Qt::Key_Tab);
    EXPECT_EQ(inspector.panel()->focusWidget(), keys.entryView())
        << "Tab was recorded, not followed";
    EXPECT_FALSE(keys.entryView()->armed()) << "one key per recording";
    ASSERT_NE(button->action(), nullptr);
    EXPECT_EQ(button->action()->actionType(), TVKButtonKeySequenceAction::kActionType);
    EXPECT_EQ(button->action()->actionDescriptor(), QStringLiteral("Key Sequence: Tab "));
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 1, from));

    keys.button(KeySequenceEditor::Next)->click();
    QTest::keyClick(keys.entryView(), Qt::Key_Return); // arms from the keyboard
    QTest::keyClick(keys.entryView(), Qt::Key_Q, Qt::ControlModifier);
    QTest::keyClick(keys.entryView(), Qt::Key_Return);
    QTest::keyClick(keys.entryView(), Qt::Key_Escape);
    const auto* sequence = dynamic_cast<const TVKButtonKeySequenceAction*>(button->action());
    ASSERT_NE(sequence, nullptr);
    ASSERT_EQ(sequence->sequence().size(), 2u) << "Escape overwrote the second step";
    EXPECT_EQ(sequence->sequence()[1].modifierFlags(), 0u);
    EXPECT_TRUE(keys.modifierBoxes()->box(KeySequenceEditor::ControlBox)->isChecked() == false);
    EXPECT_EQ(inspector.currentEditor()->actionDescriptor(), button->action()->actionDescriptor());
    EXPECT_TRUE(app->isVisible(TVKWindow::Main)) << "Ctrl+Q did not quit";

    // Undo takes the last keystroke edit back in the model and the service, and the inspector.
    from = mark();
    controller->undoManager().undo();
    sequence = dynamic_cast<const TVKButtonKeySequenceAction*>(button->action());
    ASSERT_NE(sequence, nullptr);
    EXPECT_EQ(sequence->sequence()[1].character(), QStringLiteral("q"));
    nextFrame();
    EXPECT_EQ(inspector.currentEditor()->actionDescriptor(), button->action()->actionDescriptor());
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 1, from));
    EXPECT_TRUE(serviceInStep());
    controller->undoManager().redo();
    EXPECT_TRUE(serviceInStep());

    // Copied to every layer, and removed again from one.
    inspector.allLayersCopyCheckbox()->click();
    // The undo showed the action again from its first step; past the last one appends.
    keys.button(KeySequenceEditor::Next)->click();
    keys.button(KeySequenceEditor::Next)->click();
    EXPECT_FALSE(keys.button(KeySequenceEditor::Next)->isEnabled());
    QTest::mouseClick(keys.entryView(), Qt::LeftButton);
    QTest::keyClick(keys.entryView(), Qt::Key_F5);
    for (int layer = 0; layer < 4; ++layer) {
        const auto* copy =
            dynamic_cast<const TVKButtonKeySequenceAction*>(inLayer(*button, layer)->action());
        ASSERT_NE(copy, nullptr) << layer;
        EXPECT_EQ(copy->sequence().size(), 3u) << layer;
    }
    inspector.allLayersCopyCheckbox()->click();
    inspector.deleteActionButton()->click();
    EXPECT_EQ(button->action(), nullptr);
    EXPECT_NE(inLayer(*button, 1)->action(), nullptr);
    EXPECT_EQ(inspector.currentEditor()->actionDescriptor(), QStringLiteral("No Action Assigned"));
    EXPECT_TRUE(serviceInStep());
}

TEST_F(InspectorTest, MIDIMouseSpecialAndBuiltInEditors)
{
    installCatalogue();
    InspectorController& inspector = openInspector();
    TVKControl* encoder = selectFirstOfType(ControlType::Encoder);
    ASSERT_NE(encoder, nullptr);
    auto& midi = tab<TVKMIDIActionEditorView>(inspector, "MIDI");
    qsizetype from = mark();
    midi.modeGroup()->button(2)->click();
    choose(midi.commandPopUp(), 0xB0);
    midi.channel()->setValue(3);
    midi.data1()->setValue(74);
    midi.data2FollowsValue()->click();
    const auto* custom = dynamic_cast<const TVKEncoderMIDIAction*>(encoder->action());
    ASSERT_NE(custom, nullptr);
    EXPECT_EQ(custom->midiMode(), 2u);
    EXPECT_EQ(midi.messageLabel()->text(), QStringLiteral("b2 4a value"));
    // What the editor says it sends is written as the action's description writes it.
    EXPECT_EQ(QStringLiteral("Custom MIDI: ") + midi.messageLabel()->text(),
              custom->actionDescriptor().simplified());
    EXPECT_FALSE(midi.data2()->isEnabled());
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 5, from));
    EXPECT_TRUE(serviceInStep());

    // A program change has no second data byte.
    choose(midi.commandPopUp(), 0xC0);
    EXPECT_FALSE(midi.data2()->isVisibleTo(&midi));
    controller->undoManager().undo();
    nextFrame();
    EXPECT_TRUE(midi.data2()->isVisibleTo(&midi)) << "the inspector shows the undone message";

    TVKControl* button = selectFirstOfType(ControlType::Button);
    auto& mouse = tab<TVKMouseActionEditorView>(inspector, "MOUS");
    choose(mouse.operationPopUp(), 1);
    ASSERT_NE(button->action(), nullptr);
    EXPECT_EQ(button->action()->actionType(), TVKButtonMouseAction::kActionType);
    EXPECT_TRUE(mouse.locationPopUp()->isEnabled());
    choose(mouse.locationPopUp(), 1);
    ASSERT_TRUE(mouse.captureButton()->isVisibleTo(&mouse));
    mouse.captureButton()->click();
    EXPECT_TRUE(controller->capturing());
    EXPECT_TRUE(mouse.captureText()->text().startsWith(QStringLiteral("Ready to capture")));
    controller->handleEndCapture();
    // Nothing could be asked about the pointer here: the editor says so and keeps the action.
    EXPECT_EQ(mouse.captureText()->text(),
              QStringLiteral("Please place the mouse pointer over the application %1")
                  .arg(button->keyset()->name()));
    EXPECT_TRUE(mouse.platformNote()->isVisibleTo(&mouse));
    EXPECT_TRUE(mouse.captureButton()->isVisibleTo(&mouse));

    auto& special = tab<TVKSpecialActionEditorView>(inspector, "SPEC");
    special.modeGroup()->button(5)->click();
    const auto* layer2 = dynamic_cast<const TVKSpecialAction*>(button->action());
    ASSERT_NE(layer2, nullptr);
    EXPECT_EQ(layer2->mode(), 5);
    special.modeGroup()->button(0)->click();
    EXPECT_EQ(button->action(), nullptr);

    // The catalogue's commands for the keyset's application; a search narrows them. (The
    // application is set behind the service's back, and put back before comparing.)
    const std::optional<QString> bundle = button->keyset()->bundleID();
    button->keyset()->setBundleID(QStringLiteral("org.audacityteam.Audacity"));
    controller->notifyWithMessage(note::SelectedKeysetChange{});
    auto& builtIn = tab<TVKBuiltInActionEditorView>(inspector, "BILT");
    EXPECT_EQ(builtIn.titleLabel()->text(),
              QStringLiteral("Built In Commands for %1:").arg(button->keyset()->name()));
    builtIn.searchField()->setText(QStringLiteral("play"));
    QTreeWidgetItem* found = nullptr;
    for (int g = 0; g < builtIn.browser()->topLevelItemCount() && !found; ++g)
        for (int c = 0; c < builtIn.browser()->topLevelItem(g)->childCount(); ++c)
            if (!builtIn.browser()->topLevelItem(g)->child(c)->isHidden()) {
                found = builtIn.browser()->topLevelItem(g)->child(c);
                break;
            }
    ASSERT_NE(found, nullptr);
    const QString command = found->text(0);
    EXPECT_TRUE(command.contains(QStringLiteral("Play"), Qt::CaseInsensitive));
    Q_EMIT builtIn.browser()->itemActivated(found, 0);
    ASSERT_NE(button->action(), nullptr);
    EXPECT_EQ(button->action()->actionType(), TVKButtonBuiltInAction::kActionType);
    EXPECT_EQ(button->userName(), command) << "the control takes the command's name";
    EXPECT_EQ(inspector.userNameField()->text(), command);
    button->keyset()->setBundleID(bundle);
    EXPECT_TRUE(serviceInStep());
}

TEST_F(InspectorTest, TheEmulationTabGuardAndTheLock)
{
    InspectorController& inspector = openInspector();
    TVKControl* encoder = selectFirstOfType(ControlType::Encoder);
    ASSERT_NE(encoder, nullptr);
    TVKEditorView& view = *inspector.currentEditor();
    auto emulationIndex = [&](const TVKEditorView& v) {
        for (int i = 0; i < v.editorTabs()->count(); ++i)
            if (v.editorTabs()->tabBar()->tabData(i).value<FourCharCode>() == fourCC("EMUL"))
                return i;
        return -1;
    };
    // Without emulation the tab cannot be chosen; in mode 3 only buttons and the jog wheel may.
    view.editorTabs()->setCurrentIndex(emulationIndex(view));
    EXPECT_NE(view.currentTabID(), fourCC("EMUL"));
    controller->handleEmulationMenu(qint64(corvane::EmulationMode::A));
    view.editorTabs()->setCurrentIndex(emulationIndex(view));
    EXPECT_EQ(view.currentTabID(), fourCC("EMUL"));
    view.selectActionEditor(0);
    controller->handleEmulationMenu(qint64(corvane::EmulationMode::C));
    view.editorTabs()->setCurrentIndex(emulationIndex(view));
    EXPECT_NE(view.currentTabID(), fourCC("EMUL"));
    selectFirstOfType(ControlType::Jog);
    TVKEditorView& jog = *inspector.currentEditor();
    jog.editorTabs()->setCurrentIndex(emulationIndex(jog));
    EXPECT_EQ(jog.currentTabID(), fourCC("EMUL"));
    auto& emulation =
        dynamic_cast<TVKEmulationActionEditorView&>(*jog.editorTabs()->currentWidget());
    EXPECT_TRUE(emulation.speedSlider()->isVisibleTo(&emulation)) << "mode C sets the jog's speed";
    emulation.emulateBox()->click();
    ASSERT_NE(inspector.theControl()->action(), nullptr);
    EXPECT_EQ(inspector.theControl()->action()->editorTabID(), fourCC("EMUL"));

    // Locked, nothing of the panel or the editor can be used.
    controller->setKeysetLockState(true);
    EXPECT_TRUE(inspector.panel()->locked());
    EXPECT_FALSE(inspector.userNameField()->isEnabled());
    EXPECT_FALSE(inspector.deleteActionButton()->isEnabled());
    EXPECT_FALSE(emulation.emulateBox()->isEnabled());
    EXPECT_FALSE(jog.editorTabs()->isEnabled());
    controller->setKeysetLockState(false);
    EXPECT_TRUE(inspector.userNameField()->isEnabled());
    EXPECT_TRUE(emulation.emulateBox()->isEnabled());
}

TEST_F(InspectorTest, DisplayEditsReachTheServiceWithAPreview)
{
    InspectorController& inspector = openInspector();
    TVKControl* display = selectFirstOfType(ControlType::LCDDisplay);
    ASSERT_NE(display, nullptr);
    auto& text = tab<TVKDisplayTextEditorView>(inspector, "TEXT");
    qsizetype from = mark();
    text.textField()->setText(QStringLiteral("Mix A"));
    Q_EMIT text.textField()->editingFinished();
    const auto* shown = dynamic_cast<const TVKLCDDisplayTextAction*>(display->action());
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->storedText(), QStringLiteral("Mix A"));
    EXPECT_EQ(inspector.currentEditor()->preview()->text(), QStringLiteral("Mix A"));
    ASSERT_TRUE(waitForCount(QStringLiteral("IDAc"), 1, from));
    EXPECT_TRUE(serviceInStep());
    controller->undoManager().undo();
    EXPECT_NE(display->action() ? display->action()->actionType() : 0,
              TVKLCDDisplayTextAction::kActionType);
    EXPECT_TRUE(serviceInStep());

    // An LCD button's lines: three lines of eight characters.
    TVKControl* lcb = selectFirstOfType(ControlType::LCDButtonDisplay);
    ASSERT_NE(lcb, nullptr);
    auto& lines = tab<TVKHiResTextEditorView>(inspector, "TEXT");
    lines.lineCountGroup()->button(3)->click();
    EXPECT_EQ(lines.limitLabel()->text(), QStringLiteral("Up to 8 characters per line allowed"));
    lines.lineField(0)->setText(QStringLiteral("Vocals"));
    Q_EMIT lines.lineField(0)->editingFinished();
    lines.lineField(1)->setText(QStringLiteral("Bus"));
    Q_EMIT lines.lineField(1)->editingFinished();
    const auto* hiRes = dynamic_cast<const CorvaneHiResLCDButtonDisplayTextAction*>(lcb->action());
    ASSERT_NE(hiRes, nullptr);
    EXPECT_EQ(hiRes->storedText(), QStringLiteral("Vocals\nBus\n"));
    EXPECT_TRUE(serviceInStep());

    auto& icon = tab<TVKIconEditorView>(inspector, "ICON");
    icon.iconGroup()->button(2)->click();
    EXPECT_EQ(inspector.currentEditor()->actionDescriptor(), QStringLiteral("ROM Icon #2"));
    EXPECT_EQ(inspector.currentEditor()->preview()->icon(), 2);
    EXPECT_TRUE(serviceInStep());
}

TEST_F(InspectorTest, TypedNumbersAreOneEditWhenTheFieldIsLeft)
{
    InspectorController& inspector = openInspector();
    TVKControl* encoder = selectFirstOfType(ControlType::Encoder);
    ASSERT_NE(encoder, nullptr);
    auto& midi = tab<TVKMIDIActionEditorView>(inspector, "MIDI");
    qsizetype from = mark();
    midi.modeGroup()->button(2)->click();
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 1, from));
    QUndoStack& stack = controller->undoManager().stack();
    const int steps = stack.index();
    from = mark();

    // Typing 100 is one edit: none while the digits go in, one when Return ends the entry.
    midi.data1()->selectAll();
    QTest::keyClicks(midi.data1(), QStringLiteral("100"));
    EXPECT_EQ(stack.index(), steps) << "no edit per digit";
    QTest::keyClick(midi.data1(), Qt::Key_Return);
    EXPECT_EQ(stack.index(), steps + 1);
    const auto* custom = dynamic_cast<const TVKEncoderMIDIAction*>(encoder->action());
    ASSERT_NE(custom, nullptr);
    ASSERT_GE(custom->messageSize(), 2u);
    EXPECT_EQ(custom->message()[1], 100);
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 1, from));
    EXPECT_TRUE(serviceInStep());
    EXPECT_EQ(received(QStringLiteral("InAc"), from).size(), 1u) << "one message, not three";

    // Leaving the field ends the entry as Return does.
    midi.data2()->selectAll();
    QTest::keyClicks(midi.data2(), QStringLiteral("64"));
    EXPECT_EQ(stack.index(), steps + 1);
    midi.commandPopUp()->setFocus();
    QFocusEvent focusOut(QEvent::FocusOut, Qt::TabFocusReason);
    QCoreApplication::sendEvent(midi.data2(), &focusOut);
    EXPECT_EQ(stack.index(), steps + 2);
    custom = dynamic_cast<const TVKEncoderMIDIAction*>(encoder->action());
    ASSERT_NE(custom, nullptr);
    EXPECT_EQ(custom->message()[2], 64);

    // One undo takes the whole number back.
    controller->undoManager().undo();
    controller->undoManager().undo();
    custom = dynamic_cast<const TVKEncoderMIDIAction*>(encoder->action());
    ASSERT_NE(custom, nullptr);
    EXPECT_EQ(custom->message()[1], 0);
    nextFrame();
    EXPECT_EQ(midi.data1()->value(), 0);
    EXPECT_TRUE(serviceInStep());
}

TEST_F(InspectorTest, EveryNumberFieldOfEveryEditorCommitsOnce)
{
    InspectorController& inspector = openInspector();
    // With emulation on, every tab can be reached.
    controller->handleEmulationMenu(1);
    QUndoStack& stack = controller->undoManager().stack();
    int fields = 0;
    for (int type = 0; type < InspectorController::kEditorCount; ++type) {
        if (!selectFirstOfType(type))
            continue;
        TVKEditorView& view = *inspector.currentEditor();
        for (int t = 0; t < view.editorTabs()->count(); ++t) {
            view.editorTabs()->setCurrentIndex(t);
            ASSERT_EQ(view.editorTabs()->currentIndex(), t) << "type " << type << " tab " << t;
            for (QAbstractSpinBox* field :
                 view.editorTabs()->widget(t)->findChildren<QAbstractSpinBox*>()) {
                SCOPED_TRACE(QStringLiteral("type %1, tab %2, %3")
                                 .arg(type)
                                 .arg(view.editorTabs()->tabText(t), field->text())
                                 .toStdString());
                ++fields;
                const int steps = stack.index();
                field->selectAll();
                QTest::keyClicks(field, QStringLiteral("12"));
                EXPECT_EQ(stack.index(), steps) << "an edit per digit";
                QTest::keyClick(field, Qt::Key_Return);
                EXPECT_LE(stack.index(), steps + 1) << "more than one edit for one entry";
            }
        }
    }
    EXPECT_GE(fields, 4) << "the MIDI and emulation number fields were found";
    EXPECT_TRUE(serviceInStep());
}

TEST_F(InspectorTest, ABuiltInCommandAndTheNameItGivesAreOneStep)
{
    installCatalogue();
    InspectorController& inspector = openInspector();
    TVKControl* button = selectFirstOfType(ControlType::Button);
    ASSERT_NE(button, nullptr);
    const std::optional<QString> bundle = button->keyset()->bundleID();
    button->keyset()->setBundleID(QStringLiteral("org.audacityteam.Audacity"));
    controller->notifyWithMessage(note::SelectedKeysetChange{});
    auto& builtIn = tab<TVKBuiltInActionEditorView>(inspector, "BILT");
    // The list stays loaded; the service and the controller agree on the keyset again.
    button->keyset()->setBundleID(bundle);
    QTreeWidgetItem* command = nullptr;
    for (int g = 0; g < builtIn.browser()->topLevelItemCount() && !command; ++g)
        if (builtIn.browser()->topLevelItem(g)->childCount() > 0)
            command = builtIn.browser()->topLevelItem(g)->child(0);
    ASSERT_NE(command, nullptr);
    const QString name = command->text(0);
    const QString before = button->userName();
    ASSERT_NE(before, name);

    QUndoStack& stack = controller->undoManager().stack();
    const int steps = stack.index();
    const qsizetype from = mark();
    Q_EMIT builtIn.browser()->itemActivated(command, 0);
    ASSERT_NE(button->action(), nullptr);
    EXPECT_EQ(button->userName(), name);
    EXPECT_EQ(stack.index(), steps + 1) << "one step for the one double click";
    EXPECT_EQ(stack.undoText(), QStringLiteral("Edit Control Action"));
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 1, from));
    ASSERT_TRUE(waitForCount(QStringLiteral("ChUN"), 1, from));

    // Undo takes both back, in the model, the inspector and the service.
    qsizetype mark2 = mark();
    controller->undoManager().undo();
    EXPECT_EQ(stack.index(), steps);
    EXPECT_EQ(button->action(), nullptr);
    EXPECT_EQ(button->userName(), before);
    nextFrame();
    EXPECT_EQ(inspector.userNameField()->text(), before);
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 1, mark2));
    ASSERT_TRUE(waitForCount(QStringLiteral("ChUN"), 1, mark2));
    EXPECT_TRUE(serviceInStep());

    // Redo gives both again, and a name typed afterwards is still no undo step.
    controller->undoManager().redo();
    EXPECT_EQ(button->userName(), name);
    nextFrame();
    EXPECT_EQ(inspector.userNameField()->text(), name);
    ASSERT_NE(button->action(), nullptr);
    EXPECT_EQ(button->action()->actionType(), TVKButtonBuiltInAction::kActionType);
    inspector.userNameField()->setText(QStringLiteral("Mine"));
    Q_EMIT inspector.userNameField()->editingFinished();
    EXPECT_EQ(button->userName(), QStringLiteral("Mine"));
    EXPECT_EQ(stack.index(), steps + 1);
    EXPECT_TRUE(serviceInStep());
}

TEST_F(InspectorTest, TheEmulationTabSaysWhyItCannotOpenForEveryKindAndMode)
{
    InspectorController& inspector = openInspector();
    // Which control types play console controls in each mode.
    const auto opens = [](uint mode, int type) {
        if (mode == 0)
            return false;
        if (mode == 3)
            return type == ControlType::Button || type == ControlType::Jog;
        return true;
    };
    int checked = 0;
    for (uint mode = 0; mode < 4; ++mode) {
        controller->handleEmulationMenu(mode);
        for (int type = 0; type < InspectorController::kEditorCount; ++type) {
            if (!selectFirstOfType(type))
                continue;
            TVKEditorView& view = *inspector.currentEditor();
            int emulation = -1;
            for (int i = 0; i < view.editorTabs()->count(); ++i)
                if (view.editorTabs()->tabBar()->tabData(i).value<FourCharCode>() == fourCC("EMUL"))
                    emulation = i;
            // A display in mode C goes by the control selected before it; that is not a rule
            // of the display's kind.
            if (emulation < 0 || (mode == 3 && ControlType::isDisplayType(type)))
                continue;
            SCOPED_TRACE(QStringLiteral("mode %1, type %2").arg(mode).arg(type).toStdString());
            ++checked;
            const int other = emulation == 0 ? 1 : 0;
            view.selectActionEditor(other);
            const QString tip = view.editorTabs()->tabBar()->tabToolTip(emulation);
            view.editorTabs()->setCurrentIndex(emulation);
            if (opens(mode, type)) {
                EXPECT_EQ(view.currentTabID(), fourCC("EMUL"));
                EXPECT_TRUE(tip.isEmpty());
                EXPECT_FALSE(view.tabNotice()->isVisibleTo(inspector.panel()));
                continue;
            }
            EXPECT_NE(view.currentTabID(), fourCC("EMUL"));
            // It says why, and where the mode is set: the menu and its items as they are named.
            ASSERT_TRUE(view.tabNotice()->isVisibleTo(inspector.panel()));
            const QString why = view.tabNotice()->text();
            EXPECT_EQ(tip, why) << "the tab says the same before it is clicked";
            EXPECT_TRUE(why.contains(QStringLiteral("Surface menu"))) << why.toStdString();
            const QAction* modeA = controller->menuItem(TVKMenuCommand::HandleEmulationMenu, 1);
            ASSERT_NE(modeA, nullptr);
            EXPECT_TRUE(why.contains(QString(modeA->text()).remove(u'&'))) << why.toStdString();
            // Choosing another tab puts the note away.
            view.selectActionEditor(other);
            EXPECT_FALSE(view.tabNotice()->isVisibleTo(inspector.panel()));
        }
    }
    EXPECT_GE(checked, 20);
}

TEST_F(InspectorTest, ThePanelComesBackWhereItWas)
{
    startApplication();
    controller->showInspector();
    ASSERT_NE(app->inspector(), nullptr);
    QWidget* panel = app->inspector()->panel();
    // Somewhere on the screen other than where it first opened.
    const QRect screen = panel->screen()->availableGeometry();
    panel->setGeometry(
        QRect(screen.topLeft() + QPoint(60, 80),
              QSize(std::min(600, screen.width() - 80), std::min(640, screen.height() - 120))));
    const QRect frame = panel->geometry();
    app->quit();
    app.reset();
    controller.reset();

    startApplication();
    EXPECT_TRUE(controller->defaults()
                    .objectForKey(u"CorvaneWindowFrames")
                    .contains(QStringLiteral("TVKInsPos")));
    controller->showInspector();
    ASSERT_NE(app->inspector(), nullptr);
    EXPECT_EQ(app->inspector()->panel()->geometry(), frame);
}
