#include "model/TVKControl.h"

#include "actions/TVKAction.h"
#include "actions/TVKEmulationAction.h"
#include "actions/TVKSpecialAction.h"
#include "actions/TVKStandardActionTypes.h"
#include "core/Log.h"
#include "core/StoredKeys.h"
#include "model/ArchiveRepairLog.h"
#include "model/ControlProperties.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"

#include <array>

namespace key = corvane::key;

namespace {

using corvane::PlistValue;

// Action types by action mode 0..3 (developer, native MIDI, emulation, raw Ethernet). The high
// byte is the kind of control, the low byte the kind of action.
using ModeTable = std::array<qint32, 4>;
constexpr ModeTable kButtonTypes = {0x105, 0x104, 0x106, 0x105};
constexpr ModeTable kEncoderTypes = {0x205, 0x204, 0x206, 0x205};
constexpr ModeTable kFaderTypes = {0x205, 0x204, 0x606, 0x205};
constexpr ModeTable kFourWayTypes = {0x305, 0x304, 0x306, 0x305};
constexpr ModeTable kShuttleTypes = {0x405, 0x404, 0x406, 0x405};
constexpr ModeTable kJogTypes = {0x505, 0x504, 0x506, 0x505};

qint32 typeForMode(const ModeTable& table, int mode)
{
    return mode >= 0 && mode < int(table.size()) ? table[std::size_t(mode)] : 0;
}

constexpr qint32 kEmulationKind = 6;
const QString kDisplayScrollText = QStringLiteral("   <-->");

int intValue(const PlistValue& dict, QStringView key, int defaultValue)
{
    const PlistValue& value = dict.value(key);
    if (value.isNull())
        return defaultValue;
    return int(value.toInteger(defaultValue));
}

// The settings an edit changes one at a time are archived under their keys of the property table.
const QString& keyOf(corvane::ControlProperty property)
{
    return corvane::controlProperty(property).key;
}

using Property = corvane::ControlProperty;

bool emulatesGroup(const TVKAction* action, qint32 type, int group)
{
    const auto* emulation = dynamic_cast<const TVKEmulationAction*>(action);
    return emulation && emulation->actionType() == type && emulation->emulatedGroup() == group;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// TVKControl

TVKControl::TVKControl(int type, const QString& name, TVKModelData* owner, TVKKeyset* keyset,
                       TVKLayer* layer, int groupID, int index)
    : m_name(name), m_owner(owner), m_keyset(keyset), m_layer(layer), m_type(type),
      m_groupID(groupID), m_controlIndex(index)
{}

TVKControl::TVKControl(const PlistValue& archive, TVKModelData* owner, TVKKeyset* keyset,
                       TVKLayer* layer, int groupID, int index)
    : TVKControl(intValue(archive, key::Type, 0), archive.value(key::Name).toString(), owner,
                 keyset, layer, groupID, index)
{
    m_userName = archive.value(keyOf(Property::UserName)).toString();
    const PlistValue& archivedAction = archive.value(key::Action);
    if (archivedAction.isNull())
        return;
    if (auto action = TVKStandardActionTypes::createActionFromArchive(archivedAction, this)) {
        adoptAction(std::move(action));
    } else if (corvane::ArchiveRepairLog::isActive()) {
        corvane::ArchiveRepairLog::record(
            {keyset ? keyset->name() : QString(), layer ? layer->index() : -1, groupID,
             corvane::ControlType::isDisplayType(type()), index,
             QStringLiteral("action of type %1 cannot be restored; dropped")
                 .arg(archivedAction.value(key::ActnType).toInteger(0))});
    }
}

TVKControl::~TVKControl() = default;

void TVKControl::writeTo(PlistValue& dict) const
{
    dict.insert(key::Name, PlistValue(m_name));
    dict.insert(keyOf(Property::UserName), PlistValue(m_userName));
    dict.insert(key::Type, PlistValue(qint64(m_type)));
    if (m_action) {
        PlistValue actionDict = PlistValue::makeDict(1);
        m_action->writeTo(actionDict);
        dict.insert(key::Action, std::move(actionDict));
    }
}

QString TVKControl::displayableName() const
{
    return m_userName.isEmpty() ? QString() : m_userName;
}

void TVKControl::setActionMode(int mode)
{
    const qint32 type = actionModeToActionType(mode);
    const int subType = actionModeToActionSubType(mode);
    m_action.reset();
    adoptAction(TVKStandardActionTypes::createActionWithType(type, subType, this));
}

qint32 TVKControl::actionModeToActionType(int /*mode*/) const
{
    corvane::log(QStringLiteral("TVKControl subclasses must override actionModeToActionType"));
    return 0;
}

int TVKControl::actionModeToActionSubType(int mode) const
{
    // Developer and native MIDI both use sub-mode 1; raw Ethernet is special function 8.
    switch (mode) {
    case corvane::ActionMode::Developer:
    case corvane::ActionMode::NativeMIDI:
        return 1;
    case corvane::ActionMode::RawEthernet:
        return 8;
    default:
        return 0;
    }
}

bool TVKControl::copyFromWithoutEmulation(const TVKControl& source)
{
    if (source.m_type != m_type)
        return false;
    m_userName = source.m_userName;
    copyActionWithoutEmulation(source);
    copySettingsFrom(source);
    return true;
}

void TVKControl::copyActionWithoutEmulation(const TVKControl& source)
{
    const TVKAction* action = source.action();
    if (action && (action->actionType() & 0xFF) == kEmulationKind)
        m_action.reset();
    else
        setAction(action);
}

void TVKControl::copySettingsFrom(const TVKControl& /*source*/) {}

void TVKControl::setAction(const TVKAction* action)
{
    adoptAction(action ? action->copyWithZone() : nullptr);
}

void TVKControl::adoptAction(std::unique_ptr<TVKAction> action)
{
    if (action)
        action->setOwningControl(this);
    m_action = std::move(action);
}

std::unique_ptr<TVKAction> TVKControl::takeAction()
{
    return std::move(m_action);
}

// ---------------------------------------------------------------------------------------------
// TVKButtonControl

TVKButtonControl::TVKButtonControl(int type, const QString& name, TVKModelData* owner,
                                   TVKKeyset* keyset, TVKLayer* layer, int groupID, int index)
    : TVKControl(type, name, owner, keyset, layer, groupID, index)
{}

TVKButtonControl::TVKButtonControl(const PlistValue& archive, TVKModelData* owner,
                                   TVKKeyset* keyset, TVKLayer* layer, int groupID, int index)
    : TVKControl(archive, owner, keyset, layer, groupID, index)
{
    setLatched(intValue(archive, keyOf(Property::Latch), 0) != 0);
}

void TVKButtonControl::writeTo(PlistValue& dict) const
{
    TVKControl::writeTo(dict);
    dict.insert(keyOf(Property::Latch), PlistValue(qint64(latched() ? 1 : 0)));
}

qint32 TVKButtonControl::actionModeToActionType(int mode) const
{
    return typeForMode(kButtonTypes, mode);
}

void TVKButtonControl::copySettingsFrom(const TVKControl& source)
{
    setLatched(source.latched());
}

// ---------------------------------------------------------------------------------------------
// TVKEncoderControl

QString TVKEncoderControl::displayableName() const
{
    if (!userName().isEmpty())
        return userName();
    const TVKAction* current = action();
    if (!current)
        return QString();
    if (current->actionType() == TVKEncoderSpecialAction::kActionType) {
        const auto* special = dynamic_cast<const TVKSpecialAction*>(current);
        if (special && special->mode() == 2)
            return QStringLiteral("Tb Sens");
        return QString();
    }
    // Emulated group 2 is the console's display scroll.
    if (emulatesGroup(current, 0x206, 2))
        return kDisplayScrollText;
    return QString();
}

qint32 TVKEncoderControl::actionModeToActionType(int mode) const
{
    return typeForMode(kEncoderTypes, mode);
}

// ---------------------------------------------------------------------------------------------
// TVK4WayControl

TVK4WayControl::TVK4WayControl(int type, const QString& name, TVKModelData* owner,
                               TVKKeyset* keyset, TVKLayer* layer, int groupID, int index)
    : TVKControl(type, name, owner, keyset, layer, groupID, index)
{}

TVK4WayControl::TVK4WayControl(const PlistValue& archive, TVKModelData* owner, TVKKeyset* keyset,
                               TVKLayer* layer, int groupID, int index)
    : TVKControl(archive, owner, keyset, layer, groupID, index)
{
    m_onColor = intValue(archive, keyOf(Property::OnColor), m_onColor);
    m_brightness = intValue(archive, keyOf(Property::Brightness), m_brightness);
}

void TVK4WayControl::writeTo(PlistValue& dict) const
{
    TVKControl::writeTo(dict);
    dict.insert(keyOf(Property::OnColor), PlistValue(qint64(m_onColor)));
    dict.insert(keyOf(Property::Brightness), PlistValue(qint64(m_brightness)));
}

qint32 TVK4WayControl::actionModeToActionType(int mode) const
{
    return typeForMode(kFourWayTypes, mode);
}

void TVK4WayControl::copySettingsFrom(const TVKControl& source)
{
    if (const auto* other = dynamic_cast<const TVK4WayControl*>(&source)) {
        m_onColor = other->m_onColor;
        m_brightness = other->m_brightness;
    }
}

// ---------------------------------------------------------------------------------------------
// TVKShuttleControl

qint32 TVKShuttleControl::actionModeToActionType(int mode) const
{
    return typeForMode(kShuttleTypes, mode);
}

// ---------------------------------------------------------------------------------------------
// TVKJogControl

TVKJogControl::TVKJogControl(int type, const QString& name, TVKModelData* owner, TVKKeyset* keyset,
                             TVKLayer* layer, int groupID, int index)
    : TVKControl(type, name, owner, keyset, layer, groupID, index)
{}

TVKJogControl::TVKJogControl(const PlistValue& archive, TVKModelData* owner, TVKKeyset* keyset,
                             TVKLayer* layer, int groupID, int index)
    : TVKControl(archive, owner, keyset, layer, groupID, index)
{
    m_sensitivity = intValue(archive, keyOf(Property::JogSensitivity), m_sensitivity);
}

void TVKJogControl::writeTo(PlistValue& dict) const
{
    TVKControl::writeTo(dict);
    dict.insert(keyOf(Property::JogSensitivity), PlistValue(qint64(m_sensitivity)));
}

qint32 TVKJogControl::actionModeToActionType(int mode) const
{
    return typeForMode(kJogTypes, mode);
}

// ---------------------------------------------------------------------------------------------
// TVKFaderControl

QString TVKFaderControl::displayableName() const
{
    if (!userName().isEmpty())
        return userName();
    // Emulated group 1 is the console's fader.
    if (emulatesGroup(action(), 0x606, 1))
        return kDisplayScrollText;
    return QString();
}

qint32 TVKFaderControl::actionModeToActionType(int mode) const
{
    return typeForMode(kFaderTypes, mode);
}

// ---------------------------------------------------------------------------------------------
// TVKJoystickControl

TVKJoystickControl::TVKJoystickControl(int type, const QString& name, TVKModelData* owner,
                                       TVKKeyset* keyset, TVKLayer* layer, int groupID, int index)
    : TVKControl(type, name, owner, keyset, layer, groupID, index)
{}

TVKJoystickControl::TVKJoystickControl(const PlistValue& archive, TVKModelData* owner,
                                       TVKKeyset* keyset, TVKLayer* layer, int groupID, int index)
    : TVKControl(archive, owner, keyset, layer, groupID, index)
{
    m_joystickSensitivity =
        intValue(archive, keyOf(Property::JoystickSensitivity), m_joystickSensitivity);
}

void TVKJoystickControl::writeTo(PlistValue& dict) const
{
    TVKControl::writeTo(dict);
    dict.insert(keyOf(Property::JoystickSensitivity), PlistValue(qint64(m_joystickSensitivity)));
}

qint32 TVKJoystickControl::actionModeToActionType(int mode) const
{
    return typeForMode(kFourWayTypes, mode);
}

// ---------------------------------------------------------------------------------------------
// TVKMultiColorButtonControl

TVKMultiColorButtonControl::TVKMultiColorButtonControl(int type, const QString& name,
                                                       TVKModelData* owner, TVKKeyset* keyset,
                                                       TVKLayer* layer, int groupID, int index)
    : TVKButtonControl(type, name, owner, keyset, layer, groupID, index)
{}

TVKMultiColorButtonControl::TVKMultiColorButtonControl(const PlistValue& archive,
                                                       TVKModelData* owner, TVKKeyset* keyset,
                                                       TVKLayer* layer, int groupID, int index)
    : TVKButtonControl(archive, owner, keyset, layer, groupID, index)
{
    m_onColor = intValue(archive, keyOf(Property::OnColor), m_onColor);
    m_offColor = intValue(archive, keyOf(Property::OffColor), m_offColor);
    m_memberOfGroup = intValue(archive, key::NVButtonGroup, m_memberOfGroup);
}

void TVKMultiColorButtonControl::writeTo(PlistValue& dict) const
{
    TVKButtonControl::writeTo(dict);
    dict.insert(keyOf(Property::OnColor), PlistValue(qint64(m_onColor)));
    dict.insert(keyOf(Property::OffColor), PlistValue(qint64(m_offColor)));
    dict.insert(key::NVButtonGroup, PlistValue(qint64(m_memberOfGroup)));
}

void TVKMultiColorButtonControl::copyMultiColorButton(const TVKMultiColorButtonControl& button)
{
    setUserName(button.userName());
    setAction(button.action());
    setLatched(button.latched());
    m_onColor = button.m_onColor;
    m_offColor = button.m_offColor;
}

void TVKMultiColorButtonControl::copySettingsFrom(const TVKControl& source)
{
    TVKButtonControl::copySettingsFrom(source);
    if (const auto* other = dynamic_cast<const TVKMultiColorButtonControl*>(&source)) {
        m_onColor = other->m_onColor;
        m_offColor = other->m_offColor;
    }
}

// ---------------------------------------------------------------------------------------------
// TVKFrameletLCDButtonControl

TVKFrameletLCDButtonControl::TVKFrameletLCDButtonControl(int type, const QString& name,
                                                         TVKModelData* owner, TVKKeyset* keyset,
                                                         TVKLayer* layer, int groupID, int index)
    : TVKMultiColorButtonControl(type, name, owner, keyset, layer, groupID, index)
{}

TVKFrameletLCDButtonControl::TVKFrameletLCDButtonControl(const PlistValue& archive,
                                                         TVKModelData* owner, TVKKeyset* keyset,
                                                         TVKLayer* layer, int groupID, int index)
    : TVKMultiColorButtonControl(archive, owner, keyset, layer, groupID, index)
{
    m_buttonGroup = intValue(archive, key::FLButtonGroup, m_buttonGroup);
}

void TVKFrameletLCDButtonControl::writeTo(PlistValue& dict) const
{
    TVKMultiColorButtonControl::writeTo(dict);
    dict.insert(key::FLButtonGroup, PlistValue(qint64(m_buttonGroup)));
}

void TVKFrameletLCDButtonControl::copySettingsFrom(const TVKControl& source)
{
    TVKMultiColorButtonControl::copySettingsFrom(source);
    if (const auto* other = dynamic_cast<const TVKFrameletLCDButtonControl*>(&source))
        m_buttonGroup = other->m_buttonGroup;
}
