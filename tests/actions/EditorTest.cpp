// The action editors' decisions, driven by the sequences of user actions the editors see.
#include "QtPrinters.h"
#include "actions/TVKActionContainer.h"
#include "actions/TVKBuiltInAction.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/TVKEmulationAction.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/TVKMouseAction.h"
#include "actions/TVKSpecialAction.h"
#include "actions/editors/BuiltInActionEditor.h"
#include "actions/editors/EmulationActionEditor.h"
#include "actions/editors/KeySequenceEditor.h"
#include "actions/editors/MIDIActionEditor.h"
#include "actions/editors/MouseActionEditor.h"
#include "actions/editors/SpecialActionEditor.h"
#include "core/NotificationCenter.h"
#include "core/Notifications.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"

#include <gtest/gtest.h>

using namespace corvane;

namespace {

template <typename T>
T* held(TVKActionContainer& container)
{
    return dynamic_cast<T*>(container.action());
}

std::vector<quint8> bytesOf(const TVKMIDIAction& action)
{
    return std::vector<quint8>(action.message().begin(),
                               action.message().begin() + action.messageSize());
}

} // namespace

TEST(SpecialEditor, RadioCellsSetChangeAndRemoveTheMode)
{
    TVKActionContainer container;
    SpecialActionEditor editor(container, TVKButtonSpecialAction::kActionType);
    int redraws = 0;
    editor.setStateChangedHandler([&] { ++redraws; });
    EXPECT_EQ(editor.selectedCellTag(), 0);

    editor.click(1, 4); // not the matrix
    EXPECT_TRUE(container.isEmpty());

    editor.click(0, 4);
    auto* action = held<TVKButtonSpecialAction>(container);
    ASSERT_TRUE(action);
    EXPECT_EQ(action->mode(), 4);
    EXPECT_EQ(action->owningControl(), nullptr);
    EXPECT_EQ(editor.selectedCellTag(), 4);

    editor.click(0, 9);
    EXPECT_EQ(held<TVKButtonSpecialAction>(container), action) << "changed in place";
    EXPECT_EQ(action->mode(), 9);

    // An action of another kind is replaced; mode 0 removes the action.
    container.setAction(std::make_unique<TVKEncoderSpecialAction>(nullptr, 2));
    EXPECT_EQ(editor.selectedCellTag(), 0);
    editor.click(0, 5);
    EXPECT_EQ(container.actionType(), TVKButtonSpecialAction::kActionType);
    editor.click(0, 0);
    EXPECT_TRUE(container.isEmpty());
    EXPECT_EQ(redraws, 5) << "one redraw per click";
}

