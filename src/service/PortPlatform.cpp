#include "service/PortPlatform.h"

#include "core/Log.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace corvane {

namespace {

const PortPlatform* s_platform = nullptr;

QString errnoText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// The service's port is looked up every 0.2 s while it is missing: a folder that stays unusable
// is reported once, not five times a second.
QString s_lastRefusal;

void refuse(const QString& reason)
{
    if (reason == s_lastRefusal)
        return;
    s_lastRefusal = reason;
    log(reason);
}

} // namespace

const PortPlatform& PortPlatform::current()
{
    static const SystemPortPlatform system;
    return s_platform ? *s_platform : system;
}

void PortPlatform::setCurrent(const PortPlatform* platform)
{
    s_platform = platform;
}

QString PortPlatform::portPath(const QString& portName)
{
    // A zero byte would cut the socket path short and make two names one.
    const bool control =
        std::any_of(portName.cbegin(), portName.cend(), [](QChar c) { return c.unicode() < 0x20; });
    if (portName.isEmpty() || control || portName.contains(QLatin1Char('/')) ||
        portName == QLatin1String(".") || portName == QLatin1String("..")) {
        refuse(QStringLiteral("message port name \"%1\" is not a plain name").arg(portName));
        return QString();
    }
    const QString folder = current().portFolder();
    if (folder.isEmpty())
        return QString();
    const QString path = folder + QLatin1Char('/') + portName;
    // The address holds the path and its terminating zero.
    if (QFile::encodeName(path).size() >= qsizetype(sizeof(sockaddr_un::sun_path))) {
        refuse(QStringLiteral("message port path %1 is longer than a local socket address allows "
                              "(%2 bytes)")
                   .arg(path)
                   .arg(sizeof(sockaddr_un::sun_path) - 1));
        return QString();
    }
    s_lastRefusal.clear();
    return path;
}

QString SystemPortPlatform::portFolder() const
{
    QString folder = qEnvironmentVariable("TVK_PORT_DIR");
    if (folder.isEmpty()) {
        const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
        folder = runtime.isEmpty() ? QStringLiteral("/tmp/tvk-%1").arg(userId())
                                   : runtime + QStringLiteral("/tvk");
    }
    const QByteArray native = QFile::encodeName(folder);
    if (::mkdir(native.constData(), 0700) != 0 && errno != EEXIST) {
        refuse(QStringLiteral("cannot create message port folder %1: %2")
                   .arg(folder, errnoText(errno)));
        return QString();
    }
    // Another user could otherwise plant a listener under our port names, or read our traffic.
    struct stat info;
    if (::lstat(native.constData(), &info) != 0) {
        refuse(QStringLiteral("cannot examine message port folder %1: %2")
                   .arg(folder, errnoText(errno)));
        return QString();
    }
    if (!S_ISDIR(info.st_mode)) {
        refuse(QStringLiteral("message port folder %1 is not a directory").arg(folder));
        return QString();
    }
    if (info.st_uid != userId()) {
        refuse(QStringLiteral("message port folder %1 belongs to user %2, not to user %3")
                   .arg(folder)
                   .arg(info.st_uid)
                   .arg(userId()));
        return QString();
    }
    if ((info.st_mode & 077) != 0) {
        refuse(QStringLiteral("message port folder %1 is open to other users (mode %2)")
                   .arg(folder)
                   .arg(info.st_mode & 0777, 4, 8, QLatin1Char('0')));
        return QString();
    }
    return folder;
}

std::optional<unsigned> SystemPortPlatform::peerUserId(qintptr socketDescriptor) const
{
    if (socketDescriptor < 0)
        return std::nullopt;
    ucred credentials{};
    socklen_t size = sizeof(credentials);
    if (::getsockopt(int(socketDescriptor), SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0 ||
        size != sizeof(credentials))
        return std::nullopt;
    return unsigned(credentials.uid);
}

unsigned SystemPortPlatform::userId() const
{
    return unsigned(::geteuid());
}

} // namespace corvane
