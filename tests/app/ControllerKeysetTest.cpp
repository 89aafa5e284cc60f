#include "ControllerFixture.h"
#include "core/FourCharCode.h"
#include "core/Log.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "model/CorvaneKeyset.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"

#include <QAction>
#include <QActionGroup>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>

using namespace corvane;
using namespace corvane::test;

namespace {

class KeysetCommandTest : public ControllerTest
{
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        CorvaneModelData model;
        model.addKeysetWithName(QStringLiteral("Editor"), fourCC("EdIt"));
        model.addKeysetWithName(QStringLiteral("Mixer"), 0, QStringLiteral("org.example.mixer"));
        model.addKeysetWithName(QStringLiteral("Grader"), fourCC("GrAd"));
        storeConfiguration(model);
        ASSERT_TRUE(startService());
        startController();
    }

    void writeFile(const QString& path, const QByteArray& bytes)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    CorvaneController& c() { return *controller; }
    int keysets() { return c().modelData()->numberOfKeysets(); }
};

} // namespace

TEST_F(KeysetCommandTest, NewKeysetForAnInstalledApplication)
{
    writeFile(home.path() + QStringLiteral("/data/applications/org.example.Cutter.desktop"),
              "[Desktop Entry]\nType=Application\nName=Cutter\nExec=cutter\nIcon=cutter\n");
    views.chosenApplication = DesktopApplication{};
    views.chosenApplication->id = QStringLiteral("org.example.Cutter");
    views.chosenApplication->name = QStringLiteral("Cutter");

    qsizetype from = mark();
    c().handleNewKeyset();
    ASSERT_EQ(keysets(), 5);
    const TVKKeyset* made = c().modelData()->keysetAtIndex(4);
    EXPECT_EQ(made->name(), QStringLiteral("Cutter"));
    EXPECT_EQ(made->bundleID(), QStringLiteral("org.example.Cutter"));
    EXPECT_EQ(made->signature(), fourCC("????"));
    EXPECT_EQ(c().selectedKeyset(), 4);
    EXPECT_EQ(c().keysetsMenu().size(), 6u);
    EXPECT_EQ(c().keysetsMenu().back()->text(), QStringLiteral("Cutter"));
    EXPECT_TRUE(std::any_of(
        views.offeredApplications.begin(), views.offeredApplications.end(),
        [](const DesktopApplication& a) { return a.id == QStringLiteral("org.example.Cutter"); }));
    ASSERT_TRUE(waitForCount(QStringLiteral("TAdK"), 1, from));
    EXPECT_TRUE(serviceInStep());
    EXPECT_FALSE(c().undoManager().canUndo()) << "making a keyset is not undoable";

    // The same application again: matched by its identifier, since it has no signature.
    from = mark();
    c().handleNewKeyset();
    EXPECT_EQ(keysets(), 5);
    ASSERT_EQ(views.alerts.size(), 1u);
    EXPECT_EQ(views.alerts[0].message, QStringLiteral("Keyset Already Exists"));
    EXPECT_EQ(
        views.alerts[0].informativeText,
        QStringLiteral("A keyset for \"Cutter\" already exists in the list of active keysets"));
    spinFor(50);
    EXPECT_TRUE(received(QStringLiteral("TAdK"), from).empty());
}

