#include "model/CorvaneLayer.h"

#include "actions/EmulationActionFactory.h"
#include "actions/TVKAction.h"
#include "core/NotificationCenter.h"
#include "core/Notifications.h"
#include "core/StoredKeys.h"
#include "model/TVKDisplayControl.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"

#include <algorithm>

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

using Tables = std::vector<TVKControlInitTable>;

void addNumbered(TVKControlInitTable& table, const QString& pattern, int first, int last, int type)
{
    for (int n = first; n <= last; ++n)
        table.push_back({pattern.arg(n), type});
}

void addNames(TVKControlInitTable& table, std::initializer_list<const char16_t*> names, int type)
{
    for (const char16_t* name : names)
        table.push_back({QString::fromUtf16(name), type});
}

Tables makeControlTables()
{
    using namespace corvane::ControlType;
    Tables t(CorvaneLayer::kNumGroups);
    addNumbered(t[0], QStringLiteral("M%1"), 1, 5, Button);
    addNames(t[1], {u"Rewind", u"Fast Forward", u"Stop", u"Play", u"Record"}, Button);
    addNames(t[1], {u"Jog"}, Jog);
    addNames(t[1], {u"Shuttle"}, Shuttle);
    addNumbered(t[2], QStringLiteral("W%1"), 1, 7, Button);
    addNumbered(t[3], QStringLiteral("Left Encoder %1"), 1, 6, Encoder);
    addNumbered(t[4], QStringLiteral("Right Encoder %1"), 1, 5, Encoder);
    addNumbered(t[5], QStringLiteral("F%1"), 1, 8, Button);
    addNumbered(t[6], QStringLiteral("Left Page %1"), 1, 8, Button);
    addNumbered(t[7], QStringLiteral("Bank %1"), 1, 4, Button);
    addNumbered(t[8], QStringLiteral("Right Page %1"), 1, 8, Button);
    addNumbered(t[9], QStringLiteral("R%1"), 1, 3, Button);
    addNumbered(t[10], QStringLiteral("B%1"), 1, 3, Button);
    addNumbered(t[11], QStringLiteral("Trackball %1"), 1, 3, FourWay);
    addNumbered(t[12], QStringLiteral("Trackball Ring %1"), 1, 3, Encoder);
    addNumbered(t[13], QStringLiteral("%1"), 0, 9, Button);
    addNames(t[13], {u"+/-", u"Enter", u"Mode/Locate", u"Set Locate", u"Clear/Cancel", u"Last"},
             Button);
    addNames(t[14], {u"Up", u"Right", u"Down", u"Left", u"Center"}, Button);
    addNames(t[15], {u"Shift", u"Assign/Utility"}, Button);
    addNumbered(t[16], QStringLiteral("Mute %1"), 1, 32, Button);
    addNumbered(t[17], QStringLiteral("Solo %1"), 1, 32, Button);
    addNumbered(t[18], QStringLiteral("Aux %1"), 1, 32, Button);
    addNumbered(t[19], QStringLiteral("Select %1"), 1, 32, Button);
    addNumbered(t[20], QStringLiteral("Fader Touch %1"), 1, 32, Button);
    addNumbered(t[21], QStringLiteral("Fader %1"), 1, 32, Fader);
    addNumbered(t[22], QStringLiteral("Encoder Reset %1"), 1, 6, Button);
    addNumbered(t[23], QStringLiteral("Select %1"), 1, 8, MultiColorButton);
    for (int bank = 1; bank <= 10; ++bank) {
        for (int button = 1; button <= 24; ++button)
            t[24].push_back(
                {QStringLiteral("CorvaneNV LCD Button %1 - Bank %2").arg(button).arg(bank),
                 MultiColorButton});
    }
    addNumbered(t[25], QStringLiteral("CorvaneNV Bank %1"), 1, 10, Button);
    addNumbered(t[26], QStringLiteral("CorvaneNV F%1"), 1, 8, Button);
    for (int f = 1; f <= 8; ++f) {
        for (int p = 1; p <= 5; ++p)
            t[27].push_back({QStringLiteral("CorvaneNV Parameter %1 (F%2)").arg(p).arg(f), Button});
    }
    const char16_t* const arrows[] = {u"Left Arrow", u"Right Arrow", u"Clear", u"Enter"};
    for (int f = 1; f <= 8; ++f) {
        for (int p = 1; p <= 5; ++p) {
            for (const char16_t* what : arrows)
                t[28].push_back({QStringLiteral("CorvaneNV %1  F%2-P%3")
                                     .arg(QString::fromUtf16(what))
                                     .arg(f)
                                     .arg(p),
                                 Button});
        }
    }
    // The surface counts 8 of these; layers hold the table's 32.
    addNumbered(t[29], QStringLiteral("TLW2 Encoder %1"), 1, 32, Encoder);
    addNumbered(t[30], QStringLiteral("TLW2 Encoder Switch %1"), 1, 32, Button);
    return t;
}

