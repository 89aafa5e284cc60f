#include "actions/TVKKeystrokeElement.h"

TVKKeystrokeElement::TVKKeystrokeElement(const QString& character, quint32 keyCode,
                                         quint64 modifiers)
    : m_character(character), m_keyCode(quint16(keyCode & 0xFFFF)), m_modifierFlags(modifiers)
{}

TVKKeystrokeElement::TVKKeystrokeElement(const corvane::PlistValue& archive)
{
    const corvane::PlistValue& character = archive.value(u"TVKChar");
    if (character.isString())
        m_character = character.toString();
    m_keyCode = quint16(archive.value(u"TVKKCode").toUnsigned() & 0xFFFF);
    // Stored as 64 bits but read back as 32: the bits above 31 are dropped on reload.
    m_modifierFlags = archive.value(u"TVKMods").toUnsigned() & 0xFFFFFFFFu;
}

void TVKKeystrokeElement::writeTo(corvane::PlistValue& dict) const
{
    if (!m_character.isNull())
        dict.insert(QStringLiteral("TVKChar"), corvane::PlistValue(m_character));
    dict.insert(QStringLiteral("TVKKCode"), corvane::PlistValue(quint64(m_keyCode)));
    dict.insert(QStringLiteral("TVKMods"), corvane::PlistValue(quint64(m_modifierFlags)));
}
