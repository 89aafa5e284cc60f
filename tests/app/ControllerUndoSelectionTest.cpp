// Undo and redo against the real simulated service: wherever an undone or redone edit lies, the
// selection, the notifications the views follow and the surface's highlight name that one
// control or display; and a locked keyset is never changed by either.
#include "ControllerFixture.h"
#include "actions/TVKDisplayTextAction.h"
#include "core/Notifications.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"

#include <QAction>
#include <QJsonArray>

using namespace corvane;
using namespace corvane::test;

namespace {

// The four words of a "TCtl" line: group, control, axis, value.
std::vector<qint64> tctlWords(const QJsonObject& line)
{
    std::vector<qint64> out;
    for (const QJsonValue& word : line.value(QStringLiteral("words")).toArray())
        out.push_back(word.toInteger());
    return out;
}

class UndoSelectionTest : public ControllerTest
{
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        CorvaneModelData model;
        model.addKeysetWithName(QStringLiteral("Mixer"), fourCC("MiXr"));
        storeConfiguration(model);
        ASSERT_TRUE(startService());
        startController();
        NotificationCenter& center = NotificationCenter::defaultCenter();
        m_watch.push_back(center.observe<note::RemoteSelectionChange>(
            nullptr, [this](const note::RemoteSelectionChange& n) {
                last = {false, n.control, n.groupID, n.controlIndex};
            }));
        m_watch.push_back(center.observe<note::RemoteDisplaySelectionChange>(
            nullptr, [this](const note::RemoteDisplaySelectionChange& n) {
                last = {true, n.control, n.groupID, n.controlIndex};
            }));
    }

    // A touch on the surface, once the service has the highlight it asks for: later steps
    // read only their own messages.
    void touch(int group, int index)
    {
        const bool moves = controller->displaySelected() ||
                           controller->modelDataGroupIndex() != group ||
                           controller->modelDataControlIndex() != index;
        const qsizetype from = mark();
        controller->hardwareControlChangeForGroup(group, index, 0, 1);
        if (moves) {
            const std::vector<qint64> lit{group, index, 0, 1};
            ASSERT_TRUE(service->waitFor(
                [&](const QJsonObject& o) {
                    return o.value(QStringLiteral("code")).toString() == QStringLiteral("TCtl") &&
                           tctlWords(o) == lit;
                },
                3000, from));
        }
    }

    template <class Notice>
    void post(const Notice& notice)
    {
        NotificationCenter::defaultCenter().post(notice);
    }

    // After a step begun at `from`: the controller, the views' notification and the surface
    // all name the control (keyset, layer, model-data group, index).
    ::testing::AssertionResult controlSelectedEverywhere(int keyset, int layer, int group,
                                                         int index, qsizetype from)
    {
        const TVKSelection s = controller->selection();
        if (s.displaySelected || s.keyset != keyset || s.layer != layer || s.group != group ||
            s.control != index)
            return ::testing::AssertionFailure()
                   << "selection " << s.keyset << "/" << s.layer << "/" << s.group << "/"
                   << s.control << (s.displaySelected ? " (display)" : "");
        TVKControl* object = controller->modelData()->controlForKeyset(keyset, layer, group, index);
        if (controller->modelData()->selectedControl() != object)
            return ::testing::AssertionFailure() << "the model's selected control differs";
        // The pictures' numbers lead back to the same control.
        int backGroup = -1;
        int backIndex = -1;
        if (!controller->constantServer()->onscreenGroup(int(controller->selectedGroup()),
                                                         int(controller->selectedControl()),
                                                         backGroup, backIndex) ||
            backGroup != group || backIndex != index)
            return ::testing::AssertionFailure()
                   << "on screen " << controller->selectedGroup() << "/"
                   << controller->selectedControl() << " is " << backGroup << "/" << backIndex;
        if (last.display || last.object != object || last.group != controller->selectedGroup() ||
            last.control != controller->selectedControl())
            return ::testing::AssertionFailure() << "the views were told of another control";
        const std::vector<qint64> lit{group, index, 0, 1};
        const auto echo = service->waitFor(
            [&](const QJsonObject& o) {
                return o.value(QStringLiteral("code")).toString() == QStringLiteral("TCtl") &&
                       tctlWords(o) == lit;
            },
            3000, from);
        if (!echo)
            return ::testing::AssertionFailure() << "the surface was not told to light it";
        if (tctlWords(received(QStringLiteral("TCtl"), from).back()) != lit)
            return ::testing::AssertionFailure() << "the surface was last told of another control";
        return ::testing::AssertionSuccess();
    }