TEST(KeySequenceEditor, CaptureNavigateOverwriteAppendAndDelete)
{
    TVKActionContainer container;
    KeySequenceEditor editor(container, TVKButtonKeySequenceAction::kActionType);
    int changes = 0;
    editor.setParameterChangedHandler([&] { ++changes; });
    editor.updateForNewAction();
    EXPECT_FALSE(editor.previousEnabled() || editor.nextEnabled() || editor.deleteEnabled());

    editor.setControls(true, 70);
    editor.keystrokeEntry(QStringLiteral("a"), 30, 0x100000);
    auto* action = held<TVKButtonKeySequenceAction>(container);
    ASSERT_TRUE(action);
    EXPECT_EQ(action->delay(), 70.0f);
    EXPECT_TRUE(action->repeat());
    EXPECT_EQ(editor.modifierBoxTags(), unsigned(KeySequenceEditor::CommandBox));
    EXPECT_EQ(changes, 1);
    // Still on step 0: the next capture overwrites.
    editor.keystrokeEntry(QStringLiteral("b"), 48, 0);
    ASSERT_EQ(action->sequence().size(), 1u);
    EXPECT_EQ(action->sequence()[0].character(), QStringLiteral("b"));
    EXPECT_TRUE(editor.nextEnabled());
    EXPECT_FALSE(editor.previousEnabled());

    // Next on the last keystroke reaches the empty slot; the next capture appends.
    editor.navigate(KeySequenceEditor::Next);
    EXPECT_EQ(editor.currentStep(), 1);
    EXPECT_EQ(editor.entryText(), QString());
    EXPECT_FALSE(editor.nextEnabled());
    EXPECT_FALSE(editor.deleteEnabled());
    EXPECT_TRUE(editor.previousEnabled());
    editor.keystrokeEntry(QStringLiteral("Page Up"), 104, 0x20000);
    ASSERT_EQ(action->sequence().size(), 2u);
    EXPECT_EQ(action->actionDescriptor(), QStringLiteral("Key Sequence: b Page Up "));

    // Modifier boxes on the current keystroke, then on the empty slot (appends a blank key).
    editor.modifierBoxesClicked(KeySequenceEditor::ShiftBox | KeySequenceEditor::ControlBox);
    EXPECT_EQ(action->sequence()[1].modifierFlags(), 0x60000u);
    editor.navigate(KeySequenceEditor::Next);
    editor.modifierBoxesClicked(KeySequenceEditor::OptionBox);
    ASSERT_EQ(action->sequence().size(), 3u);
    EXPECT_EQ(action->sequence()[2], TVKKeystrokeElement(QLatin1String(""), 0, 0x80000));

    // Delete the last keystroke: the step moves back onto the new last one.
    editor.navigate(KeySequenceEditor::Delete);
    EXPECT_EQ(action->sequence().size(), 2u);
    EXPECT_EQ(editor.currentStep(), 1);
    EXPECT_EQ(editor.entryText(), QStringLiteral("Page Up"));
    EXPECT_EQ(editor.modifierBoxTags(),
              unsigned(KeySequenceEditor::ShiftBox | KeySequenceEditor::ControlBox));
    editor.navigate(KeySequenceEditor::Previous);
    editor.navigate(KeySequenceEditor::Previous);
    EXPECT_EQ(editor.currentStep(), 0);
    EXPECT_EQ(editor.entryText(), QStringLiteral("b"));

    // Repeat box and speed slider; tag 1 is ignored.
    editor.optionChanged(1, false, 10);
    EXPECT_TRUE(action->repeat());
    editor.optionChanged(KeySequenceEditor::SpeedSlider, false, 10);
    EXPECT_FALSE(action->repeat());
    EXPECT_EQ(action->delay(), 10.0f);

    // Showing another kind of action clears everything.
    container.setAction(std::make_unique<TVKButtonSpecialAction>(nullptr, 1));
    editor.updateForNewAction();
    EXPECT_TRUE(editor.entryText().isEmpty());
    EXPECT_FALSE(editor.repeatChecked());
    EXPECT_FALSE(editor.previousEnabled() || editor.nextEnabled() || editor.deleteEnabled());
    editor.navigate(KeySequenceEditor::Next);
    EXPECT_EQ(container.actionType(), TVKButtonSpecialAction::kActionType);

    // A capture now replaces it with a new key sequence made by the editor (delay 50).
    editor.setControls(false, 50);
    editor.keystrokeEntry(QStringLiteral("q"), 16, 0);
    auto* fresh = held<TVKButtonKeySequenceAction>(container);
    ASSERT_TRUE(fresh);
    EXPECT_EQ(fresh->sequence().size(), 1u);
    EXPECT_EQ(editor.currentStep(), 0);
}

