#pragma once

#include "core/PlistValue.h"

#include <QString>
#include <vector>

// One keystroke of a key sequence: the label shown for the key, the key code the background
// service posts and the modifier word held with it.
class TVKKeystrokeElement
{
public:
    TVKKeystrokeElement() = default;
    // The key code is kept to 16 bits, as the service reads it.
    TVKKeystrokeElement(const QString& character, quint32 keyCode, quint64 modifiers);
    explicit TVKKeystrokeElement(const corvane::PlistValue& archive);

    const QString& character() const { return m_character; }
    void setCharacter(const QString& character) { m_character = character; }
    quint16 keyCode() const { return m_keyCode; }
    void setKeyCode(quint16 keyCode) { m_keyCode = keyCode; }
    quint64 modifierFlags() const { return m_modifierFlags; }
    void setModifierFlags(quint64 flags) { m_modifierFlags = flags; }

    void writeTo(corvane::PlistValue& dict) const;

    bool operator==(const TVKKeystrokeElement& other) const = default;

private:
    QString m_character; // null when the keystroke has no label (built-in commands)
    quint16 m_keyCode = 0;
    quint64 m_modifierFlags = 0;
};

// Keystrokes are held by value, so copying a list copies every element.
using TVKKeystrokeList = std::vector<TVKKeystrokeElement>;
