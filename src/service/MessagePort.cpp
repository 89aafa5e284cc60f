#include "service/MessagePort.h"

#include "core/Log.h"
#include "service/PortPlatform.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <utility>

namespace corvane {

namespace {

// Every local port of the process, so a request's wait can serve them.
std::vector<LocalMessagePort*>& livePorts()
{
    static std::vector<LocalMessagePort*> ports;
    return ports;
}

// Who was last refused at each name the process looks up, so that a lookup repeated every
// 0.2 s logs a refusal once, and again only when something changed.
std::map<QString, std::optional<unsigned>>& refusedLookups()
{
    static std::map<QString, std::optional<unsigned>> refused;
    return refused;
}

enum class Refusal
{
    Logged,
    LoggedOnce
};

bool peerIsSameUser(qintptr descriptor, const QString& portName, Refusal refusal = Refusal::Logged)
{
    const PortPlatform& platform = PortPlatform::current();
    const std::optional<unsigned> peer = platform.peerUserId(descriptor);
    if (peer && *peer == platform.userId()) {
        refusedLookups().erase(portName);
        return true;
    }
    if (refusal == Refusal::LoggedOnce) {
        const auto known = refusedLookups().find(portName);
        if (known != refusedLookups().end() && known->second == peer)
            return false;
        refusedLookups()[portName] = peer;
    }
    log(QStringLiteral("message port %1: dropped a connection from %2")
            .arg(portName,
                 peer ? QStringLiteral("user %1").arg(*peer) : QStringLiteral("an unknown user")));
    return false;
}

int remainingMs(QDeadlineTimer deadline)
{
    const qint64 ms = deadline.remainingTime();
    if (ms < 0)
        return -1;
    return int(std::min<qint64>(ms, 1000 * 60));
}

} // namespace

struct LocalMessagePort::Connection
{
    QLocalSocket* socket = nullptr;
    MessageFrameReader reader;
    bool dispatching = false;
    bool closed = false;
};

std::unique_ptr<LocalMessagePort> LocalMessagePort::create(const QString& name, Callback callback)
{
    const QString path = PortPlatform::portPath(name);
    if (path.isEmpty())
        return nullptr;

    {
        // A listener of this user that answers owns the name; a socket nobody answers on, or
        // another user's, is taken over.
        QLocalSocket probe;
        probe.connectToServer(path);
        if (probe.state() == QLocalSocket::ConnectedState || probe.waitForConnected(50)) {
            // Another user's listener has no claim to a name in this user's folder: it is
            // replaced, not obeyed.
            const bool ours = peerIsSameUser(probe.socketDescriptor(), name);
            probe.abort();
            if (ours)
                return nullptr;
        } else {
            // A listener too busy to accept at once is still alive: its name stays its own.
            const QLocalSocket::LocalSocketError error = probe.error();
            const QString reason = probe.errorString();
            probe.abort();
            if (error != QLocalSocket::ConnectionRefusedError &&
                error != QLocalSocket::ServerNotFoundError) {
                log(QStringLiteral("message port %1: %2 does not answer (%3); left alone")
                        .arg(name, path, reason));
                return nullptr;
            }
        }
    }
    QLocalServer::removeServer(path);

    auto* server = new QLocalServer;
    server->setSocketOptions(QLocalServer::NoOptions);
    if (!server->listen(path)) {
        log(QStringLiteral("message port %1: cannot listen at %2: %3")
                .arg(name, path, server->errorString()));
        delete server;
        return nullptr;
    }
    return std::unique_ptr<LocalMessagePort>(
        new LocalMessagePort(name, path, server, std::move(callback)));
}

LocalMessagePort::LocalMessagePort(const QString& name, const QString& path, QLocalServer* server,
                                   Callback callback)
    : m_name(name), m_path(path), m_server(server), m_callback(std::move(callback))
{
    m_server->setParent(this);
    connect(m_server, &QLocalServer::newConnection, this, &LocalMessagePort::acceptConnections);
    livePorts().push_back(this);
}

LocalMessagePort::~LocalMessagePort()
{
    auto& ports = livePorts();
    ports.erase(std::remove(ports.begin(), ports.end(), this), ports.end());
    m_callback = nullptr;
    for (auto& connection : m_connections) {
        connection->socket->disconnect(this);
        connection->socket->abort();
    }
    if (m_server)
        m_server->close();
}

bool LocalMessagePort::isValid() const
{
    return m_server && m_server->isListening();
}

void LocalMessagePort::invalidate()
{
    if (!isValid())
        return;
    // A connection whose frame is being handled (the callback invalidated its own port) is
    // closed by its reading loop once the callback returns; it must outlive this call.
    std::vector<std::unique_ptr<Connection>> kept;
    for (auto& connection : m_connections) {
        connection->socket->disconnect(this);
        connection->socket->abort();
        if (connection->dispatching) {
            connection->closed = true;
            kept.push_back(std::move(connection));
        } else {
            connection->socket->deleteLater();
        }
    }
    m_connections = std::move(kept);
    m_server->close();
    Q_EMIT invalidated();
}

void LocalMessagePort::acceptConnections()
{
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        if (!peerIsSameUser(socket->socketDescriptor(), m_name)) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
        auto connection = std::make_unique<Connection>();
        connection->socket = socket;
        Connection* raw = connection.get();
        m_connections.push_back(std::move(connection));
        connect(socket, &QLocalSocket::readyRead, this, [this, raw] { readConnection(raw); });
        connect(socket, &QLocalSocket::disconnected, this, [this, raw] { dropConnection(raw); });
        // Bytes may have come with the connection itself.
        if (socket->bytesAvailable() > 0)
            readConnection(raw);
    }
}