TEST(KeySequenceEditor, LockedKeysetIgnoresKeys)
{
    TVKActionContainer container;
    KeySequenceEditor editor(container, TVKButtonKeySequenceAction::kActionType);
    int redraws = 0;
    editor.setStateChangedHandler([&] { ++redraws; });
    NotificationCenter::defaultCenter().post(corvane::note::LockStateChange{true});
    EXPECT_EQ(redraws, 1) << "the widget hears of the lock from the editor";
    editor.keystrokeEntry(QStringLiteral("a"), 30, 0);
    EXPECT_TRUE(container.isEmpty());
    NotificationCenter::defaultCenter().post(corvane::note::LockStateChange{false});
    editor.keystrokeEntry(QStringLiteral("a"), 30, 0);
    EXPECT_FALSE(container.isEmpty());
}

TEST(KeySequenceEditor, DirectionsEditTheirOwnLists)
{
    TVKActionContainer container;
    KeySequenceEditor editor(container, TVKShuttleKeySequenceAction::kActionType);
    EXPECT_EQ(editor.numberOfDirections(), 3);
    editor.keystrokeEntry(QStringLiteral("j"), 36, 0);
    editor.chooseDirection(KeySequenceEditor::DirectionMatrix, 1);
    EXPECT_EQ(editor.currentStep(), 0);
    EXPECT_TRUE(editor.entryText().isEmpty());
    editor.keystrokeEntry(QStringLiteral("l"), 38, 0);
    editor.chooseDirection(KeySequenceEditor::DirectionMatrix, 7); // limited to the last one
    EXPECT_EQ(editor.currentAxis(), 2);
    auto* action = held<TVKShuttleKeySequenceAction>(container);
    ASSERT_TRUE(action);
    EXPECT_EQ(
        action->actionDescriptor(),
        QStringLiteral("Key Sequence:  Counter Clockwise - j  Stopped - none  Clockwise - l "));
    editor.chooseDirection(KeySequenceEditor::DirectionMatrix, 0);
    EXPECT_EQ(editor.entryText(), QStringLiteral("j"));
}

TEST(MIDIEditor, ComposesChannelMessagesAndSystemBytes)
{
    TVKActionContainer container;
    MIDIActionEditor editor(container, TVKButtonMIDIAction::kActionType);
    auto& c = editor.controls();

    // Note On, channel 1, data 1 = 60, data 2 follows the value.
    c.modeCell = 2;
    editor.controlChanged(MIDIActionEditor::ModeRadios);
    c.commandTag = 0x90;
    editor.controlChanged(MIDIActionEditor::CommandPopUp);
    c.data1Field = 60;
    editor.controlChanged(MIDIActionEditor::Data1Field);
    EXPECT_EQ(c.data1Stepper, 60);
    c.data2FollowsValue = true;
    editor.controlChanged(MIDIActionEditor::Data2FollowsValue);
    auto* action = held<TVKButtonMIDIAction>(container);
    ASSERT_TRUE(action);
    EXPECT_EQ(bytesOf(*action), (std::vector<quint8>{0x90, 0x3C, 0xF1}));
    EXPECT_EQ(action->actionDescriptor(), QStringLiteral("Custom MIDI: 90 3c  value"));
    EXPECT_TRUE(c.data1Enabled);
    EXPECT_FALSE(c.data2Enabled);
    EXPECT_TRUE(c.data2GroupVisible);

    // Program change on channel 16: two bytes, the same action updated.
    c.commandTag = 0xC0;
    c.channelStepper = 16;
    editor.controlChanged(MIDIActionEditor::ChannelStepper);
    EXPECT_EQ(c.channelField, 16);
    c.data1Field = 5;
    editor.controlChanged(MIDIActionEditor::Data1Field);
    ASSERT_EQ(held<TVKButtonMIDIAction>(container), action);
    EXPECT_EQ(bytesOf(*action), (std::vector<quint8>{0xCF, 0x05}));
    EXPECT_FALSE(c.data2GroupVisible);

    // Typed values outside the steppers' ranges are pulled in.
    c.data1Field = 241;
    editor.controlChanged(MIDIActionEditor::Data1Field);
    EXPECT_EQ(c.data1Stepper, 127);
    c.channelField = 0;
    editor.controlChanged(MIDIActionEditor::ChannelField);
    EXPECT_EQ(c.channelStepper, 1);
    EXPECT_EQ(bytesOf(*action), (std::vector<quint8>{0xC0, 0x7F}));

    // A system byte above 0xF2 is the whole message; the channel group hides.
    c.commandTag = 0xF8;
    editor.controlChanged(MIDIActionEditor::CommandPopUp);
    EXPECT_EQ(bytesOf(*action), std::vector<quint8>{0xF8});
    EXPECT_FALSE(c.channelGroupVisible);

    // Native keeps the action and drops the bytes; mode 0 removes it.
    c.modeCell = 1;
    editor.controlChanged(MIDIActionEditor::ModeRadios);
    EXPECT_EQ(action->midiMode(), 1u);
    EXPECT_EQ(action->messageSize(), 0u);
    EXPECT_FALSE(c.customGroupVisible);
    c.modeCell = 0;
    editor.controlChanged(MIDIActionEditor::ModeRadios);
    EXPECT_TRUE(container.isEmpty());
}

