#pragma once

#include "service/MessageFrame.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QObject>
#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

class QLocalServer;
class QLocalSocket;

namespace corvane {

// A named port that other processes of the same user send to: a listening local socket in the
// user's port folder. Frames are handed to the callback one at a time on the main thread; a
// frame that asks for a reply gets exactly one, made of what the callback returned.
class LocalMessagePort : public QObject
{
    Q_OBJECT

public:
    // Gets the whole frame, so a receiver can tell requests from one-way messages.
    using Callback = std::function<QByteArray(LocalMessagePort* port, const MessageFrame& frame)>;

    // Nothing when the name is held by a live listener (another copy of the program) or the
    // socket cannot be made. A socket file left behind by a dead process is replaced.
    static std::unique_ptr<LocalMessagePort> create(const QString& name, Callback callback);
    ~LocalMessagePort() override;

    // Replies held for a peer that reads none of them: past this the peer is dropped, so that
    // one that only sends cannot make this process hold its answers without end.
    static constexpr qint64 MaxUnreadReplyBytes = 1024 * 1024;

    QString name() const { return m_name; }
    QString path() const { return m_path; }
    bool isValid() const;
    // Stops listening, drops every connection and removes the socket file.
    void invalidate();
    int connectionCount() const { return int(m_connections.size()); }

Q_SIGNALS:
    void invalidated();

private:
    friend class RemoteMessagePort;
    struct Connection;

    LocalMessagePort(const QString& name, const QString& path, QLocalServer* server,
                     Callback callback);
    void acceptConnections();
    void readConnection(Connection* connection);
    void dropConnection(Connection* connection);

    // Runs one round of the wait of a request: blocks until one of the watched sockets (the
    // remote end awaiting the reply and every local port's sockets) has something, or the
    // deadline passes, and serves what arrived.
    static void serveOnce(QLocalSocket* awaited, QDeadlineTimer deadline);

    QString m_name;
    QString m_path;
    QLocalServer* m_server;
    Callback m_callback;
    std::vector<std::unique_ptr<Connection>> m_connections;
};

// The sending end: a connection to another process's named port.
class RemoteMessagePort : public QObject, public std::enable_shared_from_this<RemoteMessagePort>
{
    Q_OBJECT

public:
    enum class Status
    {
        Success,
        SendTimeout,
        ReceiveTimeout,
        IsInvalid,
        // Held for a peer that reads nothing at the moment: it goes when the peer reads again.
        Queued
    };

    // What is held for a peer that reads nothing before messages to it are dropped: the
    // largest frame and then some.
    static constexpr qint64 MaxQueuedBytes = qint64(MessageFrame::MaxBodyLength) + 1024 * 1024;

    // Nothing when no process listens under that name at this moment.
    static std::shared_ptr<RemoteMessagePort> create(const QString& name);
    ~RemoteMessagePort() override;

    QString name() const { return m_name; }
    // Connected and the other process still there. A dead peer is noticed at once, even before
    // the event loop has delivered the hang-up.
    bool isValid() const;
    void invalidate();
    // False once a request went unanswered within its receive time-out or a frame could not be
    // handed over within its send time-out, until the peer answers a request or has read
    // everything held for it. Meanwhile nothing waits on it: sends are queued (up to
    // MaxQueuedBytes, then dropped with one log line) and requests go out without waiting for
    // their reply.
    bool isResponding() const { return !m_replyOverdue && !m_writeBlocked; }
    qint64 queuedBytes() const;

    // Succeeds when the whole frame is handed to the system within the send time-out. A frame
    // that was only partly written stays queued so the stream keeps its framing, and the peer
    // counts as not responding.
    Status send(MessageID id, QByteArrayView body, int sendTimeoutMs);
    // Sends a frame asking for a reply and waits for it, serving this process's own ports
    // meanwhile; reply is only written on success. A peer not responding is not waited for.
    Status sendRequest(MessageID id, QByteArrayView body, int sendTimeoutMs, int receiveTimeoutMs,
                       QByteArray& reply);

Q_SIGNALS:
    // The other process closed the connection or the port was invalidated.
    void invalidated();
    void respondingChanged(bool responding);

private:
    RemoteMessagePort(const QString& name, QLocalSocket* socket);
    bool writeFrame(MessageID id, std::uint32_t flags, std::uint32_t sequence, QByteArrayView body,
                    QDeadlineTimer deadline);
    bool drain(QDeadlineTimer deadline);
    // Writes what the socket takes now and holds the rest, or drops the frame past the bound.
    bool enqueue(MessageID id, std::uint32_t flags, std::uint32_t sequence, QByteArrayView body);
    std::uint32_t nextSequence();
    void readIncoming();
    void markInvalid();
    void setReplyOverdue(bool overdue);
    void setWriteBlocked(bool blocked);
    // The peer has read everything held for it.
    void noticeDrained();

    QString m_name;
    QLocalSocket* m_socket;
    MessageFrameReader m_reader;
    QByteArray m_frame;
    std::uint32_t m_lastSequence = 0;
    std::map<std::uint32_t, std::optional<QByteArray>> m_awaited;
    mutable bool m_invalid = false;
    bool m_announced = false;
    bool m_replyOverdue = false;
    bool m_writeBlocked = false;
    bool m_dropping = false;
};

} // namespace corvane
