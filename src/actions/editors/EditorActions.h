#pragma once

#include <QString>
#include <memory>

class TVKAction;
class TVKBuiltInAction;
class TVKKeySequenceAction;
class TVKMIDIAction;
class TVKMouseAction;
class TVKSpecialAction;
class TVKEmulationAction;

namespace corvane {

// The editors are written once per family and told which class they edit by its type code;
// these make a new action of that class the way the family's editor does (without a control).
// An unknown type code gives none.
std::unique_ptr<TVKSpecialAction> makeSpecialActionOfType(qint32 type, int mode);
// Delay 50, repeat off.
std::unique_ptr<TVKKeySequenceAction> makeKeySequenceActionOfType(qint32 type);
std::unique_ptr<TVKMIDIAction> makeMIDIActionOfType(qint32 type, unsigned mode,
                                                    const quint8* message, unsigned size);
std::unique_ptr<TVKMouseAction> makeMouseActionOfType(qint32 type, unsigned operation);
std::unique_ptr<TVKBuiltInAction>
makeBuiltInActionOfType(qint32 type, int commandGroup, int command, const QString& commandGroupName,
                        const QString& commandName, int mode, int procedure, quint32 keyCode,
                        quint64 modifiers);
std::unique_ptr<TVKEmulationAction> makeEmulationActionOfType(qint32 type, int group, int control,
                                                              bool named, bool onlyControl);

// The usage word of the built-in command editor for a built-in type ("button", "encoder",
// "trackball", "ring", "wheel", "lcd", "led"); empty for other types.
QString usageWordForBuiltInType(qint32 type);

} // namespace corvane