TEST(MIDIEditor, ShowingAnActionFillsTheControls)
{
    TVKActionContainer container;
    MIDIActionEditor editor(container, TVKEncoderMIDIAction::kActionType);
    const quint8 bytes[] = {0xB3, 0xF1, 0x22};
    container.setAction(std::make_unique<TVKEncoderMIDIAction>(2u, bytes, 3u, nullptr));
    editor.updateForNewAction();
    const auto& c = editor.controls();
    EXPECT_EQ(c.modeCell, 2);
    EXPECT_EQ(c.commandTag, 0xB0);
    EXPECT_EQ(c.channelField, 4);
    EXPECT_TRUE(c.data1FollowsValue);
    EXPECT_FALSE(c.data1Enabled);
    EXPECT_EQ(c.data2Stepper, 0x22);
    EXPECT_TRUE(c.customGroupVisible);

    container.setAction(std::make_unique<TVKEncoderMIDIAction>(2u, nullptr, 0u, nullptr));
    editor.updateForNewAction();
    EXPECT_EQ(c.commandTag, 0x80);
    EXPECT_EQ(c.channelStepper, 1);
    EXPECT_EQ(c.data1Stepper, 0);

    container.setAction(std::make_unique<TVKButtonMIDIAction>(2u, bytes, 3u, nullptr));
    editor.updateForNewAction();
    EXPECT_EQ(c.modeCell, 0);
    EXPECT_FALSE(c.customGroupVisible);
}

TEST(MIDIEditor, FourWayEditsTheCurrentAxisOnly)
{
    TVKActionContainer container;
    MIDIActionEditor editor(container, TVK4WayMIDIAction::kActionType);
    auto& c = editor.controls();
    c.axisCell = 3; // any tag of 2 or more is vertical
    editor.controlChanged(MIDIActionEditor::AxisRadios);
    EXPECT_EQ(editor.currentAxis(), 1);
    c.commandTag = 0xB0;
    c.data1Field = 0x11;
    editor.controlChanged(MIDIActionEditor::Data1Field);
    auto* action = held<TVK4WayMIDIAction>(container);
    ASSERT_TRUE(action);
    EXPECT_EQ(action->messageSizeForAxis(0), 0u);
    EXPECT_EQ(action->messageSizeForAxis(1), 3u);
    EXPECT_EQ(action->actionDescriptor(),
              QStringLiteral("Custom MIDI: Horizontal - none Vertical - b0 11 00 "));

    c.axisCell = 0;
    editor.controlChanged(MIDIActionEditor::AxisRadios);
    EXPECT_EQ(c.commandTag, 0x80) << "the empty horizontal message shows the defaults";
    c.commandTag = 0xE0;
    editor.controlChanged(MIDIActionEditor::CommandPopUp);
    EXPECT_EQ(action->messageSizeForAxis(0), 3u);
    EXPECT_EQ(action->messageForAxis(1)[1], 0x11);

    c.modeCell = 1;
    editor.controlChanged(MIDIActionEditor::ModeRadios);
    EXPECT_EQ(action->messageSizeForAxis(0), 0u);
    EXPECT_EQ(action->messageSizeForAxis(1), 0u);
}

