#include "actions/TVKEmulationAction.h"

#include "actions/ActionText.h"
#include "core/StoredKeys.h"
#include "surface/TVK_Constant_Server.h"

namespace key = corvane::key;

using corvane::PlistValue;

TVKEmulationAction::TVKEmulationAction(TVKControl* control, int emulatedGroupIndex,
                                       int emulatedControlIndex, bool namedControl,
                                       bool onlyControlInGroup)
    : TVKAction(control), m_emulatedGroup(emulatedGroupIndex),
      m_emulatedControl(emulatedControlIndex), m_displayControlAsName(namedControl),
      m_onlyControlInGroup(onlyControlInGroup)
{}

TVKEmulationAction::TVKEmulationAction(const PlistValue& archive, TVKControl* control)
    : TVKAction(archive, control)
{
    m_emulatedGroup = qint32(archive.value(key::EmuGrpIdx).toInteger());
    m_emulatedControl = qint32(archive.value(key::EmuCtlIdx).toInteger());
    m_displayControlAsName = archive.value(key::EmuNamedCtl).toBool();
    m_onlyControlInGroup = archive.value(key::EmuOnlyCtl).toBool();
}

corvane::FourCharCode TVKEmulationAction::editorTabID() const
{
    return corvane::fourCC("EMUL");
}

void TVKEmulationAction::writeTo(PlistValue& dict) const
{
    TVKAction::writeTo(dict);
    dict.insert(key::EmuGrpIdx, PlistValue(m_emulatedGroup));
    dict.insert(key::EmuCtlIdx, PlistValue(m_emulatedControl));
    dict.insert(key::EmuNamedCtl, PlistValue(m_displayControlAsName));
    dict.insert(key::EmuOnlyCtl, PlistValue(m_onlyControlInGroup));
}

QString TVKEmulationAction::numberedDescriptor(const QString& groupName) const
{
    if (m_onlyControlInGroup)
        return QStringLiteral("Emulation- ") + corvane::objectText(groupName);
    return QStringLiteral("Emulation- ") + corvane::objectText(groupName) + QStringLiteral(": ") +
           QString::number(qint64(m_emulatedControl) + 1);
}

std::unique_ptr<TVKAction> TVKButtonEmulationAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKButtonEmulationAction(*this));
}

QString TVKButtonEmulationAction::actionDescriptor() const
{
    const TVK_Constant_Server& constants = corvane::surfaceConstants();
    const QString groupName = constants.buttonEmulationGroupName(emulatedGroup());
    if (!displayControlAsName())
        return numberedDescriptor(groupName);
    const QString controlName =
        constants.buttonEmulationControlName(emulatedGroup(), emulatedControl());
    // A named group whose control lies past its names shows the group alone, as does a group
    // the table does not know.
    if (controlName.isNull())
        return QStringLiteral("Emulation- ") + corvane::objectText(groupName);
    return QStringLiteral("Emulation- ") + corvane::objectText(groupName) + QStringLiteral(": ") +
           controlName;
}

std::unique_ptr<TVKAction> TVKEncoderEmulationAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKEncoderEmulationAction(*this));
}

QString TVKEncoderEmulationAction::actionDescriptor() const
{
    return numberedDescriptor(
        corvane::surfaceConstants().encoderEmulationGroupName(emulatedGroup()));
}

std::unique_ptr<TVKAction> TVKFaderEmulationAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKFaderEmulationAction(*this));
}

QString TVKFaderEmulationAction::actionDescriptor() const
{
    return numberedDescriptor(
        corvane::surfaceConstants().encoderEmulationGroupName(emulatedGroup()));
}

TVKJogEmulationAction::TVKJogEmulationAction(TVKControl* control, unsigned jogSpeed)
    : TVKEmulationAction(control, 0, 0, false, true), m_jogSpeed(jogSpeed)
{}

TVKJogEmulationAction::TVKJogEmulationAction(const PlistValue& archive, TVKControl* control)
    : TVKEmulationAction(archive, control)
{
    m_jogSpeed = unsigned(archive.value(key::JogSpd).toUnsigned(1) & 0xFFFFFFFFu);
}

std::unique_ptr<TVKAction> TVKJogEmulationAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKJogEmulationAction(*this));
}

QString TVKJogEmulationAction::actionDescriptor() const
{
    return QStringLiteral("Emulation- jog");
}

void TVKJogEmulationAction::writeTo(PlistValue& dict) const
{
    TVKEmulationAction::writeTo(dict);
    dict.insert(key::JogSpd, PlistValue(quint64(m_jogSpeed)));
}
