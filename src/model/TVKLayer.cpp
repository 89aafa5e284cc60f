#include "model/TVKLayer.h"

#include "actions/TVKAction.h"
#include "core/Log.h"
#include "core/StoredKeys.h"
#include "model/ArchiveRepairLog.h"
#include "model/TVKKeyset.h"
#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"

#include <algorithm>

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

void recordRepair(const TVKLayer& layer, int group, bool display, int control, QString what)
{
    if (!corvane::ArchiveRepairLog::isActive())
        return;
    corvane::ArchiveRepairLog::record({layer.keyset() ? layer.keyset()->name() : QString(),
                                       layer.index(), group, display, control, std::move(what)});
}

} // namespace

TVKLayer::TVKLayer(TVKModelData* owner, int index, TVKKeyset* keyset)
    : m_owner(owner), m_keyset(keyset), m_index(index)
{}

TVKLayer::~TVKLayer() = default;

const TVKControlInitTable* TVKLayer::controlInitDataForGroupID(int /*group*/) const
{
    return nullptr;
}

const TVKControlInitTable* TVKLayer::displayInitDataForGroupID(int /*group*/) const
{
    return nullptr;
}

void TVKLayer::createControls()
{
    const int groupCount = std::max(numGroups(), 0);
    m_groups.clear();
    m_groups.reserve(std::size_t(groupCount));
    for (int g = 0; g < groupCount; ++g)
        m_groups.push_back(createGroupWithID(g));

    const int displayGroupCount = std::max(numDisplayGroups(), 0);
    m_displayGroups.clear();
    m_displayGroups.reserve(std::size_t(displayGroupCount));
    for (int g = 0; g < displayGroupCount; ++g)
        m_displayGroups.push_back(createDisplayGroupWithID(g));
}

TVKControlGroup TVKLayer::createGroupWithID(int group)
{
    return createGroupFromTable(controlInitDataForGroupID(group), group, minControlsPerGroup(),
                                maxControlsPerGroup());
}

TVKControlGroup TVKLayer::createDisplayGroupWithID(int group)
{
    return createGroupFromTable(displayInitDataForGroupID(group), group, minDisplaysPerGroup(),
                                maxDisplaysPerGroup());
}

TVKControlGroup TVKLayer::createGroupFromTable(const TVKControlInitTable* table, int groupID,
                                               int minimum, int maximum)
{
    TVKControlGroup group;
    // Room for the whole table at once: filling grows the group no further.
    const std::size_t count =
        table ? std::min(table->size(), std::size_t(std::max(maximum, 0))) : 0;
    group.reserve(std::max(count, std::size_t(std::max(minimum, 0))));
    fillGroupFromTable(group, table, groupID, maximum);
    return group;
}

std::unique_ptr<TVKControl> TVKLayer::controlFromType(int /*type*/, const QString& /*name*/,
                                                      TVKModelData* /*owner*/,
                                                      TVKKeyset* /*keyset*/, TVKLayer* /*layer*/,
                                                      int /*groupID*/, int /*index*/)
{
    return nullptr;
}

namespace {

TVKControl* clampedControl(const std::vector<TVKControlGroup>& groups, int count, int group,
                           int index)
{
    const int available = std::min(count, int(groups.size()));
    if (available <= 0)
        return nullptr;
    if (group >= available)
        group = available - 1;
    else if (group < 0)
        group = 0;
    const TVKControlGroup& controls = groups[std::size_t(group)];
    if (controls.empty())
        return nullptr;
    // An index outside the group gives its first control, not an error.
    if (index < 0 || std::size_t(index) >= controls.size())
        index = 0;
    return controls[std::size_t(index)].get();
}

} // namespace

TVKControl* TVKLayer::controlForGroup(int group, int index) const
{
    return clampedControl(m_groups, numGroups(), group, index);
}