namespace {

class FixedPointer : public PointerEnvironment
{
public:
    QPointF pointer;
    double height = 1080;
    bool queryOk = true;
    WindowUnderPointer window;
    mutable QPointF askedAt;

    QPointF pointerLocation() const override { return pointer; }
    double screensHeight() const override { return height; }
    bool windowUnderPointer(QPointF point, WindowUnderPointer& result) const override
    {
        askedAt = point;
        if (queryOk)
            result = window;
        return queryOk;
    }
};

} // namespace

class MouseEditorTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        model = std::make_unique<CorvaneModelData>();
        keyset = model->selectedKeyset();
        keyset->setName(QStringLiteral("Mixer App"));
        keyset->setSignature(fourCC("MIXR"));
        keyset->setBundleID(QStringLiteral("org.example.Mixer"));
        pointer.window.signature = fourCC("MIXR");
        pointer.window.bundleID = QStringLiteral("org.example.Mixer");
        pointer.window.windowTitle = QStringLiteral("Untitled");
        pointer.window.windowPosition = QPointF(100, 200);
        pointer.window.windowSize = QSizeF(400, 300);
    }

    std::unique_ptr<CorvaneModelData> model;
    TVKKeyset* keyset = nullptr;
    FixedPointer pointer;
    TVKActionContainer container;
};

TEST_F(MouseEditorTest, EnablingFollowsOperationLocationAndPartialName)
{
    MouseActionEditor editor(container, TVKButtonMouseAction::kActionType, pointer);
    editor.updateForNewAction();
    EXPECT_FALSE(editor.locationPopUpEnabled());

    editor.selectOperation(1);
    EXPECT_TRUE(editor.locationPopUpEnabled() && editor.modifierBoxesEnabled());
    EXPECT_FALSE(editor.partialNameBoxEnabled());
    EXPECT_EQ(editor.captureText(),
              QStringLiteral("The mouse pointer will not be repositioned before clicking."));
    editor.selectLocationType(2);
    EXPECT_TRUE(editor.partialNameBoxEnabled());
    EXPECT_FALSE(editor.windowNameFieldEnabled());
    EXPECT_TRUE(editor.captureButtonVisible());
    editor.setUsePartialWindowName(true);
    EXPECT_TRUE(editor.windowNameFieldEnabled());
    editor.setModifierBoxes(2 | 16);
    EXPECT_EQ(held<TVKMouseAction>(container)->modifierFlags(), 0x120000u);

    editor.selectOperation(0);
    EXPECT_TRUE(container.isEmpty());
    EXPECT_FALSE(editor.locationPopUpEnabled());
}

