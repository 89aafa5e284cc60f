#include "ModelFixture.h"
#include "NoticeRecorder.h"
#include "core/Log.h"
#include "core/NotificationCenter.h"
#include "core/Notifications.h"
#include "core/StoredKeys.h"
#include "model/CorvaneKeyset.h"
#include "model/CorvaneLayer.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKDisplayControl.h"
#include "model/TVKLayer.h"

#include <typeinfo>

namespace key = corvane::key;

using corvane::PlistValue;
namespace ControlType = corvane::ControlType;

namespace {

using LayerTest = ModelTest;

// Per group: the number of controls, the type of each control by range, and a few names.
struct ExpectedGroup
{
    int group;
    int count;
    int type; // the type of every control not listed in exceptions
    std::vector<std::pair<int, int>> exceptions;
    std::vector<std::pair<int, const char*>> names;
};

const ExpectedGroup kGroups[] = {
    {0, 5, ControlType::Button, {}, {{0, "M1"}, {4, "M5"}}},
    {1,
     7,
     ControlType::Button,
     {{5, ControlType::Jog}, {6, ControlType::Shuttle}},
     {{0, "Rewind"}, {1, "Fast Forward"}, {4, "Record"}, {5, "Jog"}, {6, "Shuttle"}}},
    {2, 7, ControlType::Button, {}, {{6, "W7"}}},
    {3, 6, ControlType::Encoder, {}, {{0, "Left Encoder 1"}, {5, "Left Encoder 6"}}},
    {4, 5, ControlType::Encoder, {}, {{4, "Right Encoder 5"}}},
    {5, 8, ControlType::Button, {}, {{7, "F8"}}},
    {6, 8, ControlType::Button, {}, {{0, "Left Page 1"}}},
    {7, 4, ControlType::Button, {}, {{3, "Bank 4"}}},
    {8, 8, ControlType::Button, {}, {{7, "Right Page 8"}}},
    {9, 3, ControlType::Button, {}, {{2, "R3"}}},
    {10, 3, ControlType::Button, {}, {{0, "B1"}}},
    {11, 3, ControlType::FourWay, {}, {{2, "Trackball 3"}}},
    {12, 3, ControlType::Encoder, {}, {{0, "Trackball Ring 1"}}},
    {13,
     16,
     ControlType::Button,
     {},
     {{0, "0"}, {9, "9"}, {10, "+/-"}, {12, "Mode/Locate"}, {14, "Clear/Cancel"}, {15, "Last"}}},
    {14, 5, ControlType::Button, {}, {{1, "Right"}, {4, "Center"}}},
    {15, 2, ControlType::Button, {}, {{1, "Assign/Utility"}}},
    {16, 32, ControlType::Button, {}, {{31, "Mute 32"}}},
    {17, 32, ControlType::Button, {}, {{0, "Solo 1"}}},
    {18, 32, ControlType::Button, {}, {{9, "Aux 10"}}},
    {19, 32, ControlType::Button, {}, {{0, "Select 1"}}},
    {20, 32, ControlType::Button, {}, {{31, "Fader Touch 32"}}},
    {21, 32, ControlType::Fader, {}, {{0, "Fader 1"}}},
    {22, 6, ControlType::Button, {}, {{5, "Encoder Reset 6"}}},
    {23, 8, ControlType::MultiColorButton, {}, {{7, "Select 8"}}},
    {24,
     240,
     ControlType::MultiColorButton,
     {},
     {{0, "CorvaneNV LCD Button 1 - Bank 1"},
      {25, "CorvaneNV LCD Button 2 - Bank 2"},
      {239, "CorvaneNV LCD Button 24 - Bank 10"}}},
    {25, 10, ControlType::Button, {}, {{9, "CorvaneNV Bank 10"}}},
    {26, 8, ControlType::Button, {}, {{0, "CorvaneNV F1"}}},
    {27,
     40,
     ControlType::Button,
     {},
     {{0, "CorvaneNV Parameter 1 (F1)"},
      {5, "CorvaneNV Parameter 1 (F2)"},
      {39, "CorvaneNV Parameter 5 (F8)"}}},
    {28,
     160,
     ControlType::Button,
     {},
     {{0, "CorvaneNV Left Arrow  F1-P1"},
      {1, "CorvaneNV Right Arrow  F1-P1"},
      {3, "CorvaneNV Enter  F1-P1"},
      {4, "CorvaneNV Left Arrow  F1-P2"},
      {159, "CorvaneNV Enter  F8-P5"}}},
    // The surface counts 8 for these two; the layer holds 32.
    {29, 32, ControlType::Encoder, {}, {{31, "TLW2 Encoder 32"}}},
    {30, 32, ControlType::Button, {}, {{0, "TLW2 Encoder Switch 1"}}},
};

const ExpectedGroup kDisplayGroups[] = {
    {0,
     6,
     ControlType::LCDDisplay,
     {},
     {{0, "Right Display Line 1"}, {3, "Left Display Line 2"}, {5, "Center Display Line 2"}}},
    {1, 1, ControlType::TimecodeDisplay, {}, {{0, "Timecode Display"}}},
    {2, 8, ControlType::LCDButtonDisplay, {}, {{7, "TLW Button Display 8"}}},
    {3, 2, ControlType::NVLCDDisplay, {}, {{1, "CorvaneNV Display Line 2"}}},
    {4,
     240,
     ControlType::LCDButtonDisplay,
     {},
     {{0, "CorvaneNV Button Display 1 Bank 1"}, {239, "CorvaneNV Button Display 24 Bank 10"}}},
};

const std::type_info& classOfType(int type)
{
    switch (type) {
    case ControlType::Button:
        return typeid(TVKButtonControl);
    case ControlType::Encoder:
        return typeid(TVKEncoderControl);
    case ControlType::FourWay:
        return typeid(TVK4WayControl);
    case ControlType::Shuttle:
        return typeid(TVKShuttleControl);
    case ControlType::Jog:
        return typeid(TVKJogControl);
    case ControlType::LCDDisplay:
    case ControlType::NVLCDDisplay:
        return typeid(TVKLCDDisplayControl);
    case ControlType::TimecodeDisplay:
        return typeid(TVKTimecodeDisplayControl);
    case ControlType::Fader:
        return typeid(TVKFaderControl);
    case ControlType::MultiColorButton:
        return typeid(TVKMultiColorButtonControl);
    case ControlType::LCDButtonDisplay:
        return typeid(TVKLCDButtonDisplayControl);
    }
    return typeid(void);
}

void checkGroups(const std::vector<TVKControlGroup>& groups, const ExpectedGroup* expectedGroups,
                 std::size_t expectedCount, const TVKLayer& layer)
{
    ASSERT_EQ(groups.size(), expectedCount);
    for (std::size_t s = 0; s < expectedCount; ++s) {
        const ExpectedGroup& expected = expectedGroups[s];
        const TVKControlGroup& group = groups[std::size_t(expected.group)];
        ASSERT_EQ(int(group.size()), expected.count) << "group " << expected.group;
        for (int i = 0; i < expected.count; ++i) {
            int type = expected.type;
            for (const auto& [index, exceptionType] : expected.exceptions) {
                if (index == i)
                    type = exceptionType;
            }
            const TVKControl& control = *group[std::size_t(i)];
            EXPECT_EQ(control.type(), type) << "group " << expected.group << " control " << i;
            EXPECT_EQ(typeid(control), classOfType(type)) << "group " << expected.group;
            EXPECT_EQ(control.groupID(), expected.group);
            EXPECT_EQ(control.index(), i);
            EXPECT_EQ(control.layer(), &layer);
            EXPECT_EQ(control.action(), nullptr);
            EXPECT_TRUE(control.userName().isEmpty());
        }
        for (const auto& [index, name] : expected.names)
            EXPECT_EQ(group[std::size_t(index)]->name(), QString::fromUtf8(name));
    }
}

TEST_F(LayerTest, NewLayerHoldsEveryGroupOfTheTablesWithNamesAndTypes)
{
    CorvaneKeyset keyset(nullptr);
    const TVKLayer& layer = *keyset.layerAtIndex(1);
    checkGroups(layer.groups(), kGroups, std::size(kGroups), layer);
    checkGroups(layer.displayGroups(), kDisplayGroups, std::size(kDisplayGroups), layer);
}

TEST_F(LayerTest, LookupsClampGroupsAndFallBackToTheFirstControl)
{
    CorvaneKeyset keyset(nullptr);
    const TVKLayer& layer = *keyset.layerAtIndex(0);
    EXPECT_EQ(layer.controlForGroup(40, 0)->groupID(), 30);
    EXPECT_EQ(layer.controlForGroup(-3, 2)->name(), QStringLiteral("M3"));
    EXPECT_EQ(layer.controlForGroup(0, 99)->name(), QStringLiteral("M1"));
    EXPECT_EQ(layer.controlForGroup(0, -1)->name(), QStringLiteral("M1"));
    EXPECT_EQ(layer.displayControlForGroup(9, 1)->name(),
              QStringLiteral("CorvaneNV Button Display 2 Bank 1"));
    EXPECT_EQ(layer.displayControlForGroup(1, 5)->name(), QStringLiteral("Timecode Display"));
}

TEST_F(LayerTest, EmulationTableRows)
{
    struct Row
    {
        int group, index, kind, emulatedGroup, emulatedControl;
        bool named, only;
    };
    const Row rows[] = {
        {0, 0, 0, 7, 0, true, true},      {0, 4, 0, 9, 5, true, false},
        {1, 3, 0, 0, 3, true, false},     {1, 5, 4, 0, 0, true, true},
        {1, 6, -1, 0, 0, false, false},   {2, 4, 0, 12, 4, true, false},
        {2, 5, -1, 0, 0, false, false},   {3, 0, -1, 0, 0, false, false},
        {4, 2, 1, 0, 2, false, false},    {4, 4, 1, 2, 0, true, true},
        {5, 7, 0, 1, 7, false, false},    {7, 3, 0, 3, 3, true, false},
        {8, 3, 0, 17, 3, false, false},   {8, 4, 0, 16, 0, false, false},
        {13, 11, 0, 5, 3, true, false},   {13, 14, 0, 5, 2, true, false},
        {13, 12, -1, 0, 0, false, false}, {14, 1, 0, 2, 3, true, false},
        {14, 2, 0, 2, 1, true, false},    {14, 4, -1, 0, 0, false, false},
        {15, 0, 0, 11, 0, true, false},   {16, 6, 0, 17, 6, false, false},
        {16, 7, -1, 0, 0, false, false},  {17, 0, 0, 16, 0, false, false},
        {18, 3, 0, 19, 3, false, false},  {19, 6, 0, 18, 6, false, false},
        {20, 7, 0, 20, 8, false, false},  {21, 6, 7, 1, 6, false, false},
        {21, 7, 7, 1, 8, false, false},   {21, 8, -1, 0, 0, false, false},
        {23, 2, 0, 18, 2, false, false},  {24, 0, -1, 0, 0, false, false},
        {29, 6, 1, 0, 6, false, false},   {29, 7, -1, 0, 0, false, false},
        {30, 0, 0, 19, 0, false, false},  {31, 0, -1, 0, 0, false, false},
    };
    for (const Row& r : rows) {
        const auto record = CorvaneLayer::emulationRecord(r.group, r.index);
        EXPECT_EQ(record.kind, r.kind) << r.group << ":" << r.index;
        if (r.kind < 0)
            continue;
        EXPECT_EQ(record.emulatedGroup, r.emulatedGroup) << r.group << ":" << r.index;
        EXPECT_EQ(record.emulatedControl, r.emulatedControl) << r.group << ":" << r.index;
        EXPECT_EQ(record.namedControl, r.named) << r.group << ":" << r.index;
        EXPECT_EQ(record.onlyControlInGroup, r.only) << r.group << ":" << r.index;
    }

    struct DisplayRow
    {
        int group, index, kind, source;
    };
    for (const DisplayRow& r :
         {DisplayRow{0, 1, 5, 1}, DisplayRow{0, 2, -1, 0}, DisplayRow{1, 0, 6, 3},
          DisplayRow{2, 7, 10, 0}, DisplayRow{3, 1, 5, 1}, DisplayRow{4, 0, -1, 0},
          DisplayRow{4, 100, 0, 0}, DisplayRow{5, 0, -1, 0}}) {
        const auto record = CorvaneLayer::displayEmulationRecord(r.group, r.index);
        EXPECT_EQ(record.kind, r.kind) << r.group << ":" << r.index;
        if (r.kind >= 0) {
            EXPECT_EQ(record.source, r.source) << r.group << ":" << r.index;
        }
    }
}

class NVGroupTest : public ModelTest
{
protected:
    void SetUp() override
    {
        ModelTest::SetUp();
        m_modelData = std::make_unique<CorvaneModelData>();
        m_layer = dynamic_cast<CorvaneLayer*>(m_modelData->keysetAtIndex(0)->layerAtIndex(0));
        ASSERT_NE(m_layer, nullptr);
    }
    void TearDown() override
    {
        m_modelData.reset();
        ModelTest::TearDown();
    }

