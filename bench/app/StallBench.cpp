// How long the controller's event loop is held by a service that does not answer: the longest
// gap between the turns of a 1 ms timer, at start-up and over the following seconds with a
// service that accepts and never replies, and over 100 touches with a service that stopped
// reading after what the system holds for it was full.
#include "app/CorvaneController.h"
#include "app/TVKNoViews.h"
#include "core/FourCharCode.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"
#include "service/TVK_PrivateMessenger.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <benchmark/benchmark.h>
#include <csignal>
#include <memory>
#include <vector>

namespace {

class Home
{
public:
    Home()
    {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_dir.path()));
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_dir.path()));
        qputenv("TVK_PORT_DIR", QFile::encodeName(m_dir.path()));
        corvane::TVKUserDefaults store;
        corvane::PlistValue dict = corvane::PlistValue::makeDict();
        CorvaneModelData model;
        model.addKeysetWithName(QStringLiteral("Edit"),
                                corvane::fourCharCodeFromString(QStringLiteral("Edit")));
        model.writeTo(dict);
        store.setObject(corvane::key::ModelData, dict);
        store.synchronize();
    }
    QString port() const { return m_dir.path() + QStringLiteral("/TVK_Corvane"); }

private:
    QTemporaryDir m_dir;
};

// The longest time between two turns of the event loop while it runs.
class StallWatch
{
public:
    StallWatch()
    {
        m_timer.setInterval(1);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            const qint64 now = m_clock.nsecsElapsed();
            m_longest = std::max(m_longest, now - m_last);
            m_last = now;
        });
        m_clock.start();
        m_timer.start();
    }
    double longestMs() const { return double(m_longest) / 1e6; }
    void reset()
    {
        m_longest = 0;
        m_last = m_clock.nsecsElapsed();
    }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_last = 0;
    qint64 m_longest = 0;
};

void runFor(int ms)
{
    const QDeadlineTimer deadline(ms);
    while (!deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
}

// A service that accepts and reads but never replies.
void BM_SilentService(benchmark::State& state)
{
    for (auto _ : state) {
        Home home;
        QLocalServer silent;
        silent.listen(home.port());
        std::vector<std::unique_ptr<QLocalSocket>> peers;
        QObject::connect(&silent, &QLocalServer::newConnection, [&] {
            while (QLocalSocket* socket = silent.nextPendingConnection()) {
                peers.emplace_back(socket);
                QObject::connect(socket, &QLocalSocket::readyRead, [socket] { socket->readAll(); });
            }
        });
        TVKNoViews views;
        CorvaneController controller;
        controller.setViews({&views, &views, &views, &views});
        QElapsedTimer startup;
        startup.start();
        controller.awakeFromNib(); // the start-up's request and the first check
        state.counters["startup_ms"] = double(startup.nsecsElapsed()) / 1e6;
        StallWatch watch;
        runFor(int(state.range(0)));
        state.counters["longest_stall_ms"] = watch.longestMs();
        state.counters["poll_interval_s"] = controller.connectionPollInterval() / 1000.0;
    }
}
BENCHMARK(BM_SilentService)->Arg(16000)->Iterations(1)->Unit(benchmark::kSecond);

// The simulator stopped (SIGSTOP) once the application is connected; keyset updates fill what
// the system holds for it, then 100 touches, one per turn of the event loop.
void BM_ServiceStoppedReading(benchmark::State& state)
{
    for (auto _ : state) {
        Home home;
        QProcess sim;
        sim.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        sim.start(QStringLiteral(CORVANE_SERVICE_SIM), {QStringLiteral("--quiet")});
        const QDeadlineTimer deadline(30000);
        while (!sim.readAllStandardOutput().contains("listening") && !deadline.hasExpired())
            sim.waitForReadyRead(100);
        TVKNoViews views;
        CorvaneController controller;
        controller.setViews({&views, &views, &views, &views});
        controller.awakeFromNib();
        if (!controller.connected()) {
            state.SkipWithError("the simulator did not answer");
            break;
        }
        ::kill(pid_t(sim.processId()), SIGSTOP);
        StallWatch watch;
        int updates = 0;
        QTimer filling;
        QObject::connect(&filling, &QTimer::timeout, [&] {
            controller.messenger()->sendUpdateKeysetMessage(
                1, controller.modelData()->keysetAtIndex(1));
            ++updates;
            if (!controller.messenger()->isServiceResponding() || updates == 64)
                filling.stop();
        });
        filling.start(0);
        while (filling.isActive())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        state.counters["fill_longest_stall_ms"] = watch.longestMs();
        state.counters["keyset_updates_to_fill"] = updates;

        watch.reset();
        int touches = 0;
        QElapsedTimer clock;
        clock.start();
        QTimer touching;
        QObject::connect(&touching, &QTimer::timeout, [&] {
            controller.hardwareControlChangeForGroup(0, touches % 2 ? 1 : 2, 0, 1);
            if (++touches == 100)
                touching.stop();
        });
        touching.start(0);
        while (touching.isActive())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        state.counters["touches_100_ms"] = double(clock.nsecsElapsed()) / 1e6;
        state.counters["touches_longest_stall_ms"] = watch.longestMs();

        // Going on, it reads everything that was held.
        ::kill(pid_t(sim.processId()), SIGCONT);
        QElapsedTimer drain;
        drain.start();
        while (!controller.messenger()->isServiceResponding() && drain.elapsed() < 30000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        state.counters["drained_ms"] = double(drain.nsecsElapsed()) / 1e6;
        sim.closeWriteChannel();
        sim.waitForFinished(5000);
    }
}
BENCHMARK(BM_ServiceStoppedReading)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
