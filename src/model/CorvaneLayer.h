#pragma once

#include "model/TVKLayer.h"

// The layer of the surface family: its tables and counts, the controls and emulated actions by
// type, and the NV button groups (user-made groups of NV LCD buttons with a name and a colour).
//
// An NV group is a dictionary: "TVKName" (its name), "TVKGrpMem" (member button indices as
// decimal texts) and "TVKGrpClrs" (its colour 0..7 as decimal text). A button index is a control
// index in group 24. Assignments map a button index text to a group index text; they keep the
// group index that was current when the button was added, even after an earlier group goes.
class CorvaneLayer : public TVKLayer
{
public:
    static constexpr int kNumGroups = 31;
    static constexpr int kNumDisplayGroups = 5;
    static constexpr int kMaxControlsPerGroup = 240;
    static constexpr int kMinControlsPerGroup = 2;
    static constexpr int kMaxDisplaysPerGroup = 240;
    static constexpr int kMinDisplaysPerGroup = 1;
    static constexpr int kMaxNVGroups = 8;
    static constexpr int kNVButtonGroupID = 24;

    // initWithOwner:index:andKeyset: with fresh controls.
    CorvaneLayer(TVKModelData* owner, int index, TVKKeyset* keyset);
    // initFromArchive:withOwner:index:andKeyset:
    CorvaneLayer(const corvane::PlistValue& archive, TVKModelData* owner, int index,
                 TVKKeyset* keyset);

    int numGroups() const override { return kNumGroups; }
    int numDisplayGroups() const override { return kNumDisplayGroups; }
    int maxControlsPerGroup() const override { return kMaxControlsPerGroup; }
    int minControlsPerGroup() const override { return kMinControlsPerGroup; }
    int maxDisplaysPerGroup() const override { return kMaxDisplaysPerGroup; }
    int minDisplaysPerGroup() const override { return kMinDisplaysPerGroup; }

    const TVKControlInitTable* controlInitDataForGroupID(int group) const override;
    const TVKControlInitTable* displayInitDataForGroupID(int group) const override;

    std::unique_ptr<TVKControl> controlFromType(int type, const QString& name, TVKModelData* owner,
                                                TVKKeyset* keyset, TVKLayer* layer, int groupID,
                                                int index) override;
    std::unique_ptr<TVKControl> createControlFromArchive(const corvane::PlistValue& dict, int group,
                                                         int controlIndex) override;
    std::unique_ptr<TVKAction> createEmulatedActionForControl(TVKControl* control) override;
    std::unique_ptr<TVKAction> createEmulatedActionForDisplay(TVKControl* display) override;

    void writeTo(corvane::PlistValue& dict) const override;

    // One row of the emulation table; kind −1 means the control has no emulation.
    struct EmulationRecord
    {
        int kind = -1;
        int emulatedGroup = 0;
        int emulatedControl = 0;
        bool namedControl = false;
        bool onlyControlInGroup = false;
    };
    struct DisplayEmulationRecord
    {
        int kind = -1;
        int source = 0;
    };
    static EmulationRecord emulationRecord(int group, int index);
    static DisplayEmulationRecord displayEmulationRecord(int group, int index);

    // NV button groups.
    int numCorvaneNVGroups() const { return int(m_corvaneNVGroups.size()); }
    void createCorvaneNVGroupNamed(const QString& name);
    QString nameOfGroupWithID(int group) const;
    void addButtonID(int button, int group);
    void deleteButtonID(int button, int group);
    // True when the button has an assignment; the group index is then written to the output.
    bool buttonID(int button, int& group) const;
    void deleteCorvaneNVGroup(int group);
    // nullptr for an index out of range.
    const corvane::PlistValue* corvaneNVGroupWithID(int group) const;
    int corvaneNVGroupForButtonWithID(int button) const;
    int nextAvailableCorvaneNVGroupColor();
    void putBackCorvaneNVGroupColor(int color);
    int colorForCorvaneNVGroup(const corvane::PlistValue& group) const;
    int colorForCorvaneNVGroupWithID(int group) const;
    const std::vector<corvane::PlistValue>& corvaneNVGroups() const { return m_corvaneNVGroups; }
    const corvane::PlistValue& corvaneNVGroupAssignments() const
    {
        return m_corvaneNVGroupAssignments;
    }
    bool isNVGroupColorInUse(int color) const;

private:
    void readNVGroupsFromArchive(const corvane::PlistValue& archive);
    void setButtonMembership(int button, int group, bool latch);

    std::array<bool, kMaxNVGroups> m_colorInUse{};
    std::vector<corvane::PlistValue> m_corvaneNVGroups;
    corvane::PlistValue m_corvaneNVGroupAssignments;
};
