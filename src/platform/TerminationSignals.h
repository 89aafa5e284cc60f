#pragma once

#include <QObject>

class QSocketNotifier;

namespace corvane {

// SIGTERM, SIGINT and SIGHUP (the session logging out) turned into one signal on the event
// loop. The handler only writes a byte into a socket pair; everything else happens in the loop.
// Only the first signal is reported: the application then writes its configuration and quits.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    // Installs the handlers; one object per process.
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

    bool isInstalled() const { return m_notifier != nullptr; }

Q_SIGNALS:
    void terminationRequested(int signalNumber);

private:
    void readSignal();

    QSocketNotifier* m_notifier = nullptr;
    bool m_reported = false;
};

} // namespace corvane