Tables makeDisplayTables()
{
    using namespace corvane::ControlType;
    Tables t(CorvaneLayer::kNumDisplayGroups);
    addNames(t[0],
             {u"Right Display Line 1", u"Right Display Line 2", u"Left Display Line 1",
              u"Left Display Line 2", u"Center Display Line 1", u"Center Display Line 2"},
             LCDDisplay);
    addNames(t[1], {u"Timecode Display"}, TimecodeDisplay);
    addNumbered(t[2], QStringLiteral("TLW Button Display %1"), 1, 8, LCDButtonDisplay);
    addNumbered(t[3], QStringLiteral("CorvaneNV Display Line %1"), 1, 2, NVLCDDisplay);
    for (int bank = 1; bank <= 10; ++bank) {
        for (int button = 1; button <= 24; ++button)
            t[4].push_back(
                {QStringLiteral("CorvaneNV Button Display %1 Bank %2").arg(button).arg(bank),
                 LCDButtonDisplay});
    }
    return t;
}

const Tables& controlTables()
{
    static const Tables tables = makeControlTables();
    return tables;
}

const Tables& displayTables()
{
    static const Tables tables = makeDisplayTables();
    return tables;
}

template <class Control, class... Args>
std::unique_ptr<TVKControl> make(Args&&... args)
{
    return std::make_unique<Control>(std::forward<Args>(args)...);
}

// The control class of a type code, for new and archived controls alike.
template <class... Args>
std::unique_ptr<TVKControl> controlForType(qint64 type, Args&&... args)
{
    using namespace corvane::ControlType;
    switch (type) {
    case Button:
        return make<TVKButtonControl>(std::forward<Args>(args)...);
    case Encoder:
        return make<TVKEncoderControl>(std::forward<Args>(args)...);
    case FourWay:
        return make<TVK4WayControl>(std::forward<Args>(args)...);
    case Shuttle:
        return make<TVKShuttleControl>(std::forward<Args>(args)...);
    case Jog:
        return make<TVKJogControl>(std::forward<Args>(args)...);
    case LCDDisplay:
    case NVLCDDisplay:
        return make<TVKLCDDisplayControl>(std::forward<Args>(args)...);
    case TimecodeDisplay:
        return make<TVKTimecodeDisplayControl>(std::forward<Args>(args)...);
    case Fader:
        return make<TVKFaderControl>(std::forward<Args>(args)...);
    case Joystick:
        return make<TVKJoystickControl>(std::forward<Args>(args)...);
    case MultiColorButton:
        return make<TVKMultiColorButtonControl>(std::forward<Args>(args)...);
    case LCDButtonDisplay:
        return make<TVKLCDButtonDisplayControl>(std::forward<Args>(args)...);
    default:
        return nullptr;
    }
}

// A number stored as decimal text; archives from elsewhere may hold a plain number instead.
QString decimalText(const PlistValue& value)
{
    if (value.isString())
        return value.toString();
    if (value.isInteger())
        return QString::number(value.toInteger());
    return QString();
}

int decimalValue(const PlistValue& value, int defaultValue)
{
    if (value.isInteger())
        return int(value.toInteger(defaultValue));
    bool ok = false;
    const int n = value.toString().toInt(&ok);
    return ok ? n : defaultValue;
}

} // namespace

CorvaneLayer::CorvaneLayer(TVKModelData* owner, int index, TVKKeyset* keyset)
    : TVKLayer(owner, index, keyset)
{
    createControls();
    m_corvaneNVGroups.reserve(kMaxNVGroups);
    m_corvaneNVGroupAssignments = PlistValue::makeDict(240);
}

CorvaneLayer::CorvaneLayer(const PlistValue& archive, TVKModelData* owner, int index,
                           TVKKeyset* keyset)
    : TVKLayer(owner, index, keyset)
{
    readGroupsFromArchive(archive);
    readNVGroupsFromArchive(archive);
}

const TVKControlInitTable* CorvaneLayer::controlInitDataForGroupID(int group) const
{
    const Tables& tables = controlTables();
    return group >= 0 && std::size_t(group) < tables.size() ? &tables[std::size_t(group)] : nullptr;
}

