#pragma once

#include <QObject>

class QSocketNotifier;

namespace corvane {

// SIGTERM, SIGINT and SIGHUP (the session logging out) turned into a signal on the event loop.
// The handler only writes a byte into a socket pair; everything else happens in the loop.
//
// Termination is a state, not an event: once asked, the process stays asked. Every signal is
// reported (the first may arrive while a nested loop that is about to be left runs), and
// requested() tells code that runs outside the loop (before exec(), after a modal dialog) that
// it is to end rather than go on.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    // Installs the handlers, unless catchEarly() already did; one object per process.
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

    // Installs the handlers before there is an event loop to report to: a signal that arrives
    // meanwhile is kept and reported once the object exists and its loop runs.
    static bool catchEarly();
    // Whether a termination signal arrived, reported or not.
    static bool requested();

    bool isInstalled() const { return m_notifier != nullptr; }

Q_SIGNALS:
    void terminationRequested(int signalNumber);

private:
    void readSignal();

    QSocketNotifier* m_notifier = nullptr;
};

} // namespace corvane
