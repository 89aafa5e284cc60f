// The windows agree on one selection through undo and redo, follow the main window for the NV
// menu, and keep the summary's path while rows change; against the real simulated service.
#include "ViewsFixture.h"
#include "actions/TVKDisplayTextAction.h"
#include "core/Notifications.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"
#include "views/CorvaneExpanderControllers.h"
#include "views/CorvaneSurfaceView.h"
#include "views/InspectorController.h"
#include "views/KeysetSummaryController.h"
#include "views/TVKDisplayView.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMenuBar.h"
#include "views/TVKMultiStateButton.h"

#include <QColumnView>
#include <QMenu>
#include <QTest>
#include <functional>

using namespace corvane;
using namespace corvane::test;

namespace {

// One edit of the walk below: what is edited (model numbering) and how.
struct Edit
{
    bool display = false;
    int group = 0;
    int index = 0;
    // Posts the edit as the inspector does.
    std::function<void()> post;
};

template <class Notice>
std::function<void()> posting(Notice notice)
{
    return [notice] { NotificationCenter::defaultCenter().post(notice); };
}

class SelectionViewsTest : public ViewsTest
{
protected:
    template <class Notice>
    void post(const Notice& notice)
    {
        NotificationCenter::defaultCenter().post(notice);
    }

    // The pictures of every surface window that is open.
    std::vector<const TVKMultiStateButton*> pictures() const
    {
        std::vector<const TVKMultiStateButton*> all(mainSurface().buttons().begin(),
                                                    mainSurface().buttons().end());
        for (const TVKWindow window : {TVKWindow::TL, TVKWindow::TLW, TVKWindow::NV}) {
            if (const CorvaneExpanderWindowController* expander = app->expander(window))
                all.insert(all.end(), expander->surface()->buttons().begin(),
                           expander->surface()->buttons().end());
        }
        return all;
    }

    // A touch on the surface, once the controller has taken it.
    void touch(int group, int index)
    {
        service->command(QStringLiteral("send TCtl %1 %2 0 1").arg(group).arg(index));
        ASSERT_TRUE(spinUntil([&] {
            return !controller->displaySelected() && controller->modelDataGroupIndex() == group &&
                   controller->modelDataControlIndex() == index;
        }));
        nextFrame();
    }

    // The controller, the inspector, the status line, the pictures and the surface name the
    // edited control or display after a step that began at `from`.
    void expectEverywhere(const Edit& edit, qsizetype from, const std::vector<qint64>& darkened)
    {
        nextFrame();
        const TVKSelection s = controller->selection();
        TVKModelData& model = *controller->modelData();
        TVKControl* object =
            edit.display ? model.displayForKeyset(s.keyset, s.layer, edit.group, edit.index)
                         : model.controlForKeyset(s.keyset, s.layer, edit.group, edit.index);
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(s.displaySelected, edit.display);
        EXPECT_EQ(edit.display ? s.displayGroup : s.group, edit.group);
        EXPECT_EQ(edit.display ? s.display : s.control, edit.index);
        EXPECT_EQ(app->inspector()->theControl(), object) << "the inspector shows another";
        EXPECT_TRUE(app->mainWindow()->statusText().startsWith(object->name()))
            << app->mainWindow()->statusText().toStdString() << " for "
            << object->name().toStdString();
        for (const TVKMultiStateButton* picture : pictures()) {
            const bool selectedHere =
                !edit.display && picture->tag() == controller->selectedGroup();
            if (!selectedHere) {
                EXPECT_EQ(picture->cell().state(), 0)
                    << "picture " << picture->tag() << " is lit too";
                continue;
            }
            const qint64 k = picture->imageIndexForControl(controller->selectedControl());
            EXPECT_EQ(picture->cell().state(), 1) << "picture " << picture->tag() << " is dark";
            EXPECT_EQ(picture->shownImage(), picture->images().value(k))
                << "picture " << picture->tag() << " highlights another control";
        }
        const std::vector<qint64> last =
            edit.display ? darkened : std::vector<qint64>{edit.group, edit.index, 0, 1};
        ASSERT_TRUE(service->waitFor(
            [&](const QJsonObject& o) {
                return o.value(QStringLiteral("code")).toString() == QStringLiteral("TCtl") &&
                       words(o) == last;
            },
            3000, from))
            << "the surface was not told";
        EXPECT_EQ(words(received(QStringLiteral("TCtl"), from).back()), last);
    }
};

} // namespace