const TVKControlInitTable* CorvaneLayer::displayInitDataForGroupID(int group) const
{
    const Tables& tables = displayTables();
    return group >= 0 && std::size_t(group) < tables.size() ? &tables[std::size_t(group)] : nullptr;
}

std::unique_ptr<TVKControl> CorvaneLayer::controlFromType(int type, const QString& name,
                                                          TVKModelData* owner, TVKKeyset* keyset,
                                                          TVKLayer* layer, int groupID, int index)
{
    return controlForType(type, type, name, owner, keyset, layer, groupID, index);
}

std::unique_ptr<TVKControl> CorvaneLayer::createControlFromArchive(const PlistValue& dict,
                                                                   int group, int controlIndex)
{
    const qint64 type = dict.value(key::Type).toInteger(0);
    return controlForType(type, dict, owner(), keyset(), this, group, controlIndex);
}

CorvaneLayer::EmulationRecord CorvaneLayer::emulationRecord(int group, int index)
{
    constexpr bool N = true;
    constexpr bool O = true;
    using namespace corvane::ControlType;
    auto button = [](int g, int c, bool named = false, bool only = false) {
        return EmulationRecord{Button, g, c, named, only};
    };
    switch (group) {
    case 0:
        switch (index) {
        case 0:
            return button(7, 0, N, O);
        case 1:
            return button(9, 0, N);
        case 2:
            return button(9, 2, N);
        case 3:
            return button(9, 3, N);
        case 4:
            return button(9, 5, N);
        }
        break;
    case 1:
        if (index >= 0 && index <= 4)
            return button(0, index, N);
        if (index == 5)
            return {Jog, 0, 0, N, O};
        break;
    case 2:
        if (index >= 0 && index <= 4)
            return button(12, index, N);
        break;
    case 4:
        if (index >= 0 && index <= 3)
            return {Encoder, 0, index, false, false};
        if (index == 4)
            return {Encoder, 2, 0, N, O};
        break;
    case 5:
        if (index >= 0 && index <= 7)
            return button(1, index);
        break;
    case 7:
        if (index >= 0 && index <= 3)
            return button(3, index, N);
        break;
    case 8:
        if (index >= 0 && index <= 3)
            return button(17, index);
        if (index >= 4 && index <= 7)
            return button(16, index - 4);
        break;
    case 13:
        if (index == 11)
            return button(5, 3, N);
        if (index == 14)
            return button(5, 2, N);
        break;
    case 14: {
        // Up, Right, Down, Left play the console's up, right, down, left (its order differs).
        constexpr int cursor[] = {0, 3, 1, 2};
        if (index >= 0 && index <= 3)
            return button(2, cursor[index], N);
        break;
    }
    case 15:
        if (index == 0)
            return button(11, 0, N);
        break;
    case 16:
    case 17:
    case 18:
    case 19:
    case 23:
    case 30: {
        const int target = group == 16   ? 17
                           : group == 17 ? 16
                           : group == 18 ? 19
                           : group == 30 ? 19
                                         : 18;
        if (index >= 0 && index <= 6)
            return button(target, index);
        break;
    }
    case 20:
        if (index >= 0 && index <= 6)
            return button(20, index);
        if (index == 7)
            return button(20, 8);
        break;
    case 21:
        if (index >= 0 && index <= 6)
            return {Fader, 1, index, false, false};
        if (index == 7)
            return {Fader, 1, 8, false, false};
        break;
    case 29:
        if (index >= 0 && index <= 6)
            return {Encoder, 0, index, false, false};
        break;
    default:
        break;
    }
    return {};
}

CorvaneLayer::DisplayEmulationRecord CorvaneLayer::displayEmulationRecord(int group, int index)
{
    using namespace corvane::ControlType;
    switch (group) {
    case 0:
        if (index == 0 || index == 1)
            return {LCDDisplay, index};
        break;
    case 1:
        if (index == 0)
            return {TimecodeDisplay, 3};
        break;
    case 2:
        if (index >= 0 && index <= 7)
            return {LCDButtonDisplay, 0};
        break;
    case 3:
        if (index == 0 || index == 1)
            return {LCDDisplay, index};
        break;
    case 4:
        // The NV lines other than the first carry kind 0, which makes no display action.
        if (index >= 1 && index < kMaxDisplaysPerGroup)
            return {Button, 0};
        break;
    default:
        break;
    }
    return {};
}

