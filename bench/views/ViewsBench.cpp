// The windows' costs: from the start of the program to the main window painted (with the sample
// configuration and with fifty keysets), a touch on the surface to its picture repainted, a touch
// to its answer as the service sees it with every window open, the inspector's change of editor,
// and the resident memory with every window open and fifty keysets.
//
// The start-up is measured on a child process (this program with --child), from the moment it
// is launched to the first paint of the surface picture, the way a person sees it.
#include "ConfigGenerator.h"
#include "app/CorvaneController.h"
#include "app/TVKNoViews.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/TVKControl.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "platform/InstallPlatform.h"
#include "platform/TerminationSignals.h"
#include "views/CorvaneSurfaceView.h"
#include "views/CorvaneViews.h"
#include "views/InspectorController.h"
#include "views/KeysetSummaryController.h"
#include "views/TVKEditorView.h"
#include "views/TVKMainWindow.h"
#include "views/TVKMultiStateButton.h"
#include "views/TVKNextFrame.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

namespace key = corvane::key;

using Clock = std::chrono::steady_clock;

namespace {

int g_argc = 0;
char** g_argv = nullptr;

double residentMiB()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() > 1 ? fields[1].toDouble() * 4.0 / 1024.0 : 0;
}

double since(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// Stops the event loop at the first paint of a widget.
class FirstPaint : public QObject
{
public:
    bool painted = false;
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            painted = true;
        return false;
    }
};

// A private configuration and port folder, a store holding the configuration, and the service.
class Home
{
public:
    explicit Home(const corvane::PlistValue& configuration,
                  const QStringList& serviceArguments = {QStringLiteral("--quiet")})
    {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_dir.path()));
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_dir.path() + QStringLiteral("/data")));
        qputenv("TVK_PORT_DIR", QFile::encodeName(m_dir.path()));
        // Installed already, so that the start-up check shows no window.
        qputenv("CORVANE_BUNDLE_DIR", CORVANE_BUNDLE);
        const QString driver = QStringLiteral("/MIDI Drivers/CorvaneEthernetMIDIDriver.plugin");
        QDir().mkpath(m_dir.path() + QStringLiteral("/data/MIDI Drivers"));
        QDir().mkpath(m_dir.path() + QStringLiteral("/data/Tavrik"));
        corvane::InstallPlatform::copyItem(
            QStringLiteral(CORVANE_BUNDLE "/Contents/Helpers/CorvaneEthernetMIDIDriver.plugin"),
            m_dir.path() + QStringLiteral("/data") + driver);
        qputenv("QT_QPA_PLATFORM", "offscreen");
        corvane::TVKUserDefaults store;
        store.setObject(key::ModelData, configuration);
        store.synchronize();
        m_sim.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // What the service says goes to a file, read between touches: reading it through the
        // event loop would put the reading on the path being measured.
        m_serviceLines = m_dir.path() + QStringLiteral("/service.jsonl");
        m_sim.setStandardOutputFile(m_serviceLines);
        m_sim.start(QStringLiteral(CORVANE_SERVICE_SIM), serviceArguments);
        QFile lines(m_serviceLines);
        const QDeadlineTimer deadline(30000);
        while (!deadline.hasExpired()) {
            if (lines.isOpen() || lines.open(QIODevice::ReadOnly)) {
                lines.seek(0);
                if (lines.readAll().contains("listening"))
                    break;
            }
            QThread::msleep(20);
        }
    }
    ~Home()
    {
        m_sim.closeWriteChannel();
        m_sim.waitForFinished(5000);
    }
    QString path() const { return m_dir.path(); }
    // One command line to the service.
    void command(const QByteArray& line)
    {
        m_sim.write(line + '\n');
        m_sim.waitForBytesWritten(1000);
    }
    // Everything the service has said so far, one JSON line each.
    QByteArray serviceLines() const
    {
        QFile lines(m_serviceLines);
        return lines.open(QIODevice::ReadOnly) ? lines.readAll() : QByteArray();
    }

private:
    QTemporaryDir m_dir;
    QString m_serviceLines;
    QProcess m_sim;
};

corvane::PlistValue fiftyKeysets()
{
    corvane::PlistValue dict = corvane::PlistValue::makeDict();
    corvane::ConfigGenerator().generateConfiguration(50)->writeTo(dict);
    return dict;
}

corvane::PlistValue sample()
{
    return corvane::PlistCodec::readFile(QStringLiteral(CORVANE_SAMPLE)).value;
}

