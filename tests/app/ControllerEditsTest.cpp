#include "ControllerFixture.h"
#include "NoticeRecorder.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/TVKNULLAction.h"
#include "core/Notifications.h"
#include "model/TVKControl.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"

#include <QJsonArray>

using namespace corvane;
using namespace corvane::test;

namespace {

class EditTest : public ControllerTest
{
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        ASSERT_TRUE(startService());
        startController();
    }

    // The first control of layer 0 of keyset 0 that passes the test, in model numbering.
    template <typename Test>
    std::pair<int, int> find(Test test)
    {
        for (int group = 0; group < 31; ++group) {
            for (int index = 0; index < 64; ++index) {
                TVKControl* control = controller->modelData()->controlForKeyset(0, 0, group, index);
                if (control && control->groupID() == group && control->index() == index &&
                    test(control))
                    return {group, index};
            }
        }
        ADD_FAILURE() << "no such control";
        return {0, 0};
    }

    // Selects the control as a touch on the surface does.
    void select(std::pair<int, int> at)
    {
        controller->hardwareControlChangeForGroup(at.first, at.second, 0, 1);
    }

    TVKControl* control(int layer, std::pair<int, int> at)
    {
        return controller->modelData()->controlForKeyset(0, layer, at.first, at.second);
    }

    // Posts an edit as the inspector does.
    template <class Edit>
    void post(const Edit& edit)
    {
        NotificationCenter::defaultCenter().post(edit);
    }
};

} // namespace

TEST_F(EditTest, LatchOnOneLayerAndOnAllLayersIsOneUndoStepEach)
{
    const auto button =
        find([](TVKControl* c) { return c->tvkControlType() == corvane::ControlType::Button; });
    select(button);
    control(2, button)->setLatched(true);
    const qsizetype from = mark();
    post(note::LatchChange{true, false});
    EXPECT_TRUE(control(0, button)->latched());
    post(note::LatchChange{false, true});
    for (int layer = 0; layer < 4; ++layer)
        EXPECT_FALSE(control(layer, button)->latched());
    EXPECT_EQ(controller->undoManager().undoActionName(), QStringLiteral("Change Latch Style"));
    ASSERT_TRUE(waitForCount(QStringLiteral("ChLa"), 5, from));
    EXPECT_TRUE(serviceInStep());

    controller->undoManager().undo();
    EXPECT_TRUE(control(0, button)->latched());
    EXPECT_FALSE(control(1, button)->latched());
    EXPECT_TRUE(control(2, button)->latched()) << "each layer gets its own value back";
    EXPECT_TRUE(serviceInStep());
    controller->undoManager().undo();
    EXPECT_FALSE(control(0, button)->latched());
    controller->undoManager().redo();
    controller->undoManager().redo();
    EXPECT_FALSE(control(2, button)->latched());
    EXPECT_TRUE(serviceInStep());
}

TEST_F(EditTest, ColoursSkipControlsWithoutOneButStillRegisterAStep)
{
    const auto lit =
        find([](TVKControl* c) { return dynamic_cast<TVKMultiColorButtonControl*>(c); });
    const auto plain = find([](TVKControl* c) {
        return c->tvkControlType() == corvane::ControlType::Button &&
               !dynamic_cast<TVKMultiColorButtonControl*>(c);
    });
    NoticeRecorder<note::DispColorChange> shownColours;
    const auto& shown = shownColours.posted;

    select(lit);
    qsizetype from = mark();
    post(note::ColorChange{42, true});
    post(note::OffColorChange{5, false});
    for (int layer = 0; layer < 4; ++layer)
        EXPECT_EQ(dynamic_cast<TVKMultiColorButtonControl*>(control(layer, lit))->onColor(), 42);
    EXPECT_EQ(dynamic_cast<TVKMultiColorButtonControl*>(control(0, lit))->offColor(), 5);
    ASSERT_TRUE(waitForCount(QStringLiteral("ChCo"), 4, from));
    ASSERT_TRUE(waitForCount(QStringLiteral("COfC"), 1, from));
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].color, 42);

    select(plain);
    from = mark();
    const int steps = controller->undoManager().stack().count();
    post(note::ColorChange{9, true});
    EXPECT_EQ(controller->undoManager().stack().count(), steps + 1);
    EXPECT_EQ(controller->undoManager().undoActionName(), QStringLiteral("Change Color"));
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[1].color, 0);
    spinFor(50);
    EXPECT_TRUE(received(QStringLiteral("ChCo"), from).empty());
    controller->undoManager().undo();
    controller->undoManager().undo();
    controller->undoManager().undo();
    EXPECT_NE(dynamic_cast<TVKMultiColorButtonControl*>(control(3, lit))->onColor(), 42);
    EXPECT_TRUE(serviceInStep());
}