    ::testing::AssertionResult displaySelectedEverywhere(int group, int index, qsizetype from,
                                                         std::vector<qint64> darkened)
    {
        const TVKSelection s = controller->selection();
        if (!s.displaySelected || s.displayGroup != group || s.display != index)
            return ::testing::AssertionFailure()
                   << "selection " << s.displayGroup << "/" << s.display
                   << (s.displaySelected ? "" : " (a control)");
        TVKControl* object =
            controller->modelData()->displayForKeyset(s.keyset, s.layer, group, index);
        if (!last.display || last.object != object)
            return ::testing::AssertionFailure() << "the views were told of something else";
        // The control lit before goes dark: the surface lights nothing while a display is
        // selected.
        darkened.push_back(0);
        if (!service->waitFor(
                [&](const QJsonObject& o) {
                    return o.value(QStringLiteral("code")).toString() == QStringLiteral("TCtl") &&
                           tctlWords(o) == darkened;
                },
                3000, from))
            return ::testing::AssertionFailure() << "the surface kept the control lit";
        if (tctlWords(received(QStringLiteral("TCtl"), from).back()) != darkened)
            return ::testing::AssertionFailure() << "the surface lit a control afterwards";
        return ::testing::AssertionSuccess();
    }

    // The last selection notice the views were given.
    struct
    {
        bool display = false;
        TVKControl* object = nullptr;
        qint64 group = -1;
        qint64 control = -1;
    } last;

private:
    std::vector<NotificationCenter::Observation> m_watch;
};

} // namespace

TEST_F(UndoSelectionTest, EveryControlAndDisplayIsSelectedEverywhereWhenItsEditIsUndoneOrRedone)
{
    TVKModelData& model = *controller->modelData();
    const TVK_Constant_Server& constants = *controller->constantServer();
    const TVKLayer& layer = *model.keysetAtIndex(0)->layerAtIndex(0);
    ASSERT_GT(layer.numGroups(), 0);
    int controls = 0;
    for (int group = 0; group < layer.numGroups(); ++group) {
        // Elsewhere: a control of another group, where the user goes before undoing.
        const int elsewhere = (group + 1) % layer.numGroups();
        ASSERT_GT(constants.numberOfControlsInGroup(group), 0) << "group " << group;
        for (int index = 0; index < constants.numberOfControlsInGroup(group); ++index) {
            SCOPED_TRACE(testing::Message() << "group " << group << ", control " << index);
            touch(group, index);
            TVKControl* control = model.controlForKeyset(0, 0, group, index);
            ASSERT_NE(control, nullptr);
            const bool latched = control->latched();
            post(note::LatchChange{!latched, false});
            ASSERT_EQ(control->latched(), !latched);

            touch(elsewhere, 0);
            qsizetype from = mark();
            controller->undoManager().undo();
            EXPECT_EQ(control->latched(), latched);
            ASSERT_TRUE(controlSelectedEverywhere(0, 0, group, index, from));

            touch(elsewhere, 0);
            from = mark();
            controller->undoManager().redo();
            EXPECT_EQ(control->latched(), !latched);
            ASSERT_TRUE(controlSelectedEverywhere(0, 0, group, index, from));
            ++controls;
        }
    }
    EXPECT_GT(controls, 600) << "every unit's controls, the NV's banks included";

    for (int group = 0; group < layer.numDisplayGroups(); ++group) {
        ASSERT_GT(constants.numberOfDisplaysInGroup(group), 0) << "display group " << group;
        for (int index = 0; index < constants.numberOfDisplaysInGroup(group); ++index) {
            SCOPED_TRACE(testing::Message() << "display group " << group << ", display " << index);
            controller->handleDisplay(index, group);
            // Deleting nothing is no edit: give the display an action to delete first.
            TVKLCDDisplayTextAction text(model.displayForKeyset(0, 0, group, index),
                                         QStringLiteral("Mix"));
            views.editedAction = &text;
            post(note::InsertEditedDisplayAction{});
            views.editedAction = nullptr;
            post(note::DeleteDisplayAction{});
            ASSERT_EQ(model.displayForKeyset(0, 0, group, index)->action(), nullptr);

            touch(2, 3);
            qsizetype from = mark();
            controller->undoManager().undo();
            ASSERT_TRUE(displaySelectedEverywhere(group, index, from, {2, 3, 0}));

            touch(5, 1);
            from = mark();
            controller->undoManager().redo();
            ASSERT_TRUE(displaySelectedEverywhere(group, index, from, {5, 1, 0}));
        }
    }
    EXPECT_TRUE(serviceInStep());
}

