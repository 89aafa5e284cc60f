#pragma once

#include <QString>
#include <Qt>
#include <optional>

namespace corvane {

// A key event as the key sequence editor needs it, independent of the toolkit's event class:
// the widget fills it from QKeyEvent (nativeScanCode(), key(), modifiers(), text()).
struct KeyEventData
{
    quint32 nativeScanCode = 0; // 0 when the event carries none
    int key = 0;                // Qt::Key
    Qt::KeyboardModifiers modifiers;
    QString text;
};

// What a key press stores in a keystroke.
struct CapturedKeystroke
{
    QString label;
    quint16 keyCode = 0;
    quint64 modifiers = 0;
};

// Turns key events into the key code, modifier word and label the background service and the
// key sequence editor use. See docs/key-events.md.
namespace KeyEventTranslator {

inline constexpr quint64 kShift = 0x20000;
inline constexpr quint64 kControl = 0x40000;
inline constexpr quint64 kOption = 0x80000;
inline constexpr quint64 kCommand = 0x100000;

// The label of a key: the remapping table applied to the first character code ("Page Up",
// "F5", "space" ...); other characters come back unchanged, an empty text gives no label.
QString labelForCharacters(const QString& characters);

// The character code the label table reads for a key: the function, arrow, navigation and
// editing keys have fixed codes; other keys give their character ignoring Control and Alt.
QString charactersIgnoringModifiers(const KeyEventData& event);

// The evdev code of the physical key: the X11/Wayland scan code less 8, or, for an event without
// one, the code of the key on a standard layout. 0 when unknown.
quint16 keyCode(const KeyEventData& event);

quint64 modifierWord(Qt::KeyboardModifiers modifiers);

// Shift, Control, Alt, Meta and their kin pressed alone are not keystrokes.
bool isModifierKey(int key);

// The keystroke for a key press; none for a modifier key pressed alone.
std::optional<CapturedKeystroke> keystrokeForEvent(const KeyEventData& event);

} // namespace KeyEventTranslator

} // namespace corvane
