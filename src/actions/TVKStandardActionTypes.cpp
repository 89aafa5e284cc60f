#include "actions/TVKStandardActionTypes.h"

#include "actions/CorvaneButtonDisplayMidiEmulationAction.h"
#include "actions/CorvaneLCDButtonDisplayIconAction.h"
#include "actions/TVKBuiltInAction.h"
#include "actions/TVKDisplayControlNameAction.h"
#include "actions/TVKDisplayEmulationAction.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/TVKEmulationAction.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/TVKMouseAction.h"
#include "actions/TVKSpecialAction.h"
#include "core/StoredKeys.h"
#include "model/TVKControl.h"
#include "model/TVKLayer.h"

namespace key = corvane::key;

namespace {

// The layer knows which console control a surface control plays.
std::unique_ptr<TVKAction> emulatedActionFor(TVKControl* control)
{
    if (!control || !control->layer())
        return nullptr;
    return control->layer()->createEmulatedActionForControl(control);
}

} // namespace

// One case per restorable class, by type code. Codes 7 and 9 (the null actions) and 0x100401
// are deliberately absent: they are never restored.
std::unique_ptr<TVKAction>
TVKStandardActionTypes::createActionFromArchive(const corvane::PlistValue& dict,
                                                TVKControl* control)
{
    const qint32 type = qint32(dict.value(key::ActnType).toInteger(0));
    switch (type) {
    // Special functions of the surface.
    case TVKButtonSpecialAction::kActionType:
        return std::make_unique<TVKButtonSpecialAction>(dict, control);
    case TVKEncoderSpecialAction::kActionType:
        return std::make_unique<TVKEncoderSpecialAction>(dict, control);
    case TVKSpecial4WayAction::kActionType:
        return std::make_unique<TVKSpecial4WayAction>(dict, control);
    case TVKShuttleSpecialAction::kActionType:
        return std::make_unique<TVKShuttleSpecialAction>(dict, control);
    case TVKSpecialJogAction::kActionType:
        return std::make_unique<TVKSpecialJogAction>(dict, control);

    // Built-in commands.
    case TVKButtonBuiltInAction::kActionType:
        return std::make_unique<TVKButtonBuiltInAction>(dict, control);
    case TVKEncoderBuiltInAction::kActionType:
        return std::make_unique<TVKEncoderBuiltInAction>(dict, control);
    case TVK4WayBuiltInAction::kActionType:
        return std::make_unique<TVK4WayBuiltInAction>(dict, control);
    case TVKShuttleBuiltInAction::kActionType:
        return std::make_unique<TVKShuttleBuiltInAction>(dict, control);
    case TVKJogBuiltInAction::kActionType:
        return std::make_unique<TVKJogBuiltInAction>(dict, control);

    // Key sequences.
    case TVKButtonKeySequenceAction::kActionType:
        return std::make_unique<TVKButtonKeySequenceAction>(dict, control);
    case TVKEncoderKeySequenceAction::kActionType:
        return std::make_unique<TVKEncoderKeySequenceAction>(dict, control);
    case TVK4WayKeySequenceAction::kActionType:
        return std::make_unique<TVK4WayKeySequenceAction>(dict, control);
    case TVKShuttleKeySequenceAction::kActionType:
        return std::make_unique<TVKShuttleKeySequenceAction>(dict, control);
    case TVKJogKeySequenceAction::kActionType:
        return std::make_unique<TVKJogKeySequenceAction>(dict, control);

    // Mouse operations.
    case TVKButtonMouseAction::kActionType:
        return std::make_unique<TVKButtonMouseAction>(dict, control);
    case TVKEncoderMouseAction::kActionType:
        return std::make_unique<TVKEncoderMouseAction>(dict, control);
    case TVK4WayMouseAction::kActionType:
        return std::make_unique<TVK4WayMouseAction>(dict, control);
    case TVKShuttleMouseAction::kActionType:
        return std::make_unique<TVKShuttleMouseAction>(dict, control);
    case TVKJogMouseAction::kActionType:
        return std::make_unique<TVKJogMouseAction>(dict, control);

    // MIDI messages.
    case TVKButtonMIDIAction::kActionType:
        return std::make_unique<TVKButtonMIDIAction>(dict, control);
    case TVKEncoderMIDIAction::kActionType:
        return std::make_unique<TVKEncoderMIDIAction>(dict, control);
    case TVK4WayMIDIAction::kActionType:
        return std::make_unique<TVK4WayMIDIAction>(dict, control);
    case TVKShuttleMIDIAction::kActionType:
        return std::make_unique<TVKShuttleMIDIAction>(dict, control);
    case TVKJogMIDIAction::kActionType:
        return std::make_unique<TVKJogMIDIAction>(dict, control);

    // Emulation.
    case TVKButtonEmulationAction::kActionType:
        return std::make_unique<TVKButtonEmulationAction>(dict, control);
    case TVKEncoderEmulationAction::kActionType:
        return std::make_unique<TVKEncoderEmulationAction>(dict, control);
    case TVKJogEmulationAction::kActionType:
        return std::make_unique<TVKJogEmulationAction>(dict, control);
    case TVKFaderEmulationAction::kActionType:
        return std::make_unique<TVKFaderEmulationAction>(dict, control);

    // Displays.
    case TVKLCDDisplayTextAction::kActionType:
        return std::make_unique<TVKLCDDisplayTextAction>(dict, control);
    case TVKLCDDisplayEncoderNameAction::kActionType:
        return std::make_unique<TVKLCDDisplayEncoderNameAction>(dict, control);
    case TVKLCDDisplayEmulationAction::kActionType:
        return std::make_unique<TVKLCDDisplayEmulationAction>(dict, control);
    case TVKLCDDisplayButtonNameAction::kActionType:
        return std::make_unique<TVKLCDDisplayButtonNameAction>(dict, control);
    case TVKBuiltInLCDDisplayAction::kActionType:
        return std::make_unique<TVKBuiltInLCDDisplayAction>(dict, control);
    case TVKTimecodeDisplayEmulationAction::kActionType:
        return std::make_unique<TVKTimecodeDisplayEmulationAction>(dict, control);
    case TVKBuiltInTimecodeDisplayAction::kActionType:
        return std::make_unique<TVKBuiltInTimecodeDisplayAction>(dict, control);
    case CorvaneHiResLCDButtonDisplayTextAction::kActionType:
        return std::make_unique<CorvaneHiResLCDButtonDisplayTextAction>(dict, control);
    case CorvaneLCDButtonDisplayIconAction::kActionType:
        return std::make_unique<CorvaneLCDButtonDisplayIconAction>(dict, control);
    case CorvaneButtonDisplayMidiEmulationAction::kActionType:
        return std::make_unique<CorvaneButtonDisplayMidiEmulationAction>(dict, control);
    case TVKFrameletCorvaneNVLCDDisplayButtonNameAction::kActionType:
        return std::make_unique<TVKFrameletCorvaneNVLCDDisplayButtonNameAction>(dict, control);

    default:
        return nullptr;
    }
}

