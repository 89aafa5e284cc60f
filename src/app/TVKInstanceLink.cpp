#include "app/TVKInstanceLink.h"

#include "core/Log.h"
#include "service/PortPlatform.h"

#include <QLocalServer>
#include <QLocalSocket>

namespace {

const QString kInstancePort = QStringLiteral("CorvaneInstance");
// A request is a few paths; anything longer is not one of ours.
constexpr qint64 kMaxRequest = 1 << 20;

// Only this user's processes are spoken to or listened to; anyone else is refused with a line in
// the log.
bool peerIsThisUser(const QLocalSocket& socket, const QString& what)
{
    const corvane::PortPlatform& platform = corvane::PortPlatform::current();
    const std::optional<unsigned> peer = platform.peerUserId(socket.socketDescriptor());
    if (peer && *peer == platform.userId())
        return true;
    corvane::log(QStringLiteral("single instance: refused %1 of %2")
                     .arg(what, peer ? QStringLiteral("user %1").arg(*peer)
                                     : QStringLiteral("an unknown user")));
    return false;
}

} // namespace

TVKInstanceLink::TVKInstanceLink(QObject* parent) : QObject(parent) {}

TVKInstanceLink::~TVKInstanceLink() = default;

bool TVKInstanceLink::sendToRunningInstance(const QStringList& files, int timeoutMs)
{
    const QString path = corvane::PortPlatform::portPath(kInstancePort);
    if (path.isEmpty())
        return false;
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(timeoutMs))
        return false;
    // Another user's listener never gets the files; this process becomes the instance.
    if (!peerIsThisUser(socket, QStringLiteral("the listener at %1").arg(path)))
        return false;
    // One path per line, an empty line to end.
    QByteArray request;
    for (const QString& file : files)
        request += file.toUtf8() + '\n';
    request += '\n';
    socket.write(request);
    if (!socket.waitForBytesWritten(timeoutMs))
        return false;
    // The running instance closes the link once it has the request.
    socket.waitForDisconnected(timeoutMs);
    return true;
}

bool TVKInstanceLink::listen()
{
    const QString path = corvane::PortPlatform::portPath(kInstancePort);
    if (path.isEmpty())
        return false;
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server->listen(path)) {
        // Nobody of this user answered there (the caller asked first): the socket is a leftover
        // or another user's, and the name is this user's.
        QLocalServer::removeServer(path);
        if (!m_server->listen(path))
            return false;
    }
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            if (!peerIsThisUser(*socket, QStringLiteral("a request"))) {
                socket->abort();
                socket->deleteLater();
                continue;
            }
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                if (socket->bytesAvailable() > kMaxRequest) {
                    socket->abort();
                    return;
                }
                const QByteArray all = socket->peek(kMaxRequest);
                if (!all.endsWith("\n\n") && all != "\n")
                    return;
                socket->readAll();
                QStringList files;
                for (const QByteArray& line : all.split('\n')) {
                    if (!line.isEmpty())
                        files.append(QString::fromUtf8(line));
                }
                socket->disconnectFromServer();
                Q_EMIT openRequested(files);
            });
        }
    });
    return true;
}
