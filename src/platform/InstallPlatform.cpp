#include "platform/InstallPlatform.h"

#include "core/PlistCodec.h"
#include "platform/DesktopEntries.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#include <QThread>
#include <csignal>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

namespace corvane::InstallPlatform {

namespace {

QString dataHome()
{
    const QString set = qEnvironmentVariable("XDG_DATA_HOME");
    return set.isEmpty() ? QDir::homePath() + QStringLiteral("/.local/share") : set;
}

QString configHome()
{
    const QString set = qEnvironmentVariable("XDG_CONFIG_HOME");
    return set.isEmpty() ? QDir::homePath() + QStringLiteral("/.config") : set;
}

QString readLink(const QString& path)
{
    const QByteArray local = QFile::encodeName(path);
    QByteArray target(4096, '\0');
    const ssize_t length = ::readlink(local.constData(), target.data(), size_t(target.size()));
    if (length <= 0)
        return QString();
    target.truncate(int(length));
    return QFile::decodeName(target);
}

QString withoutDeletedMark(QString path)
{
    static const QString deleted = QStringLiteral(" (deleted)");
    if (path.endsWith(deleted))
        path.chop(deleted.size());
    return path;
}

// The bundle folder a path lies in, or nothing.
QString enclosingBundle(const QString& path)
{
    QString folder = QFileInfo(path).path();
    while (folder.size() > 1) {
        if (folder.endsWith(QStringLiteral(".app")))
            return folder;
        folder = QFileInfo(folder).path();
    }
    return QString();
}

bool copyRecursively(const QString& source, const QString& destination, QString* error)
{
    const QFileInfo info(source);
    if (info.isSymLink()) {
        // A link stays a link: the support folder may point at programs installed elsewhere.
        if (!QFile::link(readLink(source), destination)) {
            if (error)
                *error = QStringLiteral("\"%1\" could not be linked to \"%2\".")
                             .arg(destination, readLink(source));
            return false;
        }
        return true;
    }
    if (info.isDir()) {
        if (!QDir().mkpath(destination)) {
            if (error)
                *error = QStringLiteral("The folder \"%1\" could not be made.").arg(destination);
            return false;
        }
        const QFileInfoList entries = QDir(source).entryInfoList(
            QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
        for (const QFileInfo& entry : entries) {
            if (!copyRecursively(entry.filePath(), destination + u'/' + entry.fileName(), error))
                return false;
        }
        return true;
    }
    QFile file(source);
    if (!file.copy(destination)) {
        if (error)
            *error = QStringLiteral("\"%1\" could not be copied to \"%2\": %3")
                         .arg(source, destination, file.errorString());
        return false;
    }
    return true;
}

} // namespace

QString applicationBundlePath()
{
    const QString set = qEnvironmentVariable("CORVANE_BUNDLE_DIR");
    if (!set.isEmpty())
        return QDir::cleanPath(set);
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           QStringLiteral("/../share/corvane"));
}

QString expandUserPath(const QString& path)
{
    static const QString midiDrivers = QStringLiteral("~/Library/Audio/MIDI Drivers");
    static const QString support = QStringLiteral("~/Library/Application Support");
    static const QString applications = QStringLiteral("/Applications");
    const auto under = [&](const QString& prefix) {
        return path == prefix || path.startsWith(prefix + u'/');
    };
    if (under(midiDrivers))
        return dataHome() + QStringLiteral("/MIDI Drivers") + path.mid(midiDrivers.size());
    if (under(support))
        return dataHome() + path.mid(support.size());
    if (under(applications))
        return QDir::homePath() + QStringLiteral("/Applications") + path.mid(applications.size());
    if (path == u"~" || path.startsWith(QStringLiteral("~/")))
        return QDir::homePath() + path.mid(1);
    return path;
}

std::optional<BundleInfo> readBundle(const QString& bundlePath)
{
    const PlistReadResult read = PlistCodec::readFile(bundlePath + QStringLiteral("/Info.plist"));
    if (!read.ok || !read.value.isDict())
        return std::nullopt;
    return BundleInfo{read.value.value(u"CFBundleIdentifier").toString(),
                      read.value.value(u"CFBundleVersion").toString(),
                      read.value.value(u"CFBundleExecutable").toString()};
}

bool removeItem(const QString& path, QString* error)
{
    const QFileInfo info(path);
    bool removed = true;
    if (info.isDir() && !info.isSymLink())
        removed = QDir(path).removeRecursively();
    else if (info.exists() || info.isSymLink())
        removed = QFile::remove(path);
    if (!removed && error)
        *error = QStringLiteral("\"%1\" could not be removed.").arg(path);
    return removed;
}

bool copyItem(const QString& source, const QString& destination, QString* error)
{
    const QFileInfo info(source);
    if (!info.exists() && !info.isSymLink()) {
        if (error)
            *error = QStringLiteral("The file \"%1\" doesn't exist.").arg(source);
        return false;
    }
    return copyRecursively(source, destination, error);
}

std::vector<Process> userProcesses()
{
    std::vector<Process> processes;
    const uint uid = ::getuid();
    const QStringList pids =
        QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& name : pids) {
        bool numeric = false;
        const qint64 pid = name.toLongLong(&numeric);
        if (!numeric || pid == QCoreApplication::applicationPid())
            continue;
        const QString folder = QStringLiteral("/proc/") + name;
        if (QFileInfo(folder).ownerId() != uid)
            continue;
        Process process{pid, {}};
        const QString exe = withoutDeletedMark(readLink(folder + QStringLiteral("/exe")));
        if (!exe.isEmpty())
            process.paths.append(exe);
        QFile cmdline(folder + QStringLiteral("/cmdline"));
        if (cmdline.open(QIODevice::ReadOnly)) {
            const QList<QByteArray> arguments = cmdline.read(1 << 16).split('\0');
            for (int i = 0; i < std::min<qsizetype>(2, arguments.size()); ++i) {
                const QString argument = QFile::decodeName(arguments[i]);
                if (argument.startsWith(u'/') && !process.paths.contains(argument))
                    process.paths.append(argument);
            }
        }
        if (!process.paths.isEmpty())
            processes.push_back(std::move(process));
    }
    return processes;
}