    const TVKMultiColorButtonControl& button(int index) const
    {
        return dynamic_cast<const TVKMultiColorButtonControl&>(
            *m_layer->controlForGroup(CorvaneLayer::kNVButtonGroupID, index));
    }
    QStringList members(int group) const
    {
        QStringList list;
        const PlistValue* dict = m_layer->corvaneNVGroupWithID(group);
        const PlistValue& m = dict->value(key::GrpMem);
        for (qsizetype i = 0; i < m.size(); ++i)
            list << m.at(i).toString();
        return list;
    }

    std::unique_ptr<CorvaneModelData> m_modelData;
    CorvaneLayer* m_layer = nullptr;
};

TEST_F(NVGroupTest, GroupsTakeTheLowestFreeColourAndStopAtEight)
{
    for (int i = 0; i < 8; ++i)
        m_layer->createCorvaneNVGroupNamed(QStringLiteral("G%1").arg(i));
    EXPECT_EQ(m_layer->numCorvaneNVGroups(), 8);
    EXPECT_EQ(m_layer->colorForCorvaneNVGroupWithID(7), 7);
    m_layer->createCorvaneNVGroupNamed(QStringLiteral("ninth"));
    EXPECT_EQ(m_layer->numCorvaneNVGroups(), 8);
    EXPECT_EQ(m_layer->nextAvailableCorvaneNVGroupColor(), -1);

    // Deleting group 2 frees colour 2, which the next group takes.
    m_layer->deleteCorvaneNVGroup(2);
    EXPECT_EQ(m_layer->nameOfGroupWithID(2), QStringLiteral("G3"));
    m_layer->createCorvaneNVGroupNamed(QStringLiteral("again"));
    EXPECT_EQ(m_layer->colorForCorvaneNVGroupWithID(7), 2);
    EXPECT_EQ(m_layer->nameOfGroupWithID(8), QStringLiteral("Unknown!"));
    EXPECT_EQ(m_layer->corvaneNVGroupWithID(-1), nullptr);

    m_layer->putBackCorvaneNVGroupColor(99); // ignored
    m_layer->putBackCorvaneNVGroupColor(5);
    EXPECT_EQ(m_layer->nextAvailableCorvaneNVGroupColor(), 5);
}

TEST_F(NVGroupTest, AddingAndDeletingButtonsKeepsMembersAssignmentsAndControlsInStep)
{
    m_layer->createCorvaneNVGroupNamed(QStringLiteral("A"));
    m_layer->createCorvaneNVGroupNamed(QStringLiteral("B"));
    m_layer->addButtonID(3, 0);
    m_layer->addButtonID(4, 0);
    m_layer->addButtonID(5, 1);
    m_layer->addButtonID(9, 7); // no such group: nothing
    EXPECT_EQ(members(0), (QStringList{QStringLiteral("3"), QStringLiteral("4")}));
    EXPECT_EQ(button(3).memberOfGroup(), 0);
    EXPECT_TRUE(button(3).latched());
    EXPECT_EQ(m_layer->corvaneNVGroupForButtonWithID(5), 1);
    EXPECT_EQ(m_layer->corvaneNVGroupForButtonWithID(9), -1);
    int group = 42;
    EXPECT_FALSE(m_layer->buttonID(9, group));
    EXPECT_EQ(group, 42); // left untouched

    // Moving a button takes it out of its old group first.
    m_layer->addButtonID(4, 1);
    EXPECT_EQ(members(0), QStringList{QStringLiteral("3")});
    EXPECT_EQ(members(1), (QStringList{QStringLiteral("5"), QStringLiteral("4")}));

    m_layer->deleteButtonID(3, 0); // the last member: group A goes, its colour is free again
    EXPECT_EQ(m_layer->numCorvaneNVGroups(), 1);
    EXPECT_EQ(button(3).memberOfGroup(), -1);
    EXPECT_FALSE(m_layer->isNVGroupColorInUse(0));
    EXPECT_EQ(m_layer->corvaneNVGroupForButtonWithID(3), -1);
    // Assignments are not renumbered when an earlier group goes.
    EXPECT_EQ(m_layer->corvaneNVGroupForButtonWithID(4), 1);

    m_layer->deleteCorvaneNVGroup(0);
    EXPECT_EQ(m_layer->numCorvaneNVGroups(), 0);
    EXPECT_EQ(button(4).memberOfGroup(), -1);
    EXPECT_EQ(button(5).memberOfGroup(), -1);
    EXPECT_TRUE(m_layer->corvaneNVGroupAssignments().isEmpty());
}

TEST_F(NVGroupTest, MovingTheOnlyMemberOfAnEarlierGroupLandsInTheGroupBehind)
{
    for (const char* name : {"A", "B", "C"})
        m_layer->createCorvaneNVGroupNamed(QString::fromUtf8(name));
    m_layer->addButtonID(10, 0);
    m_layer->addButtonID(10, 1); // A goes; C is now at index 1
    EXPECT_EQ(m_layer->numCorvaneNVGroups(), 2);
    EXPECT_EQ(m_layer->nameOfGroupWithID(1), QStringLiteral("C"));
    EXPECT_EQ(members(1), QStringList{QStringLiteral("10")});
    EXPECT_EQ(m_layer->corvaneNVGroupForButtonWithID(10), 1);

    // With only A and B the same move appends to no member list, but records the assignment.
    NVGroupTest::TearDown();
    NVGroupTest::SetUp();
    m_layer->createCorvaneNVGroupNamed(QStringLiteral("A"));
    m_layer->createCorvaneNVGroupNamed(QStringLiteral("B"));
    m_layer->addButtonID(10, 0);
    m_layer->addButtonID(10, 1);
    EXPECT_EQ(m_layer->numCorvaneNVGroups(), 1);
    EXPECT_TRUE(members(0).isEmpty());
    EXPECT_EQ(m_layer->corvaneNVGroupForButtonWithID(10), 1);
    EXPECT_EQ(button(10).memberOfGroup(), 1);
}

TEST_F(NVGroupTest, AddingTheSelectedButtonTellsTheInspector)
{
    NoticeRecorder<corvane::note::InspUpdate> inspector;
    const auto& seen = inspector.posted;
    m_layer->createCorvaneNVGroupNamed(QStringLiteral("A"));
    m_modelData->setSelectedGroupIndex(24);
    m_modelData->setSelectedControlIndex(17);
    m_layer->addButtonID(16, 0);
    EXPECT_TRUE(seen.empty());
    m_layer->addButtonID(17, 0);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].controlIndex, 24);
    EXPECT_EQ(seen[0].groupID, 24);
}