std::unique_ptr<TVKAction> CorvaneLayer::createEmulatedActionForControl(TVKControl* control)
{
    if (!control)
        return nullptr;
    const EmulationRecord row = emulationRecord(control->groupID(), control->index());
    switch (row.kind) {
    case corvane::ControlType::Button:
    case corvane::ControlType::Encoder:
    case corvane::ControlType::Jog:
    case corvane::ControlType::Fader:
        return corvane::makeEmulationAction(row.kind, control, row.emulatedGroup,
                                            row.emulatedControl, row.namedControl,
                                            row.onlyControlInGroup);
    default:
        return nullptr;
    }
}

std::unique_ptr<TVKAction> CorvaneLayer::createEmulatedActionForDisplay(TVKControl* display)
{
    if (!display)
        return nullptr;
    const DisplayEmulationRecord row = displayEmulationRecord(display->groupID(), display->index());
    switch (row.kind) {
    case corvane::ControlType::LCDDisplay:
    case corvane::ControlType::NVLCDDisplay:
    case corvane::ControlType::TimecodeDisplay:
        return corvane::makeDisplayEmulationAction(row.kind, display, row.source);
    default:
        return nullptr;
    }
}

void CorvaneLayer::writeTo(PlistValue& dict) const
{
    TVKLayer::writeTo(dict);
    PlistValue groups = PlistValue::makeArray(qsizetype(m_corvaneNVGroups.size()));
    for (const PlistValue& group : m_corvaneNVGroups)
        groups.append(group);
    dict.insert(key::NVButtonGroups, std::move(groups));
    dict.insert(key::NVGroupAssigns, m_corvaneNVGroupAssignments);
}

void CorvaneLayer::readNVGroupsFromArchive(const PlistValue& archive)
{
    m_corvaneNVGroups.reserve(kMaxNVGroups);
    const PlistValue& groups = archive.value(key::NVButtonGroups);
    for (qsizetype i = 0; groups.isArray() && i < groups.size(); ++i) {
        const PlistValue& archived = groups.at(i);
        PlistValue members = PlistValue::makeArray();
        const PlistValue& archivedMembers = archived.value(key::GrpMem);
        for (qsizetype m = 0; archivedMembers.isArray() && m < archivedMembers.size(); ++m) {
            const QString member = decimalText(archivedMembers.at(m));
            if (!member.isEmpty())
                members.append(PlistValue(member));
        }
        const QString color = decimalText(archived.value(key::GrpClrs));
        PlistValue group = PlistValue::makeDict(3);
        group.insert(key::Name, PlistValue(archived.value(key::Name).toString()));
        group.insert(key::GrpMem, std::move(members));
        group.insert(key::GrpClrs, PlistValue(color));
        // Only the eight real colours can be marked in use.
        bool ok = false;
        const int colorValue = color.toInt(&ok);
        if (ok && colorValue >= 0 && colorValue < kMaxNVGroups)
            m_colorInUse[std::size_t(colorValue)] = true;
        m_corvaneNVGroups.push_back(std::move(group));
    }

    m_corvaneNVGroupAssignments = PlistValue::makeDict(240);
    const PlistValue& assignments = archive.value(key::NVGroupAssigns);
    for (qsizetype i = 0; assignments.isDict() && i < assignments.size(); ++i) {
        const QString group = decimalText(assignments.valueAt(i));
        if (!group.isEmpty())
            m_corvaneNVGroupAssignments.insert(assignments.keyAt(i), PlistValue(group));
    }
}

void CorvaneLayer::createCorvaneNVGroupNamed(const QString& name)
{
    if (m_corvaneNVGroups.size() >= std::size_t(kMaxNVGroups))
        return;
    const int color = nextAvailableCorvaneNVGroupColor();
    PlistValue group = PlistValue::makeDict(3);
    group.insert(key::Name, PlistValue(name));
    group.insert(key::GrpMem, PlistValue::makeArray());
    group.insert(key::GrpClrs, PlistValue(QString::number(color)));
    m_corvaneNVGroups.push_back(std::move(group));
}

QString CorvaneLayer::nameOfGroupWithID(int group) const
{
    if (const PlistValue* dict = corvaneNVGroupWithID(group))
        return dict->value(key::Name).toString();
    return QStringLiteral("Unknown!");
}

void CorvaneLayer::setButtonMembership(int button, int group, bool latch)
{
    auto* control =
        dynamic_cast<TVKMultiColorButtonControl*>(controlForGroup(kNVButtonGroupID, button));
    if (!control)
        return;
    control->setMemberOfGroup(group);
    if (latch)
        control->setLatched(true);
}