bool TVKLayer::hasControl(qint64 group, qint64 index) const
{
    const qint64 groups = std::min<qint64>(numGroups(), qint64(m_groups.size()));
    return group >= 0 && group < groups && index >= 0 &&
           index < qint64(m_groups[std::size_t(group)].size());
}

TVKControl* TVKLayer::displayControlForGroup(int group, int index) const
{
    return clampedControl(m_displayGroups, numDisplayGroups(), group, index);
}

void TVKLayer::setAllControlsToActionMode(int mode)
{
    for (TVKControlGroup& group : m_groups) {
        for (auto& control : group)
            control->setActionMode(mode);
    }
    for (TVKControlGroup& group : m_displayGroups) {
        for (auto& control : group)
            control->setActionMode(mode);
    }
}

void TVKLayer::copyFromLayerWithoutEmulation(const TVKLayer& source)
{
    // The source normally has the same groups; any control it lacks is left as it is.
    auto copyGroups = [](std::vector<TVKControlGroup>& target,
                         const std::vector<TVKControlGroup>& from) {
        for (std::size_t g = 0; g < target.size() && g < from.size(); ++g) {
            for (std::size_t i = 0; i < target[g].size() && i < from[g].size(); ++i)
                target[g][i]->copyFromWithoutEmulation(*from[g][i]);
        }
    };
    copyGroups(m_groups, source.m_groups);
    copyGroups(m_displayGroups, source.m_displayGroups);
}

namespace {

PlistValue groupListArchive(const std::vector<TVKControlGroup>& groups)
{
    PlistValue list = PlistValue::makeArray(qsizetype(groups.size()));
    for (const TVKControlGroup& group : groups) {
        PlistValue controls = PlistValue::makeArray(qsizetype(group.size()));
        for (const auto& control : group) {
            PlistValue dict = PlistValue::makeDict(8);
            control->writeTo(dict);
            controls.append(std::move(dict));
        }
        list.append(std::move(controls));
    }
    return list;
}

} // namespace

void TVKLayer::writeTo(PlistValue& dict) const
{
    dict.insert(key::Groups, groupListArchive(m_groups));
    dict.insert(key::Displays, groupListArchive(m_displayGroups));
}

std::unique_ptr<TVKControl> TVKLayer::createControlFromArchive(const PlistValue& /*dict*/,
                                                               int /*group*/, int /*controlIndex*/)
{
    corvane::log(QStringLiteral("TVKLayer subclasses must override createControlFromArchive"));
    return nullptr;
}

std::unique_ptr<TVKAction> TVKLayer::createEmulatedActionForControl(TVKControl* /*control*/)
{
    corvane::log(
        QStringLiteral("TVKLayer subclasses must override createEmulatedActionForControl"));
    return nullptr;
}

std::unique_ptr<TVKAction> TVKLayer::createEmulatedActionForDisplay(TVKControl* /*display*/)
{
    corvane::log(
        QStringLiteral("TVKLayer subclasses must override createEmulatedActionForDisplay"));
    return nullptr;
}

void TVKLayer::checkForMissingGroups()
{
    for (int g = int(m_groups.size()); g < numGroups(); ++g) {
        recordRepair(*this, g, false, -1, QStringLiteral("group missing; made afresh"));
        m_groups.push_back(createGroupWithID(g));
    }
}

void TVKLayer::checkGroupForMissingControls(TVKControlGroup& group, int groupID)
{
    fillGroupFromTable(group, controlInitDataForGroupID(groupID), groupID, maxControlsPerGroup());
}

void TVKLayer::checkForMissingDisplayGroups()
{
    for (int g = int(m_displayGroups.size()); g < numDisplayGroups(); ++g) {
        recordRepair(*this, g, true, -1, QStringLiteral("display group missing; made afresh"));
        m_displayGroups.push_back(createDisplayGroupWithID(g));
    }
}

void TVKLayer::checkGroupForMissingDisplays(TVKControlGroup& group, int groupID)
{
    fillGroupFromTable(group, displayInitDataForGroupID(groupID), groupID, maxDisplaysPerGroup());
}