TEST_F(KeysetCommandTest, ExportAndImportKeysetFiles)
{
    const QString file = home.path() + QStringLiteral("/Editor.CvKs");
    c().setSelectedKeyset(1);
    views.savePanelAnswers.push_back(file);
    c().handleExportKeyset();
    ASSERT_EQ(views.proposedNames.size(), 1u);
    EXPECT_EQ(views.proposedNames[0], QStringLiteral("Editor.CvKs"));
    ASSERT_TRUE(QFile::exists(file));

    // Not keysets: the alert names the file and why; nothing changes, nothing is sent.
    const QString list = home.path() + QStringLiteral("/list.CvKs");
    writeFile(list, PlistCodec::write(PlistValue::makeArray()));
    const QString cut = home.path() + QStringLiteral("/cut.CvKs");
    QFile source(file);
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    writeFile(cut, source.readAll().left(300));
    qsizetype from = mark();
    for (const QString& bad : {list, cut}) {
        LogCapture log;
        views.openPanelAnswers.push_back(bad);
        c().handleImportKeyset();
        EXPECT_TRUE(
            log.lines().filter(QStringLiteral("handleImportKeyset exception name:")).size() == 1);
        ASSERT_FALSE(views.alerts.empty());
        EXPECT_TRUE(views.alerts.back().informativeText.contains(QFileInfo(bad).fileName()));
    }
    EXPECT_EQ(views.openPanelTypes.back(), QStringList{QStringLiteral("CvKs")});
    EXPECT_EQ(keysets(), 4);

    // The keyset is there already: replaced only when asked to.
    views.alertAnswers = {1};
    views.openPanelAnswers.push_back(file);
    c().handleImportKeyset();
    views.alertAnswers = {0};
    views.openPanelAnswers.push_back(file);
    c().setSelectedKeyset(3);
    c().handleImportKeyset();
    EXPECT_EQ(views.alerts.back().buttons,
              (QStringList{QStringLiteral("Replace Existing Keyset"),
                           QStringLiteral("Don't Replace Existing Keyset")}));
    EXPECT_EQ(keysets(), 4);
    EXPECT_EQ(c().selectedKeyset(), 1);
    ASSERT_TRUE(waitForCount(QStringLiteral("TUpK"), 1, from));
    EXPECT_TRUE(received(QStringLiteral("TAdK"), from).empty());

    // Gone from the list, it comes back as a new keyset at the end.
    views.alertAnswers = {0};
    c().handleDeleteKeyset();
    views.openPanelAnswers.push_back(file);
    c().handleImportKeyset();
    EXPECT_EQ(keysets(), 4);
    EXPECT_EQ(c().modelData()->keysetAtIndex(3)->name(), QStringLiteral("Editor"));
    EXPECT_TRUE(serviceInStep());
}

TEST_F(KeysetCommandTest, KeysetSwapsUndoAndRedoWithTheServiceInStep)
{
    c().setSelectedKeyset(1);
    c().handleCopyKeyset();
    c().setSelectedKeyset(3);
    TVKKeyset* grader = c().modelData()->keysetAtIndex(3);
    grader->setEmulationMode(corvane::EmulationMode::A);

    struct Step
    {
        std::function<void()> run;
        QString name;
    };
    const std::vector<Step> steps = {
        {[&] { c().handlePasteKeyset(); }, QStringLiteral("Paste Keyset")},
        {[&] { c().handleClearKeyset(); }, QStringLiteral("Clear Keyset")},
        {[&] { c().handleSetAllMenuItems(corvane::ActionMode::NativeMIDI); },
         QStringLiteral("Set All Controls to Native MIDI")},
        {[&] { c().handleEmulationMenu(qint64(corvane::EmulationMode::None)); },
         QStringLiteral("Disable Emulation")},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name.toStdString());
        const TVKKeyset* before = c().modelData()->keysetAtIndex(3);
        const qsizetype from = mark();
        step.run();
        const TVKKeyset* after = c().modelData()->keysetAtIndex(3);
        ASSERT_NE(after, before);
        // Which application the keyset serves never changes.
        EXPECT_EQ(after->name(), QStringLiteral("Grader"));
        EXPECT_EQ(after->signature(), fourCC("GrAd"));
        EXPECT_EQ(c().undoManager().undoActionName(), step.name);
        EXPECT_TRUE(serviceInStep());
        c().undoManager().undo();
        EXPECT_EQ(c().modelData()->keysetAtIndex(3), before);
        EXPECT_EQ(c().undoManager().redoActionName(), step.name);
        EXPECT_TRUE(serviceInStep());
        c().undoManager().redo();
        EXPECT_EQ(c().modelData()->keysetAtIndex(3), after);
        EXPECT_TRUE(serviceInStep());
        EXPECT_EQ(received(QStringLiteral("TUpK"), from).size(), 3u);
    }
    // Paste kept the icon and target of the keyset pasted into; clear keeps neither.
    c().undoManager().undo();
    c().undoManager().undo();
    c().undoManager().undo();
    EXPECT_EQ(c().modelData()->keysetAtIndex(3)->targetID(), grader->targetID());
}

