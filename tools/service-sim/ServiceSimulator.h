#pragma once

#include "service/MessageFrame.h"
#include "service/MessagePort.h"

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
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
        bool quiet = false;       // no line per frame (throughput measurements)
        bool readCommands = true; // false: run until terminated, whatever standard input does
        bool timestamps = false;  // every line says when it happened ("us")
    };

    ServiceSimulator(const Options& options, std::unique_ptr<ConfigMirror> mirror);
    ~ServiceSimulator() override;

    // Starts listening; false (reason on standard error) when the port cannot be had.
    bool start();
    // Runs one command line; false only for "quit".
    bool runCommand(const QString& line);
    // A control of the surface touched (value 1) or let go (value 0), as the hardware reports it.
    bool touch(std::uint32_t group, std::uint32_t control, std::uint32_t value);
    // Commands beyond the service's own (the virtual surface's); true when taken.
    void setExtraCommands(std::function<bool(const QStringList& words)> handler)
    {
        m_extraCommands = std::move(handler);
    }
    // One JSON line on standard output; `at` is when it happened (now when not given), in
    // microseconds of the system's monotonic clock, which every process reads alike.
    void emitLine(QJsonObject object, qint64 at = -1);
    static qint64 now();
    // The configuration the service mirrors, and the keyset and layer it plays now.
    ConfigMirror* mirror() const { return m_mirror.get(); }
    std::uint32_t currentKeyset() const { return m_keyset; }
    std::uint32_t currentLayer() const { return m_layer; }

Q_SIGNALS:
    void finished();
    // The application lit a control on the surface ("TCtl" with value 1).
    void controlLit(std::uint32_t group, std::uint32_t control);

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
    std::function<bool(const QStringList&)> m_extraCommands;
};
