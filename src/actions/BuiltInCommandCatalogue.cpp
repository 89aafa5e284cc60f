#include "actions/BuiltInCommandCatalogue.h"

#include "core/PlistCodec.h"
#include "core/XdgFolders.h"
#include "model/TVKKeyset.h"

namespace corvane {

QString BuiltInCommandCatalogue::supportFolder()
{
    return xdgDataHome() + QStringLiteral("/Tavrik");
}

QString BuiltInCommandCatalogue::defaultCataloguePath()
{
    return supportFolder() + QLatin1Char('/') + catalogueFileName();
}

BuiltInCommandCatalogue BuiltInCommandCatalogue::load(const QString& path)
{
    const PlistReadResult result = PlistCodec::readFile(path);
    if (!result.ok || !result.value.isDict())
        return BuiltInCommandCatalogue();
    return BuiltInCommandCatalogue(result.value);
}

QString BuiltInCommandCatalogue::lookupKey(const TVKKeyset& keyset)
{
    return lookupKey(keyset.bundleID(), keyset.signature());
}

QString BuiltInCommandCatalogue::lookupKey(const QString& bundleID, FourCharCode signature)
{
    if (!bundleID.isEmpty())
        return bundleID;
    return stringFromFourCharCode(signature);
}

quint64 BuiltInCommandCatalogue::parseModifiers(const QString& text)
{
    // Deliberately strict: "cmd shift" is a mistake in the catalogue, not two modifiers.
    if (text.contains(QLatin1Char(' ')))
        return 0;
    quint64 modifiers = 0;
    if (text.contains(QLatin1String("cmd")))
        modifiers |= 0x100000;
    if (text.contains(QLatin1String("shift")))
        modifiers |= 0x20000;
    if (text.contains(QLatin1String("opt")))
        modifiers |= 0x80000;
    if (text.contains(QLatin1String("ctrl")))
        modifiers |= 0x40000;
    return modifiers;
}

std::vector<BuiltInCommandGroup> BuiltInCommandCatalogue::commandsFor(const QString& key,
                                                                      const QString& usage) const
{
    std::vector<BuiltInCommandGroup> groups;
    const PlistValue& list = m_root.value(key);
    for (qsizetype g = 0; g < list.size(); ++g) {
        const PlistValue& group = list.at(g);
        BuiltInCommandGroup filtered;
        filtered.name = group.value(u"GroupName").toString();
        const PlistValue& commands = group.value(u"Commands");
        for (qsizetype c = 0; c < commands.size(); ++c) {
            const PlistValue& command = commands.at(c);
            if (command.value(u"Usage").toString() != usage)
                continue;
            BuiltInCommand entry;
            entry.name = command.value(u"CommandName").toString();
            entry.mode = qint32(command.value(u"Mode").toInteger());
            if (entry.mode == 0) {
                entry.keyCode = quint16(command.value(u"KeyCode").toInteger() & 0xFFFF);
                entry.modifiers = parseModifiers(command.value(u"Modifiers").toString());
            } else {
                entry.procedure = qint32(command.value(u"Proc").toInteger());
            }
            filtered.commands.push_back(std::move(entry));
        }
        if (!filtered.commands.empty() || filtered.isSeparator())
            groups.push_back(std::move(filtered));
    }
    return groups;
}

} // namespace corvane
