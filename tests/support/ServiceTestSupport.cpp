#include "ServiceTestSupport.h"

#include "TestConfig.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QThread>

namespace corvane::test {

void ensureApplication()
{
    if (QCoreApplication::instance())
        return;
    static int argc = 1;
    static char name[] = "service_tests";
    static char* argv[] = {name, nullptr};
    static QCoreApplication* app = new QCoreApplication(argc, argv);
    (void)app;
}

void LinkTest::SetUp()
{
    ensureApplication();
    TVKKeyset::resetTargetIDs();
    model = std::make_unique<CorvaneModelData>();
    delegate.model = model.get();
}

QByteArray hex(const char* text)
{
    return QByteArray::fromHex(QByteArray(text).replace(' ', ""));
}

bool spinUntil(const std::function<bool()>& condition, int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::usleep(200);
    }
    return true;
}

void spinFor(int ms)
{
    const QDeadlineTimer deadline(ms);
    while (!deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::usleep(200);
    }
}

PortFolder::PortFolder()
{
    m_hadPrevious = qEnvironmentVariableIsSet("TVK_PORT_DIR");
    m_previous = qgetenv("TVK_PORT_DIR");
    qputenv("TVK_PORT_DIR", QFile::encodeName(m_dir.path()));
}

PortFolder::~PortFolder()
{
    if (m_hadPrevious)
        qputenv("TVK_PORT_DIR", m_previous);
    else
        qunsetenv("TVK_PORT_DIR");
}

RawService::RawService(const QString& socketPath)
{
    QLocalServer::removeServer(socketPath);
    m_server.listen(socketPath);
    QObject::connect(&m_server, &QLocalServer::newConnection, [this] {
        while (QLocalSocket* socket = m_server.nextPendingConnection()) {
            auto reader = std::make_unique<MessageFrameReader>();
            MessageFrameReader* raw = reader.get();
            m_sockets.emplace_back(socket, std::move(reader));
            QObject::connect(socket, &QLocalSocket::readyRead,
                             [this, socket, raw] { read(socket, raw); });
            read(socket, raw);
        }
    });
}

RawService::~RawService()
{
    stop();
}

void RawService::stop()
{
    for (auto& [socket, reader] : m_sockets) {
        socket->disconnect();
        socket->abort();
        delete socket;
    }
    m_sockets.clear();
    m_server.close();
}

void RawService::read(QLocalSocket* socket, MessageFrameReader* reader)
{
    reader->readFrom(*socket);
    MessageFrame frame;
    while (reader->next(frame) == MessageFrameReader::Status::Ready) {
        m_frames.push_back(frame);
        if ((frame.flags & MessageFrame::WantsReply) && answer) {
            if (const std::optional<QByteArray> reply = answer(frame)) {
                socket->write(MessageFrame::encode(frame.code, MessageFrame::IsReply,
                                                   frame.sequence, *reply));
                socket->flush();
            }
        }
    }
}

std::vector<MessageFrame> RawService::framesWithCode(MessageID code) const
{
    std::vector<MessageFrame> found;
    for (const MessageFrame& frame : m_frames) {
        if (frame.code == code)
            found.push_back(frame);
    }
    return found;
}

void RecordingDelegate::hardwareControlChangeForGroup(qint64 group, qint64 control, qint64 axis,
                                                      qint64 value)
{
    calls.push_back({QStringLiteral("hardwareControlChange"), {group, control, axis, value}});
}

void RecordingDelegate::handleCurrentControlInfoForKeyset(qint64 keyset, qint64 layer, qint64 group,
                                                          qint64 control)
{
    calls.push_back({QStringLiteral("currentControlInfo"), {keyset, layer, group, control}});
}

void RecordingDelegate::handleConnectionStateChange(bool connected)
{
    calls.push_back({QStringLiteral("connectionStateChange"), {connected ? 1 : 0}});
}

SimulatorProcess::SimulatorProcess(const PortFolder& folder, const QStringList& arguments,
                                   const QString& configHome)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("TVK_PORT_DIR"), folder.path());
    env.insert(QStringLiteral("XDG_CONFIG_HOME"),
               configHome.isEmpty() ? folder.path() + QStringLiteral("/config") : configHome);
    m_process.setProcessEnvironment(env);
    m_process.setProgram(program());
    m_process.setArguments(arguments);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, [this] { readOutput(); });
}

SimulatorProcess::~SimulatorProcess()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(5000);
    }
}

QString SimulatorProcess::program()
{
    return QStringLiteral(CORVANE_BINARY_DIR "/tools/service-sim/corvane-service-sim");
}

bool SimulatorProcess::start()
{
    m_process.start();
    if (!m_process.waitForStarted(5000))
        return false;
    return waitForEvent(QStringLiteral("listening")).has_value();
}

void SimulatorProcess::command(const QString& line)
{
    m_process.write((line + u'\n').toUtf8());
    m_process.waitForBytesWritten(1000);
}

void SimulatorProcess::readOutput()
{
    m_pending.append(m_process.readAllStandardOutput());
    qsizetype newline;
    while ((newline = m_pending.indexOf('\n')) >= 0) {
        const QByteArray line = m_pending.left(newline);
        m_pending.remove(0, newline + 1);
        m_lines.push_back(QJsonDocument::fromJson(line).object());
    }
}

std::optional<QJsonObject>
SimulatorProcess::waitFor(const std::function<bool(const QJsonObject&)>& match, int timeoutMs,
                          qsizetype from)
{
    std::optional<QJsonObject> found;
    spinUntil(
        [&] {
            readOutput();
            for (std::size_t i = std::size_t(from); i < m_lines.size(); ++i) {
                if (match(m_lines[i])) {
                    found = m_lines[i];
                    return true;
                }
            }
            return m_process.state() == QProcess::NotRunning;
        },
        timeoutMs);
    return found;
}

std::optional<QJsonObject> SimulatorProcess::waitForEvent(const QString& event, qsizetype from)
{
    return waitFor(
        [&](const QJsonObject& line) { return line.value(u"event").toString() == event; }, 5000,
        from);
}

int SimulatorProcess::count(const std::function<bool(const QJsonObject&)>& match) const
{
    int n = 0;
    for (const QJsonObject& line : m_lines)
        n += match(line) ? 1 : 0;
    return n;
}

void SimulatorProcess::terminate()
{
    m_process.terminate();
    m_process.waitForFinished(5000);
}

void SimulatorProcess::kill()
{
    m_process.kill();
    m_process.waitForFinished(5000);
}

std::function<bool(const QJsonObject&)> hasCode(const QString& code)
{
    return [code](const QJsonObject& line) { return line.value(u"code").toString() == code; };
}

} // namespace corvane::test