std::vector<qint64> processesOfBundle(const QString& identifier)
{
    std::vector<qint64> found;
    if (identifier.isEmpty())
        return found;
    QHash<QString, QString> identifiers; // bundle folder -> its identifier
    for (const Process& process : userProcesses()) {
        for (const QString& path : process.paths) {
            const QString bundle = enclosingBundle(path);
            if (bundle.isEmpty())
                continue;
            if (!identifiers.contains(bundle)) {
                const std::optional<BundleInfo> info = readBundle(bundle);
                identifiers.insert(bundle, info ? info->identifier : QString());
            }
            if (identifiers.value(bundle) == identifier) {
                found.push_back(process.pid);
                break;
            }
        }
    }
    return found;
}

bool isRunning(const QString& executable)
{
    if (executable.isEmpty())
        return false;
    for (const Process& process : userProcesses()) {
        if (process.paths.contains(executable))
            return true;
    }
    return false;
}

void forceQuit(qint64 pid)
{
    if (pid <= 0 || ::kill(pid_t(pid), SIGTERM) != 0)
        return;
    QElapsedTimer clock;
    clock.start();
    const QString stat = QStringLiteral("/proc/%1/stat").arg(pid);
    while (clock.elapsed() < 2000) {
        QFile file(stat);
        // Gone, or a zombie waiting for its parent: it has quit.
        if (!file.open(QIODevice::ReadOnly))
            return;
        const QByteArray line = file.readAll();
        const qsizetype close = line.lastIndexOf(')');
        if (close > 0 && line.mid(close + 2, 1) == "Z")
            return;
        QThread::msleep(20);
    }
    ::kill(pid_t(pid), SIGKILL);
}

bool launchBundle(const QString& bundlePath, QString* error)
{
    const std::optional<BundleInfo> info = readBundle(bundlePath);
    if (!info || info->executable.isEmpty()) {
        if (error)
            *error = QStringLiteral("\"%1\" is not an application.").arg(bundlePath);
        return false;
    }
    const QString executable = bundlePath + u'/' + info->executable;
    // Detached from whoever started Corvane: a helper that kept the caller's terminal or pipe
    // would write into it, and a script reading Corvane's output would wait for the helper.
    QProcess helper;
    helper.setProgram(executable);
    helper.setWorkingDirectory(bundlePath);
    helper.setStandardInputFile(QProcess::nullDevice());
    helper.setStandardOutputFile(QProcess::nullDevice());
    helper.setStandardErrorFile(QProcess::nullDevice());
    if (!helper.startDetached()) {
        if (error)
            *error = QStringLiteral("\"%1\" could not be started.").arg(executable);
        return false;
    }
    return true;
}