TEST_F(MouseEditorTest, CaptureComputesEachLocationType)
{
    MouseActionEditor editor(container, TVKButtonMouseAction::kActionType, pointer);
    int changes = 0;
    editor.setParameterChangedHandler([&] { ++changes; });
    editor.selectOperation(1);
    editor.selectLocationType(1);
    int started = 0;
    auto watch = NotificationCenter::defaultCenter().observe<corvane::note::StartCapture>(
        &editor, [&](const corvane::note::StartCapture&) { ++started; });
    editor.startCapture();
    EXPECT_EQ(started, 1);
    EXPECT_TRUE(editor.progressRunning());

    // Pointer 120 across and 45 down from the window's top-left corner (bottom-left origin).
    pointer.pointer = QPointF(220, 1080 - 245);
    int redraws = 0;
    editor.setStateChangedHandler([&] { ++redraws; });
    NotificationCenter::defaultCenter().post(corvane::note::EndCapture{});
    EXPECT_EQ(redraws, 1);
    EXPECT_EQ(pointer.askedAt, QPointF(220, 245));
    auto* action = held<TVKMouseAction>(container);
    EXPECT_EQ(action->location(), QPointF(120, 45));
    EXPECT_EQ(action->windowName(), QStringLiteral("Untitled"));
    EXPECT_EQ(action->actionDescriptor(),
              QStringLiteral("Click at 45, 120 from top left of \"Untitled\""));
    EXPECT_EQ(editor.captureText(), QStringLiteral("Move mouse pointer to 45, 120 from top left of "
                                                   "window \"Untitled\" before clicking"));
    EXPECT_EQ(editor.windowNameText(), QStringLiteral("Untitled"));
    EXPECT_FALSE(editor.progressRunning());
    EXPECT_EQ(changes, 1);

    struct Case
    {
        unsigned type;
        QPointF stored;
    };
    const WindowUnderPointer& w = pointer.window;
    for (const Case& c : {Case{2, {280, 45}}, Case{3, {0.3, 45}}, Case{4, {120, 255}},
                          Case{5, {280, 255}}, Case{6, {0.3, 255}}}) {
        EXPECT_EQ(MouseActionEditor::locationForPointer(c.type, QPointF(220, 245), w), c.stored)
            << c.type;
    }
    EXPECT_EQ(MouseActionEditor::locationText(3, QPointF(0.25, 45), QStringLiteral("Mix")),
              QStringLiteral("Move mouse pointer to 45 from top, 25% of width of window \"Mix\" "
                             "before clicking"));

    // The whole screen: top-left origin over the union of screens, no application check.
    editor.selectLocationType(7);
    pointer.queryOk = false;
    pointer.pointer = QPointF(10, 1000);
    editor.endCapture();
    EXPECT_EQ(action->location(), QPointF(10, 80));
    EXPECT_EQ(action->windowName(), QStringLiteral("Screen"));
    EXPECT_EQ(
        editor.captureText(),
        QStringLiteral("Move mouse pointer to 80, 10 from top left of Screen before clicking"));
}

TEST_F(MouseEditorTest, CaptureIsRefusedOverAnotherApplication)
{
    MouseActionEditor editor(container, TVKButtonMouseAction::kActionType, pointer);
    editor.selectOperation(1);
    editor.selectLocationType(1);
    auto* action = held<TVKMouseAction>(container);
    const QString refusal =
        QStringLiteral("Please place the mouse pointer over the application Mixer App");

    pointer.window.signature = fourCC("OTHR");
    editor.startCapture();
    editor.endCapture();
    EXPECT_EQ(editor.captureText(), refusal);
    EXPECT_TRUE(editor.captureButtonVisible());
    EXPECT_FALSE(editor.progressRunning());
    EXPECT_TRUE(action->windowName().isNull());

    pointer.window.signature = fourCC("MIXR");
    pointer.queryOk = false;
    editor.endCapture();
    EXPECT_EQ(editor.captureText(), refusal);

    // Without a signature, the bundle identifiers must agree as text.
    keyset->setSignature(kUnknownSignature);
    pointer.queryOk = true;
    pointer.window.signature = kUnknownSignature;
    pointer.window.bundleID = QStringLiteral("org.example.Other");
    editor.endCapture();
    EXPECT_EQ(editor.captureText(), refusal);
    pointer.window.bundleID = QStringLiteral("org.example.Mixer");
    editor.endCapture();
    EXPECT_EQ(action->windowName(), QStringLiteral("Untitled"));

    // Two absent identifiers pass even with different signatures.
    WindowUnderPointer other;
    other.signature = fourCC("ABCD");
    keyset->setSignature(fourCC("WXYZ"));
    keyset->setBundleID(std::nullopt);
    EXPECT_TRUE(MouseActionEditor::acceptsCapture(keyset, true, other));
    EXPECT_FALSE(MouseActionEditor::acceptsCapture(nullptr, true, other));
}

