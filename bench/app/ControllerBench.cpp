// The controller against a service over the real sockets: how long start-up takes to the first
// connection check, how fast a touch on the surface comes back as the two highlight messages,
// what an edit copied to all layers and its undo cost, how long quitting takes with fifty
// keysets, bringing a service that came back in step, and the recovery journal: one record, a
// thousand edits with the journal kept short, and what keeping it short costs the window.
#include "ConfigGenerator.h"
#include "actions/TVKMIDIAction.h"
#include "app/CorvaneController.h"
#include "app/TVKNoViews.h"
#include "app/TVKRecoveryJournal.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "service/MessageCatalogue.h"
#include "service/MessagePort.h"
#include "service/TVK_MessageSpecs.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <vector>

namespace msg = corvane::msg;
namespace key = corvane::key;
using Clock = std::chrono::steady_clock;

namespace {

double residentKB()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() > 1 ? fields[1].toDouble() * 4.0 : 0;
}

void percentiles(benchmark::State& state, std::vector<double> micros, const char* prefix = "")
{
    if (micros.empty())
        return;
    std::sort(micros.begin(), micros.end());
    state.counters[std::string(prefix) + "median_us"] = micros[micros.size() / 2];
    state.counters[std::string(prefix) + "p99_us"] =
        micros[std::min(micros.size() - 1, micros.size() * 99 / 100)];
}

double since(Clock::time_point start)
{
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

// A private configuration folder and port folder, with a store holding the configuration.
class Home
{
public:
    explicit Home(const corvane::PlistValue& configuration = {})
    {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_dir.path()));
        qputenv("TVK_PORT_DIR", QFile::encodeName(m_dir.path()));
        if (configuration.isDict()) {
            corvane::TVKUserDefaults store;
            store.setObject(key::ModelData, configuration);
            store.synchronize();
        }
    }
    QString path() const { return m_dir.path(); }

private:
    QTemporaryDir m_dir;
};

const corvane::PlistValue& fiftyKeysets()
{
    static const corvane::PlistValue configuration = [] {
        corvane::PlistValue dict = corvane::PlistValue::makeDict();
        corvane::ConfigGenerator().generateConfiguration(50)->writeTo(dict);
        return dict;
    }();
    return configuration;
}

const corvane::PlistValue& sample()
{
    static const corvane::PlistValue configuration =
        corvane::PlistCodec::readFile(QStringLiteral(CORVANE_SAMPLE)).value;
    return configuration;
}

// Start-up as the application runs it, to the first "Cnct" answered by the simulator.
void startup(benchmark::State& state, const corvane::PlistValue& configuration)
{
    Home home(configuration);
    QProcess sim;
    sim.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    sim.start(QStringLiteral(CORVANE_SERVICE_SIM), {QStringLiteral("--quiet")});
    const QDeadlineTimer deadline(30000);
    while (!sim.readAllStandardOutput().contains("listening") && !deadline.hasExpired())
        sim.waitForReadyRead(100);
    std::vector<double> micros;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        auto controller = std::make_unique<CorvaneController>();
        controller->awakeFromNib(); // ends with the first connection check
        micros.push_back(since(start));
        if (!controller->connected())
            state.SkipWithError("the simulator did not answer");
        state.PauseTiming();
        controller.reset();
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
    percentiles(state, micros);
    sim.closeWriteChannel();
    sim.waitForFinished(5000);
}

void BM_StartupFiftyKeysets(benchmark::State& state)
{
    startup(state, fiftyKeysets());
}
BENCHMARK(BM_StartupFiftyKeysets)->Iterations(5)->Unit(benchmark::kMillisecond);

void BM_StartupSample(benchmark::State& state)
{
    startup(state, sample());
}
BENCHMARK(BM_StartupSample)->Iterations(10)->Unit(benchmark::kMillisecond);

// The service played in this process over the real sockets: it answers the controller's
// requests and counts the highlight messages that come back.
class InProcessService
{
public:
    InProcessService()
    {
        m_port = corvane::LocalMessagePort::create(
            QStringLiteral("TVK_Corvane"),
            [this](corvane::LocalMessagePort*, const corvane::MessageFrame& frame) {
                if (frame.code == msg::MPCn && !m_application)
                    m_application =
                        corvane::RemoteMessagePort::create(QStringLiteral("TVK_MessagePort_Crvn"));
                if (frame.code == msg::RqCC)
                    return QByteArray(16, '\0');
                if (frame.code == msg::Cnct)
                    return TVK_OneIntSpec(1).data();
                if (frame.code == msg::TCtl)
                    ++echoes;
                return QByteArray();
            });
    }
    bool touch(std::uint32_t group, std::uint32_t control)
    {
        const TVK_OutgoingControlStateSpec body{group, control, 0, 1};
        return m_application && m_application->send(msg::TCtl, body.data(), 50) ==
                                    corvane::RemoteMessagePort::Status::Success;
    }
    int echoes = 0;

private:
    std::unique_ptr<corvane::LocalMessagePort> m_port;
    std::shared_ptr<corvane::RemoteMessagePort> m_application;
};

