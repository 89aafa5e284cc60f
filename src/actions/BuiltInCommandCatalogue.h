#pragma once

#include "core/FourCharCode.h"
#include "core/PlistValue.h"

#include <QString>
#include <vector>

class TVKKeyset;

namespace corvane {

// One command of the catalogue, as the editors offer it.
struct BuiltInCommand
{
    QString name;
    int mode = 0; // 0: keystroke command; otherwise a procedure the service runs
    int procedure = 0;
    quint16 keyCode = 0;
    quint64 modifiers = 0;
};

// A group of the filtered command list. Separator groups carry no commands and are shown
// disabled.
struct BuiltInCommandGroup
{
    QString name;
    std::vector<BuiltInCommand> commands;
    bool isSeparator() const { return name == separatorName(); }
    static QString separatorName() { return QStringLiteral("_______"); }
};

// The per-application command catalogue "TVK_Built_In_Commands.xml" in the support folder: a
// dictionary from an application's key (bundle identifier, else its signature as four
// characters) to its list of command groups. A missing or unreadable file is an empty catalogue.
class BuiltInCommandCatalogue
{
public:
    BuiltInCommandCatalogue() = default;
    explicit BuiltInCommandCatalogue(const PlistValue& root) : m_root(root) {}

    // $XDG_DATA_HOME/Tavrik, by default ~/.local/share/Tavrik.
    static QString supportFolder();
    static QString catalogueFileName() { return QStringLiteral("TVK_Built_In_Commands.xml"); }
    static QString defaultCataloguePath();

    // Reads the file with the property-list codec; any failure gives an empty catalogue.
    static BuiltInCommandCatalogue load(const QString& path);

    // The key a keyset is listed under: its bundle identifier, or its signature as text.
    static QString lookupKey(const TVKKeyset& keyset);
    static QString lookupKey(const QString& bundleID, FourCharCode signature);

    // A blank anywhere gives no modifiers at all; otherwise "cmd", "shift", "opt" and "ctrl"
    // each add their flag wherever they appear.
    static quint64 parseModifiers(const QString& text);

    bool isEmpty() const { return m_root.size() == 0; }
    // The application's groups in order, keeping only commands whose usage word equals
    // usage exactly; a group left without commands survives only as a separator.
    std::vector<BuiltInCommandGroup> commandsFor(const QString& key, const QString& usage) const;

private:
    PlistValue m_root;
};

} // namespace corvane
