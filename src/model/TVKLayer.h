#pragma once

#include "core/PlistValue.h"
#include "model/TVKControl.h"

#include <QString>
#include <array>
#include <memory>
#include <vector>

class TVKAction;
class TVKKeyset;
class TVKModelData;

// One record of a layer's control initialisation table: the factory name and type of a control.
struct TVKControlInitRecord
{
    QString name;
    int type = 0;
};

// A group's records in control order; an empty name would end the group.
using TVKControlInitTable = std::vector<TVKControlInitRecord>;

// The controls of one model-data group (or one display group), in control order.
using TVKControlGroup = std::vector<std::unique_ptr<TVKControl>>;

// One complete set of the surface's controls for one of a keyset's four layers. The base knows
// how to build, copy, archive and repair groups from a per-surface table of names and types;
// the surface family's subclass supplies the table and makes the controls.
//
// Construction follows one pattern for every model class: the base constructor stores the
// links, and the subclass's constructor body does whatever needs the subclass's tables, since
// a base constructor cannot reach them.
class TVKLayer
{
public:
    // initWithOwner:index:andKeyset: (the base makes no controls).
    TVKLayer(TVKModelData* owner, int index, TVKKeyset* keyset);
    virtual ~TVKLayer();

    TVKLayer(const TVKLayer&) = delete;
    TVKLayer& operator=(const TVKLayer&) = delete;

    TVKModelData* owner() const { return m_owner; }
    void setOwner(TVKModelData* owner) { m_owner = owner; }
    TVKKeyset* keyset() const { return m_keyset; }
    int index() const { return m_index; }

    const std::vector<TVKControlGroup>& groups() const { return m_groups; }
    const std::vector<TVKControlGroup>& displayGroups() const { return m_displayGroups; }

    // The surface's counts; the base has none.
    virtual int numGroups() const { return 0; }
    virtual int numDisplayGroups() const { return 0; }
    virtual int maxControlsPerGroup() const { return 0; }
    virtual int minControlsPerGroup() const { return 0; }
    virtual int maxDisplaysPerGroup() const { return 0; }
    virtual int minDisplaysPerGroup() const { return 0; }

    // The initialisation table of a group; nullptr outside the surface's groups.
    virtual const TVKControlInitTable* controlInitDataForGroupID(int group) const;
    virtual const TVKControlInitTable* displayInitDataForGroupID(int group) const;

    void createControls();
    TVKControlGroup createGroupWithID(int group);
    TVKControlGroup createDisplayGroupWithID(int group);
    virtual std::unique_ptr<TVKControl> controlFromType(int type, const QString& name,
                                                        TVKModelData* owner, TVKKeyset* keyset,
                                                        TVKLayer* layer, int groupID, int index);

    // Clamped: a group above the last gives the last, a negative one the first; a control index
    // outside the group gives the group's first control. nullptr only for an empty group.
    TVKControl* controlForGroup(int group, int index) const;
    // Whether a control stands at exactly this group and index; the lookups above clamp.
    bool hasControl(qint64 group, qint64 index) const;
    TVKControl* displayControlForGroup(int group, int index) const;

    void setAllControlsToActionMode(int mode);
    void copyFromLayerWithoutEmulation(const TVKLayer& source);

    // "TVKGroups" and "TVKDisplays".
    virtual void writeTo(corvane::PlistValue& dict) const;

    virtual std::unique_ptr<TVKControl> createControlFromArchive(const corvane::PlistValue& dict,
                                                                 int group, int controlIndex);
    virtual std::unique_ptr<TVKAction> createEmulatedActionForControl(TVKControl* control);
    virtual std::unique_ptr<TVKAction> createEmulatedActionForDisplay(TVKControl* display);

    // Repairs after reading: missing groups and controls come back fresh from the tables.
    void checkForMissingGroups();
    void checkGroupForMissingControls(TVKControlGroup& group, int groupID);
    void checkForMissingDisplayGroups();
    void checkGroupForMissingDisplays(TVKControlGroup& group, int groupID);

protected:
    // The groups and display groups of initFromArchive:withOwner:index:andKeyset:, read and
    // repaired. Called from the subclass's archive constructor.
    void readGroupsFromArchive(const corvane::PlistValue& dict);

private:
    TVKControlGroup createGroupFromTable(const TVKControlInitTable* table, int groupID, int minimum,
                                         int maximum);
    // Appends the table's records from the group's current count on, up to the maximum.
    void fillGroupFromTable(TVKControlGroup& group, const TVKControlInitTable* table, int groupID,
                            int maximum);
    void readGroupList(const corvane::PlistValue& list, bool display);

    TVKModelData* m_owner = nullptr;
    TVKKeyset* m_keyset = nullptr;
    int m_index = 0;
    std::vector<TVKControlGroup> m_groups;
    std::vector<TVKControlGroup> m_displayGroups;
};