void BM_TouchToBothEchoes(benchmark::State& state)
{
    Home home;
    InProcessService service;
    CorvaneController controller;
    controller.awakeFromNib();
    constexpr int touches = 10000;
    std::vector<double> micros;
    micros.reserve(touches);
    double before = 0;
    for (auto _ : state) {
        micros.clear();
        for (int i = 0; i < touches; ++i) {
            if (i == 1000)
                before = residentKB();
            const int target = service.echoes + 2;
            const Clock::time_point start = Clock::now();
            if (!service.touch(1, std::uint32_t(i % 2 ? 3 : 4))) {
                state.SkipWithError("the application's port is not there");
                return;
            }
            while (service.echoes < target)
                QCoreApplication::processEvents(QEventLoop::AllEvents);
            micros.push_back(since(start));
        }
    }
    percentiles(state, micros);
    state.counters["rss_growth_kB"] = residentKB() - before;
}
BENCHMARK(BM_TouchToBothEchoes)->Iterations(1)->Unit(benchmark::kMillisecond);

// An edit copied to all four layers and its undo, with no service to write to.
void BM_EditAllLayersAndUndo(benchmark::State& state)
{
    Home home;
    CorvaneController controller;
    controller.awakeFromNib();
    controller.hardwareControlChangeForGroup(1, 3, 0, 1);
    TVKButtonMIDIAction edited(controller.modelData()->controlForKeyset(0, 0, 1, 3));
    struct Edited final : TVKNoViews
    {
        const TVKAction* action = nullptr;
        const TVKAction* inspectorEditedAction() const override { return action; }
    } views;
    views.action = &edited;
    controller.setViews({&views, &views, &views, &views});
    std::vector<double> edits;
    std::vector<double> undos;
    for (auto _ : state) {
        Clock::time_point start = Clock::now();
        corvane::NotificationCenter::defaultCenter().post(corvane::note::InsertEditedAction{true});
        edits.push_back(since(start));
        start = Clock::now();
        controller.undoManager().undo();
        undos.push_back(since(start));
    }
    percentiles(state, edits, "edit_");
    percentiles(state, undos, "undo_");
}
BENCHMARK(BM_EditAllLayersAndUndo)->Iterations(2000)->Unit(benchmark::kMicrosecond);

// Quitting with fifty keysets: the store written, flushed and the journal emptied.
void BM_QuitFiftyKeysets(benchmark::State& state)
{
    Home home(fiftyKeysets());
    CorvaneController controller;
    controller.awakeFromNib();
    for (auto _ : state) {
        // An edit since the last write, as on every real quit.
        controller.modelData()->setOneTouchRecordDefault(
            !controller.modelData()->oneTouchRecordDefault());
        if (!controller.writeDataToDefaults())
            state.SkipWithError("the store was not written");
    }
}
BENCHMARK(BM_QuitFiftyKeysets)->Iterations(5)->Unit(benchmark::kMillisecond);

// A service started again from a store of fifty keysets, and the application bringing it in
// step: the given number of keysets changed since the store was written (0: only the selection
// goes; 50: every keyset is sent, the cost of sending everything on every return).
void BM_CatchUpFiftyKeysets(benchmark::State& state)
{
    Home home(fiftyKeysets());
    QProcess sim;
    sim.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    sim.start(QStringLiteral(CORVANE_SERVICE_SIM), {QStringLiteral("--quiet")});
    const QDeadlineTimer deadline(30000);
    while (!sim.readAllStandardOutput().contains("listening") && !deadline.hasExpired())
        sim.waitForReadyRead(100);
    CorvaneController controller;
    controller.awakeFromNib();
    const int keysets = controller.modelData()->numberOfKeysets();
    const int changed = int(state.range(0));
    // Changed as the user changes them, through the recovery journal.
    for (int k = 0; k < changed; ++k) {
        controller.setSelectedKeyset(k * keysets / std::max(changed, 1));
        controller.setKeysetLockState(true);
    }
    std::vector<double> micros;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        controller.bringServiceInStep();
        micros.push_back(since(start));
        state.PauseTiming();
        // Lets the service take what was sent before the next round.
        const QDeadlineTimer settle(changed * 40 + 50);
        while (!settle.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        state.ResumeTiming();
    }
    percentiles(state, micros);
    sim.closeWriteChannel();
    sim.waitForFinished(10000);
}
BENCHMARK(BM_CatchUpFiftyKeysets)
    ->Arg(0)
    ->Arg(1)
    ->Arg(5)
    ->Arg(50)
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

