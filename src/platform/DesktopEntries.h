#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace corvane {

// An installed application as the desktop knows it: one desktop entry. Its identifier is what
// a keyset made for it stores as its bundle identifier.
struct DesktopApplication
{
    QString id;             // the desktop file id without ".desktop": "org.kde.kdenlive"
    QString name;           // "Name", in the user's language where the entry has it
    QString iconName;       // "Icon": a theme icon name or an absolute path; may be empty
    QString startupWMClass; // "StartupWMClass"; may be empty
    QString exec;           // "Exec"
    QString path;           // the entry's file
    bool noDisplay = false; // installed, but not to be offered in choosers
};

// The desktop entries of the XDG data folders ($XDG_DATA_HOME, then $XDG_DATA_DIRS, then the
// Flatpak and Snap exports where those are not listed), read the way desktop shells read them.
namespace DesktopEntries {

// The user's language for localized keys, from LC_ALL, LC_MESSAGES or LANG.
QString userLanguage();

// The "applications" folders searched, most important first.
QStringList applicationFolders();

// Reads one entry; none when it is no application entry (another type, "Hidden", no name, no
// [Desktop Entry] group). The language is a POSIX locale name ("de_DE.UTF-8@euro").
std::optional<DesktopApplication> readEntry(const QString& path, const QString& id,
                                            const QString& language);

// Every application entry of the folders, one per desktop file id: the first folder that has an
// id decides it, so a user's hidden copy hides the system's entry. Without noDisplay the
// entries that ask not to be shown are left out. Sorted by name, then id.
std::vector<DesktopApplication> installedApplications(const QStringList& folders,
                                                      const QString& language,
                                                      bool includeNoDisplay = false);
std::vector<DesktopApplication> installedApplications();

// The entry a window belongs to, by its WM_CLASS instance and class names, as desktop shells
// match them: "StartupWMClass" first, then the desktop file id, then its last dot-separated
// component, each compared without regard to case. Null when none matches.
const DesktopApplication* matchWindowClass(const std::vector<DesktopApplication>& applications,
                                           const QString& instanceName, const QString& className);

} // namespace DesktopEntries

} // namespace corvane