TEST_F(UndoSelectionTest, AnUndoneEditInAnotherKeysetAndLayerTakesTheWholeSelectionThere)
{
    TVKModelData& model = *controller->modelData();
    controller->setSelectedKeyset(1);
    controller->handleTVKLayerSelector(2);
    touch(23, 5);
    post(note::ColorChange{3, false});
    const auto* select =
        dynamic_cast<TVKMultiColorButtonControl*>(model.controlForKeyset(1, 2, 23, 5));
    ASSERT_NE(select, nullptr);
    ASSERT_EQ(select->onColor(), 3);

    controller->setSelectedKeyset(0);
    controller->handleTVKLayerSelector(0);
    touch(5, 1);
    const qsizetype from = mark();
    controller->undoManager().undo();
    EXPECT_NE(select->onColor(), 3);
    EXPECT_TRUE(controlSelectedEverywhere(1, 2, 23, 5, from));
    // The service edits the keyset and layer the controller shows.
    ASSERT_TRUE(waitForCount(QStringLiteral("ChEK"), 1, from));
    ASSERT_TRUE(waitForCount(QStringLiteral("ChEL"), 1, from));
    EXPECT_EQ(tctlWords(received(QStringLiteral("ChEK"), from).back()), std::vector<qint64>{1});
    EXPECT_EQ(tctlWords(received(QStringLiteral("ChEL"), from).back()), std::vector<qint64>{2});
    EXPECT_EQ(views.keysetName, QStringLiteral("Mixer"));
    EXPECT_TRUE(serviceInStep());
}

TEST_F(UndoSelectionTest, StepsOnALockedKeysetAreNeitherUndoneNorRedoneAndTheItemsSayWhy)
{
    TVKModelData& model = *controller->modelData();
    controller->setSelectedKeyset(1);
    touch(2, 4);
    post(note::LatchChange{true, false});
    controller->handleCopyKeyset();
    controller->setSelectedKeyset(0);

    // Paste over the default keyset, undo it, lock the keyset: redo must not paste again.
    controller->handlePasteKeyset();
    ASSERT_TRUE(model.controlForKeyset(0, 0, 2, 4)->latched());
    controller->undoManager().undo();
    ASSERT_FALSE(model.controlForKeyset(0, 0, 2, 4)->latched());
    ASSERT_TRUE(serviceInStep());
    const PlistValue before = mirrorConfiguration();
    TVKKeyset* locked = model.keysetAtIndex(0);
    controller->handleLockUnlockMenu();
    ASSERT_TRUE(locked->locked());

    QAction* undo = controller->undoMenuItem();
    QAction* redo = controller->redoMenuItem();
    EXPECT_FALSE(redo->isEnabled());
    EXPECT_EQ(redo->text(), QStringLiteral("Redo Paste Keyset (keyset “Default” is locked)"));
    EXPECT_TRUE(redo->statusTip().contains(QStringLiteral("Unlock")));
    redo->trigger();
    controller->undoManager().redo();
    EXPECT_EQ(model.keysetAtIndex(0), locked) << "the locked keyset was replaced";
    EXPECT_TRUE(locked->locked());
    EXPECT_FALSE(model.controlForKeyset(0, 0, 2, 4)->latched());
    spinFor(100);
    EXPECT_EQ(mirrorConfiguration(), before);

    // Unlocked, the step is there again under its plain name; redone and locked again, it
    // cannot be undone.
    controller->handleLockUnlockMenu();
    ASSERT_FALSE(locked->locked());
    ASSERT_TRUE(redo->isEnabled());
    EXPECT_EQ(redo->text(), QStringLiteral("Redo Paste Keyset"));
    EXPECT_TRUE(redo->statusTip().isEmpty());
    redo->trigger();
    TVKKeyset* pasted = model.keysetAtIndex(0);
    EXPECT_TRUE(model.controlForKeyset(0, 0, 2, 4)->latched());
    controller->handleLockUnlockMenu();
    ASSERT_TRUE(pasted->locked());
    EXPECT_FALSE(undo->isEnabled());
    EXPECT_EQ(undo->text(), QStringLiteral("Undo Paste Keyset (keyset “Default” is locked)"));
    undo->trigger();
    controller->undoManager().undo();
    EXPECT_EQ(model.keysetAtIndex(0), pasted);
    EXPECT_TRUE(model.controlForKeyset(0, 0, 2, 4)->latched());

    // An edit of another keyset stays undoable while this one is locked.
    controller->setSelectedKeyset(1);
    post(note::LatchChange{false, false});
    ASSERT_FALSE(model.controlForKeyset(1, 0, 2, 4)->latched());
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_EQ(undo->text(), QStringLiteral("Undo Change Latch Style"));
    undo->trigger();
    EXPECT_TRUE(model.controlForKeyset(1, 0, 2, 4)->latched());
    // Locking the keyset a redo step would change disables it at once.
    EXPECT_TRUE(redo->isEnabled());
    controller->handleLockUnlockMenu();
    EXPECT_FALSE(redo->isEnabled());
    EXPECT_TRUE(redo->text().endsWith(QStringLiteral("(keyset “Mixer” is locked)")));
    // The lock is the application's alone; with both keysets open again the service has
    // every change the application made.
    controller->handleLockUnlockMenu();
    controller->setSelectedKeyset(0);
    controller->handleLockUnlockMenu();
    EXPECT_TRUE(serviceInStep());
}
