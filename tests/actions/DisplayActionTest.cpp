// Display actions in a real model: the sample texts the surface pictures show and the texts that
// follow the keyset's emulation mode.
#include "QtPrinters.h"
#include "actions/CorvaneButtonDisplayMidiEmulationAction.h"
#include "actions/TVKActionContainer.h"
#include "actions/TVKBuiltInAction.h"
#include "actions/TVKDisplayControlNameAction.h"
#include "actions/TVKDisplayEmulationAction.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/TVKEmulationAction.h"
#include "actions/editors/HiResTextEditor.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "surface/Corvane_Constant_Server.h"

#include <gtest/gtest.h>

namespace {

class DisplayActionTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        model = std::make_unique<CorvaneModelData>();
        keyset = model->selectedKeyset();
        layer = keyset->layerAtIndex(1);
    }

    TVKControl* control(int group, int index) { return layer->controlForGroup(group, index); }
    TVKControl* display(int group, int index)
    {
        return layer->displayControlForGroup(group, index);
    }

    Corvane_Constant_Server constants;
    std::unique_ptr<CorvaneModelData> model;
    TVKKeyset* keyset = nullptr;
    TVKLayer* layer = nullptr;
};

} // namespace

TEST_F(DisplayActionTest, EncoderNamesFillCellsOfTheDisplayWidth)
{
    // Display 0 of the LCD names the five right encoders in cells of 40 / 5 = 8.
    control(4, 0)->setUserName(QStringLiteral("Volume"));
    control(4, 1)->setUserName(QStringLiteral("Frequency"));
    control(4, 3)->setUserName(QStringLiteral("Q"));
    TVKLCDDisplayEncoderNameAction names(display(0, 0));
    EXPECT_EQ(names.sourceLayer(), 1);
    EXPECT_EQ(names.sourceControlGroup(), 4);
    EXPECT_EQ(names.numSourceControls(), 5);
    EXPECT_EQ(names.text(), QStringLiteral("Volume  Frequen         Q               "));
    EXPECT_EQ(names.text().size(), 40);

    EXPECT_TRUE(names.needsUpdateForThisControl(control(4, 4)));
    EXPECT_FALSE(names.needsUpdateForThisControl(control(3, 0)));

    // The right-hand half of the small displays starts at encoder 3 of the left group.
    TVKLCDDisplayButtonNameAction left(display(0, 4));
    EXPECT_EQ(left.firstSourceControl(), 3);
    control(3, 3)->setUserName(QStringLiteral("Pan"));
    EXPECT_EQ(left.text(), QStringLiteral("Pan                     "));
}

TEST_F(DisplayActionTest, CellWidthsFromTheirOwnFields)
{
    // 56 characters for 8 encoders: cells of 7, names cut or padded to 6.
    TVKLCDDisplayEncoderNameAction eight;
    eight.setSourceControls(1, 29, 0, 8, 56);
    control(29, 0)->setUserName(QStringLiteral("Reverb Send"));
    control(29, 7)->setUserName(QStringLiteral("EQ"));
    const QString cells = eight.text();
    EXPECT_EQ(cells.size(), 56);
    EXPECT_EQ(cells.left(7), QStringLiteral("Reverb "));
    EXPECT_EQ(cells.right(7), QStringLiteral("EQ     "));

    // Padding comes from seven blanks: wider cells come out short.
    TVKLCDDisplayEncoderNameAction wide;
    wide.setSourceControls(1, 29, 7, 1, 40);
    EXPECT_EQ(wide.text(), QStringLiteral("EQ        "));

    TVKLCDDisplayEncoderNameAction none;
    none.setSourceControls(1, 29, 0, 0, 40);
    EXPECT_EQ(none.text(), QString());
}

TEST_F(DisplayActionTest, ParameterNamesOfTheNVLine)
{
    TVKFrameletCorvaneNVLCDDisplayButtonNameAction parameters(display(3, 0));
    EXPECT_EQ(parameters.sourceControlGroup(), 27);
    EXPECT_EQ(parameters.displayWidth(), 40);
    control(27, 1)->setUserName(QStringLiteral("Attack"));
    EXPECT_EQ(parameters.text().mid(8, 8), QStringLiteral("Attack  "));
    EXPECT_EQ(parameters.actionDescriptor(), QStringLiteral("Button Names"));
    parameters.setLcdDisplayMode(1);
    EXPECT_EQ(parameters.text().left(16), QStringLiteral("(F1: P1 (F1: P2 "));
    parameters.setLcdDisplayMode(2);
    EXPECT_EQ(parameters.actionDescriptor(), QStringLiteral("??"));
}

TEST_F(DisplayActionTest, BuiltInSamplesFillTheirDisplay)
{
    TVKBuiltInLCDDisplayAction wide(display(0, 1));
    EXPECT_EQ(wide.text(), QStringLiteral("Selected Clip: ----") + QString(21, QLatin1Char(' ')));
    TVKBuiltInLCDDisplayAction narrow(display(0, 3));
    EXPECT_EQ(narrow.text(), QStringLiteral("Selected Clip: ----     "));
    EXPECT_EQ(TVKBuiltInTimecodeDisplayAction(display(1, 0)).text(), QStringLiteral("01:00:00:00"));

    // The pictures ask every display the same way, built-in commands included.
    EXPECT_EQ(corvane::displaySampleText(&narrow), narrow.text());
    TVKLCDDisplayTextAction custom(display(0, 0), QStringLiteral("Hi"));
    EXPECT_EQ(corvane::displaySampleText(&custom), QStringLiteral("Hi"));
    TVKButtonBuiltInAction button;
    EXPECT_EQ(corvane::displaySampleText(&button), QString());
    EXPECT_EQ(corvane::displaySampleText(nullptr), QString());
}