void CorvaneLayer::addButtonID(int button, int group)
{
    if (group < 0 || group >= numCorvaneNVGroups())
        return;
    const QString buttonText = QString::number(button);
    const int current = corvaneNVGroupForButtonWithID(button);
    if (current >= 0)
        deleteButtonID(button, current);
    // Deleting may have removed a group, so the requested index may now name the next group or
    // none at all; the assignment still records the index asked for.
    if (group < numCorvaneNVGroups()) {
        if (PlistValue* members = m_corvaneNVGroups[std::size_t(group)].find(key::GrpMem))
            members->append(PlistValue(buttonText));
    }
    m_corvaneNVGroupAssignments.insert(buttonText, PlistValue(QString::number(group)));
    setButtonMembership(button, group, true);

    const TVKModelData* modelData = owner();
    if (modelData && modelData->selectedGroupIndex() == kNVButtonGroupID &&
        modelData->selectedControlIndex() == button) {
        // Both keys carry 24, as the inspector has always been told.
        corvane::NotificationCenter::defaultCenter().post(
            corvane::note::InspUpdate{kNVButtonGroupID, kNVButtonGroupID}, this);
    }
}

void CorvaneLayer::deleteButtonID(int button, int group)
{
    if (group < 0 || group >= numCorvaneNVGroups())
        return;
    const QString buttonText = QString::number(button);
    PlistValue& dict = m_corvaneNVGroups[std::size_t(group)];
    const PlistValue& members = dict.value(key::GrpMem);
    PlistValue kept = PlistValue::makeArray(members.size());
    for (qsizetype i = 0; i < members.size(); ++i) {
        if (members.at(i).toString() != buttonText)
            kept.append(members.at(i));
    }
    const bool empty = kept.isEmpty();
    dict.insert(key::GrpMem, std::move(kept));
    m_corvaneNVGroupAssignments.remove(buttonText);
    setButtonMembership(button, -1, false);
    if (empty) {
        putBackCorvaneNVGroupColor(colorForCorvaneNVGroup(dict));
        m_corvaneNVGroups.erase(m_corvaneNVGroups.begin() + group);
    }
}

bool CorvaneLayer::buttonID(int button, int& group) const
{
    const PlistValue& assignment = m_corvaneNVGroupAssignments.value(QString::number(button));
    if (assignment.isNull())
        return false;
    group = decimalValue(assignment, -1);
    return true;
}

void CorvaneLayer::deleteCorvaneNVGroup(int group)
{
    if (group < 0 || group >= numCorvaneNVGroups())
        return;
    const PlistValue dict = m_corvaneNVGroups[std::size_t(group)];
    const PlistValue& members = dict.value(key::GrpMem);
    for (qsizetype i = 0; i < members.size(); ++i) {
        const QString member = members.at(i).toString();
        m_corvaneNVGroupAssignments.remove(member);
        bool ok = false;
        const int button = member.toInt(&ok);
        if (ok)
            setButtonMembership(button, -1, false);
    }
    putBackCorvaneNVGroupColor(colorForCorvaneNVGroup(dict));
    m_corvaneNVGroups.erase(m_corvaneNVGroups.begin() + group);
}

const PlistValue* CorvaneLayer::corvaneNVGroupWithID(int group) const
{
    if (group < 0 || group >= numCorvaneNVGroups())
        return nullptr;
    return &m_corvaneNVGroups[std::size_t(group)];
}

int CorvaneLayer::corvaneNVGroupForButtonWithID(int button) const
{
    int group = -1;
    return buttonID(button, group) ? group : -1;
}

int CorvaneLayer::nextAvailableCorvaneNVGroupColor()
{
    for (int color = 0; color < kMaxNVGroups; ++color) {
        if (!m_colorInUse[std::size_t(color)]) {
            m_colorInUse[std::size_t(color)] = true;
            return color;
        }
    }
    return -1;
}

void CorvaneLayer::putBackCorvaneNVGroupColor(int color)
{
    if (color >= 0 && color < kMaxNVGroups)
        m_colorInUse[std::size_t(color)] = false;
}

bool CorvaneLayer::isNVGroupColorInUse(int color) const
{
    return color >= 0 && color < kMaxNVGroups && m_colorInUse[std::size_t(color)];
}

int CorvaneLayer::colorForCorvaneNVGroup(const PlistValue& group) const
{
    return decimalValue(group.value(key::GrpClrs), 0);
}

int CorvaneLayer::colorForCorvaneNVGroupWithID(int group) const
{
    const PlistValue* dict = corvaneNVGroupWithID(group);
    return dict ? colorForCorvaneNVGroup(*dict) : 0;
}