TEST_F(SelectionViewsTest, AfterEveryUndoAndRedoTheWindowsAndTheSurfaceShowTheEditedControl)
{
    startApplication();
    for (const TVKWindow window : {TVKWindow::TL, TVKWindow::TLW, TVKWindow::NV})
        app->show(window);
    ASSERT_NE(app->expander(TVKWindow::NV), nullptr);

    // Controls of the main unit, its displays and the expanders, each edited its own way.
    const std::vector<Edit> edits = {
        {false, 2, 5, posting(note::LatchChange{true, false})},   // W6
        {false, 1, 6, posting(note::LatchChange{true, false})},   // a transport key
        {true, 0, 1, posting(note::DeleteDisplayAction{})},       // an LCD line
        {false, 19, 2, posting(note::LatchChange{true, false})},  // TL Select 3
        {false, 23, 2, posting(note::ColorChange{12, false})},    // TLW Select 3
        {true, 2, 3, posting(note::DeleteDisplayAction{})},       // a TLW button display
        {false, 24, 30, posting(note::OffColorChange{5, false})}, // NV LCD button, bank 2
        {false, 27, 7, posting(note::LatchChange{true, false})},  // NV parameter
    };
    // Deleting nothing is no edit: the displays get an action to delete.
    for (const Edit& edit : edits) {
        if (!edit.display)
            continue;
        TVKControl* display =
            controller->modelData()->displayForKeyset(0, 0, edit.group, edit.index);
        const TVKLCDDisplayTextAction text(display, QStringLiteral("Mix"));
        display->setAction(&text);
    }
    for (const Edit& edit : edits) {
        if (edit.display)
            controller->handleDisplay(edit.index, edit.group);
        else
            touch(edit.group, edit.index);
        const int steps = controller->undoManager().stack().count();
        edit.post();
        ASSERT_EQ(controller->undoManager().stack().count(), steps + 1)
            << edit.group << "/" << edit.index;
    }

    // Whatever the user selected last, each step selects its own control everywhere.
    for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
        SCOPED_TRACE(testing::Message() << "undo " << edit->group << "/" << edit->index);
        touch(13, 1);
        const qsizetype from = mark();
        controller->undoMenuItem()->trigger();
        expectEverywhere(*edit, from, {13, 1, 0, 0});
    }
    // Redone one after the other: a display step darkens the control the step before lit.
    for (const Edit& edit : edits) {
        SCOPED_TRACE(testing::Message() << "redo " << edit.group << "/" << edit.index);
        const TVKSelection before = controller->selection();
        if (edit.display) {
            ASSERT_FALSE(before.displaySelected) << "no two displays follow each other";
        }
        const qsizetype from = mark();
        controller->redoMenuItem()->trigger();
        expectEverywhere(edit, from, {before.group, before.control, 0, 0});
    }
    EXPECT_TRUE(serviceInStep());
}