QStringList shellOutputLines(const QString& command, int lineLength)
{
    QProcess shell;
    shell.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command});
    if (!shell.waitForFinished(5000)) {
        shell.kill();
        shell.waitForFinished(1000);
    }
    QStringList lines;
    const QList<QByteArray> raw = shell.readAllStandardOutput().split('\n');
    for (qsizetype i = 0; i < raw.size(); ++i) {
        QByteArray line = raw[i];
        if (i == raw.size() - 1 && line.isEmpty())
            break;
        // fgets with a buffer of lineLength keeps lineLength - 1 bytes per read.
        while (line.size() >= lineLength) {
            lines.append(QString::fromLocal8Bit(line.left(lineLength - 1)));
            line.remove(0, lineLength - 1);
        }
        lines.append(QString::fromLocal8Bit(line));
    }
    return lines;
}

QString autostartEntryPath(const QString& identifier)
{
    return configHome() + QStringLiteral("/autostart/") + identifier + QStringLiteral(".desktop");
}

bool setLoginItemEnabled(const QString& identifier, const QString& launcherBundlePath, bool enabled)
{
    const QString path = autostartEntryPath(identifier);
    if (!enabled)
        return removeItem(path);
    const std::optional<BundleInfo> info = readBundle(launcherBundlePath);
    if (!info || info->executable.isEmpty())
        return false;
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QString exec = launcherBundlePath + u'/' + info->executable;
    exec.replace(u'\\', QStringLiteral("\\\\")).replace(u'"', QStringLiteral("\\\""));
    const QString entry =
        QStringLiteral("[Desktop Entry]\n"
                       "Type=Application\n"
                       "Name=Corvane background service\n"
                       "Comment=Performs the actions of the Corvane control surfaces\n"
                       "Exec=\"%1\"\n"
                       "NoDisplay=true\n"
                       "X-GNOME-Autostart-enabled=true\n")
            .arg(exec);
    file.write(entry.toUtf8());
    if (!file.commit())
        return false;
    return launchBundle(launcherBundlePath);
}

QStringList execArguments(const QString& exec)
{
    QStringList arguments;
    QString current;
    bool inArgument = false;
    bool quoted = false;
    for (qsizetype i = 0; i < exec.size(); ++i) {
        const QChar c = exec.at(i);
        if (quoted) {
            if (c == u'"') {
                quoted = false;
            } else if (c == u'\\' && i + 1 < exec.size()) {
                current += exec.at(++i);
            } else {
                current += c;
            }
            continue;
        }
        if (c == u' ' || c == u'\t') {
            if (inArgument)
                arguments.append(std::exchange(current, {}));
            inArgument = false;
            continue;
        }
        inArgument = true;
        if (c == u'"') {
            quoted = true;
        } else if (c == u'%' && i + 1 < exec.size()) {
            // Field codes stand for files and URLs; a login start has none.
            if (exec.at(++i) == u'%')
                current += u'%';
        } else {
            current += c;
        }
    }
    if (inArgument && !(current.isEmpty() && arguments.isEmpty()))
        arguments.append(current);
    arguments.removeAll(QString());
    return arguments;
}

bool launchAutostartEntry(const QString& identifier, QString* error)
{
    const auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return false;
    };
    const QString path = autostartEntryPath(identifier);
    if (!QFileInfo(path).isFile())
        return fail(QStringLiteral("The autostart entry “%1” is missing.").arg(path));
    const std::optional<DesktopApplication> entry =
        DesktopEntries::readEntry(path, identifier, DesktopEntries::userLanguage());
    const QStringList arguments = entry ? execArguments(entry->exec) : QStringList();
    if (arguments.isEmpty()) {
        return fail(
            QStringLiteral("The autostart entry “%1” names no program to start.").arg(path));
    }
    const QFileInfo program(arguments.first());
    if (!program.isAbsolute() || !program.exists()) {
        return fail(QStringLiteral("“%1”, which the autostart entry “%2” starts, is "
                                   "missing.")
                        .arg(arguments.first(), path));
    }
    if (!program.isFile() || !program.isExecutable()) {
        return fail(QStringLiteral("“%1”, which the autostart entry “%2” starts, is "
                                   "not an executable program.")
                        .arg(arguments.first(), path));
    }
    // Detached, its output to nowhere, as the desktop starts it at login.
    QProcess helper;
    helper.setProgram(program.absoluteFilePath());
    helper.setArguments(arguments.mid(1));
    helper.setWorkingDirectory(QDir::homePath());
    helper.setStandardInputFile(QProcess::nullDevice());
    helper.setStandardOutputFile(QProcess::nullDevice());
    helper.setStandardErrorFile(QProcess::nullDevice());
    if (!helper.startDetached())
        return fail(QStringLiteral("“%1” could not be started.").arg(arguments.first()));
    return true;
}

QString midiServerPath()
{
    return qEnvironmentVariable("CORVANE_MIDI_SERVER");
}

} // namespace corvane::InstallPlatform
