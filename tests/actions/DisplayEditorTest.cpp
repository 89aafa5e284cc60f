// The display editors' decisions, headless: what each user action does to the edited action,
// that an action which changes nothing is no edit, and that the view hears of every change once.
#include "QtPrinters.h"
#include "actions/CorvaneButtonDisplayMidiEmulationAction.h"
#include "actions/CorvaneLCDButtonDisplayIconAction.h"
#include "actions/TVKActionContainer.h"
#include "actions/TVKDisplayControlNameAction.h"
#include "actions/TVKDisplayEmulationAction.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/editors/ControlNamesEditor.h"
#include "actions/editors/DisplayEmulationEditor.h"
#include "actions/editors/DisplayIconEditor.h"
#include "actions/editors/DisplayTextEditor.h"
#include "actions/editors/HiResTextEditor.h"
#include "actions/editors/StatusLineEditor.h"
#include "core/NotificationCenter.h"
#include "core/Notifications.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "surface/Corvane_Constant_Server.h"
#include "surface/SurfaceConstants.h"

#include <gtest/gtest.h>

using namespace corvane;

namespace {

class DisplayEditorTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        model = std::make_unique<CorvaneModelData>();
        layer = model->selectedKeyset()->layerAtIndex(0);
    }

    // Every display of the layer whose control type is one of the given ones, from the layer's
    // own tables (the NV's displays stand among its controls).
    std::vector<TVKControl*> displaysOfType(std::initializer_list<int> types) const
    {
        std::vector<TVKControl*> found;
        for (const auto* table : {&layer->displayGroups(), &layer->groups()})
            for (const auto& group : *table)
                for (const auto& display : group)
                    if (display && std::find(types.begin(), types.end(),
                                             display->tvkControlType()) != types.end())
                        found.push_back(display.get());
        return found;
    }

    template <typename T>
    T* held()
    {
        return dynamic_cast<T*>(container.action());
    }

    Corvane_Constant_Server constants;
    std::unique_ptr<CorvaneModelData> model;
    TVKLayer* layer = nullptr;
    TVKActionContainer container;
    int redraws = 0;
};

} // namespace

TEST_F(DisplayEditorTest, TextOfEveryCharacterDisplayIsCutToItsWidth)
{
    const std::vector<TVKControl*> displays =
        displaysOfType({ControlType::LCDDisplay, ControlType::NVLCDDisplay});
    ASSERT_FALSE(displays.empty());
    for (TVKControl* display : displays) {
        SCOPED_TRACE(display->name().toStdString());
        container.setAction(nullptr);
        DisplayTextEditor editor(container);
        editor.setStateChangedHandler([&] { ++redraws; });
        redraws = 0;
        editor.updateForNewAction(display);
        const int width = surfaceConstants().widthOfDisplay(display->index(), display->groupID());
        ASSERT_GT(width, 0) << "a character display has a width";
        EXPECT_EQ(editor.width(), width);

        // Typed longer than the display: the display's width of it is kept.
        ASSERT_TRUE(editor.setText(QString(width + 9, QLatin1Char('x')), display));
        auto* text = held<TVKLCDDisplayTextAction>();
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(text->storedText().size(), width);
        EXPECT_EQ(text->owningControl(), display);
        // The same text again changes nothing; another changes the held action in place.
        EXPECT_FALSE(editor.setText(QString(width, QLatin1Char('x')), display));
        EXPECT_TRUE(editor.setText(QStringLiteral("Mix"), display));
        EXPECT_EQ(held<TVKLCDDisplayTextAction>(), text);
        EXPECT_EQ(text->storedText(), QStringLiteral("Mix"));
        // Emptied, the display has no function; emptied again is no edit.
        EXPECT_TRUE(editor.setText(QString(), display));
        EXPECT_TRUE(container.isEmpty());
        EXPECT_FALSE(editor.setText(QString(), display));
        EXPECT_EQ(redraws, 6) << "one redraw per operation";
    }

    // An action of another kind shows an empty field and is replaced by the first text.
    TVKControl* display = displays.front();
    container.setAction(std::make_unique<TVKLCDDisplayEncoderNameAction>(display));
    DisplayTextEditor editor(container);
    editor.updateForNewAction(display);
    EXPECT_EQ(editor.text(), QString());
    EXPECT_TRUE(editor.setText(QStringLiteral("Bus"), display));
    EXPECT_EQ(container.actionType(), TVKLCDDisplayTextAction::kActionType);
    // Without a display the editor still offers a usable width.
    editor.updateForNewAction(nullptr);
    EXPECT_EQ(editor.width(), DisplayTextEditor::kFallbackWidth);
}