TEST_F(SelectionViewsTest, TheNVMenuLeavesWheneverAnotherWindowBecomesMain)
{
    startApplication();
    CorvaneNVController* nv = nullptr;
    const auto hasNVMenu = [&](QMenuBar* bar) {
        return bar->actions().contains(nv->corvaneNVMenu()->menuAction());
    };
    for (const TVKWindow other : {TVKWindow::Summary, TVKWindow::Inspector, TVKWindow::AboutBox,
                                  TVKWindow::Main, TVKWindow::TL}) {
        SCOPED_TRACE(testing::Message() << "window " << int(other));
        app->show(TVKWindow::NV);
        app->makeKeyAndOrderFront(TVKWindow::NV);
        nv = app->nvController();
        ASSERT_TRUE(QTest::qWaitForWindowActive(nv));
        ASSERT_TRUE(spinUntil([&] { return controller->corvaneNVMenuActive(); }));
        ASSERT_TRUE(hasNVMenu(app->mainWindow()->tvkMenuBar()));

        app->show(other);
        app->makeKeyAndOrderFront(other);
        QWidget* window = app->window(other);
        ASSERT_NE(window, nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        EXPECT_TRUE(spinUntil([&] { return !controller->corvaneNVMenuActive(); }));
        EXPECT_FALSE(hasNVMenu(app->mainWindow()->tvkMenuBar()));
        EXPECT_FALSE(hasNVMenu(nv->tvkMenuBar()));
    }
}

TEST_F(SelectionViewsTest, TheSummaryKeepsTheUsersPathWhenRowsChange)
{
    startApplication();
    controller->showSummary();
    KeysetSummaryController& summary = *app->summary();
    QColumnView& browser = *summary.keysetBrowser();
    const auto path = [&] {
        std::vector<int> rows;
        for (QModelIndex i = browser.currentIndex(); i.isValid(); i = i.parent())
            rows.insert(rows.begin(), i.row());
        return rows;
    };
    touch(1, 3);
    ASSERT_EQ(path(), (std::vector<int>{0, 0, 1, 3}));

    // The user browses to layer 3's keypad: the group column moves nothing.
    const QModelIndex keyset = summary.model().index(0, 0);
    const QModelIndex layer = summary.model().index(2, 0, keyset);
    browser.setCurrentIndex(summary.model().index(13, 0, layer));
    ASSERT_EQ(path(), (std::vector<int>{0, 2, 13}));
    ASSERT_EQ(controller->modelDataGroupIndex(), 1) << "a group row selects no control";

    // A name, a property and an action of the selected control change; the path stays and
    // the rows show the change.
    controller->undoableSetUserName(QStringLiteral("Play it"), 0, 0, 1, 3, false);
    EXPECT_EQ(path(), (std::vector<int>{0, 2, 13}));
    post(note::DeleteAction{false});
    post(note::UpdateKSum{});
    EXPECT_EQ(path(), (std::vector<int>{0, 2, 13}));
    post(note::KeysetCountChange{});
    EXPECT_EQ(path(), (std::vector<int>{0, 2, 13}));
    const QModelIndex play = summary.model().index(
        3, 0, summary.model().index(1, 0, summary.model().index(0, 0, keyset)));
    EXPECT_TRUE(
        summary.model().data(play, Qt::DisplayRole).toString().contains(QStringLiteral("Play it")));

    // A control chosen anywhere still takes the browser to it.
    touch(5, 2);
    EXPECT_EQ(path(), (std::vector<int>{0, 0, 5, 2}));
}

TEST_F(SelectionViewsTest, CtrlShiftZDoesNotPasteAgainOverALockedKeyset)
{
    startApplication();
    TVKModelData& model = *controller->modelData();
    touch(2, 4);
    post(note::LatchChange{true, false});
    controller->handleCopyKeyset();
    post(note::LatchChange{false, false});
    controller->handlePasteKeyset();
    ASSERT_TRUE(model.controlForKeyset(0, 0, 2, 4)->latched());
    TVKMainWindow& main = *app->mainWindow();
    main.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&main));
    QTest::keyClick(&main, Qt::Key_Z, Qt::ControlModifier);
    ASSERT_FALSE(model.controlForKeyset(0, 0, 2, 4)->latched()) << "Ctrl+Z undid the paste";

    TVKKeyset* locked = model.keysetAtIndex(0);
    controller->handleLockUnlockMenu();
    ASSERT_TRUE(locked->locked());
    QTest::keyClick(&main, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(model.keysetAtIndex(0), locked);
    EXPECT_TRUE(locked->locked());
    EXPECT_FALSE(model.controlForKeyset(0, 0, 2, 4)->latched());
    EXPECT_FALSE(controller->redoMenuItem()->isEnabled());

    controller->handleLockUnlockMenu();
    QTest::keyClick(&main, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(model.controlForKeyset(0, 0, 2, 4)->latched()) << "Ctrl+Shift+Z redid the paste";
}