TEST_F(KeysetCommandTest, DeleteAsksFirstAndUndoPutsTheKeysetBack)
{
    c().setSelectedKeyset(3);
    views.alertAnswers = {1};
    c().handleDeleteKeyset();
    EXPECT_EQ(keysets(), 4) << "Don't Delete";
    EXPECT_EQ(views.alerts.back().informativeText,
              QStringLiteral("Do you really want to delete the keyset \"Grader\"?"));

    const qsizetype from = mark();
    TVKKeyset* grader = c().modelData()->keysetAtIndex(3);
    views.alertAnswers = {0};
    c().handleDeleteKeyset();
    EXPECT_EQ(keysets(), 3);
    EXPECT_EQ(c().selectedKeyset(), 2) << "the last keyset's deletion selects the one before";
    EXPECT_EQ(c().keysetsMenu().size(), 4u);
    EXPECT_TRUE(serviceInStep());
    c().undoManager().undo();
    EXPECT_EQ(keysets(), 4);
    EXPECT_EQ(c().modelData()->keysetAtIndex(3), grader);
    EXPECT_EQ(c().selectedKeyset(), 3);
    EXPECT_TRUE(serviceInStep());
    c().undoManager().redo();
    EXPECT_EQ(keysets(), 3);
    EXPECT_TRUE(serviceInStep());
    EXPECT_EQ(received(QStringLiteral("TDlK"), from).size(), 2u);
    EXPECT_EQ(received(QStringLiteral("TAdK"), from).size(), 1u);

    // A middle keyset: the same index now shows the next one. Keyset 0 is never deleted.
    c().setSelectedKeyset(1);
    c().handleDeleteKeyset();
    EXPECT_EQ(c().selectedKeyset(), 1);
    EXPECT_EQ(c().modelData()->keysetAtIndex(1)->name(), QStringLiteral("Mixer"));
    c().setSelectedKeyset(0);
    c().handleDeleteKeyset();
    EXPECT_EQ(keysets(), 2);
    EXPECT_TRUE(serviceInStep());
}

TEST_F(KeysetCommandTest, KeysetsMenuFollowsTheListAndSelects)
{
    const std::vector<QAction*>& menu = c().keysetsMenu();
    ASSERT_EQ(menu.size(), 5u);
    const QString fixedTitle = menu[1]->text();
    EXPECT_EQ(menu[2]->text(), QStringLiteral("Editor"));
    EXPECT_EQ(TVKMenuItems::tag(menu[3]), qint64(fourCC("????"))) << "no signature";

    c().handleKeysetsMenu(menu[3]);
    EXPECT_EQ(c().selectedKeyset(), 2) << "found by its title";
    c().handleKeysetsMenu(menu[4]);
    EXPECT_EQ(c().selectedKeyset(), 3) << "found by its signature";
    c().validateMenuItems();
    EXPECT_TRUE(menu[4]->isChecked());
    EXPECT_FALSE(menu[2]->isChecked());

    for (int i = 0; i < 2; ++i)
        c().modelData()->addKeysetWithName(QStringLiteral("More %1").arg(i), 0);
    c().updateKeysetsMenu();
    EXPECT_EQ(menu.size(), 7u);
    while (keysets() > 2)
        c().modelData()->deleteKeysetAtIndex(keysets() - 1);
    c().updateKeysetsMenu();
    ASSERT_EQ(menu.size(), 3u);
    EXPECT_EQ(menu[1]->text(), fixedTitle) << "keyset 0's item keeps its title";
    EXPECT_EQ(menu[2]->text(), QStringLiteral("Editor"));
}