TEST_F(EditTest, ActionsAreInsertedAndDeletedOnOneOrAllLayersAndUndone)
{
    const auto button =
        find([](TVKControl* c) { return c->tvkControlType() == corvane::ControlType::Button; });
    const auto other = find([&](TVKControl* c) {
        return c->tvkControlType() == corvane::ControlType::Button &&
               std::pair(c->groupID(), c->index()) != button;
    });
    select(button);
    TVKButtonMIDIAction edited(control(0, button));
    views.editedAction = &edited;
    NoticeRecorder<note::RemoteSelectionChange> remoteSelection;
    const auto& remote = remoteSelection.posted;

    qsizetype from = mark();
    post(note::InsertEditedAction{false});
    ASSERT_FALSE(remote.empty());
    EXPECT_FALSE(remote.back().visibleEditorUpdate) << "edited where selected";
    post(note::InsertEditedAction{true});
    for (int layer = 0; layer < 4; ++layer) {
        ASSERT_NE(control(layer, button)->action(), nullptr);
        EXPECT_EQ(control(layer, button)->action()->actionType(), edited.actionType());
        EXPECT_NE(control(layer, button)->action(), &edited) << "the model keeps its own copy";
    }
    EXPECT_EQ(controller->undoManager().undoActionName(), QStringLiteral("Edit Control Action"));
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 5, from));
    // Copied, the edited control is the last layer's, which is not the selected one.
    EXPECT_TRUE(remote.back().visibleEditorUpdate);
    EXPECT_TRUE(serviceInStep());

    // Undo with another control selected moves the selection and the highlight back.
    select(other);
    from = mark();
    controller->undoManager().undo();
    EXPECT_EQ(controller->modelDataGroupIndex(), button.first);
    EXPECT_EQ(controller->modelDataControlIndex(), button.second);
    EXPECT_TRUE(remote.back().visibleEditorUpdate);
    ASSERT_TRUE(waitForCount(QStringLiteral("TCtl"), 2, from));
    EXPECT_TRUE(serviceInStep());
    controller->undoManager().redo();
    EXPECT_TRUE(serviceInStep());

    from = mark();
    post(note::DeleteAction{false});
    EXPECT_EQ(control(0, button)->action(), nullptr);
    EXPECT_NE(control(1, button)->action(), nullptr);
    EXPECT_EQ(controller->undoManager().undoActionName(), QStringLiteral("Delete Control Action"));
    EXPECT_TRUE(remote.back().visibleEditorUpdate) << "stored as none";
    ASSERT_TRUE(waitForCount(QStringLiteral("InAc"), 1, from));
    EXPECT_TRUE(serviceInStep());
    controller->undoManager().undo();
    EXPECT_NE(control(0, button)->action(), nullptr);
    EXPECT_TRUE(serviceInStep());
}

TEST_F(EditTest, DisplayActionsAndTheUndoableOnesOfNone)
{
    controller->handleTVKDisplay(0, 0);
    TVKControl* display = controller->modelData()->selectedDisplay();
    ASSERT_NE(display, nullptr);
    // Deleting what is not there changes nothing: give the display something to delete.
    TVKLCDDisplayTextAction text(display, QStringLiteral("Mix"));
    views.editedAction = &text;
    post(note::InsertEditedDisplayAction{});
    views.editedAction = nullptr;
    const TVKAction* before = display->action();
    const std::unique_ptr<TVKAction> kept = before ? before->copyWithZone() : nullptr;
    qsizetype from = mark();
    post(note::DeleteDisplayAction{});
    EXPECT_EQ(display->action(), nullptr);
    EXPECT_EQ(controller->undoManager().undoActionName(),
              QStringLiteral("Delete Display Function"));
    ASSERT_TRUE(waitForCount(QStringLiteral("IDAc"), 1, from));
    EXPECT_TRUE(serviceInStep());
    controller->undoManager().undo();
    EXPECT_EQ(display->action() != nullptr, kept != nullptr);
    EXPECT_TRUE(serviceInStep());

    // Names, brightness and sensitivities change without an undo step.
    const auto button =
        find([](TVKControl* c) { return c->tvkControlType() == corvane::ControlType::Button; });
    select(button);
    const int steps = controller->undoManager().stack().count();
    from = mark();
    post(note::UserNameChange{QStringLiteral("Punch In"), true});
    EXPECT_EQ(control(3, button)->userName(), QStringLiteral("Punch In"));
    EXPECT_EQ(controller->undoManager().stack().count(), steps);
    ASSERT_TRUE(waitForCount(QStringLiteral("ChUN"), 1, from));
    spinFor(50);
    EXPECT_EQ(received(QStringLiteral("ChUN"), from).size(), 1u) << "once, for the given layer";
}

TEST_F(EditTest, SensitivitiesChangeOnlyControlsThatHaveThem)
{
    const auto jog = find([](TVKControl* c) { return dynamic_cast<TVKJogControl*>(c); });
    const auto button =
        find([](TVKControl* c) { return c->tvkControlType() == corvane::ControlType::Button; });
    select(jog);
    qsizetype from = mark();
    post(note::JogSensChange{7, true});
    ASSERT_TRUE(waitForCount(QStringLiteral("ChJS"), 4, from));
    EXPECT_EQ(dynamic_cast<TVKJogControl*>(control(3, jog))->sensitivity(), 7);

    // These surfaces have no joystick: its sensitivity changes nothing and sends nothing.
    select(button);
    from = mark();
    post(note::JoySensChange{3, true});
    post(note::BrightnessChange{2, false});
    spinFor(100);
    EXPECT_TRUE(received(QStringLiteral("ChJy"), from).empty());
    EXPECT_TRUE(received(QStringLiteral("ChBr"), from).empty());
    EXPECT_EQ(controller->undoManager().stack().count(), 0);
    EXPECT_TRUE(serviceInStep());
}
