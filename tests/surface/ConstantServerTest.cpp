#include "core/Log.h"
#include "surface/Corvane_Constant_Server.h"

#include <gtest/gtest.h>
#include <map>
#include <set>
#include <utility>

namespace {

class ConstantServerTest : public ::testing::Test
{
protected:
    Corvane_Constant_Server server;
};

constexpr int kUntouched = -999;

TEST_F(ConstantServerTest, GroupTablesMatchTheSurface)
{
    const int expectedCounts[] = {5,  7,  7,  6,  5,  8,  8, 4, 8,   3,  3, 3,  3,   16, 5, 2,
                                  32, 32, 32, 32, 32, 32, 6, 8, 240, 10, 8, 40, 160, 8,  8};
    for (int g = 0; g < Corvane_Constant_Server::kNumberOfControlGroups; ++g) {
        EXPECT_EQ(server.numberOfControlsInGroup(g), expectedCounts[g]) << g;
        EXPECT_FALSE(server.dataModelGroupNameForGroup(g).isEmpty()) << g;
        EXPECT_FALSE(server.groupIconNameForGroup(g).isEmpty()) << g;
    }
    EXPECT_EQ(server.dataModelGroupNameForGroup(27), u"CorvaneNV Param Buttons ");
    EXPECT_EQ(server.dataModelGroupNameForGroup(12), u"TrackballRings");
    EXPECT_EQ(server.groupIconNameForGroup(22), u"corvane_mini_reset");
    EXPECT_NE(server.groupIconNameForGroup(29), u"encoder");

    for (int g : {31, 100, -1}) {
        EXPECT_EQ(server.numberOfControlsInGroup(g), 0);
        EXPECT_TRUE(server.dataModelGroupNameForGroup(g).isNull());
        EXPECT_TRUE(server.groupIconNameForGroup(g).isNull());
    }

    const int displays[] = {6, 1, 8, 2, 240};
    for (int g = 0; g < 5; ++g)
        EXPECT_EQ(server.numberOfDisplaysInGroup(g), displays[g]);
    EXPECT_EQ(server.numberOfDisplaysInGroup(5), 0);
    EXPECT_EQ(server.numberOfDisplaysInGroup(-1), 0);
    EXPECT_EQ(server.numLayers(), 4);
}

// Every control that exists maps to an on-screen position and back to itself, and no two
// controls share an on-screen position.
TEST_F(ConstantServerTest, EveryModelDataControlRoundTripsThroughTheScreen)
{
    std::map<std::pair<int, int>, std::pair<int, int>> seen;
    for (int g = 0; g < Corvane_Constant_Server::kNumberOfControlGroups; ++g) {
        for (int i = 0; i < server.numberOfControlsInGroup(g); ++i) {
            int onscreen = kUntouched;
            int control = kUntouched;
            server.modelDataGroupID(g, i, onscreen, control);
            ASSERT_NE(onscreen, kUntouched) << g << "/" << i;
            ASSERT_GE(onscreen, 0);
            ASSERT_LT(onscreen, Corvane_Constant_Server::kNumberOfOnscreenGroups);
            EXPECT_FALSE(onscreen >= 31 && onscreen <= 38) << g << "/" << i;

            int dataGroup = kUntouched;
            int index = kUntouched;
            ASSERT_TRUE(server.onscreenGroup(onscreen, control, dataGroup, index));
            EXPECT_EQ(dataGroup, g) << "on-screen " << onscreen << "/" << control;
            EXPECT_EQ(index, i) << "on-screen " << onscreen << "/" << control;

            const auto inserted = seen.emplace(std::pair(onscreen, control), std::pair(g, i));
            EXPECT_TRUE(inserted.second)
                << g << "/" << i << " shares " << onscreen << "/" << control << " with "
                << inserted.first->second.first << "/" << inserted.first->second.second;
        }
    }

    // The on-screen side: every drawn control of groups 0..48 leads to an existing control that
    // maps back to the same place.
    std::set<int> drawnGroups;
    for (const auto& entry : seen)
        drawnGroups.insert(entry.first.first);
    for (int g = 0; g <= 30; ++g)
        EXPECT_TRUE(drawnGroups.count(g)) << g;
    for (int g = 39; g <= 47; ++g)
        EXPECT_TRUE(drawnGroups.count(g)) << g;

    for (int g = 0; g < Corvane_Constant_Server::kNumberOfOnscreenGroups; ++g) {
        for (int c = 0; c < 300; ++c) {
            if (!seen.count({g, c}))
                continue;
            int dataGroup = kUntouched;
            int index = kUntouched;
            ASSERT_TRUE(server.onscreenGroup(g, c, dataGroup, index));
            ASSERT_LT(index, server.numberOfControlsInGroup(dataGroup));
            int backGroup = kUntouched;
            int backControl = kUntouched;
            server.modelDataGroupID(dataGroup, index, backGroup, backControl);
            EXPECT_EQ(std::pair(backGroup, backControl), std::pair(g, c));
        }
    }
}

// A picture shows the controls of its on-screen group as states 1, 2, …: every control of the model
// is one state of the group that draws it, and each group lists its controls in its numbering.
TEST_F(ConstantServerTest, EveryControlIsOneStateOfTheGroupThatDrawsIt)
{
    int controls = 0;
    for (int g = 0; g < server.numberOfControlGroups(); ++g) {
        for (int i = 0; i < server.numberOfControlsInGroup(g); ++i) {
            int onscreen = kUntouched;
            int control = kUntouched;
            server.modelDataGroupID(g, i, onscreen, control);
            EXPECT_EQ(server.onscreenControlsInGroup(onscreen).count(control), 1)
                << g << "/" << i << " in on-screen group " << onscreen;
            ++controls;
        }
    }
    EXPECT_EQ(server.numberOfControlGroups(), 31);
    int listed = 0;
    for (int g = 0; g < Corvane_Constant_Server::kNumberOfOnscreenGroups; ++g) {
        const QList<int> list = server.onscreenControlsInGroup(g);
        for (qsizetype k = 1; k < list.size(); ++k)
            EXPECT_LT(list[k - 1], list[k]) << "on-screen group " << g;
        if ((g < 31 || g > 38) && g != 48)
            listed += int(list.size());
    }
    EXPECT_EQ(listed, controls);

    // Read off the tables by hand: groups numbered from 0, from 1 and by parity, rows split over
    // several pictures, mixed groups, and the TLW's second drawing of the F keys.
    const std::pair<int, QList<int>> cases[] = {{0, {0, 1, 2, 3, 4}},
                                                {2, {0, 6}},
                                                {3, {1, 5}},
                                                {4, {2, 3, 4}},
                                                {8, {0, 1, 2, 3, 4, 5, 6, 7, 8}},
                                                {11, {0, 1, 2, 3, 4}},
                                                {13, {0, 1}},
                                                {16, {1, 2}},
                                                {17, {1, 2}},
                                                {21, {12, 13, 14, 15}},
                                                {22, {1, 2, 3, 4, 5}},
                                                {43, {4, 5, 6, 7}},
                                                {48, {0, 1, 2, 3, 4, 5, 6, 7}},
                                                {49, {}},
                                                {-1, {}}};
    for (const auto& [group, expected] : cases)
        EXPECT_EQ(server.onscreenControlsInGroup(group), expected) << "on-screen group " << group;
    EXPECT_EQ(server.onscreenControlsInGroup(40).size(), 240);
}

TEST_F(ConstantServerTest, OnscreenSpecialCases)
{
    struct Case
    {
        int onscreen, control, group, index;
    };
    const Case cases[] = {
        {8, 8, 15, 0},  {8, 3, 5, 3},   {11, 4, 15, 1}, {11, 2, 7, 2},   {13, 0, 9, 0},
        {13, 1, 10, 0}, {15, 0, 9, 2},  {15, 1, 10, 2}, {16, 2, 1, 6},   {17, 0, 12, 0},
        {17, 1, 11, 0}, {19, 1, 11, 2}, {22, 1, 14, 0}, {22, 0, 14, -1}, {31, 5, 0, 5},
        {38, 0, 0, 0},  {48, 3, 5, 3},  {39, 7, 23, 7}, {43, 9, 26, 9},
    };
    for (const Case& c : cases) {
        int group = kUntouched;
        int index = kUntouched;
        EXPECT_TRUE(server.onscreenGroup(c.onscreen, c.control, group, index));
        EXPECT_EQ(group, c.group) << c.onscreen << "/" << c.control;
        EXPECT_EQ(index, c.index) << c.onscreen << "/" << c.control;
    }

    for (int g : {49, 1000, -1}) {
        int group = kUntouched;
        int index = kUntouched;
        EXPECT_FALSE(server.onscreenGroup(g, 0, group, index));
        EXPECT_EQ(group, kUntouched);
        EXPECT_EQ(index, kUntouched);
    }
}

TEST_F(ConstantServerTest, ModelDataToOnscreenLeavesGroupAloneWhereItHasNone)
{
    struct Case
    {
        int group, index, onscreen, control;
    };
    const Case cases[] = {
        {1, 6, 16, 2},          {14, 0, 22, 1},         {15, 0, 8, 8},
        {15, 1, 11, 4},         {9, 5, kUntouched, 0},  {10, 3, kUntouched, 1},
        {11, 7, kUntouched, 1}, {12, 3, kUntouched, 2}, {31, 4, kUntouched, 4},
        {-3, 2, kUntouched, 2}, {13, 12, 21, 12},       {26, 3, 42, 3},
        {22, 3, 30, 3},
    };
    for (const Case& c : cases) {
        int onscreen = kUntouched;
        int control = kUntouched;
        server.modelDataGroupID(c.group, c.index, onscreen, control);
        EXPECT_EQ(onscreen, c.onscreen) << c.group << "/" << c.index;
        EXPECT_EQ(control, c.control) << c.group << "/" << c.index;
    }
}

TEST_F(ConstantServerTest, DisplayGroupConversions)
{
    struct Case
    {
        int group, index, onscreen, control;
    };
    const Case toScreen[] = {
        {0, 0, 0, 0}, {0, 1, 0, 1},    {0, 2, 1, 2},     {0, 3, 1, 3},  {0, 5, 2, 5},
        {0, 6, 0, 6}, {1, 0, 3, 0},    {2, 7, 5, 7},     {3, 1, 6, 1},  {4, 100, 7, 4},
        {4, 0, 7, 0}, {4, 23, 10, 23}, {4, 239, 10, 23}, {4, 30, 8, 6}, {9, 4, 0, 4},
    };
    for (const Case& c : toScreen) {
        int onscreen = kUntouched;
        int control = kUntouched;
        server.modelDataDisplayGroupID(c.group, c.index, onscreen, control);
        EXPECT_EQ(onscreen, c.onscreen) << c.group << "/" << c.index;
        EXPECT_EQ(control, c.control) << c.group << "/" << c.index;
    }

    // Back to the model: the index is kept as drawn, so every display of groups 0..3 and the
    // first bank of group 4 round-trip.
    for (int g = 0; g < 5; ++g) {
        const int count = g == 4 ? 24 : server.numberOfDisplaysInGroup(g);
        for (int i = 0; i < count; ++i) {
            int onscreen = kUntouched;
            int control = kUntouched;
            server.modelDataDisplayGroupID(g, i, onscreen, control);
            int back = kUntouched;
            int index = kUntouched;
            ASSERT_TRUE(server.onscreenDisplayGroup(onscreen, control, back, index));
            EXPECT_EQ(back, g);
            EXPECT_EQ(index, i);
        }
    }

    for (int g : {4, 11, 50}) {
        int back = kUntouched;
        int index = kUntouched;
        EXPECT_FALSE(server.onscreenDisplayGroup(g, 3, back, index)) << g;
        EXPECT_EQ(back, kUntouched) << g;
    }
}

TEST_F(ConstantServerTest, DisplayWidthsAndRecords)
{
    const int lcd[] = {40, 40, 24, 24, 24, 24, 0, 0};
    for (int d = 0; d < 8; ++d)
        EXPECT_EQ(server.widthOfDisplay(d, 0), lcd[d]);
    EXPECT_EQ(server.widthOfDisplay(-1, 0), 0);
    EXPECT_EQ(server.widthOfDisplay(0, 1), 8);
    EXPECT_EQ(server.widthOfDisplay(3, 2), 7);
    EXPECT_EQ(server.widthOfDisplay(1, 3), 40);
    EXPECT_EQ(server.widthOfDisplay(0, 4), 0);

    const TVKSourceControlRecord* record = server.sourceControlGroupFromGroup(0, 4);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->sourceControlGroup, 3);
    EXPECT_EQ(record->firstSourceControl, 3);
    EXPECT_EQ(record->numberOfSourceControls, 3);
    EXPECT_EQ(record->displayWidth, 24);
    EXPECT_EQ(server.sourceControlGroupFromGroup(2, 1)->numberOfSourceControls, 0);
    // Outside the table: the first record.
    for (auto [g, d] : {std::pair(5, 0), std::pair(0, 6), std::pair(-1, 2)}) {
        EXPECT_EQ(server.sourceControlGroupFromGroup(g, d),
                  server.sourceControlGroupFromGroup(0, 0));
        EXPECT_EQ(server.emulatedDisplayInfoFromGroup(g, d),
                  server.emulatedDisplayInfoFromGroup(0, 0));
    }
    EXPECT_EQ(server.emulatedDisplayInfoFromGroup(0, 0)->numberOfEncoders, 5);
    EXPECT_EQ(server.emulatedDisplayInfoFromGroup(1, 0)->displayWidth, 8);
    EXPECT_EQ(server.emulatedDisplayInfoFromGroup(2, 0)->numberOfEncoders, 8);
    EXPECT_EQ(server.emulatedDisplayInfoFromGroup(2, 1)->numberOfEncoders, 0);
    EXPECT_EQ(server.emulatedDisplayInfoFromGroup(3, 1)->displayWidth, 40);
    EXPECT_EQ(server.emulatedDisplayInfoFromGroup(4, 0)->numberOfEncoders, 8);