TEST_F(KeysetCommandTest, MenuItemsFollowTheSelectedKeysetAndItsLock)
{
    const auto item = [&](TVKMenuCommand command, qint64 tag = 0) {
        QAction* action = c().menuItem(command, tag);
        c().validateMenuItems();
        return action;
    };
    EXPECT_FALSE(item(TVKMenuCommand::HandleExportKeyset)->isEnabled()) << "keyset 0";
    EXPECT_FALSE(item(TVKMenuCommand::HandleDeleteKeyset)->isEnabled());
    EXPECT_FALSE(item(TVKMenuCommand::HandleOwnerMenu)->isEnabled());
    EXPECT_TRUE(item(TVKMenuCommand::HandleCopyKeyset)->isEnabled());

    c().setSelectedKeyset(1);
    EXPECT_EQ(item(TVKMenuCommand::HandleLockUnlockMenu)->text(),
              QStringLiteral("Lock Editor keyset"));
    EXPECT_EQ(item(TVKMenuCommand::HandlePasteKeyset)->text(),
              QStringLiteral("Paste to Editor keyset"));
    EXPECT_EQ(item(TVKMenuCommand::HandleDeleteKeyset)->text(),
              QStringLiteral("Delete Editor keyset"));
    EXPECT_EQ(item(TVKMenuCommand::HandleOwnerMenu)->text(),
              QStringLiteral("Set Editor as Control Surface Owner"));
    EXPECT_EQ(item(TVKMenuCommand::ShowAppPortPanel)->text(),
              QStringLiteral("Set Ethernet Port for Editor Keyset"));
    EXPECT_FALSE(item(TVKMenuCommand::HandleSetAllMenuItems, 3)->isEnabled()) << "no Ethernet";
    EXPECT_FALSE(item(TVKMenuCommand::HandleSetAllMenuItems, 2)->isEnabled()) << "no emulation";
    EXPECT_TRUE(item(TVKMenuCommand::HandleEmulationMenu, 0)->isChecked());

    const qsizetype from = mark();
    c().handleOwnerMenu();
    c().setSelectedKeyset(2);
    EXPECT_EQ(item(TVKMenuCommand::HandleOwnerMenu)->text(),
              QStringLiteral("Remove Editor as Control Surface Owner"))
        << "names the owner, not the selected keyset";
    c().handleOwnerMenu();
    ASSERT_TRUE(waitForCount(QStringLiteral("TChO"), 2, from));
    EXPECT_FALSE(c().modelData()->controlSurfaceHasOwnerKeyset());

    c().handleEmulationMenu(qint64(corvane::EmulationMode::B));
    EXPECT_TRUE(item(TVKMenuCommand::HandleSetAllMenuItems, 2)->isEnabled());
    EXPECT_TRUE(item(TVKMenuCommand::HandleEmulationMenu, 2)->isChecked());
    ASSERT_TRUE(waitForCount(QStringLiteral("Emul"), 1, from));
    // The modes are one choice: an exclusive group (drawn with radio marks), one mark at a time,
    // also when the user picks one from the menu.
    const QActionGroup* modes = item(TVKMenuCommand::HandleEmulationMenu, 0)->actionGroup();
    ASSERT_NE(modes, nullptr);
    EXPECT_TRUE(modes->isExclusive());
    item(TVKMenuCommand::HandleEmulationMenu, 1)->trigger();
    EXPECT_EQ(c().modelData()->selectedKeyset()->emulationMode(), corvane::EmulationMode::A);
    for (qint64 mode = 0; mode < 4; ++mode) {
        EXPECT_EQ(item(TVKMenuCommand::HandleEmulationMenu, mode)->actionGroup(), modes);
        EXPECT_EQ(item(TVKMenuCommand::HandleEmulationMenu, mode)->isChecked(), mode == 1);
    }
    ASSERT_TRUE(waitForCount(QStringLiteral("Emul"), 2, from));

    c().handleLockUnlockMenu();
    EXPECT_TRUE(views.lockButton);
    EXPECT_EQ(item(TVKMenuCommand::HandleLockUnlockMenu)->text(),
              QStringLiteral("Unlock Mixer keyset"));
    for (const TVKMenuCommand locked :
         {TVKMenuCommand::HandlePasteKeyset, TVKMenuCommand::HandleClearKeyset,
          TVKMenuCommand::HandleDeleteKeyset, TVKMenuCommand::HandleDefaultOneTouchRecord,
          TVKMenuCommand::ReverseRBButtons})
        EXPECT_FALSE(item(locked)->isEnabled());
    EXPECT_FALSE(item(TVKMenuCommand::HandleEmulationMenu, 1)->isEnabled());
    c().handleLockUnlockButton(false);
    EXPECT_TRUE(item(TVKMenuCommand::HandleClearKeyset)->isEnabled());
    EXPECT_TRUE(views.lockButton) << "the button's own handler leaves the button alone";
    EXPECT_TRUE(serviceInStep());
}