std::unique_ptr<TVKAction> TVKStandardActionTypes::createActionWithType(qint32 type, int mode,
                                                                        TVKControl* control)
{
    switch (type) {
    // Special functions: the mode is the function.
    case TVKButtonSpecialAction::kActionType:
        return std::make_unique<TVKButtonSpecialAction>(control, mode);
    case TVKEncoderSpecialAction::kActionType:
        return std::make_unique<TVKEncoderSpecialAction>(control, mode);
    case TVKSpecial4WayAction::kActionType:
        return std::make_unique<TVKSpecial4WayAction>(control, mode);
    case TVKShuttleSpecialAction::kActionType:
        return std::make_unique<TVKShuttleSpecialAction>(control, mode);
    case TVKSpecialJogAction::kActionType:
        return std::make_unique<TVKSpecialJogAction>(control, mode);

    // MIDI: the mode, no message yet.
    case TVKButtonMIDIAction::kActionType:
        return std::make_unique<TVKButtonMIDIAction>(unsigned(mode), nullptr, 0u, control);
    case TVKEncoderMIDIAction::kActionType:
        return std::make_unique<TVKEncoderMIDIAction>(unsigned(mode), nullptr, 0u, control);
    case TVKShuttleMIDIAction::kActionType:
        return std::make_unique<TVKShuttleMIDIAction>(unsigned(mode), nullptr, 0u, control);
    case TVKJogMIDIAction::kActionType:
        return std::make_unique<TVKJogMIDIAction>(unsigned(mode), nullptr, 0u, control);
    case TVK4WayMIDIAction::kActionType:
        return std::make_unique<TVK4WayMIDIAction>(unsigned(mode), nullptr, 0u, nullptr, 0u,
                                                   control);

    // Displays with a default of their own.
    case TVKLCDDisplayButtonNameAction::kActionType:
        return std::make_unique<TVKLCDDisplayButtonNameAction>(control);
    case TVKBuiltInLCDDisplayAction::kActionType:
        return std::make_unique<TVKBuiltInLCDDisplayAction>(control);
    case TVKBuiltInTimecodeDisplayAction::kActionType:
        return std::make_unique<TVKBuiltInTimecodeDisplayAction>(control);
    case CorvaneHiResLCDButtonDisplayTextAction::kActionType:
        return std::make_unique<CorvaneHiResLCDButtonDisplayTextAction>(control);
    case CorvaneLCDButtonDisplayIconAction::kActionType:
        return std::make_unique<CorvaneLCDButtonDisplayIconAction>(control);
    case CorvaneButtonDisplayMidiEmulationAction::kActionType:
        return std::make_unique<CorvaneButtonDisplayMidiEmulationAction>(control);
    case TVKFrameletCorvaneNVLCDDisplayButtonNameAction::kActionType:
        return std::make_unique<TVKFrameletCorvaneNVLCDDisplayButtonNameAction>(control);

    // Emulation: the action is not made here but by the control's layer. 774 (4-way) and 1030
    // (shuttle) have no emulation and fall through to no action.
    case 262:
    case 518:
    case 1286:
    case 1542:
        return emulatedActionFor(control);

    default:
        return nullptr;
    }
}