TEST_F(MouseEditorTest, ShowingAStoredAction)
{
    MouseActionEditor editor(container, TVKJogMouseAction::kActionType, pointer);
    auto action = std::make_unique<TVKJogMouseAction>(7u, nullptr);
    action->setLocationType(6);
    action->setLocation(QPointF(0.5, 12));
    action->setWindowName(QStringLiteral("Arrange"));
    action->setModifierFlags(0x80000);
    container.setAction(std::move(action));
    editor.updateForNewAction();
    EXPECT_EQ(editor.operationTag(), 7);
    EXPECT_EQ(editor.locationTag(), 6);
    EXPECT_EQ(editor.modifierBoxTags(), 8u);
    EXPECT_EQ(editor.windowNameText(), QStringLiteral("Arrange"));
    EXPECT_EQ(editor.captureText(),
              QStringLiteral("Move mouse pointer to 12 from bottom, 50% of width "
                             "of window \"Arrange\" before clicking"));
    EXPECT_FALSE(editor.captureButtonVisible());
}

class EmulationEditorTest : public ::testing::Test
{
protected:
    void SetUp() override { model = std::make_unique<CorvaneModelData>(); }
    void setMode(EmulationMode mode) { model->selectedKeyset()->setEmulationMode(mode); }

    std::unique_ptr<CorvaneModelData> model;
    TVKActionContainer container;
};

TEST_F(EmulationEditorTest, ButtonGroupsNamedAndNumbered)
{
    EmulationActionEditor editor(container, EmulationActionEditor::Button);
    auto& c = editor.controls();
    setMode(EmulationMode::C);
    editor.updateForNewAction();
    EXPECT_EQ(c.groupMenu, EmulationActionEditor::GroupMenu::ModeC);
    EXPECT_EQ(editor.groupMenu(c.groupMenu).size(), 22);
    EXPECT_FALSE(c.emulateChecked);

    c.emulateChecked = true;
    editor.controlChanged(EmulationActionEditor::EmulateBox);
    auto* action = held<TVKButtonEmulationAction>(container);
    ASSERT_TRUE(action);
    EXPECT_EQ(action->actionDescriptor(), QStringLiteral("Emulation- transport: rewind"));
    EXPECT_TRUE(c.nameContainerVisible);

    c.selectedControlTag = 3;
    editor.controlChanged(EmulationActionEditor::ControlPopUp);
    EXPECT_EQ(held<TVKButtonEmulationAction>(container)->actionDescriptor(),
              QStringLiteral("Emulation- transport: play"));

    // The solo group: numbered, limited to 8.
    c.selectedGroup = 16;
    editor.controlChanged(EmulationActionEditor::GroupPopUp);
    EXPECT_TRUE(c.numberContainerVisible);
    EXPECT_FALSE(c.nameContainerVisible);
    EXPECT_EQ(c.numberField, 1);
    c.numberField = 12;
    editor.controlChanged(EmulationActionEditor::NumberField);
    EXPECT_EQ(c.numberField, 8);
    EXPECT_EQ(c.numberStepper, 8);
    c.numberField = 0;
    editor.controlChanged(EmulationActionEditor::NumberField);
    EXPECT_EQ(c.numberStepper, 1);
    c.numberStepper = 5;
    editor.controlChanged(EmulationActionEditor::NumberStepper);
    EXPECT_EQ(held<TVKButtonEmulationAction>(container)->actionDescriptor(),
              QStringLiteral("Emulation- solo: 5"));

    // Touch sensors allow 9 and share the pot-switch menu.
    c.selectedGroup = 20;
    editor.controlChanged(EmulationActionEditor::GroupPopUp);
    c.numberStepper = 11;
    editor.controlChanged(EmulationActionEditor::NumberStepper);
    EXPECT_EQ(c.numberField, 9);
    EXPECT_EQ(held<TVKButtonEmulationAction>(container)->emulatedControl(), 8);

    // A single-control group: no number, only-control flag set.
    c.selectedGroup = 8;
    editor.controlChanged(EmulationActionEditor::GroupPopUp);
    EXPECT_FALSE(c.numberContainerVisible);
    EXPECT_EQ(held<TVKButtonEmulationAction>(container)->actionDescriptor(),
              QStringLiteral("Emulation- flip"));

    // Showing a stored numbered action; unticking removes it.
    container.setAction(std::make_unique<TVKButtonEmulationAction>(nullptr, 17, 6, false, false));
    editor.updateForNewAction();
    EXPECT_EQ(c.selectedGroup, 17);
    EXPECT_EQ(c.numberStepper, 7);
    EXPECT_TRUE(c.numberContainerVisible);
    c.emulateChecked = false;
    editor.controlChanged(EmulationActionEditor::EmulateBox);
    EXPECT_TRUE(container.isEmpty());

    setMode(EmulationMode::A);
    editor.updateForNewAction();
    EXPECT_EQ(c.groupMenu, EmulationActionEditor::GroupMenu::ModeAB);
    EXPECT_FALSE(c.nameContainerVisible || c.numberContainerVisible);
    EXPECT_EQ(editor.controlMenuForGroup(21).size(), 2);
    EXPECT_EQ(editor.controlMenuForGroup(20), editor.controlMenuForGroup(19));
}

