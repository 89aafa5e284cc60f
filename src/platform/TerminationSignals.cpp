#include "platform/TerminationSignals.h"

#include <QSocketNotifier>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int s_pipe[2] = {-1, -1};
std::atomic<bool> s_requested = false;
const int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

void onSignal(int signalNumber)
{
    const int saved = errno;
    s_requested.store(true);
    const char byte = char(signalNumber);
    [[maybe_unused]] const ssize_t ignored = ::write(s_pipe[1], &byte, 1);
    errno = saved;
}

void setHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signalNumber : kSignals)
        ::sigaction(signalNumber, &action, nullptr);
}

} // namespace

bool corvane::TerminationSignals::catchEarly()
{
    if (s_pipe[0] < 0 &&
        ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, s_pipe) != 0) {
        s_pipe[0] = s_pipe[1] = -1;
        return false;
    }
    setHandler(onSignal);
    return true;
}

bool corvane::TerminationSignals::requested()
{
    return s_requested.load();
}

corvane::TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent)
{
    if (!catchEarly())
        return;
    m_notifier = new QSocketNotifier(s_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::readSignal);
}

corvane::TerminationSignals::~TerminationSignals()
{
    if (m_notifier)
        setHandler(SIG_DFL);
}

void corvane::TerminationSignals::readSignal()
{
    char byte = 0;
    while (::read(s_pipe[0], &byte, 1) == 1)
        Q_EMIT terminationRequested(int(byte));
}