TEST_F(DisplayEditorTest, HiResTextClickedAgainIsNoEdit)
{
    HiResTextEditor editor(container);
    editor.setStateChangedHandler([&] { ++redraws; });
    EXPECT_TRUE(editor.setLineCount(2));
    EXPECT_FALSE(editor.setLineCount(2)) << "the radio already chosen";
    EXPECT_TRUE(editor.setLine(0, QStringLiteral("Vox")));
    EXPECT_FALSE(editor.setLine(0, QStringLiteral("Vox")));
    // A line past the line count is kept in its field but stores nothing new.
    EXPECT_FALSE(editor.setLine(3, QStringLiteral("unused")));
    EXPECT_FALSE(editor.setLine(7, QStringLiteral("no such field")));
    EXPECT_EQ(held<CorvaneHiResLCDButtonDisplayTextAction>()->storedText(),
              QStringLiteral("Vox\n"));
    EXPECT_EQ(redraws, 6);
}

TEST_F(DisplayEditorTest, ControlNamesOfEveryNameDisplayKind)
{
    const std::pair<qint32, int> kinds[] = {
        {TVKLCDDisplayEncoderNameAction::kActionType, ControlType::LCDDisplay},
        {TVKLCDDisplayButtonNameAction::kActionType, ControlType::LCDDisplay},
        {TVKFrameletCorvaneNVLCDDisplayButtonNameAction::kActionType, ControlType::NVLCDDisplay}};
    for (const auto& [type, displayType] : kinds) {
        SCOPED_TRACE(type);
        const std::vector<TVKControl*> displays = displaysOfType({displayType});
        ASSERT_FALSE(displays.empty());
        TVKControl* display = displays.front();
        container.setAction(nullptr);
        ControlNamesEditor editor(container, type);
        editor.setStateChangedHandler([&] { ++redraws; });
        editor.updateForNewAction();
        EXPECT_FALSE(editor.showNames());
        EXPECT_FALSE(editor.labelModeEnabled());

        ASSERT_TRUE(editor.setShowNames(true, display));
        auto* names = held<TVKDisplayControlNameAction>();
        ASSERT_NE(names, nullptr);
        EXPECT_EQ(names->actionType(), type);
        // Made for the display, the action names the controls that share it.
        EXPECT_GT(names->numSourceControls(), 0);
        EXPECT_FALSE(editor.setShowNames(true, display)) << "ticked again";
        EXPECT_EQ(editor.labelModeEnabled(), editor.hasLabelMode());

        if (editor.hasLabelMode()) {
            EXPECT_TRUE(editor.setLabelMode(1, display));
            auto* framelet = held<TVKFrameletCorvaneNVLCDDisplayButtonNameAction>();
            ASSERT_NE(framelet, nullptr);
            EXPECT_EQ(framelet->lcdDisplayMode(), 1u);
            EXPECT_FALSE(editor.setLabelMode(1, display));
            container.setAction(framelet->copyWithZone());
            editor.updateForNewAction();
            EXPECT_EQ(editor.labelMode(), 1u) << "shown again from the held action";
        } else {
            EXPECT_FALSE(editor.setLabelMode(1, display)) << "no label mode to choose";
        }

        EXPECT_TRUE(editor.setShowNames(false, display));
        EXPECT_TRUE(container.isEmpty());
        EXPECT_FALSE(editor.setShowNames(false, display));
        // Unticked, a label mode is remembered for the next tick but is no edit.
        EXPECT_FALSE(editor.setLabelMode(editor.hasLabelMode() ? 0 : 1, display));
        EXPECT_TRUE(container.isEmpty());
    }
    // The names of another display kind are not this editor's.
    container.setAction(std::make_unique<TVKLCDDisplayButtonNameAction>(nullptr));
    ControlNamesEditor encoders(container, TVKLCDDisplayEncoderNameAction::kActionType);
    encoders.updateForNewAction();
    EXPECT_FALSE(encoders.showNames());
}