// The child: the program's start-up, to the first paint of the surface.
int runChild()
{
    QApplication app(g_argc, g_argv);
    // Ended as the program is, so that each start finds the configuration written cleanly.
    corvane::TerminationSignals signals;
    TVKNoViews dialogs;
    CorvaneController controller;
    CorvaneViews views(controller, dialogs);
    FirstPaint paint;
    views.endProgramWith(signals);
    views.start();
    views.mainWindow()->surface()->installEventFilter(&paint);
    const QDeadlineTimer deadline(30000);
    while (!paint.painted && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    // The paint event was delivered; let it finish before saying so.
    QCoreApplication::processEvents();
    std::printf("painted\n");
    std::fflush(stdout);
    return paint.painted ? app.exec() : 1;
}

void startup(benchmark::State& state, const corvane::PlistValue& configuration)
{
    Home home(configuration);
    std::vector<double> millis;
    for (auto _ : state) {
        QProcess child;
        const Clock::time_point start = Clock::now();
        child.start(QString::fromLocal8Bit(g_argv[0]), {QStringLiteral("--child")});
        while (!child.readAllStandardOutput().contains("painted") &&
               child.state() != QProcess::NotRunning)
            child.waitForReadyRead(5);
        millis.push_back(since(start));
        state.PauseTiming();
        child.terminate();
        child.waitForFinished(10000);
        state.ResumeTiming();
    }
    std::sort(millis.begin(), millis.end());
    state.counters["median_ms"] = millis[millis.size() / 2];
    state.counters["max_ms"] = millis.back();
}

void BM_StartToMainWindowPaintedSample(benchmark::State& state)
{
    startup(state, sample());
}
BENCHMARK(BM_StartToMainWindowPaintedSample)->Iterations(7)->Unit(benchmark::kMillisecond);

void BM_StartToMainWindowPaintedFiftyKeysets(benchmark::State& state)
{
    startup(state, fiftyKeysets());
}
BENCHMARK(BM_StartToMainWindowPaintedFiftyKeysets)->Iterations(5)->Unit(benchmark::kMillisecond);

// The application in this process, started on fifty keysets with the service beside it, and
// ended as the program ends.
struct RunningApplication
{
    RunningApplication() { views.start(); }
    explicit RunningApplication(const QStringList& serviceArguments)
        : home(fiftyKeysets(), serviceArguments)
    {
        views.start();
    }
    ~RunningApplication() { controller.handleTerminateMessage(); }

    static QApplication* application()
    {
        static QApplication* app = qobject_cast<QApplication*>(QCoreApplication::instance())
                                       ?: new QApplication(g_argc, g_argv);
        return app;
    }

    // In this order: the folders and the platform, then the application, then the windows.
    Home home{fiftyKeysets()};
    QApplication* app = application();
    TVKNoViews dialogs;
    CorvaneController controller;
    CorvaneViews views{controller, dialogs};
};

// A touch reported by the service to the lit picture on screen; then every window open.
void BM_TouchToRepaintedPictureAndMemory(benchmark::State& state)
{
    RunningApplication running;
    CorvaneController& controller = running.controller;
    CorvaneViews& views = running.views;
    QCoreApplication::processEvents();
    CorvaneSurfaceView& surface = *views.mainWindow()->surface();
    // Alternate between two controls of two groups, so every touch changes two pictures.
    const std::pair<int, int> touches[] = {{0, 2}, {1, 3}};
    std::vector<double> micros;
    size_t n = 0;
    for (auto _ : state) {
        const auto [group, control] = touches[n++ % 2];
        FirstPaint paint;
        TVKMultiStateButton* picture = surface.buttonWithTag(group);
        picture->installEventFilter(&paint);
        const Clock::time_point start = Clock::now();
        controller.hardwareControlChangeForGroup(group, control, 0, 1);
        while (!paint.painted)
            QCoreApplication::processEvents();
        micros.push_back(since(start) * 1000);
        picture->removeEventFilter(&paint);
    }
    std::sort(micros.begin(), micros.end());
    state.counters["median_us"] = micros[micros.size() / 2];
    state.counters["p99_us"] = micros[std::min(micros.size() - 1, micros.size() * 99 / 100)];

    for (const TVKWindow window : {TVKWindow::TL, TVKWindow::TLW, TVKWindow::TLW2, TVKWindow::NV,
                                   TVKWindow::AboutBox, TVKWindow::Summary})
        views.show(window);
    views.showDZ(true);
    for (int i = 0; i < 20; ++i)
        QCoreApplication::processEvents();
    state.counters["resident_MiB_all_windows"] = residentMiB();
}
BENCHMARK(BM_TouchToRepaintedPictureAndMemory)->Iterations(400)->Unit(benchmark::kMicrosecond);

// The summary's search through fifty keysets: every control's name, user name and action.
void BM_FindAcrossFiftyKeysets(benchmark::State& state)
{
    RunningApplication running;
    CorvaneViews& views = running.views;
    views.show(TVKWindow::Summary);
    KeysetSummaryController& summary = *views.summary();
    size_t found = 0;
    for (auto _ : state)
        found = summary.find(QStringLiteral("Fader 1"), 100000).size();
    state.counters["matches"] = double(found);
}
BENCHMARK(BM_FindAcrossFiftyKeysets)->Iterations(5)->Unit(benchmark::kMillisecond);

// The first group of the selected layer with at least this many controls: its index.
int groupWithAtLeast(const CorvaneController& controller, size_t count)
{
    const TVKLayer* layer = controller.modelData()->selectedLayer();
    for (size_t group = 0; group < layer->groups().size(); ++group)
        if (layer->groups()[group].size() >= count)
            return int(group);
    return -1;
}

// A button, an encoder, a trackball and the jog wheel of the selected layer (model group and
// index): touched in turn, every touch changes the inspector's editor.
std::vector<std::pair<int, int>> fourKindsOfControl(const CorvaneController& controller)
{
    const TVKLayer* layer = controller.modelData()->selectedLayer();
    std::vector<std::pair<int, int>> targets;
    for (const int type : {corvane::ControlType::Button, corvane::ControlType::Encoder,
                           corvane::ControlType::FourWay, corvane::ControlType::Jog}) {
        for (size_t group = 0; group < layer->groups().size(); ++group) {
            const auto& controls = layer->groups()[group];
            const auto found = std::find_if(controls.begin(), controls.end(), [&](const auto& c) {
                return c && c->tvkControlType() == type;
            });
            if (found != controls.end()) {
                targets.emplace_back(int(group), int(found - controls.begin()));
                break;
            }
        }
    }
    return targets;
}

double percentile(std::vector<double> values, int p)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, values.size() * size_t(p) / 100)];
}

