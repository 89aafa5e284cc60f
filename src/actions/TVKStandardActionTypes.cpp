#include "actions/TVKStandardActionTypes.h"

#include "actions/TVKSpecialAction.h"
#include "model/TVKControl.h"
#include "model/TVKLayer.h"

namespace {

const QString kActionTypeKey = QStringLiteral("TVKActnType");

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
    const qint32 type = qint32(dict.value(kActionTypeKey).toInteger(0));
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
