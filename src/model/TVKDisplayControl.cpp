#include "model/TVKDisplayControl.h"

#include "actions/CorvaneButtonDisplayMidiEmulationAction.h"
#include "actions/TVKAction.h"
#include "actions/TVKStandardActionTypes.h"
#include "model/TVKLayer.h"

namespace {
constexpr qint32 kNativeMIDIStatusType = 0x100009;
constexpr qint32 kDisplayEmulationKind = 3;
} // namespace

void TVKDisplayControl::setActionMode(int mode)
{
    takeAction();
    switch (mode) {
    case corvane::ActionMode::NativeMIDI:
        adoptAction(TVKStandardActionTypes::createActionWithType(kNativeMIDIStatusType, 1, this));
        break;
    case corvane::ActionMode::Emulation:
        if (layer())
            adoptAction(layer()->createEmulatedActionForDisplay(this));
        break;
    default:
        break;
    }
}

void TVKDisplayControl::copyActionWithoutEmulation(const TVKControl& source)
{
    const TVKAction* action = source.action();
    // An emulated display keeps whatever this display had.
    if (action && ((action->actionType() & 0xFF) == kDisplayEmulationKind ||
                   !copiesActionWithoutEmulation(*action)))
        return;
    setAction(action);
}

bool TVKDisplayControl::copiesActionWithoutEmulation(const TVKAction& /*action*/) const
{
    return true;
}

void TVKLCDButtonDisplayControl::copyDisplay(const TVKLCDButtonDisplayControl& display)
{
    setUserName(display.userName());
    setAction(display.action());
}

bool TVKLCDButtonDisplayControl::copiesActionWithoutEmulation(const TVKAction& action) const
{
    if (action.actionType() != CorvaneButtonDisplayMidiEmulationAction::kActionType)
        return true;
    // The MIDI/emulation status display is copied only in its native-MIDI mode.
    const auto* status = dynamic_cast<const CorvaneButtonDisplayMidiEmulationAction*>(&action);
    return status && status->mode() == CorvaneButtonDisplayMidiEmulationAction::NativeMIDI;
}
