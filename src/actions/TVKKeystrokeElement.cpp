#include "actions/TVKKeystrokeElement.h"

#include "core/StoredKeys.h"

namespace key = corvane::key;

TVKKeystrokeElement::TVKKeystrokeElement(const QString& character, quint32 keyCode,
                                         quint64 modifiers)
    : m_character(character), m_keyCode(quint16(keyCode & 0xFFFF)), m_modifierFlags(modifiers)
{}

TVKKeystrokeElement::TVKKeystrokeElement(const corvane::PlistValue& archive)
{
    const corvane::PlistValue& character = archive.value(key::Char);
    if (character.isString())
        m_character = character.toString();
    m_keyCode = quint16(archive.value(key::KCode).toUnsigned() & 0xFFFF);
    // Stored as 64 bits but read back as 32: the bits above 31 are dropped on reload.
    m_modifierFlags = archive.value(key::Mods).toUnsigned() & 0xFFFFFFFFu;
}

void TVKKeystrokeElement::writeTo(corvane::PlistValue& dict) const
{
    if (!m_character.isNull())
        dict.insert(key::Char, corvane::PlistValue(m_character));
    dict.insert(key::KCode, corvane::PlistValue(quint64(m_keyCode)));
    dict.insert(key::Mods, corvane::PlistValue(quint64(m_modifierFlags)));
}