void TVKLayer::fillGroupFromTable(TVKControlGroup& group, const TVKControlInitTable* table,
                                  int groupID, int maximum)
{
    if (!table || group.size() >= std::size_t(std::max(maximum, 0)))
        return;
    const std::size_t end = std::min(table->size(), std::size_t(maximum));
    group.reserve(end);
    for (std::size_t i = group.size(); i < end; ++i) {
        const TVKControlInitRecord& record = (*table)[i];
        if (record.name.isEmpty())
            break;
        if (auto control =
                controlFromType(record.type, record.name, m_owner, m_keyset, this, groupID, int(i)))
            group.push_back(std::move(control));
        else
            break;
    }
}

void TVKLayer::readGroupsFromArchive(const PlistValue& dict)
{
    readGroupList(dict.value(key::Groups), false);
    checkForMissingGroups();
    readGroupList(dict.value(key::Displays), true);
    checkForMissingDisplayGroups();
}

void TVKLayer::readGroupList(const PlistValue& list, bool display)
{
    const TVK_Constant_Server& constants = corvane::surfaceConstants();
    std::vector<TVKControlGroup>& target = display ? m_displayGroups : m_groups;
    const int groupCount = display ? numDisplayGroups() : numGroups();
    target.clear();
    target.reserve(std::size_t(std::max(groupCount, 0)));

    const qsizetype archivedGroups = list.isArray() ? list.size() : 0;
    for (int g = 0; g < groupCount && g < archivedGroups; ++g) {
        const PlistValue& archivedGroup = list.at(g);
        const TVKControlInitTable* table =
            display ? displayInitDataForGroupID(g) : controlInitDataForGroupID(g);
        // Only as many controls as the surface counts are read; the table may hold more, and
        // the repair below makes those afresh.
        const int limit =
            display ? constants.numberOfDisplaysInGroup(g) : constants.numberOfControlsInGroup(g);
        const qsizetype archivedControls = archivedGroup.isArray() ? archivedGroup.size() : 0;

        TVKControlGroup group;
        group.reserve(std::max(table ? table->size() : std::size_t(0), std::size_t(limit)));
        for (int i = 0; i < limit && i < archivedControls; ++i) {
            const PlistValue& archivedControl = archivedGroup.at(i);
            // An entry that is no dictionary is no control: read, it would become a nameless
            // button wherever it stands, in an encoder's or a fader's place too.
            auto control = archivedControl.isDict()
                               ? createControlFromArchive(archivedControl, g, i)
                               : std::unique_ptr<TVKControl>();
            if (!control) {
                const qsizetype after = archivedControls - i - 1;
                const QString what =
                    archivedControl.isDict()
                        ? QStringLiteral("control of unknown type %1 dropped")
                              .arg(archivedControl.value(key::Type).toInteger(-1))
                        : QStringLiteral("control entry that is no dictionary dropped");
                recordRepair(
                    *this, g, display, i,
                    after > 0 ? what + QStringLiteral(", with the %1 archived after it").arg(after)
                              : what);
                break;
            }
            // Most controls keep their factory name: share the table's text instead of holding
            // one copy per control.
            if (table && std::size_t(i) < table->size() && control->name() == (*table)[i].name)
                control->setName((*table)[i].name);
            group.push_back(std::move(control));
        }
        if (int(group.size()) < limit) {
            const std::size_t tableSize = table ? table->size() : 0;
            if (group.size() < tableSize)
                recordRepair(*this, g, display, int(group.size()),
                             QStringLiteral("controls %1 to %2 missing; made afresh")
                                 .arg(group.size())
                                 .arg(tableSize - 1));
        }
        if (display)
            checkGroupForMissingDisplays(group, g);
        else
            checkGroupForMissingControls(group, g);
        target.push_back(std::move(group));
    }
}