TEST_F(EmulationEditorTest, EncoderLimitsAndDisplayScroll)
{
    EmulationActionEditor editor(container, EmulationActionEditor::Encoder);
    auto& c = editor.controls();
    c.selectedGroup = 1;
    editor.controlChanged(EmulationActionEditor::GroupPopUp);
    c.numberField = 20;
    editor.controlChanged(EmulationActionEditor::NumberField);
    EXPECT_EQ(c.numberField, 9);
    c.selectedGroup = 2;
    editor.controlChanged(EmulationActionEditor::GroupPopUp);
    auto* action = held<TVKEncoderEmulationAction>(container);
    ASSERT_TRUE(action);
    EXPECT_TRUE(action->onlyControlInGroup());
    EXPECT_EQ(action->actionDescriptor(), QStringLiteral("Emulation- display scroll"));
}

TEST_F(EmulationEditorTest, JogSpeedFollowsModeC)
{
    EmulationActionEditor editor(container, EmulationActionEditor::Jog);
    int redraws = 0;
    editor.setStateChangedHandler([&] { ++redraws; });
    auto& c = editor.controls();
    c.speedSlider = 6;
    editor.controlChanged(EmulationActionEditor::SpeedSlider);
    EXPECT_EQ(held<TVKJogEmulationAction>(container)->jogSpeed(), 1u) << "outside mode C";
    EXPECT_FALSE(c.modeCContainerVisible);

    setMode(EmulationMode::C);
    NotificationCenter::defaultCenter().post(corvane::note::EmulChg{});
    EXPECT_TRUE(c.modeCContainerVisible);
    EXPECT_EQ(c.speedSlider, 1) << "the slider shows the held action's speed in mode C";
    c.speedSlider = 6;
    editor.controlChanged(EmulationActionEditor::SpeedSlider);
    EXPECT_EQ(held<TVKJogEmulationAction>(container)->jogSpeed(), 6u);
    c.speedSlider = 0;
    editor.updateForNewAction();
    EXPECT_EQ(c.speedSlider, 6);

    // Locking or unlocking the keyset shows the action again.
    setMode(EmulationMode::None);
    NotificationCenter::defaultCenter().post(corvane::note::LockStateChange{});
    EXPECT_FALSE(c.modeCContainerVisible);
    EXPECT_EQ(redraws, 5) << "three operations asked for, two notifications";
}
