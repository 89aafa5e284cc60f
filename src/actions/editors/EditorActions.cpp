#include "actions/editors/EditorActions.h"

#include "actions/TVKBuiltInAction.h"
#include "actions/TVKEmulationAction.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/TVKMouseAction.h"
#include "actions/TVKSpecialAction.h"
#include "core/Log.h"

namespace corvane {

std::unique_ptr<TVKSpecialAction> makeSpecialActionOfType(qint32 type, int mode)
{
    std::unique_ptr<TVKSpecialAction> action;
    switch (type) {
    case TVKButtonSpecialAction::kActionType:
        action = std::make_unique<TVKButtonSpecialAction>();
        break;
    case TVKEncoderSpecialAction::kActionType:
        action = std::make_unique<TVKEncoderSpecialAction>();
        break;
    case TVKSpecial4WayAction::kActionType:
        action = std::make_unique<TVKSpecial4WayAction>();
        break;
    case TVKShuttleSpecialAction::kActionType:
        action = std::make_unique<TVKShuttleSpecialAction>();
        break;
    case TVKSpecialJogAction::kActionType:
        action = std::make_unique<TVKSpecialJogAction>();
        break;
    default:
        log(QStringLiteral("Subclasses MUST override makeNewAction"));
        return nullptr;
    }
    action->setMode(mode);
    return action;
}

std::unique_ptr<TVKKeySequenceAction> makeKeySequenceActionOfType(qint32 type)
{
    switch (type) {
    case TVKButtonKeySequenceAction::kActionType:
        return std::make_unique<TVKButtonKeySequenceAction>(nullptr, 50, false);
    case TVK4WayKeySequenceAction::kActionType:
        return std::make_unique<TVK4WayKeySequenceAction>(nullptr, 50, false);
    case TVKEncoderKeySequenceAction::kActionType:
        return std::make_unique<TVKEncoderKeySequenceAction>(nullptr, 50, false);
    case TVKJogKeySequenceAction::kActionType:
        return std::make_unique<TVKJogKeySequenceAction>(nullptr, 50, false);
    case TVKShuttleKeySequenceAction::kActionType:
        return std::make_unique<TVKShuttleKeySequenceAction>(nullptr, 50, false);
    default:
        log(QStringLiteral(
            "TVKKeySequenceActionEditorView subclasses must override makeKeySequenceAction"));
        return nullptr;
    }
}

std::unique_ptr<TVKMIDIAction> makeMIDIActionOfType(qint32 type, unsigned mode,
                                                    const quint8* message, unsigned size)
{
    switch (type) {
    case TVKButtonMIDIAction::kActionType:
        return std::make_unique<TVKButtonMIDIAction>(mode, message, size, nullptr);
    case TVKEncoderMIDIAction::kActionType:
        // The editor always gives resolution 1.
        return std::make_unique<TVKEncoderMIDIAction>(mode, message, size, nullptr, 1);
    case TVKShuttleMIDIAction::kActionType:
        return std::make_unique<TVKShuttleMIDIAction>(mode, message, size, nullptr);
    case TVKJogMIDIAction::kActionType:
        return std::make_unique<TVKJogMIDIAction>(mode, message, size, nullptr);
    case TVK4WayMIDIAction::kActionType:
        return std::make_unique<TVK4WayMIDIAction>(mode, message, size, nullptr, 0, nullptr);
    default:
        log(QStringLiteral(
            "Subclasses must override [TVKMIDIActionEditorView makeNewMIDIAction...]"));
        return nullptr;
    }
}

std::unique_ptr<TVKMouseAction> makeMouseActionOfType(qint32 type, unsigned operation)
{
    switch (type) {
    case TVKButtonMouseAction::kActionType:
        return std::make_unique<TVKButtonMouseAction>(operation, nullptr);
    case TVKEncoderMouseAction::kActionType:
        return std::make_unique<TVKEncoderMouseAction>(operation, nullptr);
    case TVK4WayMouseAction::kActionType:
        return std::make_unique<TVK4WayMouseAction>(operation, nullptr);
    case TVKShuttleMouseAction::kActionType:
        return std::make_unique<TVKShuttleMouseAction>(operation, nullptr);
    case TVKJogMouseAction::kActionType:
        return std::make_unique<TVKJogMouseAction>(operation, nullptr);
    default:
        log(QStringLiteral("subclasses must override makeNewMouseActionWithOperation"));
        return nullptr;
    }
}

std::unique_ptr<TVKBuiltInAction>
makeBuiltInActionOfType(qint32 type, int commandGroup, int command, const QString& commandGroupName,
                        const QString& commandName, int mode, int procedure, quint32 keyCode,
                        quint64 modifiers)
{
    auto make = [&](auto* tag) -> std::unique_ptr<TVKBuiltInAction> {
        using Class = std::remove_pointer_t<decltype(tag)>;
        return std::make_unique<Class>(nullptr, 0u, false, commandGroup, command, commandGroupName,
                                       commandName, mode, procedure, keyCode, modifiers);
    };
    switch (type) {
    case TVKButtonBuiltInAction::kActionType:
        return make(static_cast<TVKButtonBuiltInAction*>(nullptr));
    case TVKEncoderBuiltInAction::kActionType:
        return make(static_cast<TVKEncoderBuiltInAction*>(nullptr));
    case TVK4WayBuiltInAction::kActionType:
        return make(static_cast<TVK4WayBuiltInAction*>(nullptr));
    case TVKShuttleBuiltInAction::kActionType:
        return make(static_cast<TVKShuttleBuiltInAction*>(nullptr));
    case TVKJogBuiltInAction::kActionType:
        return make(static_cast<TVKJogBuiltInAction*>(nullptr));
    case TVKBuiltInLCDDisplayAction::kActionType:
        return make(static_cast<TVKBuiltInLCDDisplayAction*>(nullptr));
    case TVKBuiltInTimecodeDisplayAction::kActionType:
        return make(static_cast<TVKBuiltInTimecodeDisplayAction*>(nullptr));
    default:
        log(QStringLiteral("Subclasses MUST override makeNewAction"));
        return nullptr;
    }
}

std::unique_ptr<TVKEmulationAction> makeEmulationActionOfType(qint32 type, int group, int control,
                                                              bool named, bool onlyControl)
{
    switch (type) {
    case TVKButtonEmulationAction::kActionType:
        return std::make_unique<TVKButtonEmulationAction>(nullptr, group, control, named,
                                                          onlyControl);
    case TVKEncoderEmulationAction::kActionType:
        return std::make_unique<TVKEncoderEmulationAction>(nullptr, group, control, named,
                                                           onlyControl);
    case TVKFaderEmulationAction::kActionType:
        return std::make_unique<TVKFaderEmulationAction>(nullptr, group, control, named,
                                                         onlyControl);
    case TVKJogEmulationAction::kActionType:
        return std::make_unique<TVKJogEmulationAction>(nullptr, group, control, named, onlyControl);
    default:
        return nullptr;
    }
}

QString usageWordForBuiltInType(qint32 type)
{
    switch (type) {
    case TVKButtonBuiltInAction::kActionType:
        return QStringLiteral("button");
    case TVKEncoderBuiltInAction::kActionType:
        return QStringLiteral("encoder");
    case TVK4WayBuiltInAction::kActionType:
        return QStringLiteral("trackball");
    case TVKShuttleBuiltInAction::kActionType:
        return QStringLiteral("ring");
    case TVKJogBuiltInAction::kActionType:
        return QStringLiteral("wheel");
    case TVKBuiltInLCDDisplayAction::kActionType:
        return QStringLiteral("lcd");
    case TVKBuiltInTimecodeDisplayAction::kActionType:
        return QStringLiteral("led");
    default:
        log(QStringLiteral("TVKBuiltInActionEditorView subclasses MUST override getUsageString"));
        return QString();
    }
}

} // namespace corvane