TEST_F(DisplayEditorTest, EmulatedDisplaySourcesAndTheKeysetsMode)
{
    TVKControl* lcd = displaysOfType({ControlType::LCDDisplay}).front();
    DisplayEmulationEditor editor(container, TVKLCDDisplayEmulationAction::kActionType);
    editor.setStateChangedHandler([&] { ++redraws; });
    editor.updateForNewAction();
    EXPECT_EQ(editor.source(), DisplayEmulationEditor::kNoSource);
    EXPECT_EQ(editor.emulationMode(), EmulationMode::None);
    EXPECT_FALSE(editor.setSource(DisplayEmulationEditor::kNoSource, lcd)) << "nothing to remove";
    EXPECT_FALSE(editor.setTimecodeShown(true, lcd)) << "not a timecode display";

    ASSERT_TRUE(editor.setSource(1, lcd));
    auto* line = held<TVKLCDDisplayEmulationAction>();
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->text(), QStringLiteral("LCD Line 2"));
    EXPECT_FALSE(editor.setSource(1, lcd));
    EXPECT_TRUE(editor.setSource(2, lcd));
    EXPECT_EQ(held<TVKLCDDisplayEmulationAction>(), line) << "changed in place";
    EXPECT_EQ(line->text(), QStringLiteral("Pot Values"));
    EXPECT_TRUE(editor.setSource(DisplayEmulationEditor::kNoSource, lcd));
    EXPECT_TRUE(container.isEmpty());

    // The mode line follows the keyset's emulation mode as the menu sets it.
    const int before = redraws;
    model->selectedKeyset()->setEmulationMode(EmulationMode::B);
    NotificationCenter::defaultCenter().post(note::EmulChg{});
    EXPECT_EQ(editor.emulationMode(), EmulationMode::B);
    EXPECT_EQ(redraws, before + 1);

    TVKControl* timecode = displaysOfType({ControlType::TimecodeDisplay}).front();
    DisplayEmulationEditor clock(container, TVKTimecodeDisplayEmulationAction::kActionType);
    EXPECT_TRUE(clock.setTimecodeShown(true, timecode));
    EXPECT_EQ(container.actionType(), TVKTimecodeDisplayEmulationAction::kActionType);
    EXPECT_FALSE(clock.setTimecodeShown(true, timecode));
    EXPECT_FALSE(clock.setSource(1, timecode)) << "a timecode display has no source";
    EXPECT_TRUE(clock.setTimecodeShown(false, timecode));
    EXPECT_TRUE(container.isEmpty());
}

TEST_F(DisplayEditorTest, IconsAndStatusLinesOfEveryLCDButton)
{
    const std::vector<TVKControl*> buttons = displaysOfType({ControlType::LCDButtonDisplay});
    ASSERT_FALSE(buttons.empty());
    for (TVKControl* button : buttons) {
        SCOPED_TRACE(button->name().toStdString());
        container.setAction(nullptr);
        DisplayIconEditor icons(container);
        icons.setStateChangedHandler([&] { ++redraws; });
        icons.updateForNewAction();
        EXPECT_EQ(icons.selectedIcon(), DisplayIconEditor::kNoIcon);
        EXPECT_FALSE(icons.clearIcon());
        ASSERT_TRUE(icons.chooseIcon(3, button));
        auto* icon = held<CorvaneLCDButtonDisplayIconAction>();
        ASSERT_NE(icon, nullptr);
        EXPECT_EQ(icon->owningControl(), button);
        EXPECT_FALSE(icons.chooseIcon(3, button)) << "the icon already chosen";
        EXPECT_TRUE(icons.chooseIcon(9, button));
        EXPECT_EQ(held<CorvaneLCDButtonDisplayIconAction>(), icon);
        EXPECT_EQ(icon->romIcon(), 9);

        // The status line replaces the icon; "nothing" clicked again is no edit.
        StatusLineEditor status(container);
        status.updateForNewAction();
        EXPECT_EQ(status.selectedMode(), 0u);
        EXPECT_FALSE(status.chooseMode(0, button)) << "the icon stays";
        EXPECT_EQ(held<CorvaneLCDButtonDisplayIconAction>(), icon);
        ASSERT_TRUE(status.chooseMode(2, button));
        auto* line = held<CorvaneButtonDisplayMidiEmulationAction>();
        ASSERT_NE(line, nullptr);
        EXPECT_FALSE(status.chooseMode(2, button));
        EXPECT_TRUE(status.chooseMode(1, button));
        EXPECT_EQ(held<CorvaneButtonDisplayMidiEmulationAction>(), line);
        EXPECT_EQ(line->text(), QStringLiteral("Native\nMIDI"));

        icons.updateForNewAction();
        EXPECT_EQ(icons.selectedIcon(), DisplayIconEditor::kNoIcon);
        EXPECT_FALSE(icons.clearIcon()) << "a status line is not an icon";
        EXPECT_EQ(held<CorvaneButtonDisplayMidiEmulationAction>(), line);
        EXPECT_TRUE(status.chooseMode(0, button));
        EXPECT_TRUE(container.isEmpty());
    }
}