TEST_F(KeysetCommandTest, NVGroupMenusFollowTheGroupsAndReversedButtonsAreSent)
{
    CorvaneModelData* model = c().corvaneModelData();
    for (const char* name : {"Drums", "Bass", "Keys", "Vox", "FX"})
        model->createCorvaneNVGroupNamed(QString::fromLatin1(name));
    c().updateCorvaneNVGroupMenus();
    ASSERT_EQ(c().addToGroupMenu().size(), 5u);
    EXPECT_EQ(c().selectGroupMenu()[3]->text(), QStringLiteral("Vox"));
    EXPECT_EQ(TVKMenuItems::tag(c().deleteGroupMenu()[4]), 4);
    model->deleteCorvaneNVGroup(4);
    model->deleteCorvaneNVGroup(3);
    c().updateCorvaneNVGroupMenus();
    for (const auto* menu : {&c().addToGroupMenu(), &c().deleteGroupMenu(), &c().selectGroupMenu()})
        EXPECT_EQ(menu->size(), 3u);

    c().setSelectedKeyset(2);
    const qsizetype from = mark();
    c().reverseRBButtons();
    ASSERT_TRUE(waitForCount(QStringLiteral("RvRB"), 1, from));
    EXPECT_TRUE(
        dynamic_cast<CorvaneKeyset*>(c().modelData()->keysetAtIndex(2))->reverseRBButtons());
    // A radio control packs the control into the low byte and the group above it.
    c().radioController((3 << 8) | 5);
    EXPECT_EQ(c().selectedGroup(), 3);
    EXPECT_EQ(c().selectedControl(), 5);
    EXPECT_EQ(c().modelDataControlIndex(), 5);
}

TEST_F(KeysetCommandTest, PasteTakesOnlyAKeysetFromTheClipboard)
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    QAction* paste = c().menuItem(TVKMenuCommand::HandlePasteKeyset);
    c().setSelectedKeyset(1);
    TVKKeyset* editor = c().modelData()->keysetAtIndex(1);
    const auto pasteChangesNothing = [&](const char* what) {
        SCOPED_TRACE(what);
        const qsizetype from = mark();
        EXPECT_FALSE(paste->isEnabled()) << "nothing to paste, yet Paste is enabled";
        c().handlePasteKeyset();
        EXPECT_EQ(c().modelData()->keysetAtIndex(1), editor) << "the keyset was replaced";
        EXPECT_FALSE(c().undoManager().canUndo());
        spinFor(50);
        EXPECT_TRUE(received(QStringLiteral("TUpK"), from).empty());
    };

    // The menus follow the clipboard by themselves: nothing here validates them.
    clipboard->clear();
    pasteChangesNothing("an empty clipboard");
    clipboard->setText(QStringLiteral("a note from another program"));
    pasteChangesNothing("a text from another program");
    auto* foreign = new QMimeData;
    foreign->setData(QStringLiteral("application/x-plist"), QByteArrayLiteral("<plist/>"));
    clipboard->setMimeData(foreign);
    pasteChangesNothing("a property list of another type");

    c().setSelectedKeyset(3);
    c().handleCopyKeyset();
    EXPECT_TRUE(paste->isEnabled()) << "a keyset was copied";
    EXPECT_EQ(paste->text(), QStringLiteral("Paste to Grader keyset"));
    c().setSelectedKeyset(1);
    c().handleLockUnlockMenu();
    EXPECT_FALSE(paste->isEnabled()) << "the keyset is locked";
    c().handlePasteKeyset();
    EXPECT_EQ(c().modelData()->keysetAtIndex(1), editor) << "pasted into a locked keyset";
    c().handleLockUnlockMenu();
    EXPECT_TRUE(paste->isEnabled());

    // Something under the keyset's type that is no keyset: the user is told, nothing changes.
    auto* broken = new QMimeData;
    broken->setData(QStringLiteral("TVKKeysetPbType"), QByteArrayLiteral("<plist><dict>"));
    clipboard->setMimeData(broken);
    EXPECT_TRUE(paste->isEnabled());
    c().handlePasteKeyset();
    EXPECT_EQ(c().modelData()->keysetAtIndex(1), editor);
    ASSERT_FALSE(views.alerts.empty());
    EXPECT_EQ(views.alerts.back().message, QStringLiteral("The Keyset Could Not Be Pasted"));
    EXPECT_FALSE(c().undoManager().canUndo());

    // A real keyset pastes: the layers come over, the application stays.
    c().setSelectedKeyset(3);
    c().handleCopyKeyset();
    c().setSelectedKeyset(1);
    const qsizetype from = mark();
    c().handlePasteKeyset();
    EXPECT_NE(c().modelData()->keysetAtIndex(1), editor);
    EXPECT_EQ(c().modelData()->keysetAtIndex(1)->name(), QStringLiteral("Editor"));
    EXPECT_EQ(c().undoManager().undoActionName(), QStringLiteral("Paste Keyset"));
    ASSERT_TRUE(waitForCount(QStringLiteral("TUpK"), 1, from));
    EXPECT_TRUE(serviceInStep());
}

