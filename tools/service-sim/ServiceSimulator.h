#pragma once

#include "service/MessageFrame.h"
#include "service/MessagePort.h"

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QString>
#include <memory>
#include <vector>

class ConfigMirror;
class QSocketNotifier;

// Plays the background service over the real ports: listens as "TVK_Corvane", answers the
// application's requests, keeps a mirror of its configuration from the edit messages, and
// reports every frame as one JSON line on standard output. Commands arrive one per line on
// standard input.
class ServiceSimulator : public QObject
{
    Q_OBJECT

public:
    struct Options
    {
        QString configPath; // empty: the application's stored configuration
        bool surfaceConnected = true;
        bool quiet = false; // no line per frame (throughput measurements)
    };

    ServiceSimulator(const Options& options, std::unique_ptr<ConfigMirror> mirror);
    ~ServiceSimulator() override;

    // Starts listening; false (reason on standard error) when the port cannot be had.
    bool start();
    // Runs one command line; false only for "quit".
    bool runCommand(const QString& line);

Q_SIGNALS:
    void finished();

private:
    struct Outgoing
    {
        corvane::MessageID id;
        QByteArray body;
    };

    QByteArray receive(const corvane::MessageFrame& frame);
    void connectToApplication(std::uint32_t localID);
    void track(const corvane::MessageFrame& frame);
    bool sendToApplication(corvane::MessageID id, const QByteArray& body);
    void readCommands();
    void emitLine(const QJsonObject& object);
    void error(const QString& text);

    Options m_options;
    std::unique_ptr<ConfigMirror> m_mirror;
    std::unique_ptr<corvane::LocalMessagePort> m_port;
    std::shared_ptr<corvane::RemoteMessagePort> m_application;
    QSocketNotifier* m_input = nullptr;
    QByteArray m_pendingInput;

    // What the surface shows as selected, as learnt from the application.
    std::uint32_t m_keyset = 0;
    std::uint32_t m_layer = 0;
    std::uint32_t m_group = 0;
    std::uint32_t m_control = 0;
    bool m_surfaceConnected = true;
    std::vector<Outgoing> m_beforeReply;
};