TEST_F(NVGroupTest, GroupsAndAssignmentsSurviveTheArchive)
{
    m_layer->createCorvaneNVGroupNamed(QStringLiteral("A"));
    m_layer->createCorvaneNVGroupNamed(QStringLiteral("B"));
    m_layer->addButtonID(1, 1);
    m_layer->deleteCorvaneNVGroup(0); // B moves to index 0 with colour 1; colour 0 is free

    PlistValue archive = PlistValue::makeDict();
    m_layer->writeTo(archive);
    const CorvaneLayer reread(archive, m_modelData.get(), 0, m_modelData->keysetAtIndex(0));
    EXPECT_EQ(reread.corvaneNVGroups(), m_layer->corvaneNVGroups());
    EXPECT_EQ(reread.corvaneNVGroupAssignments(), m_layer->corvaneNVGroupAssignments());
    EXPECT_TRUE(reread.isNVGroupColorInUse(1));
    EXPECT_FALSE(reread.isNVGroupColorInUse(0));
    EXPECT_EQ(dynamic_cast<const TVKMultiColorButtonControl&>(*reread.controlForGroup(24, 1))
                  .memberOfGroup(),
              1);
}

TEST_F(LayerTest, TheBaseLayerHasNoTablesAndSaysSo)
{
    corvane::LogCapture capture;
    TVKLayer base(nullptr, 0, nullptr);
    base.createControls();
    EXPECT_TRUE(base.groups().empty());
    EXPECT_EQ(base.controlForGroup(0, 0), nullptr);
    EXPECT_EQ(base.createControlFromArchive(PlistValue::makeDict(), 0, 0), nullptr);
    EXPECT_EQ(base.createEmulatedActionForControl(nullptr), nullptr);
    EXPECT_EQ(base.createEmulatedActionForDisplay(nullptr), nullptr);
    EXPECT_EQ(
        capture.lines(),
        (QStringList{
            QStringLiteral("TVKLayer subclasses must override createControlFromArchive"),
            QStringLiteral("TVKLayer subclasses must override createEmulatedActionForControl"),
            QStringLiteral("TVKLayer subclasses must override createEmulatedActionForDisplay"),
        }));
}

} // namespace