void LocalMessagePort::dropConnection(Connection* connection)
{
    if (connection->dispatching) {
        connection->closed = true;
        return;
    }
    auto it = std::find_if(m_connections.begin(), m_connections.end(),
                           [connection](const auto& c) { return c.get() == connection; });
    if (it == m_connections.end())
        return;
    connection->socket->disconnect(this);
    connection->socket->deleteLater();
    m_connections.erase(it);
}

void LocalMessagePort::readConnection(Connection* connection)
{
    connection->reader.readFrom(*connection->socket);
    // A callback that waits on a request serves this socket again; the frames it reads are
    // picked up by the loop below once the callback returns.
    if (connection->dispatching)
        return;
    connection->dispatching = true;
    QPointer<LocalMessagePort> self(this);
    MessageFrame frame;
    for (;;) {
        const MessageFrameReader::Status status = connection->reader.next(frame);
        if (status == MessageFrameReader::Status::NeedMore)
            break;
        if (status == MessageFrameReader::Status::Invalid) {
            log(QStringLiteral("message port %1: closed a connection: %2")
                    .arg(m_name, connection->reader.errorString()));
            connection->closed = true;
            break;
        }
        // Nothing on a receiving port awaits replies.
        if (frame.flags & MessageFrame::IsReply)
            continue;
        QByteArray reply;
        if (m_callback) {
            Callback callback = m_callback; // the port may be invalidated from inside
            reply = callback(this, frame);
        }
        if (!self)
            return; // the port went away inside the callback, with this connection
        if (connection->closed)
            break;
        if (frame.flags & MessageFrame::WantsReply) {
            QByteArray out;
            MessageFrame::appendTo(out, frame.code, MessageFrame::IsReply, frame.sequence, reply);
            connection->socket->write(out);
            connection->socket->flush();
            // A peer that asks and never reads would have its answers held here without end.
            if (connection->socket->bytesToWrite() > MaxUnreadReplyBytes) {
                log(QStringLiteral("message port %1: dropped a connection that reads none of "
                                   "its replies (%2 bytes unread)")
                        .arg(m_name)
                        .arg(connection->socket->bytesToWrite()));
                connection->closed = true;
                break;
            }
        }
    }
    connection->dispatching = false;
    if (connection->closed) {
        // abort() reports the hang-up at once; the connection is dropped here, exactly once.
        connection->socket->disconnect(this);
        connection->socket->abort();
        dropConnection(connection);
    }
}

void LocalMessagePort::serveOnce(QLocalSocket* awaited, QDeadlineTimer deadline)
{
    std::vector<pollfd> fds;
    std::vector<QPointer<QObject>> owners;
    auto watch = [&](qintptr fd, QObject* owner) {
        if (fd < 0)
            return;
        fds.push_back(pollfd{int(fd), POLLIN, 0});
        owners.emplace_back(owner);
    };
    watch(awaited->socketDescriptor(), awaited);
    for (LocalMessagePort* port : livePorts()) {
        if (!port->isValid())
            continue;
        watch(port->m_server->socketDescriptor(), port->m_server);
        for (const auto& connection : port->m_connections)
            watch(connection->socket->socketDescriptor(), connection->socket);
    }
    const int ready = ::poll(fds.data(), nfds_t(fds.size()), remainingMs(deadline));
    if (ready <= 0)
        return; // time-out, or a signal: the caller looks at the deadline again
    for (std::size_t i = 0; i < fds.size(); ++i) {
        if (fds[i].revents == 0 || !owners[i])
            continue;
        // The wait functions with no time read what is there and emit the usual signals, so
        // frames go through the same handlers as in the event loop.
        if (auto* server = qobject_cast<QLocalServer*>(owners[i].data()))
            server->waitForNewConnection(0);
        else if (auto* socket = qobject_cast<QLocalSocket*>(owners[i].data()))
            socket->waitForReadyRead(0);
    }
}

