#include "actions/EmulationActionFactory.h"

#include "actions/TVKDisplayEmulationAction.h"
#include "actions/TVKEmulationAction.h"
#include "model/TVKControl.h"

namespace corvane {

std::unique_ptr<TVKAction> makeEmulationAction(int kind, TVKControl* control, int emulatedGroup,
                                               int emulatedControl, bool namedControl,
                                               bool onlyControlInGroup)
{
    switch (kind) {
    case ControlType::Button:
        return std::make_unique<TVKButtonEmulationAction>(control, emulatedGroup, emulatedControl,
                                                          namedControl, onlyControlInGroup);
    case ControlType::Encoder:
        return std::make_unique<TVKEncoderEmulationAction>(control, emulatedGroup, emulatedControl,
                                                           namedControl, onlyControlInGroup);
    case ControlType::Jog:
        // The default jog emulation has speed 0 until the user sets one.
        return std::make_unique<TVKJogEmulationAction>(control, emulatedGroup, emulatedControl,
                                                       namedControl, onlyControlInGroup);
    case ControlType::Fader:
        return std::make_unique<TVKFaderEmulationAction>(control, emulatedGroup, emulatedControl,
                                                         namedControl, onlyControlInGroup);
    default:
        return nullptr;
    }
}

std::unique_ptr<TVKAction> makeDisplayEmulationAction(int kind, TVKControl* display, int source)
{
    switch (kind) {
    case ControlType::LCDDisplay:
    case ControlType::NVLCDDisplay:
        return std::make_unique<TVKLCDDisplayEmulationAction>(display, source);
    case ControlType::TimecodeDisplay:
        return std::make_unique<TVKTimecodeDisplayEmulationAction>(display);
    default:
        return nullptr;
    }
}

} // namespace corvane