// A touch on the surface to its echo ("TCtl" with value 1 for the touched control), as the
// service sees it: from the moment the simulator begins sending the touch to the moment the echo
// arrives, both read from the simulator's own lines. Every window is open: the main window, the
// inspector, the four expanders, the DZ displays, the summary on fifty keysets, and the virtual
// surface in the simulator. Each touch changes the inspector's editor. Between touches the
// application draws its next frame, and the simulator has taken the echo, as with a hand.
void BM_TouchToEchoEveryWindowOpen(benchmark::State& state)
{
    RunningApplication running({QStringLiteral("--timestamps"), QStringLiteral("--window")});
    CorvaneController& controller = running.controller;
    CorvaneViews& views = running.views;
    for (const TVKWindow window : {TVKWindow::Inspector, TVKWindow::TL, TVKWindow::TLW,
                                   TVKWindow::TLW2, TVKWindow::NV, TVKWindow::Summary})
        views.show(window);
    views.showDZ(true);
    const QDeadlineTimer settle(1500);
    while (!settle.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    if (!running.home.serviceLines().contains("\"connected\"")) {
        state.SkipWithError("the service never saw the application");
        return;
    }
    const std::vector<std::pair<int, int>> targets = fourKindsOfControl(controller);
    // Starting on the last of them, so that the first touch moves the selection too.
    controller.selectionChangedInSummaryWindowToGroup(targets.back().first, targets.back().second);
    for (int frame = 0; frame < 3; ++frame)
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    auto echoes = [&] { return running.home.serviceLines().count("\"code\":\"TCtl\""); };
    // The application waits in its event loop for the touch, as it does between a user's
    // touches; the timer only bounds the wait.
    QTimer heartbeat;
    heartbeat.start(5);
    size_t n = 0;
    for (auto _ : state) {
        const auto [group, control] = targets[n++ % targets.size()];
        const qsizetype before = echoes();
        running.home.command(
            QStringLiteral("send TCtl %1 %2 0 1").arg(group).arg(control).toUtf8());
        // The application: the selection moved and every window has drawn its next frame.
        const QDeadlineTimer deadline(5000);
        while (!deadline.hasExpired() && (controller.modelDataGroupIndex() != group ||
                                          controller.modelDataControlIndex() != control))
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        for (int frame = 0; frame < 3; ++frame)
            QCoreApplication::processEvents(QEventLoop::AllEvents);
        // The service: both echoes (the previous control let go, the new one lit) are in.
        while (!deadline.hasExpired() && echoes() < before + 2)
            QThread::usleep(200);
        // A hand's pause: the simulator lights the control on its virtual surface meanwhile, and
        // both programs wait in their event loops when the next touch comes.
        const QDeadlineTimer pause(10);
        while (!pause.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    // Each touch with the first echo of value 1 that follows it.
    std::vector<double> millis;
    qint64 touchedAt = -1;
    for (const QByteArray& text : running.home.serviceLines().split('\n')) {
        const QJsonObject line = QJsonDocument::fromJson(text).object();
        if (line.value(QStringLiteral("sent")).toString() == QStringLiteral("TCtl")) {
            touchedAt = qint64(line.value(QStringLiteral("us")).toDouble());
        } else if (touchedAt >= 0 &&
                   line.value(QStringLiteral("code")).toString() == QStringLiteral("TCtl") &&
                   line.value(QStringLiteral("words")).toArray().at(3).toInt() == 1) {
            millis.push_back(
                double(qint64(line.value(QStringLiteral("us")).toDouble()) - touchedAt) / 1000.0);
            touchedAt = -1;
        }
    }
    if (qint64(millis.size()) < state.iterations() * 9 / 10) {
        state.SkipWithError("touches went unanswered");
        return;
    }
    state.counters["echoes"] = double(millis.size());
    state.counters["echo_median_ms"] = percentile(millis, 50);
    state.counters["echo_p99_ms"] = percentile(millis, 99);
    state.counters["echo_max_ms"] = percentile(millis, 100);
    state.counters["echo_p90_ms"] = percentile(millis, 90);
}
BENCHMARK(BM_TouchToEchoEveryWindowOpen)->Iterations(400)->Unit(benchmark::kMillisecond);

// A touch on another control to the inspector showing it: the selection notice (the touch is
// answered at its end), the editor of its kind on screen with its name, descriptor and action
// editors brought up to date, and the frame that lays it out and paints it. Button, encoder,
// trackball and jog wheel in turn, so that every step changes the editor.
void BM_InspectorShowsAnotherControl(benchmark::State& state)
{
    RunningApplication running;
    CorvaneController& controller = running.controller;
    CorvaneViews& views = running.views;
    views.show(TVKWindow::Inspector);
    QCoreApplication::processEvents();
    InspectorController& inspector = *views.inspector();
    const std::vector<std::pair<int, int>> targets = fourKindsOfControl(controller);
    std::vector<double> notices;
    std::vector<double> switches;
    std::vector<double> frames;
    size_t n = 0;
    for (auto _ : state) {
        const auto [group, control] = targets[n++ % targets.size()];
        Clock::time_point start = Clock::now();
        controller.selectionChangedInSummaryWindowToGroup(group, control);
        notices.push_back(since(start));
        // The panel's own work, done on the next frame: the editor of the control's kind, its
        // name, descriptor and action editors.
        start = Clock::now();
        inspector.flushFrame();
        switches.push_back(since(start));
        // The rest of that frame: the panel laid out again, it and the two pictures repainted.
        start = Clock::now();
        for (int frame = 0; frame < 3; ++frame)
            QCoreApplication::processEvents();
        frames.push_back(since(start));
        benchmark::DoNotOptimize(inspector.currentEditor());
    }
    state.counters["notice_median_ms"] = percentile(notices, 50);
    state.counters["switch_median_ms"] = percentile(switches, 50);
    state.counters["switch_p99_ms"] = percentile(switches, 99);
    state.counters["layout_and_paint_median_ms"] = percentile(frames, 50);
}
BENCHMARK(BM_InspectorShowsAnotherControl)->Iterations(400)->Unit(benchmark::kMillisecond);

// Opening the summary with a control of the NV's 240 LCD buttons selected, to its first paint.
void BM_SummaryOpensOnTheLargestGroup(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        {
            RunningApplication running;
            const int group = groupWithAtLeast(running.controller, 240);
            if (group < 0) {
                state.SkipWithError("no group of 240 controls");
                break;
            }
            running.controller.selectionChangedInSummaryWindowToGroup(group, 200);
            QCoreApplication::processEvents();
            FirstPaint paint;
            state.ResumeTiming();
            running.views.show(TVKWindow::Summary);
            running.views.summary()->installEventFilter(&paint);
            const QDeadlineTimer deadline(10000);
            while (!paint.painted && !deadline.hasExpired())
                QCoreApplication::processEvents();
            state.PauseTiming();
            running.views.summary()->removeEventFilter(&paint);
        }
        state.ResumeTiming();
    }
}
BENCHMARK(BM_SummaryOpensOnTheLargestGroup)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    g_argc = argc;
    g_argv = argv;
    if (argc > 1 && std::strcmp(argv[1], "--child") == 0)
        return runChild();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