    EXPECT_EQ(server.idForLCDDisplay(0, 1), 1);
    EXPECT_EQ(server.idForLCDDisplay(1, 1), 3);
    EXPECT_EQ(server.idForLCDDisplay(2, 0), 4);
    EXPECT_EQ(server.idForLCDDisplay(3, 1), 0);
    EXPECT_EQ(server.onscreenTrackballGroupIDForTrackball(2), 19);
    EXPECT_EQ(server.trackballDataGroupID(), 11);
    for (int g = 0; g < 49; ++g)
        EXPECT_EQ(server.onscreenGroupContainsChannelControls(g), (g >= 23 && g <= 28) || g == 39)
            << g;
}

TEST_F(ConstantServerTest, Vocabularies)
{
    EXPECT_EQ(server.specialModeDescriptor(0), u"Undefined");
    EXPECT_EQ(server.specialModeDescriptor(10), u"Select Layers with Knob");
    EXPECT_TRUE(server.specialModeDescriptor(11).isEmpty());
    EXPECT_TRUE(server.specialModeDescriptor(-1).isEmpty());

    EXPECT_EQ(server.midiModeDescriptor(2), u"Custom MIDI");
    EXPECT_EQ(server.midiModeDescriptor(4), u"Vertical");
    EXPECT_EQ(server.midiModeDescriptor(0), u"Native MIDI");
    EXPECT_EQ(server.midiModeDescriptor(7), u"Native MIDI");

    EXPECT_EQ(server.captureModeFormatString(3),
              u"Move mouse pointer to %.0f from top, %.0f%% of width of window \"%@\" before "
              u"clicking");
    EXPECT_EQ(server.captureModeFormatString(8), server.captureModeFormatString(0));
    EXPECT_EQ(server.captureModeShortFormatString(7), server.captureModeShortFormatString(1));
    EXPECT_EQ(server.captureModeShortFormatString(-2), u"%@");

    EXPECT_TRUE(server.mouseActionString(0).isEmpty());
    EXPECT_FALSE(server.mouseActionString(0).isNull());
    EXPECT_EQ(server.mouseActionString(9), u"360 Drag");
    EXPECT_TRUE(server.mouseActionString(10).isNull());
    EXPECT_EQ(server.mouseActionString(11), server.mouseActionString(0));

    EXPECT_EQ(server.encoderEmulationGroupName(2), u"display scroll");
    EXPECT_TRUE(server.encoderEmulationGroupName(3).isNull());
    EXPECT_EQ(server.buttonEmulationGroupName(21), u"wheel mode");
    EXPECT_TRUE(server.buttonEmulationGroupName(22).isNull());
    EXPECT_EQ(server.buttonEmulationControlName(9, 8), u"user");
    EXPECT_EQ(server.buttonEmulationControlName(14, 8), u"scrub");
    EXPECT_TRUE(server.buttonEmulationControlName(1, 0).isNull());
    EXPECT_TRUE(server.buttonEmulationControlName(0, 5).isNull());
    EXPECT_TRUE(server.buttonEmulationControlName(9, 9).isNull());
    EXPECT_TRUE(server.buttonEmulationControlName(22, 0).isNull());
}

