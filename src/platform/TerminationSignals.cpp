#include "platform/TerminationSignals.h"

#include <QSocketNotifier>
#include <cerrno>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int s_pipe[2] = {-1, -1};
const int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

void onSignal(int signalNumber)
{
    const int saved = errno;
    const char byte = char(signalNumber);
    [[maybe_unused]] const ssize_t ignored = ::write(s_pipe[1], &byte, 1);
    errno = saved;
}

} // namespace

corvane::TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent)
{
    if (s_pipe[0] < 0 &&
        ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, s_pipe) != 0)
        return;
    m_notifier = new QSocketNotifier(s_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::readSignal);
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signalNumber : kSignals)
        ::sigaction(signalNumber, &action, nullptr);
}

corvane::TerminationSignals::~TerminationSignals()
{
    if (!m_notifier)
        return;
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    for (const int signalNumber : kSignals)
        ::sigaction(signalNumber, &action, nullptr);
}

void corvane::TerminationSignals::readSignal()
{
    char byte = 0;
    while (::read(s_pipe[0], &byte, 1) == 1) {
        if (!m_reported) {
            m_reported = true;
            Q_EMIT terminationRequested(int(byte));
        }
    }
}
