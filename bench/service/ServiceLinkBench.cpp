// The link to the service over the real sockets, against the simulator in its own process:
// the request/reply round trip and sustained one-way "TCtl" traffic, with the memory of both
// ends before and after.
#include "service/CorvaneMessenger.h"
#include "service/TVKMessengerDelegate.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <vector>

namespace {

class NullDelegate : public TVKMessengerDelegate
{
public:
    void hardwareControlChangeForGroup(qint64, qint64, qint64, qint64) override {}
    void handleCurrentControlInfoForKeyset(qint64, qint64, qint64, qint64) override {}
    void handleConnectionStateChange(bool) override {}
    TVKModelData* modelData() const override { return nullptr; }
};

// Resident memory of a process in kB.
double residentKB(qint64 pid)
{
    QFile statm(pid ? QStringLiteral("/proc/%1/statm").arg(pid)
                    : QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() > 1 ? fields[1].toDouble() * 4.0 : 0;
}

// One simulator and one messenger for a benchmark run.
class Link
{
public:
    Link()
    {
        qputenv("TVK_PORT_DIR", QFile::encodeName(m_dir.path()));
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir.path());
        m_sim.setProcessEnvironment(env);
        m_sim.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_sim.start(QStringLiteral(CORVANE_SERVICE_SIM), {QStringLiteral("--quiet")});
        m_sim.waitForStarted();
        const QDeadlineTimer deadline(5000);
        while (!m_sim.readAllStandardOutput().contains("listening") && !deadline.hasExpired())
            m_sim.waitForReadyRead(100);
        m_messenger = std::make_unique<CorvaneMessenger>(&m_delegate);
    }
    ~Link()
    {
        m_messenger.reset();
        m_sim.closeWriteChannel();
        m_sim.waitForFinished(5000);
    }
    bool ok() const { return m_messenger && m_messenger->isRemotePortValid(); }
    CorvaneMessenger& messenger() { return *m_messenger; }
    qint64 simPid() const { return m_sim.processId(); }
    // Every message sent before it has been handled once this returns.
    bool sync()
    {
        qint64 k, l, g, c;
        return m_messenger->requestKeyset(k, l, g, c);
    }

private:
    QTemporaryDir m_dir;
    QProcess m_sim;
    NullDelegate m_delegate;
    std::unique_ptr<CorvaneMessenger> m_messenger;
};

void BM_RequestRoundTrip(benchmark::State& state)
{
    Link link;
    if (!link.ok()) {
        state.SkipWithError("the service simulator did not start");
        return;
    }
    std::vector<double> micros;
    micros.reserve(1 << 20);
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        qint64 k, l, g, c;
        const bool answered = link.messenger().requestKeyset(k, l, g, c);
        const auto end = std::chrono::steady_clock::now();
        if (!answered) {
            state.SkipWithError("request failed");
            break;
        }
        micros.push_back(std::chrono::duration<double, std::micro>(end - start).count());
    }
    if (micros.empty())
        return;
    std::sort(micros.begin(), micros.end());
    state.counters["median_us"] = micros[micros.size() / 2];
    state.counters["p99_us"] = micros[std::min(micros.size() - 1, micros.size() * 99 / 100)];
}
BENCHMARK(BM_RequestRoundTrip)->MinTime(2.0);

void BM_OneWayControlState(benchmark::State& state)
{
    Link link;
    if (!link.ok()) {
        state.SkipWithError("the service simulator did not start");
        return;
    }
    constexpr int batch = 10000;
    // Warm up both ends before memory is measured.
    for (int i = 0; i < batch; ++i)
        link.messenger().sendControlStateMessage(i & 1, 3, i % 8, 0);
    link.sync();
    const double appBefore = residentKB(0);
    const double simBefore = residentKB(link.simPid());
    std::int64_t failed = 0;
    for (auto _ : state) {
        for (int i = 0; i < batch; ++i) {
            if (!link.messenger().sendControlStateMessage(i & 1, 3, i % 8, 0))
                ++failed;
        }
        // Sustained: the batch counts only once the service has taken all of it.
        if (!link.sync()) {
            state.SkipWithError("the service stopped answering");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * batch);
    state.counters["frames_per_s"] =
        benchmark::Counter(double(state.iterations() * batch), benchmark::Counter::kIsRate);
    state.counters["failed_sends"] = double(failed);
    state.counters["app_rss_growth_kB"] = residentKB(0) - appBefore;
    state.counters["sim_rss_growth_kB"] = residentKB(link.simPid()) - simBefore;
}
BENCHMARK(BM_OneWayControlState)->MinTime(3.0)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