TEST(ConstantServerDefault, MostRecentInstanceUntilItGoes)
{
    TVK_Constant_Server::setDefaultConstantServer(nullptr);
    EXPECT_EQ(TVK_Constant_Server::defaultConstantServer(), nullptr);
    {
        Corvane_Constant_Server first;
        EXPECT_EQ(TVK_Constant_Server::defaultConstantServer(), &first);
        {
            Corvane_Constant_Server second;
            EXPECT_EQ(TVK_Constant_Server::defaultConstantServer(), &second);
        }
        EXPECT_EQ(TVK_Constant_Server::defaultConstantServer(), nullptr);
        TVK_Constant_Server::setDefaultConstantServer(&first);
    }
    EXPECT_EQ(TVK_Constant_Server::defaultConstantServer(), nullptr);
}

TEST(ConstantServerBase, AbstractQueriesLogAndAnswerNothing)
{
    TVK_Constant_Server base;
    corvane::LogCapture capture;

    int a = kUntouched;
    int b = kUntouched;
    EXPECT_FALSE(base.onscreenGroup(1, 1, a, b));
    base.modelDataGroupID(1, 1, a, b);
    EXPECT_FALSE(base.onscreenDisplayGroup(1, 1, a, b));
    base.modelDataDisplayGroupID(1, 1, a, b);
    EXPECT_EQ(a, kUntouched);
    EXPECT_EQ(b, kUntouched);
    EXPECT_EQ(base.numberOfControlsInGroup(0), 0);
    EXPECT_EQ(base.numberOfDisplaysInGroup(0), 0);
    EXPECT_TRUE(base.dataModelGroupNameForGroup(0).isNull());
    EXPECT_TRUE(base.groupIconNameForGroup(0).isNull());
    EXPECT_EQ(base.onscreenTrackballGroupIDForTrackball(0), 0);
    EXPECT_EQ(base.trackballDataGroupID(), 0);
    EXPECT_FALSE(base.onscreenGroupContainsChannelControls(23));
    EXPECT_EQ(base.lcdDisplayGroupID(), 0);
    EXPECT_EQ(base.tcDisplayGroupID(), 0);
    EXPECT_EQ(base.idForLCDDisplay(1, 1), 0);
    EXPECT_EQ(base.idForTimecodeDisplay(0), 0);
    EXPECT_EQ(base.sourceControlGroupFromGroup(0, 0), nullptr);
    EXPECT_EQ(base.sourceButtonGroupFromGroup(0, 0), nullptr);
    EXPECT_EQ(base.emulatedDisplayInfoFromGroup(0, 0), nullptr);
    EXPECT_EQ(base.peripheralCount(), 0);
    EXPECT_TRUE(base.nibNameForPeripheralAtIndex(0).isNull());
    EXPECT_TRUE(base.lcdButtonOnImageNameAtIndex(0).isNull());
    EXPECT_TRUE(base.lcdButtonOffImageNameAtIndex(0).isNull());
    EXPECT_TRUE(base.lcdButtonSelectedOnImageNameAtIndex(0).isNull());
    EXPECT_TRUE(base.lcdButtonSelectedOffImageNameAtIndex(0).isNull());
    EXPECT_EQ(base.widthOfDisplay(0, 0), 0);

    const QStringList expected = {
        QStringLiteral("override onscreenGroup andControl toDataGroupIndex andControlIndex!!!"),
        QStringLiteral("override modelDataGroupID andControlIndex toOnscreenGroup andControl!!!"),
        QStringLiteral("TVK_Constant_Server subclasses MUST override onscreenDisplayGroup if "
                       "control surface has a display!"),
        QStringLiteral("TVK_Constant_Server subclasses MUST override modelDataDisplayGroupID if "
                       "control surface has a display!"),
        QStringLiteral("TVK_Constant_Server subclasses MUST override numberOfControlsInGroup!"),
        QStringLiteral("TVK_Constant_Server subclasses MUST override numberOfDisplaysInGroup!"),
        QStringLiteral("override dataModelGroupNameForGroup!!!"),
        QStringLiteral("override groupIconNameForGroup!!!"),
        QStringLiteral("override onscreenTrackballGroupIDForTrackball!!!"),
        QStringLiteral("override trackballDataGroupID!!!"),
        QStringLiteral("override onscreenGroupContainsChannelControls!!!"),
        QStringLiteral("override lcdDisplayGroupID!!!"),
        QStringLiteral("override tcDisplayGroupID!!!"),
        QStringLiteral("override idForDisplay:line:!!!"),
        QStringLiteral("override idForDisplay:line:!!!"),
        QStringLiteral("override encoderGroupFromGroup andDisplay!!!"),
        QStringLiteral("override sourceButtonGroupFromGroup andDisplay!!!"),
        QStringLiteral("override encoderGroupFromGroup andDisplay!!!"),
        QStringLiteral("override peripheralCount!!!"),
        QStringLiteral("override nibNameForPeripheralAtIndex!!!"),
        QStringLiteral("override lcdButtonOnImageNameAtIndex!!!"),
        QStringLiteral("override lcdButtonOffImageNameAtIndex!!!"),
        QStringLiteral("override lcdButtonSelectedOnImageNameAtIndex!!!"),
        QStringLiteral("override lcdButtonSelectedOffImageNameAtIndex!!!"),
    };
    EXPECT_EQ(capture.lines(), expected);
}

} // namespace