// A thousand edits in a row on the sample configuration, each followed by one turn of the event
// loop (never the pause the compaction waits for): small edits (a control's user name, Arg 0) or
// whole-keyset edits (a keyset pasted over another, Arg 1). Reports each edit's cost, the longest
// turn of the loop after an edit (where a compaction that could not wait runs), the journal's
// largest size and its size once the edits have paused (the compaction having run).
void BM_JournalThousandEdits(benchmark::State& state)
{
    Home home(sample());
    CorvaneController controller;
    controller.awakeFromNib();
    const QString journal = TVKRecoveryJournal::pathBeside(controller.defaults().path());
    const bool keysets = state.range(0) == 1;
    if (keysets) {
        controller.setSelectedKeyset(1);
        controller.handleCopyKeyset();
    }
    std::vector<double> edits;
    std::vector<double> turns;
    qint64 largest = 0;
    int compactions = 0;
    for (auto _ : state) {
        for (int n = 0; n < 1000; ++n) {
            Clock::time_point start = Clock::now();
            if (keysets) {
                controller.setSelectedKeyset(2 + n % 2);
                controller.handlePasteKeyset();
            } else {
                controller.undoableSetUserName(QStringLiteral("Edit %1").arg(n), 1, 0, 0, n % 8,
                                               false);
            }
            edits.push_back(since(start));
            const qint64 size = QFileInfo(journal).size();
            largest = std::max(largest, size);
            start = Clock::now();
            QCoreApplication::processEvents();
            turns.push_back(since(start));
            compactions += QFileInfo(journal).size() < size;
        }
    }
    percentiles(state, edits, "edit_");
    state.counters["longest_turn_ms"] = *std::max_element(turns.begin(), turns.end()) / 1000;
    state.counters["journal_largest_MB"] = double(largest) / 1e6;
    state.counters["store_MB"] = double(QFileInfo(controller.defaults().path()).size()) / 1e6;
    state.counters["compactions_without_pause"] = compactions;
    // The pause: the compaction runs when the journal is over its limit, leaving the snapshot.
    const QDeadlineTimer pause(2500);
    while (!pause.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    state.counters["journal_after_pause_B"] = double(QFileInfo(journal).size());
}
BENCHMARK(BM_JournalThousandEdits)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

// What a compaction costs the window: the turn of the event loop in which the journal is replaced
// by a snapshot once the edits have paused, on the sample configuration and on fifty keysets.
void compactionStall(benchmark::State& state, const corvane::PlistValue& configuration)
{
    Home home(configuration);
    CorvaneController controller;
    controller.awakeFromNib();
    const QString journal = TVKRecoveryJournal::pathBeside(controller.defaults().path());
    const qint64 store = QFileInfo(controller.defaults().path()).size();
    controller.setSelectedKeyset(1);
    controller.handleCopyKeyset();
    std::vector<double> stalls;
    qint64 snapshot = 0;
    for (auto _ : state) {
        state.PauseTiming();
        // Whole-keyset edits until the journal has grown by the store's size, then the pause.
        const qint64 start = QFileInfo(journal).size();
        for (int n = 0; QFileInfo(journal).size() < start + store; ++n) {
            controller.setSelectedKeyset(2 + n % 2);
            controller.handlePasteKeyset();
        }
        const qint64 grown = QFileInfo(journal).size();
        state.ResumeTiming();
        double longest = 0;
        const QDeadlineTimer pause(5000);
        while (QFileInfo(journal).size() >= grown && !pause.hasExpired()) {
            const Clock::time_point begin = Clock::now();
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
            longest = std::max(longest, since(begin));
        }
        if (QFileInfo(journal).size() >= grown)
            state.SkipWithError("the journal was not compacted");
        snapshot = QFileInfo(journal).size();
        stalls.push_back(longest);
    }
    percentiles(state, stalls);
    state.counters["store_MB"] = double(store) / 1e6;
    state.counters["snapshot_MB"] = double(snapshot) / 1e6;
}

void BM_CompactionStallSample(benchmark::State& state)
{
    compactionStall(state, sample());
}
BENCHMARK(BM_CompactionStallSample)->Iterations(3)->Unit(benchmark::kMillisecond);

void BM_CompactionStallFiftyKeysets(benchmark::State& state)
{
    compactionStall(state, fiftyKeysets());
}
BENCHMARK(BM_CompactionStallFiftyKeysets)->Iterations(2)->Unit(benchmark::kMillisecond);

void BM_JournalAppend(benchmark::State& state)
{
    QTemporaryDir dir;
    TVKRecoveryJournal journal(dir.filePath(QStringLiteral("journal")));
    journal.open();
    // A typical action message: a key sequence's dictionary with its indices.
    const QByteArray body(420, 'k');
    std::vector<double> micros;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        journal.append(msg::propertyMessage(corvane::ControlProperty::Action), 3, body);
        micros.push_back(since(start));
    }
    percentiles(state, micros);
}
BENCHMARK(BM_JournalAppend)->Iterations(20000)->Unit(benchmark::kMicrosecond);

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
