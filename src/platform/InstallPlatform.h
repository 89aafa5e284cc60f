#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace corvane::InstallPlatform {

// Where the installed data of the application lies: the folder that plays the application
// bundle, holding "Contents/Helpers", "Contents/Resources/Helpers/Tavrik" and
// "Contents/Library/LoginItems". $CORVANE_BUNDLE_DIR when set, else "../share/corvane" beside the
// executable (an installed package, and a build tree, which keeps a copy there).
QString applicationBundlePath();

// A path of the user's as the installer writes it, on this desktop: "~/Library/Audio/MIDI
// Drivers" is $XDG_DATA_HOME/MIDI Drivers, "~/Library/Application Support" is $XDG_DATA_HOME,
// "/Applications" is ~/Applications and any other "~" the home folder.
QString expandUserPath(const QString& path);

// A bundle: a folder with an "Info.plist" dictionary, read through the property-list codec.
struct BundleInfo
{
    QString identifier; // "CFBundleIdentifier"
    QString version;    // "CFBundleVersion"
    QString executable; // "CFBundleExecutable": a file in the bundle's folder
};
std::optional<BundleInfo> readBundle(const QString& bundlePath);

// Replaces the destination by a copy of the source (a file, a symbolic link or a whole folder);
// the error text is the failure's description.
bool removeItem(const QString& path, QString* error = nullptr);
bool copyItem(const QString& source, const QString& destination, QString* error = nullptr);

// A process of this user, by the paths it was started from: its executable (without the
// kernel's " (deleted)" mark) and, for programs started through an interpreter or under another
// name, the absolute paths among its first two arguments.
struct Process
{
    qint64 pid = 0;
    QStringList paths;
};
std::vector<Process> userProcesses();

// The running processes started from inside a bundle ("*.app" folder) whose identifier is the
// one given.
std::vector<qint64> processesOfBundle(const QString& identifier);
// True when a process of the user was started from this executable.
bool isRunning(const QString& executable);

// Asks the process to quit (SIGTERM) and, when it is still there after two seconds, ends it
// (SIGKILL).
void forceQuit(qint64 pid);
// Starts the bundle's executable on its own, not as a child of this program.
bool launchBundle(const QString& bundlePath, QString* error = nullptr);

// Output lines of a shell pipeline, each cut at the given length, as a C program reading them
// with fgets would see them.
QStringList shellOutputLines(const QString& command, int lineLength);

// The login item of a launcher: an XDG autostart entry
// $XDG_CONFIG_HOME/autostart/<identifier>.desktop that starts the launcher bundle's executable.
QString autostartEntryPath(const QString& identifier);
// Enabling writes the entry and starts the launcher, as the desktop does at login; disabling
// removes the entry. False when the entry could not be written or the bundle is no bundle.
bool setLoginItemEnabled(const QString& identifier, const QString& launcherBundlePath,
                         bool enabled);

// The program and arguments of a desktop entry's "Exec" value: quoted arguments unquoted, their
// escapes resolved, field codes ("%f", "%U", …) dropped and "%%" kept as "%".
QStringList execArguments(const QString& exec);
// Starts what the autostart entry of the identifier starts, as the desktop does at login,
// detached from this program. False with the reason in the error text: the entry is missing or
// names no program, its program is missing or not executable, or it could not be started.
bool launchAutostartEntry(const QString& identifier, QString* error = nullptr);

// The MIDI server process to wait for after a driver change: $CORVANE_MIDI_SERVER when set.
// The ALSA sequencer lives in the kernel, so by default there is none.
QString midiServerPath();

} // namespace corvane::InstallPlatform