TEST_F(KeysetCommandTest, ImportedKeysetIsMatchedByBundleIdentifierWhenItHasNoSignature)
{
    // The fixture's list: Default ("----", empty identifier), Editor ("EdIt", empty identifier),
    // Mixer (no signature, "org.example.mixer"), Grader ("GrAd", empty identifier). A keyset
    // made for no particular application has the empty identifier, and an imported one without
    // a signature stands for the first keyset with the same identifier, empty or not.
    struct Case
    {
        const char* what;
        FourCharCode signature;
        std::optional<QString> bundleID;
        int matches; // -1: none, the keyset is added
    };
    const std::vector<Case> cases = {
        {"no signature, empty identifier", fourCC("????"), QStringLiteral(""), 0},
        {"zero signature, empty identifier", 0, QStringLiteral(""), 0},
        {"no signature, the mixer's identifier", fourCC("????"),
         QStringLiteral("org.example.mixer"), 2},
        {"a signature, whatever the identifier", fourCC("EdIt"), QStringLiteral("org.other"), 1},
        {"no signature, an unknown identifier", 0, QStringLiteral("org.example.none"), -1},
        {"no signature, no identifier", fourCC("????"), std::nullopt, -1},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.what);
        CorvaneModelData scratch;
        std::unique_ptr<TVKKeyset> made =
            test.bundleID ? scratch.createKeysetWithName(QStringLiteral("Scratch"), test.signature,
                                                         *test.bundleID)
                          : std::make_unique<CorvaneKeyset>(QStringLiteral("Scratch"),
                                                            test.signature, std::nullopt, &scratch);
        ASSERT_EQ(made->hasBundleID(), test.bundleID.has_value());
        PlistValue archive = PlistValue::makeDict();
        made->writeTo(archive);
        const QString file = home.path() + QStringLiteral("/Scratch.CvKs");
        writeFile(file, PlistCodec::write(archive));
        c().setSelectedKeyset(3);
        const size_t alerts = views.alerts.size();
        qsizetype from = mark();

        if (test.matches < 0) {
            views.openPanelAnswers.push_back(file);
            c().handleImportKeyset();
            EXPECT_EQ(views.alerts.size(), alerts) << "asked about a keyset that matches none";
            ASSERT_EQ(keysets(), 5);
            EXPECT_EQ(c().modelData()->keysetAtIndex(4)->name(), QStringLiteral("Scratch"));
            ASSERT_TRUE(waitForCount(QStringLiteral("TAdK"), 1, from));
            EXPECT_TRUE(serviceInStep());
            views.alertAnswers = {0};
            c().setSelectedKeyset(4);
            c().handleDeleteKeyset();
            ASSERT_EQ(keysets(), 4);
            continue;
        }

        // Asked first; not replacing changes nothing.
        const TVKKeyset* before = c().modelData()->keysetAtIndex(test.matches);
        views.openPanelAnswers.push_back(file);
        views.alertAnswers = {1};
        c().handleImportKeyset();
        ASSERT_EQ(views.alerts.size(), alerts + 1) << "a second copy was added instead of asking";
        EXPECT_EQ(views.alerts.back().message, QStringLiteral("Keyset Already Exists"));
        EXPECT_EQ(views.alerts.back().informativeText,
                  QStringLiteral(
                      "A keyset for \"Scratch\" already exists in the list of active keysets"));
        EXPECT_EQ(keysets(), 4);
        EXPECT_EQ(c().modelData()->keysetAtIndex(test.matches), before);

        views.openPanelAnswers.push_back(file);
        views.alertAnswers = {0};
        c().handleImportKeyset();
        EXPECT_EQ(keysets(), 4);
        EXPECT_NE(c().modelData()->keysetAtIndex(test.matches), before);
        EXPECT_EQ(c().modelData()->keysetAtIndex(test.matches)->name(), QStringLiteral("Scratch"));
        EXPECT_EQ(c().selectedKeyset(), test.matches);
        ASSERT_TRUE(waitForCount(QStringLiteral("TUpK"), 1, from));
        EXPECT_TRUE(received(QStringLiteral("TAdK"), from).empty());
        EXPECT_TRUE(serviceInStep());
    }
}
