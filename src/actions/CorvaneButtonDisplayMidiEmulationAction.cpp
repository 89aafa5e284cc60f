#include "actions/CorvaneButtonDisplayMidiEmulationAction.h"

#include "core/StoredKeys.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"

namespace key = corvane::key;

using corvane::PlistValue;

CorvaneButtonDisplayMidiEmulationAction::CorvaneButtonDisplayMidiEmulationAction(
    TVKControl* control, unsigned mode)
    : TVKDisplayAction(control), m_mode(mode)
{}

CorvaneButtonDisplayMidiEmulationAction::CorvaneButtonDisplayMidiEmulationAction(
    const PlistValue& archive, TVKControl* control)
    : TVKDisplayAction(archive, control)
{
    m_mode = unsigned(archive.value(key::Mode).toUnsigned() & 0xFFFFFFFFu);
}

QString CorvaneButtonDisplayMidiEmulationAction::emulationModeLetter() const
{
    const TVKControl* control = owningControl();
    const bool modeA = control && control->keyset() &&
                       control->keyset()->emulationMode() == corvane::EmulationMode::A;
    return modeA ? QStringLiteral("A") : QStringLiteral("B");
}

QString CorvaneButtonDisplayMidiEmulationAction::text()
{
    switch (m_mode) {
    case Emulation:
        return QStringLiteral("Emulate\nMode ") + emulationModeLetter();
    case NativeMIDI:
        return QStringLiteral("Native\nMIDI");
    default:
        return QStringLiteral("????");
    }
}

std::unique_ptr<TVKAction> CorvaneButtonDisplayMidiEmulationAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new CorvaneButtonDisplayMidiEmulationAction(*this));
}

QString CorvaneButtonDisplayMidiEmulationAction::actionDescriptor() const
{
    if (m_mode == Emulation)
        return QStringLiteral("Emulate Mode ") + emulationModeLetter() + QStringLiteral(" Display");
    return const_cast<CorvaneButtonDisplayMidiEmulationAction*>(this)->text();
}

void CorvaneButtonDisplayMidiEmulationAction::writeTo(PlistValue& dict) const
{
    TVKDisplayAction::writeTo(dict);
    dict.insert(key::Mode, PlistValue(quint64(m_mode)));
}