std::shared_ptr<RemoteMessagePort> RemoteMessagePort::create(const QString& name)
{
    const QString path = PortPlatform::portPath(name);
    if (path.isEmpty())
        return nullptr;
    auto* socket = new QLocalSocket;
    socket->connectToServer(path);
    if (socket->state() != QLocalSocket::ConnectedState && !socket->waitForConnected(50)) {
        delete socket;
        // Gone: a refused listener that comes back is news again.
        refusedLookups().erase(name);
        return nullptr;
    }
    if (!peerIsSameUser(socket->socketDescriptor(), name, Refusal::LoggedOnce)) {
        socket->abort();
        delete socket;
        return nullptr;
    }
    // A keyset message is over a megabyte of XML; a send buffer that holds it whole lets the
    // send finish within its time-out however busy the receiver is (the system caps the size).
    const int sendBuffer = 4 * 1024 * 1024;
    ::setsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_SNDBUF, &sendBuffer,
                 sizeof sendBuffer);
    return std::shared_ptr<RemoteMessagePort>(new RemoteMessagePort(name, socket));
}

RemoteMessagePort::RemoteMessagePort(const QString& name, QLocalSocket* socket)
    : m_name(name), m_socket(socket)
{
    m_socket->setParent(this);
    connect(m_socket, &QLocalSocket::readyRead, this, &RemoteMessagePort::readIncoming);
    connect(m_socket, &QLocalSocket::disconnected, this, &RemoteMessagePort::markInvalid);
    connect(m_socket, &QLocalSocket::bytesWritten, this, &RemoteMessagePort::noticeDrained);
}

RemoteMessagePort::~RemoteMessagePort()
{
    m_socket->disconnect(this);
    m_socket->abort();
}

