#include "service/MessagePort.h"

#include "ServiceTestSupport.h"
#include "core/Log.h"
#include "service/MessageCatalogue.h"
#include "service/PortPlatform.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

namespace {

class MessagePortTest : public ::testing::Test
{
protected:
    void SetUp() override { ensureApplication(); }
    PortFolder folder;
};

// Claims every peer belongs to another user.
class ForeignPeerPlatform : public SystemPortPlatform
{
public:
    std::optional<unsigned> peerUserId(qintptr) const override { return userId() + 4242; }
};

struct PlatformOverride
{
    explicit PlatformOverride(const PortPlatform* platform) { PortPlatform::setCurrent(platform); }
    ~PlatformOverride() { PortPlatform::setCurrent(nullptr); }
};

bool logContains(const LogCapture& capture, const QString& part)
{
    for (const QString& line : capture.lines()) {
        if (line.contains(part))
            return true;
    }
    return false;
}

} // namespace

TEST_F(MessagePortTest, ALiveNameIsRefusedAndAStaleOneTakenOver)
{
    auto first = LocalMessagePort::create(QStringLiteral("TVK_Test"), nullptr);
    ASSERT_TRUE(first);
    EXPECT_TRUE(first->isValid());
    EXPECT_FALSE(LocalMessagePort::create(QStringLiteral("TVK_Test"), nullptr));
    // The refused attempt left the live port alone.
    EXPECT_TRUE(RemoteMessagePort::create(QStringLiteral("TVK_Test")));
    first.reset();
    EXPECT_FALSE(QFile::exists(folder.socketPath(QStringLiteral("TVK_Test"))));

    // A socket file whose process died without cleaning up.
    const QByteArray path = QFile::encodeName(folder.socketPath(QStringLiteral("TVK_Test")));
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.constData(), std::size_t(path.size()));
    ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ::close(fd);
    ASSERT_TRUE(QFile::exists(QString::fromLocal8Bit(path)));
    EXPECT_FALSE(RemoteMessagePort::create(QStringLiteral("TVK_Test")));
    auto second = LocalMessagePort::create(QStringLiteral("TVK_Test"), nullptr);
    EXPECT_TRUE(second);
    second.reset();

    // A live listener that is too busy to take the probe still owns its name.
    const int busy = ::socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(::bind(busy, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(busy, 0), 0);
    std::vector<int> queued;
    for (int i = 0; i < 16; ++i) {
        const int client = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
        queued.push_back(client);
        if (::connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
            break; // the queue is full
    }
    EXPECT_FALSE(LocalMessagePort::create(QStringLiteral("TVK_Test"), nullptr));
    EXPECT_TRUE(QFile::exists(QString::fromLocal8Bit(path)));
    for (const int client : queued)
        ::close(client);
    ::close(busy);
}

TEST_F(MessagePortTest, APortInvalidatedByItsOwnCallbackClosesCleanly)
{
    int calls = 0;
    auto service = LocalMessagePort::create(QStringLiteral("TVK_Service"),
                                            [&](LocalMessagePort* port, const MessageFrame&) {
                                                ++calls;
                                                port->invalidate();
                                                return QByteArray("late");
                                            });
    ASSERT_TRUE(service);
    QLocalSocket client;
    client.connectToServer(service->path());
    ASSERT_TRUE(client.waitForConnected(1000));
    // Two frames in one write, the first asking for a reply: the second must not be handled by
    // a port that has gone, and no reply is written on a closed connection.
    QByteArray stream = MessageFrame::encode(msg::Cnct, MessageFrame::WantsReply, 1, {});
    MessageFrame::appendTo(stream, msg::ChEL, 0, 0, {});
    client.write(stream);
    client.flush();
    EXPECT_TRUE(spinUntil([&] { return !service->isValid(); }));
    EXPECT_TRUE(spinUntil([&] { return client.state() == QLocalSocket::UnconnectedState; }));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(service->connectionCount(), 0);
    EXPECT_EQ(client.bytesAvailable(), 0);
}

TEST_F(MessagePortTest, OneWayAndRequestFramesReachTheCallback)
{
    std::vector<MessageFrame> received;
    auto service = LocalMessagePort::create(
        QStringLiteral("TVK_Service"), [&](LocalMessagePort*, const MessageFrame& frame) {
            received.push_back(frame);
            return frame.flags & MessageFrame::WantsReply ? QByteArray("reply:") + frame.body
                                                          : QByteArray("ignored");
        });
    ASSERT_TRUE(service);
    EXPECT_FALSE(RemoteMessagePort::create(QStringLiteral("TVK_Nobody")));
    auto remote = RemoteMessagePort::create(QStringLiteral("TVK_Service"));
    ASSERT_TRUE(remote);
    EXPECT_TRUE(remote->isValid());

    EXPECT_EQ(remote->send(msg::ChEK, QByteArray("\x02\0\0\0", 4), 50),
              RemoteMessagePort::Status::Success);
    // The wait of a request serves the process's own ports, so an in-process service answers.
    QByteArray reply = "untouched";
    EXPECT_EQ(remote->sendRequest(msg::RqCC, QByteArray("abc"), 50, 1000, reply),
              RemoteMessagePort::Status::Success);
    EXPECT_EQ(reply, QByteArray("reply:abc"));
    ASSERT_EQ(received.size(), 2u);
    EXPECT_EQ(received[0].code, msg::ChEK);
    EXPECT_EQ(received[0].flags, 0u);
    EXPECT_EQ(received[1].code, msg::RqCC);
    EXPECT_EQ(received[1].flags, std::uint32_t(MessageFrame::WantsReply));

    // The "ignored" answer of the one-way message never came back as a frame: the next request
    // still gets its own reply.
    EXPECT_EQ(remote->sendRequest(msg::Cnct, {}, 50, 1000, reply),
              RemoteMessagePort::Status::Success);
    EXPECT_EQ(reply, QByteArray("reply:"));
}

TEST_F(MessagePortTest, ARequestServesIncomingMessagesWhileItWaits)
{
    std::vector<MessageID> appReceived;
    auto app = LocalMessagePort::create(QStringLiteral("TVK_App"),
                                        [&](LocalMessagePort*, const MessageFrame& frame) {
                                            appReceived.push_back(frame.code);
                                            return QByteArray();
                                        });
    std::shared_ptr<RemoteMessagePort> toApp;
    auto service = LocalMessagePort::create(
        QStringLiteral("TVK_Service"), [&](LocalMessagePort*, const MessageFrame& frame) {
            // The service tells the application something before it answers.
            if (!toApp)
                toApp = RemoteMessagePort::create(QStringLiteral("TVK_App"));
            toApp->send(msg::CnSt, msg::encodeConnectionState(true), 50);
            return frame.body;
        });
    auto remote = RemoteMessagePort::create(QStringLiteral("TVK_Service"));
    ASSERT_TRUE(app && service && remote);
    QByteArray reply;
    ASSERT_EQ(remote->sendRequest(msg::Cnct, QByteArray("x"), 50, 1000, reply),
              RemoteMessagePort::Status::Success);
    // Served by the request's wait (or just after it, by the event loop): never lost.
    EXPECT_TRUE(spinUntil([&] { return !appReceived.empty(); }));
    EXPECT_EQ(appReceived.front(), msg::CnSt);
}

TEST_F(MessagePortTest, APeerThatQuitsIsInvalidAtOnce)
{
    auto service = LocalMessagePort::create(QStringLiteral("TVK_Service"), nullptr);
    auto remote = RemoteMessagePort::create(QStringLiteral("TVK_Service"));
    ASSERT_TRUE(service && remote);
    spinFor(20);
    bool announced = false;
    QObject::connect(remote.get(), &RemoteMessagePort::invalidated, [&] { announced = true; });
    service.reset();
    // No event loop has run: the socket itself is asked.
    EXPECT_FALSE(remote->isValid());
    EXPECT_EQ(remote->send(msg::TCtl, {}, 50), RemoteMessagePort::Status::IsInvalid);
    QByteArray reply = "untouched";
    EXPECT_EQ(remote->sendRequest(msg::Cnct, {}, 50, 1000, reply),
              RemoteMessagePort::Status::IsInvalid);
    EXPECT_EQ(reply, QByteArray("untouched"));
    EXPECT_TRUE(spinUntil([&] { return announced; }));
}

TEST_F(MessagePortTest, ASilentServiceFailsTheRequestAfterTheReceiveTimeOut)
{
    RawService silent(folder.socketPath(QStringLiteral("TVK_Corvane")));
    auto remote = RemoteMessagePort::create(QStringLiteral("TVK_Corvane"));
    ASSERT_TRUE(remote);
    QByteArray reply = "untouched";
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(remote->sendRequest(msg::Cnct, {}, 50, 1000, reply),
              RemoteMessagePort::Status::ReceiveTimeout);
    EXPECT_GE(clock.elapsed(), 990);
    EXPECT_EQ(reply, QByteArray("untouched"));
    // A late reply to the abandoned request is dropped, and the link stays usable.
    spinUntil([&] { return !silent.frames().empty(); });
    ASSERT_EQ(silent.frames().size(), 1u);
    EXPECT_TRUE(remote->isValid());
}

TEST_F(MessagePortTest, RepliesAndHostileBytesFromTheWire)
{
    std::vector<MessageID> received;
    auto port = LocalMessagePort::create(QStringLiteral("TVK_App"),
                                         [&](LocalMessagePort*, const MessageFrame& frame) {
                                             received.push_back(frame.code);
                                             return QByteArray("ok");
                                         });
    ASSERT_TRUE(port);

    // One read carrying a one-way frame, a request and a stray reply: exactly one reply comes
    // back, for the request.
    QLocalSocket client;
    client.connectToServer(folder.socketPath(QStringLiteral("TVK_App")));
    ASSERT_TRUE(client.waitForConnected(1000));
    QByteArray burst;
    MessageFrame::appendTo(burst, msg::TCtl, 0, 0, QByteArray(16, '\0'));
    MessageFrame::appendTo(burst, msg::RqCC, MessageFrame::WantsReply, 5, {});
    MessageFrame::appendTo(burst, msg::Cnct, MessageFrame::IsReply, 9, {});
    client.write(burst);
    client.flush();
    MessageFrameReader reader;
    std::vector<MessageFrame> replies;
    spinUntil([&] {
        reader.readFrom(client);
        MessageFrame frame;
        while (reader.next(frame) == MessageFrameReader::Status::Ready)
            replies.push_back(frame);
        return received.size() == 2 && !replies.empty();
    });
    spinFor(50);
    reader.readFrom(client);
    ASSERT_EQ(replies.size(), 1u);
    EXPECT_EQ(replies[0].code, msg::RqCC);
    EXPECT_EQ(replies[0].flags, std::uint32_t(MessageFrame::IsReply));
    EXPECT_EQ(replies[0].sequence, 5u);
    EXPECT_EQ(replies[0].body, QByteArray("ok"));
    EXPECT_EQ(received, (std::vector<MessageID>{msg::TCtl, msg::RqCC}));

    // Garbage closes that connection, and only that one.
    const QByteArray hostile[] = {
        QByteArray::fromHex("5443746c 80000000 00000000 00000000"),
        QByteArray::fromHex("5443746c 00000000 00000000 ffffff7f"),
        QByteArray(64, '\xff'),
    };
    for (const QByteArray& bytes : hostile) {
        LogCapture capture;
        QLocalSocket attacker;
        attacker.connectToServer(folder.socketPath(QStringLiteral("TVK_App")));
        ASSERT_TRUE(attacker.waitForConnected(1000));
        attacker.write(bytes);
        attacker.flush();
        EXPECT_TRUE(spinUntil([&] { return attacker.state() == QLocalSocket::UnconnectedState; }))
            << bytes.toHex().constData();
        EXPECT_TRUE(logContains(capture, QStringLiteral("closed a connection")));
    }
    EXPECT_EQ(client.state(), QLocalSocket::ConnectedState);
    received.clear();
    client.write(MessageFrame::encode(msg::CurC, 0, 0, {}));
    client.flush();
    EXPECT_TRUE(spinUntil([&] { return received.size() == 1; }));
}

TEST_F(MessagePortTest, ConnectionsFromAnotherUserAreDropped)
{
    auto port = LocalMessagePort::create(QStringLiteral("TVK_App"), [](auto*, const auto&) {
        ADD_FAILURE() << "a foreign peer's frame was delivered";
        return QByteArray();
    });
    ASSERT_TRUE(port);
    ForeignPeerPlatform foreign;
    PlatformOverride platform(&foreign);
    LogCapture capture;

    // Our side refuses to send to a port held by someone else...
    EXPECT_FALSE(RemoteMessagePort::create(QStringLiteral("TVK_App")));
    // ...and the port drops a connection from someone else before reading anything.
    QLocalSocket stranger;
    stranger.connectToServer(folder.socketPath(QStringLiteral("TVK_App")));
    ASSERT_TRUE(stranger.waitForConnected(1000));
    stranger.write(MessageFrame::encode(msg::TCtl, 0, 0, QByteArray(16, '\1')));
    stranger.flush();
    EXPECT_TRUE(spinUntil([&] { return stranger.state() == QLocalSocket::UnconnectedState; }));
    EXPECT_EQ(port->connectionCount(), 0);
    EXPECT_TRUE(logContains(capture, QStringLiteral("dropped a connection from user")));
}

TEST_F(MessagePortTest, AnotherUsersListenerAtOurNameIsReplacedNotObeyed)
{
    auto theirs = LocalMessagePort::create(QStringLiteral("TVK_MessagePort_Crvn"), nullptr);
    ASSERT_TRUE(theirs);
    ForeignPeerPlatform foreign;
    PlatformOverride platform(&foreign);
    LogCapture capture;
    auto ours = LocalMessagePort::create(QStringLiteral("TVK_MessagePort_Crvn"), nullptr);
    ASSERT_TRUE(ours) << "the program would run send-only";
    EXPECT_TRUE(ours->isValid());
    EXPECT_TRUE(logContains(
        capture,
        QStringLiteral("message port TVK_MessagePort_Crvn: dropped a connection from user")));
}

TEST_F(MessagePortTest, AServiceOfAnotherUserIsLoggedOncePerChangeNotOnEveryLookup)
{
    ForeignPeerPlatform foreign;
    LogCapture capture;
    const auto refusals = [&] {
        return capture.lines()
            .filter(QStringLiteral("message port TVK_Corvane: dropped a connection from user"))
            .size();
    };
    auto service = std::make_unique<SimulatorProcess>(folder);
    ASSERT_TRUE(service->start());
    {
        PlatformOverride platform(&foreign);
        // A minute of 0.2 s lookups would be three hundred; the first one tells.
        for (int lookup = 0; lookup < 20; ++lookup)
            EXPECT_FALSE(RemoteMessagePort::create(QStringLiteral("TVK_Corvane")));
        EXPECT_EQ(refusals(), 1);
    }
    service->kill();
    service = std::make_unique<SimulatorProcess>(folder);
    {
        PlatformOverride platform(&foreign);
        // Gone and back: news again, once.
        EXPECT_FALSE(RemoteMessagePort::create(QStringLiteral("TVK_Corvane")));
        ASSERT_TRUE(service->start());
        for (int lookup = 0; lookup < 5; ++lookup)
            EXPECT_FALSE(RemoteMessagePort::create(QStringLiteral("TVK_Corvane")));
        EXPECT_EQ(refusals(), 2);
    }
    // Accepted in between, refused after: news again.
    EXPECT_TRUE(RemoteMessagePort::create(QStringLiteral("TVK_Corvane")));
    PlatformOverride platform(&foreign);
    EXPECT_FALSE(RemoteMessagePort::create(QStringLiteral("TVK_Corvane")));
    EXPECT_EQ(refusals(), 3);
}

TEST_F(MessagePortTest, UnsafeOrUnusableFoldersAreRefused)
{
    const QString open = folder.path() + QStringLiteral("/open");
    QDir().mkdir(open);
    ::chmod(QFile::encodeName(open).constData(), 0755);
    const QString foreign = folder.path() + QStringLiteral("/foreign");
    QDir().mkdir(foreign);
    ::chmod(QFile::encodeName(foreign).constData(), 0700);
    const bool canChown = ::chown(QFile::encodeName(foreign).constData(), 65534, 65534) == 0;
    const QString file = folder.path() + QStringLiteral("/file");
    QFile(file).open(QIODevice::WriteOnly);
    const QString deep = folder.path() + u'/' + QString(120, u'd');

    struct Case
    {
        QString folder;
        QString logged;
    };
    std::vector<Case> cases = {
        {open, QStringLiteral("is open to other users")},
        {file, QStringLiteral("is not a directory")},
        {deep, QStringLiteral("longer than a local socket address allows")},
    };
    if (canChown)
        cases.push_back({foreign, QStringLiteral("belongs to user 65534")});
    for (const Case& c : cases) {
        qputenv("TVK_PORT_DIR", QFile::encodeName(c.folder));
        LogCapture capture;
        EXPECT_FALSE(LocalMessagePort::create(QStringLiteral("TVK_App"), nullptr))
            << c.folder.toStdString();
        EXPECT_FALSE(RemoteMessagePort::create(QStringLiteral("TVK_App")));
        EXPECT_TRUE(logContains(capture, c.logged)) << c.logged.toStdString();
        // Looked up again and again while the folder stays as it is: reported once.
        EXPECT_EQ(capture.lines().size(), 1) << c.logged.toStdString();
    }

    // A missing folder is made, private to the user.
    const QString fresh = folder.path() + QStringLiteral("/fresh");
    qputenv("TVK_PORT_DIR", QFile::encodeName(fresh));
    EXPECT_TRUE(LocalMessagePort::create(QStringLiteral("TVK_App"), nullptr));
    struct stat info;
    ASSERT_EQ(::stat(QFile::encodeName(fresh).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
    // Without a folder of its own the link lives in the session's runtime folder.
    const QString runtime = folder.path() + QStringLiteral("/runtime");
    QDir().mkdir(runtime);
    qunsetenv("TVK_PORT_DIR");
    const QByteArray previousRuntime = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(runtime));
    EXPECT_TRUE(LocalMessagePort::create(QStringLiteral("TVK_App"), nullptr));
    EXPECT_TRUE(QFileInfo(runtime + QStringLiteral("/tvk")).isDir());
    qputenv("XDG_RUNTIME_DIR", previousRuntime);
    qputenv("TVK_PORT_DIR", QFile::encodeName(fresh));

    // Names cannot climb out of the folder.
    LogCapture capture;
    EXPECT_FALSE(LocalMessagePort::create(QStringLiteral("../TVK_App"), nullptr));
    // Nor be cut short: the local name of an ID of zero bytes.
    EXPECT_FALSE(
        LocalMessagePort::create(QStringLiteral("TVK_App") + QString(4, QChar(0)), nullptr));
    EXPECT_TRUE(logContains(capture, QStringLiteral("is not a plain name")));
}

TEST_F(MessagePortTest, APeerThatStopsReadingIsNotWaitedOnAndGetsEveryFrameInOrderOnceItReads)
{
    // A service that accepted the connection and reads nothing (yet).
    QLocalServer server;
    ASSERT_TRUE(server.listen(folder.socketPath(QStringLiteral("TVK_Corvane"))));
    auto remote = RemoteMessagePort::create(QStringLiteral("TVK_Corvane"));
    ASSERT_TRUE(remote);
    ASSERT_TRUE(spinUntil([&] { return server.hasPendingConnections(); }));
    QLocalSocket* peer = server.nextPendingConnection();
    ASSERT_TRUE(peer);
    std::vector<bool> responding;
    QObject::connect(remote.get(), &RemoteMessagePort::respondingChanged,
                     [&](bool now) { responding.push_back(now); });
    LogCapture log;

    // Large frames go until what the system holds for the peer is full: exactly one of them
    // waits its send time-out, and stays queued whole.
    const QByteArray large(1024 * 1024, 'k');
    std::vector<MessageID> expected;
    int waited = 0;
    while (remote->isResponding() && expected.size() < 64) {
        const RemoteMessagePort::Status status = remote->send(msg::TUpK, large, 50);
        ASSERT_TRUE(status == RemoteMessagePort::Status::Success ||
                    status == RemoteMessagePort::Status::SendTimeout);
        waited += status == RemoteMessagePort::Status::SendTimeout;
        expected.push_back(msg::TUpK);
    }
    ASSERT_FALSE(remote->isResponding());
    EXPECT_EQ(waited, 1);

    // From then on nothing waits: small frames and requests are queued, and a request is not
    // waited for.
    for (int i = 0; i < 200; ++i) {
        ASSERT_EQ(remote->send(msg::TCtl, QByteArray(16, char(i)), 50),
                  RemoteMessagePort::Status::Queued);
        expected.push_back(msg::TCtl);
    }
    QByteArray reply = "untouched";
    EXPECT_EQ(remote->sendRequest(msg::Cnct, {}, 50, 1000, reply),
              RemoteMessagePort::Status::ReceiveTimeout);
    EXPECT_EQ(reply, QByteArray("untouched"));
    expected.push_back(msg::Cnct);

    // Past the bound the rest is dropped, with one log line.
    int dropped = 0;
    for (qint64 held = remote->queuedBytes();
         held <= RemoteMessagePort::MaxQueuedBytes + 2 * large.size(); held += large.size()) {
        const RemoteMessagePort::Status status = remote->send(msg::TUpK, large, 50);
        if (status == RemoteMessagePort::Status::Queued)
            expected.push_back(msg::TUpK);
        else
            ++dropped;
    }
    EXPECT_GE(dropped, 2);
    EXPECT_LE(remote->queuedBytes(), RemoteMessagePort::MaxQueuedBytes);
    EXPECT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines().value(0).contains(QStringLiteral("messages to it are dropped")));

    // Reading again, the peer gets every frame that was not dropped, whole and in order.
    MessageFrameReader reader;
    std::vector<MessageID> got;
    ASSERT_TRUE(spinUntil(
        [&] {
            reader.readFrom(*peer);
            MessageFrame frame;
            while (reader.next(frame) == MessageFrameReader::Status::Ready)
                got.push_back(frame.code);
            return got.size() >= expected.size() && remote->isResponding();
        },
        20000));
    EXPECT_EQ(got, expected);
    EXPECT_EQ(responding, (std::vector<bool>{false, true}));
    EXPECT_EQ(remote->send(msg::TCtl, QByteArray(16, '\0'), 50),
              RemoteMessagePort::Status::Success);
}

TEST_F(MessagePortTest, RepliesAPeerNeverReadsAreBoundedAndThePeerDropped)
{
    auto port = LocalMessagePort::create(
        QStringLiteral("TVK_Corvane"),
        [](LocalMessagePort*, const MessageFrame&) { return QByteArray(1024, 'r'); });
    ASSERT_TRUE(port);
    LogCapture log;
    QLocalSocket client;
    client.connectToServer(folder.socketPath(QStringLiteral("TVK_Corvane")));
    ASSERT_TRUE(client.waitForConnected(1000));
    ASSERT_TRUE(spinUntil([&] { return port->connectionCount() == 1; }));

    // Four megabytes of replies asked for, none read.
    QByteArray requests;
    for (std::uint32_t i = 1; i <= 4000; ++i)
        MessageFrame::appendTo(requests, msg::RqCC, MessageFrame::WantsReply, i, {});
    client.write(requests);
    client.flush();
    ASSERT_TRUE(spinUntil([&] { return port->connectionCount() == 0; }, 10000));
    ASSERT_EQ(log.lines().size(), 1);
    EXPECT_TRUE(log.lines()[0].startsWith(
        QStringLiteral("message port TVK_Corvane: dropped a connection that reads none of its "
                       "replies")));
    EXPECT_TRUE(spinUntil([&] {
        client.readAll();
        return client.state() == QLocalSocket::UnconnectedState;
    }));
    // The port itself goes on serving.
    EXPECT_TRUE(port->isValid());
}
