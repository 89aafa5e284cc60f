#pragma once

#include "model/CorvaneModelData.h"
#include "model/TVKModelData.h"
#include "service/MessageFrame.h"
#include "service/TVKMessengerDelegate.h"

#include <QByteArray>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace corvane::test {

// The tests need an event loop for the sockets; one application object serves them all.
void ensureApplication();
// Runs the event loop until the condition holds or the time is up; returns the condition.
bool spinUntil(const std::function<bool()>& condition, int timeoutMs = 5000);
void spinFor(int ms);

// A private port folder for one test ($TVK_PORT_DIR), so tests run side by side.
class PortFolder
{
public:
    PortFolder();
    ~PortFolder();
    QString path() const { return m_dir.path(); }
    QString socketPath(const QString& portName) const { return path() + u'/' + portName; }

private:
    QTemporaryDir m_dir;
    QByteArray m_previous;
    bool m_hadPrevious;
};

// A service written against the raw bytes: listens as "TVK_Corvane" with a plain local server,
// collects the frames it receives and answers requests through `answer` (no answer: silent).
class RawService
{
public:
    explicit RawService(const QString& socketPath);
    ~RawService();

    std::function<std::optional<QByteArray>(const MessageFrame&)> answer;

    void stop();
    const std::vector<MessageFrame>& frames() const { return m_frames; }
    std::vector<MessageFrame> framesWithCode(MessageID code) const;
    void clearFrames() { m_frames.clear(); }

private:
    void read(QLocalSocket* socket, MessageFrameReader* reader);

    QLocalServer m_server;
    std::vector<std::pair<QLocalSocket*, std::unique_ptr<MessageFrameReader>>> m_sockets;
    std::vector<MessageFrame> m_frames;
};

// Records the messenger's calls on its owner.
class RecordingDelegate : public TVKMessengerDelegate
{
public:
    struct Call
    {
        QString name;
        std::vector<qint64> args;
    };

    void hardwareControlChangeForGroup(qint64 group, qint64 control, qint64 axis,
                                       qint64 value) override;
    void handleCurrentControlInfoForKeyset(qint64 keyset, qint64 layer, qint64 group,
                                           qint64 control) override;
    void handleConnectionStateChange(bool connected) override;
    TVKModelData* modelData() const override { return model; }

    TVKModelData* model = nullptr;
    std::vector<Call> calls;
};

// The service simulator as a child process, its JSON lines collected as they come.
class SimulatorProcess
{
public:
    SimulatorProcess(const PortFolder& folder, const QStringList& arguments = {},
                     const QString& configHome = QString());
    ~SimulatorProcess();

    static QString program();

    // Starts it and waits until it listens.
    bool start();
    void command(const QString& line);
    // The first line from `from` on that matches; waits for it while running the event loop.
    std::optional<QJsonObject> waitFor(const std::function<bool(const QJsonObject&)>& match,
                                       int timeoutMs = 5000, qsizetype from = 0);
    std::optional<QJsonObject> waitForEvent(const QString& event, qsizetype from = 0);
    int count(const std::function<bool(const QJsonObject&)>& match) const;
    qsizetype lineCount() const { return qsizetype(m_lines.size()); }
    const std::vector<QJsonObject>& lines() const { return m_lines; }
    void terminate();
    void kill();
    QProcess& process() { return m_process; }

private:
    void readOutput();

    QProcess m_process;
    QByteArray m_pending;
    std::vector<QJsonObject> m_lines;
};

// A fresh model, a delegate that records the calls it gets and a private port folder: what every
// test of a messenger starts from.
class LinkTest : public ::testing::Test
{
protected:
    void SetUp() override;

    PortFolder folder;
    std::unique_ptr<CorvaneModelData> model;
    RecordingDelegate delegate;
};

// Bytes written as pairs of hexadecimal digits; blanks are ignored.
QByteArray hex(const char* text);

// Matches a received frame line by its code.
std::function<bool(const QJsonObject&)> hasCode(const QString& code);

} // namespace corvane::test
