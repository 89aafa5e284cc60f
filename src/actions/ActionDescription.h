#pragma once

#include "actions/TVKKeystrokeElement.h"
#include "model/EmulationMode.h"

#include <QString>
#include <optional>

class TVKAction;
class TVKControl;

// A second, human description of an action, beside its descriptor: keys written as Linux desktops
// write them ("Ctrl+Shift+S"), MIDI messages by name ("Note On C4 (60) vel 100 · ch 1"), the
// emulated control by its group and name. The descriptor texts stay what they are; they are what
// older files, the service and users' notes have always shown. The words go through
// QCoreApplication::translate with the context "ActionDescription".
namespace corvane {

enum class Detail
{
    Short, // fits a tooltip's first line or a label: what the control does, no more
    Full,  // everything the action holds: channel, velocity, the place of a click, empty directions
};

// What the description needs to know about the control that carries the action. By default it is
// taken from the owning control; a caller describing an action of no control (a clipboard, a
// sheet) gives it itself.
struct ActionContext
{
    int controlType = -1;                                // corvane::ControlType; -1 when unknown
    std::optional<corvane::EmulationMode> emulationMode; // the keyset's; none when unknown
};

ActionContext contextOfAction(const TVKAction& action);

// The description of any action. Every kind of action gives a non-empty text.
QString describeAction(const TVKAction& action, Detail detail);
QString describeAction(const TVKAction& action, Detail detail, const ActionContext& context);

// Whether the action does anything: a missing or "no action" action is not an assignment.
bool isAssigned(const TVKAction* action);
// What a control is shown as on a picture, a sheet or a status line: its user name, else the
// short description of its action; empty when it has neither (nothing to show).
QString assignmentLabel(const TVKControl& control);

// "Ctrl+Shift+S", "Alt+F4", "Super+Page Up". Modifiers in the order Ctrl, Alt, Shift, Super.
QString describeKeystroke(const TVKKeystrokeElement& keystroke);
// The keystrokes joined with ", "; an empty list gives an empty text.
QString describeKeySequence(const TVKKeystrokeList& sequence);
// The modifier word (Shift 0x20000, Control 0x40000, Alt 0x80000, Super 0x100000) as the
// prefix of a key or a click: "Ctrl+Shift+", or empty.
QString modifierPrefix(quint64 modifiers);

// One MIDI message by name ("CC 7 · value · ch 1"); a data byte of 0xF1 is the control's value.
QString describeMidiMessage(const quint8* bytes, unsigned size, Detail detail);
// "C4" for note 60, "C#-1" for note 1.
QString midiNoteName(int note);

// A text made comparable for searching: lower case, and every run of modifiers joined by "+"
// ("shift+ctrl+s", "Control+Shift+S") written in one order with one name per modifier, so
// that the same shortcut typed either way finds the same controls.
QString searchableText(const QString& text);
// Whether a searchable text holds what was searched for (both made searchable). A shortcut
// searched for ("ctrl+s") is found only whole: not in "ctrl+shift+z", nor "shift+s" in
// "ctrl+shift+s"; anything else, and a shortcut still being typed ("ctrl+"), anywhere.
bool searchFinds(const QString& searchable, const QString& wanted);

} // namespace corvane