TEST_F(DisplayActionTest, TextsFollowTheEmulationMode)
{
    TVKTimecodeDisplayEmulationAction timecode(display(1, 0));
    CorvaneButtonDisplayMidiEmulationAction status(display(2, 0), 2u);
    EXPECT_EQ(timecode.actionDescriptor(), QStringLiteral("Emulation Mode Not Active"));
    EXPECT_EQ(timecode.text(), QStringLiteral("01:00:00:00"));
    EXPECT_EQ(status.text(), QStringLiteral("Emulate\nMode B"));

    keyset->setEmulationMode(corvane::EmulationMode::A);
    EXPECT_EQ(timecode.actionDescriptor(), QStringLiteral("Emulation: Mode A Timecode Display"));
    EXPECT_EQ(status.text(), QStringLiteral("Emulate\nMode A"));
    EXPECT_EQ(status.actionDescriptor(), QStringLiteral("Emulate Mode A Display"));
    keyset->setEmulationMode(corvane::EmulationMode::C);
    EXPECT_EQ(timecode.actionDescriptor(), QStringLiteral("Emulation: Mode B Timecode Display"));

    // The timecode reads the selected keyset; the status line its own control's keyset.
    model->addKeysetWithName(QStringLiteral("Other"), corvane::fourCC("OTHR"));
    model->setSelectedKeysetIndex(1);
    EXPECT_EQ(timecode.actionDescriptor(), QStringLiteral("Emulation Mode Not Active"));
    EXPECT_EQ(status.text(), QStringLiteral("Emulate\nMode B"));
}

TEST_F(DisplayActionTest, LayerDefaultsInEmulationMode)
{
    layer->setAllControlsToActionMode(corvane::ActionMode::Emulation);
    const auto* jog = dynamic_cast<const TVKJogEmulationAction*>(control(1, 5)->action());
    ASSERT_TRUE(jog);
    EXPECT_EQ(jog->jogSpeed(), 0u);
    EXPECT_EQ(control(21, 7)->action()->actionType(), TVKFaderEmulationAction::kActionType);
    EXPECT_EQ(control(21, 7)->action()->actionDescriptor(), QStringLiteral("Emulation- fader: 9"));
    EXPECT_EQ(control(4, 4)->displayableName(), QStringLiteral("   <-->"));
    EXPECT_EQ(control(1, 3)->action()->actionDescriptor(),
              QStringLiteral("Emulation- transport: play"));
    EXPECT_EQ(control(11, 0)->action(), nullptr) << "trackballs have no emulation";

    const auto* line = dynamic_cast<const TVKLCDDisplayEmulationAction*>(display(0, 1)->action());
    ASSERT_TRUE(line);
    EXPECT_EQ(line->actionDescriptor(), QStringLiteral("Emulation- LCD Line 2"));
    EXPECT_EQ(line->numEncoders(), 5);
    EXPECT_EQ(line->displayWidth(), 40);
    EXPECT_EQ(display(1, 0)->action()->actionType(),
              TVKTimecodeDisplayEmulationAction::kActionType);
    EXPECT_EQ(display(0, 2)->action(), nullptr);
}

TEST(HiResText, LineCountSetsLineLengthAndCutsTheText)
{
    const QStringList lines = {QStringLiteral("123456789"), QStringLiteral("abcdefghijk"),
                               QStringLiteral("xy"), QStringLiteral("last line!!")};
    const std::vector<std::pair<unsigned, QString>> cases = {
        {0, QString()},
        {1, QString()}, // one line has no room, as the table gives
        {2, QStringLiteral("1234567\nabcdefg")},
        {3, QStringLiteral("12345678\nabcdefgh\nxy")},
        {4, QStringLiteral("123456789\nabcdefghij\nxy\nlast line!")},
    };
    for (const auto& [count, expected] : cases) {
        CorvaneHiResLCDButtonDisplayTextAction action(nullptr, count, lines[0], lines[1], lines[2],
                                                      lines[3]);
        EXPECT_EQ(action.storedText(), expected) << count;
    }
    CorvaneHiResLCDButtonDisplayTextAction gap(nullptr, 3, QStringLiteral("a"), QString(),
                                               QStringLiteral("c"), QString());
    EXPECT_EQ(gap.storedText(), QStringLiteral("a\n\nc"));
}

TEST(HiResText, EditorLineCountAndFields)
{
    TVKActionContainer container;
    corvane::HiResTextEditor editor(container);
    editor.setLine(0, QStringLiteral("Overdub"));
    editor.setLine(1, QStringLiteral("Punch In!"));
    editor.setLineCount(2);
    EXPECT_EQ(editor.label(), QStringLiteral("Up to 7 characters per line allowed"));
    auto* action = dynamic_cast<CorvaneHiResLCDButtonDisplayTextAction*>(container.action());
    ASSERT_TRUE(action);
    EXPECT_EQ(action->storedText(), QStringLiteral("Overdub\nPunch I"));
    EXPECT_EQ(action->charsPerLine(), 7u);

    editor.setLineCount(0);
    EXPECT_EQ(editor.label(), QString(QLatin1String("")));

    container.setAction(std::make_unique<CorvaneHiResLCDButtonDisplayTextAction>(
        nullptr, 3u, QStringLiteral("one"), QString(), QStringLiteral("three"), QString()));
    editor.updateForNewAction();
    EXPECT_EQ(editor.lineCount(), 3u);
    EXPECT_EQ(editor.lines(),
              (QStringList{QStringLiteral("one"), QString(), QStringLiteral("three"), QString()}));
    EXPECT_EQ(editor.label(), QStringLiteral("Up to 8 characters per line allowed"));
}