bool RemoteMessagePort::isValid() const
{
    if (m_invalid || m_socket->state() != QLocalSocket::ConnectedState)
        return false;
    // The hang-up may still be waiting in the event loop; ask the socket itself.
    char byte;
    const ssize_t got =
        ::recv(int(m_socket->socketDescriptor()), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    if (got == 0 || (got < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) {
        m_invalid = true;
        return false;
    }
    return true;
}

void RemoteMessagePort::invalidate()
{
    if (m_socket->state() != QLocalSocket::UnconnectedState)
        m_socket->abort();
    markInvalid();
}

void RemoteMessagePort::markInvalid()
{
    m_invalid = true;
    if (m_announced)
        return;
    m_announced = true;
    Q_EMIT invalidated();
}

bool RemoteMessagePort::drain(QDeadlineTimer deadline)
{
    m_socket->flush();
    while (m_socket->bytesToWrite() > 0) {
        const int ms = remainingMs(deadline);
        if (ms <= 0 || m_socket->state() != QLocalSocket::ConnectedState)
            return false;
        m_socket->waitForBytesWritten(ms);
    }
    return true;
}

bool RemoteMessagePort::writeFrame(MessageID id, std::uint32_t flags, std::uint32_t sequence,
                                   QByteArrayView body, QDeadlineTimer deadline)
{
    // An earlier frame still partly queued must go first, or the stream would lose its framing.
    if (m_socket->bytesToWrite() > 0 && !drain(deadline))
        return false;
    m_frame.resize(0);
    MessageFrame::appendTo(m_frame, id, flags, sequence, body);
    if (m_socket->write(m_frame) != m_frame.size())
        return false;
    return drain(deadline);
}

qint64 RemoteMessagePort::queuedBytes() const
{
    return m_socket->bytesToWrite();
}

void RemoteMessagePort::setReplyOverdue(bool overdue)
{
    const bool was = isResponding();
    m_replyOverdue = overdue;
    if (was != isResponding())
        Q_EMIT respondingChanged(isResponding());
}

void RemoteMessagePort::setWriteBlocked(bool blocked)
{
    const bool was = isResponding();
    m_writeBlocked = blocked;
    if (!blocked)
        m_dropping = false;
    if (was != isResponding())
        Q_EMIT respondingChanged(isResponding());
}

void RemoteMessagePort::noticeDrained()
{
    if (m_writeBlocked && m_socket->bytesToWrite() == 0)
        setWriteBlocked(false);
}

bool RemoteMessagePort::enqueue(MessageID id, std::uint32_t flags, std::uint32_t sequence,
                                QByteArrayView body)
{
    m_frame.resize(0);
    MessageFrame::appendTo(m_frame, id, flags, sequence, body);
    if (m_socket->bytesToWrite() + m_frame.size() > MaxQueuedBytes) {
        if (!std::exchange(m_dropping, true)) {
            log(QStringLiteral("message port %1: the other side reads nothing; %2 bytes are held "
                               "for it and messages to it are dropped until it reads again")
                    .arg(m_name)
                    .arg(m_socket->bytesToWrite()));
        }
        return false;
    }
    // Takes what the socket accepts without waiting; the event loop writes the rest.
    if (m_socket->write(m_frame) != m_frame.size())
        return false;
    m_socket->flush();
    return true;
}

std::uint32_t RemoteMessagePort::nextSequence()
{
    std::uint32_t sequence = ++m_lastSequence;
    if (sequence == 0)
        sequence = ++m_lastSequence;
    return sequence;
}

RemoteMessagePort::Status RemoteMessagePort::send(MessageID id, QByteArrayView body,
                                                  int sendTimeoutMs)
{
    if (!isValid())
        return Status::IsInvalid;
    noticeDrained();
    if (m_writeBlocked) {
        // Not waited for again: held until it reads, or dropped past the bound.
        return enqueue(id, 0, 0, body) ? Status::Queued : Status::SendTimeout;
    }
    if (!writeFrame(id, 0, 0, body, QDeadlineTimer(sendTimeoutMs))) {
        if (!isValid())
            return Status::IsInvalid;
        setWriteBlocked(true);
        return Status::SendTimeout;
    }
    return Status::Success;
}

RemoteMessagePort::Status RemoteMessagePort::sendRequest(MessageID id, QByteArrayView body,
                                                         int sendTimeoutMs, int receiveTimeoutMs,
                                                         QByteArray& reply)
{
    if (!isValid())
        return Status::IsInvalid;
    noticeDrained();
    if (!isResponding()) {
        // Asked, not waited for: its reply, whenever it comes, shows the peer answers again.
        enqueue(id, MessageFrame::WantsReply, nextSequence(), body);
        return Status::ReceiveTimeout;
    }
    // A callback served during the wait may drop the messenger's reference to this port.
    const std::shared_ptr<RemoteMessagePort> keepAlive = shared_from_this();
    const std::uint32_t sequence = nextSequence();
    if (!writeFrame(id, MessageFrame::WantsReply, sequence, body, QDeadlineTimer(sendTimeoutMs))) {
        if (!isValid())
            return Status::IsInvalid;
        setWriteBlocked(true);
        return Status::SendTimeout;
    }
    m_awaited[sequence] = std::nullopt;

    const QDeadlineTimer deadline(receiveTimeoutMs);
    for (;;) {
        // Frames already read (a reply may have come with an earlier read) are looked at first.
        readIncoming();
        auto it = m_awaited.find(sequence);
        if (it != m_awaited.end() && it->second) {
            reply = std::move(*it->second);
            m_awaited.erase(it);
            return Status::Success;
        }
        if (!isValid()) {
            m_awaited.erase(sequence);
            return Status::IsInvalid;
        }
        if (deadline.hasExpired()) {
            m_awaited.erase(sequence);
            setReplyOverdue(true);
            return Status::ReceiveTimeout;
        }
        LocalMessagePort::serveOnce(m_socket, deadline);
    }
}

void RemoteMessagePort::readIncoming()
{
    m_reader.readFrom(*m_socket);
    MessageFrame frame;
    for (;;) {
        const MessageFrameReader::Status status = m_reader.next(frame);
        if (status == MessageFrameReader::Status::NeedMore)
            return;
        if (status == MessageFrameReader::Status::Invalid) {
            log(QStringLiteral("message port %1: closed the connection: %2")
                    .arg(m_name, m_reader.errorString()));
            invalidate();
            return;
        }
        if (frame.flags & MessageFrame::IsReply) {
            if (m_replyOverdue)
                setReplyOverdue(false);
            // A reply nobody waits for any more (its request timed out) is dropped.
            auto it = m_awaited.find(frame.sequence);
            if (it != m_awaited.end() && !it->second)
                it->second = std::move(frame.body);
            continue;
        }
        // The other side sends its messages to our own port; anything arriving here that asks
        // for an answer gets an empty one, as every request must.
        if (frame.flags & MessageFrame::WantsReply) {
            QByteArray out;
            MessageFrame::appendTo(out, frame.code, MessageFrame::IsReply, frame.sequence, {});
            m_socket->write(out);
            m_socket->flush();
        }
    }
}

} // namespace corvane
