// The connection indicator's three states and their way back, against the real simulated
// service, a service started through its autostart entry, and peers that never answer or stop
// reading.
#include "ControllerFixture.h"
#include "QtPrinters.h"
#include "core/Log.h"
#include "core/PlistCodec.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"
#include "platform/InstallPlatform.h"
#include "service/TVK_PrivateMessenger.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTimer>
#include <csignal>

using namespace corvane;
using namespace corvane::test;

namespace {

const QString kLauncherID = QStringLiteral("Q7RM4XW2PN.com.tavrik.CorvaneRS.launcher");
const QString kServiceBundle = QStringLiteral("com.tavrik.CorvaneRS.background.app");

// The service installed as the installer leaves it: the service's bundle in the support folder,
// and an autostart entry whose program (standing in for the launcher) starts the simulator and
// notes its process id, so that the test can end it.
class ServiceStateTest : public ControllerTest
{
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        storeConfiguration(CorvaneModelData());
        pidFile = home.path() + QStringLiteral("/service.pid");
    }

    void TearDown() override
    {
        ControllerTest::TearDown();
        QFile file(pidFile);
        if (file.open(QIODevice::ReadOnly)) {
            const pid_t pid = pid_t(file.readAll().trimmed().toLongLong());
            if (pid > 0)
                ::kill(pid, SIGTERM);
        }
        if (bundleSet) {
            if (previousBundle.isNull())
                qunsetenv("CORVANE_BUNDLE_DIR");
            else
                qputenv("CORVANE_BUNDLE_DIR", previousBundle);
        }
    }

public:
    QString supportBundle() const
    {
        return InstallPlatform::expandUserPath(
            QStringLiteral("~/Library/Application Support/Tavrik/") + kServiceBundle);
    }

    static bool writeBundle(const QString& folder, const QString& executable,
                            const QByteArray& script)
    {
        if (!QDir().mkpath(folder))
            return false;
        PlistValue info = PlistValue::makeDict();
        info.insert(QStringLiteral("CFBundleExecutable"), PlistValue(executable));
        info.insert(QStringLiteral("CFBundleIdentifier"), PlistValue(QStringLiteral("x")));
        if (!PlistCodec::writeFile(folder + QStringLiteral("/Info.plist"), info))
            return false;
        QFile file(folder + u'/' + executable);
        file.remove();
        if (!file.open(QIODevice::WriteOnly) || file.write(script) != script.size())
            return false;
        file.close();
        return file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    // What the launcher does: starts the service, here the simulator on the test's store.
    QByteArray launcherScript() const
    {
        return QStringLiteral("#!/bin/sh\necho $$ > \"%1\"\nexec \"%2\" --background --quiet "
                              "--config \"%3\"\n")
            .arg(pidFile, SimulatorProcess::program(), storePath)
            .toUtf8();
    }

    QString launcherPath() const { return home.path() + QStringLiteral("/launcher/start"); }

    void installService(bool withEntry = true)
    {
        ASSERT_TRUE(writeBundle(supportBundle(), QStringLiteral("corvane-service"), "#!/bin/sh\n"));
        ASSERT_TRUE(QDir().mkpath(QFileInfo(launcherPath()).path()));
        QFile launcher(launcherPath());
        launcher.remove();
        ASSERT_TRUE(launcher.open(QIODevice::WriteOnly));
        launcher.write(launcherScript());
        launcher.close();
        launcher.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        if (withEntry)
            writeEntry(QStringLiteral("\"%1\"").arg(launcherPath()));
    }

    void writeEntry(const QString& exec)
    {
        const QString path = InstallPlatform::autostartEntryPath(kLauncherID);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile entry(path);
        ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
        entry.write(QStringLiteral("[Desktop Entry]\nType=Application\nName=Corvane background "
                                   "service\nExec=%1\nNoDisplay=true\n")
                        .arg(exec)
                        .toUtf8());
    }

    bool waitForState(TVKServiceState state, int timeoutMs = 5000)
    {
        return spinUntil([&] { return controller->serviceState() == state; }, timeoutMs);
    }

    QString pidFile;
    bool bundleSet = false;
    QByteArray previousBundle;
};

// A test server that accepts the application's connection and then never answers: it reads
// (or, with reading off, takes nothing from the socket at all).
class SilentService
{
public:
    SilentService(const QString& path, bool reading) : m_reading(reading)
    {
        QLocalServer::removeServer(path);
        m_server.listen(path);
        QObject::connect(&m_server, &QLocalServer::newConnection, [this] {
            while (QLocalSocket* socket = m_server.nextPendingConnection()) {
                m_sockets.push_back(socket);
                if (m_reading)
                    QObject::connect(socket, &QLocalSocket::readyRead,
                                     [this, socket] { m_read += socket->readAll().size(); });
            }
        });
    }
    qint64 bytesRead() const { return m_read; }

private:
    QLocalServer m_server;
    std::vector<QLocalSocket*> m_sockets;
    bool m_reading;
    qint64 m_read = 0;
};

// Counts the turns of the event loop a timer got while something else went on.
struct Ticker
{
    explicit Ticker(int intervalMs)
    {
        timer.setInterval(intervalMs);
        QObject::connect(&timer, &QTimer::timeout, [this] { ++ticks; });
        timer.start();
    }
    QTimer timer;
    int ticks = 0;
};

} // namespace

TEST_F(ServiceStateTest, TheIndicatorTellsEachStateApartThroughEveryTransition)
{
    // No service at start-up: drawn at once, not left blank.
    CorvaneController& c = startController();
    QAction* indicator = c.connectionMenu();
    QAction* reconnect = c.connectionMenuItem();
    QAction* start = c.menuItem(TVKMenuCommand::StartBackgroundService);
    ASSERT_TRUE(start);
    struct Shown
    {
        QString text;
        QString toolTip;
        QString item;
        bool itemEnabled;
        bool startEnabled;
    };
    const auto shown = [&] {
        c.validateMenuItems();
        return Shown{indicator->text(), indicator->toolTip(), reconnect->text(),
                     reconnect->isEnabled(), start->isEnabled()};
    };
    const auto expectShown = [&](TVKServiceState state, const QString& text, const QString& item,
                                 bool itemEnabled, bool startEnabled) {
        SCOPED_TRACE(text.toStdString());
        // What the user sees follows within a keep-alive period.
        EXPECT_TRUE(spinUntil(
            [&] { return controller->serviceState() == state && indicator->text() == text; },
            6000));
        const Shown now = shown();
        EXPECT_EQ(now.text, text);
        EXPECT_FALSE(now.toolTip.isEmpty());
        EXPECT_EQ(now.item, item);
        EXPECT_EQ(now.itemEnabled, itemEnabled);
        EXPECT_EQ(now.startEnabled, startEnabled);
        return now;
    };

    std::vector<Shown> states;
    states.push_back(expectShown(TVKServiceState::NoService,
                                 QStringLiteral("No background service"),
                                 QStringLiteral("reconnect"), true, true));

    // The service comes, without its surface.
    ASSERT_TRUE(startService({QStringLiteral("--disconnected")}));
    states.push_back(expectShown(TVKServiceState::SurfaceNotReachable,
                                 QStringLiteral("Surface not reachable"),
                                 QStringLiteral("reconnect"), true, false));
    // "reconnect" then asks the service to reach the surface again.
    const qsizetype from = mark();
    reconnect->trigger();
    EXPECT_TRUE(waitForCount(QStringLiteral("RSoc"), 1, from));

    service->command(QStringLiteral("surface connected"));
    states.push_back(expectShown(TVKServiceState::SurfaceConnected,
                                 QStringLiteral("Surface connected"), QStringLiteral("(connected)"),
                                 false, false));

    // Unplugged, as the service reports it.
    service->command(QStringLiteral("send CnSt 0"));
    expectShown(TVKServiceState::SurfaceNotReachable, QStringLiteral("Surface not reachable"),
                QStringLiteral("reconnect"), true, false);

    // Killed: the watch notices, and the indicator says so.
    service->kill();
    expectShown(TVKServiceState::NoService, QStringLiteral("No background service"),
                QStringLiteral("reconnect"), true, true);

    // Started again: drawn again.
    ASSERT_TRUE(startService());
    expectShown(TVKServiceState::SurfaceConnected, QStringLiteral("Surface connected"),
                QStringLiteral("(connected)"), false, false);

    // Each state its own text and its own explanation.
    for (size_t i = 0; i < states.size(); ++i) {
        for (size_t j = i + 1; j < states.size(); ++j) {
            EXPECT_NE(states[i].text, states[j].text);
            EXPECT_NE(states[i].toolTip, states[j].toolTip);
        }
    }
}

TEST_F(ServiceStateTest, ReconnectWithoutAServiceStartsItAsItsAutostartEntryWould)
{
    installService();
    CorvaneController& c = startController();
    ASSERT_EQ(c.serviceState(), TVKServiceState::NoService);
    c.connectionMenuItem()->trigger();
    EXPECT_TRUE(views.alerts.empty());
    EXPECT_TRUE(c.serviceStarting());
    EXPECT_EQ(c.connectionMenu()->text(), QStringLiteral("Starting the background service…"));
    c.validateMenuItems();
    EXPECT_FALSE(c.menuItem(TVKMenuCommand::StartBackgroundService)->isEnabled());
    ASSERT_TRUE(waitForState(TVKServiceState::SurfaceConnected, 8000));
    EXPECT_FALSE(c.serviceStarting());
    EXPECT_TRUE(QFile::exists(pidFile)) << "started through the entry's program";
    EXPECT_TRUE(views.alerts.empty());
}

TEST_F(ServiceStateTest, StartBackgroundServiceSaysExactlyWhatIsMissing)
{
    struct Case
    {
        const char* name;
        std::function<void(ServiceStateTest&)> damage;
        std::function<QString(ServiceStateTest&)> named; // what the alert must name
    };
    const std::vector<Case> cases = {
        {"no service in the support folder",
         [](ServiceStateTest& t) { QDir(t.supportBundle()).removeRecursively(); },
         [](ServiceStateTest& t) { return t.supportBundle().section(u'/', 0, -2); }},
        {"the service's program not executable",
         [](ServiceStateTest& t) {
             QFile(t.supportBundle() + QStringLiteral("/corvane-service"))
                 .setPermissions(QFile::ReadOwner);
         },
         [](ServiceStateTest& t) {
             return t.supportBundle() + QStringLiteral("/corvane-service");
         }},
        {"no autostart entry",
         [](ServiceStateTest&) { QFile::remove(InstallPlatform::autostartEntryPath(kLauncherID)); },
         [](ServiceStateTest&) { return InstallPlatform::autostartEntryPath(kLauncherID); }},
        {"an entry without a program", [](ServiceStateTest& t) { t.writeEntry(QString()); },
         [](ServiceStateTest&) { return InstallPlatform::autostartEntryPath(kLauncherID); }},
        {"the entry's program missing",
         [](ServiceStateTest& t) { QFile::remove(t.launcherPath()); },
         [](ServiceStateTest& t) { return t.launcherPath(); }},
        {"the entry's program not executable",
         [](ServiceStateTest& t) { QFile(t.launcherPath()).setPermissions(QFile::ReadOwner); },
         [](ServiceStateTest& t) { return t.launcherPath(); }},
    };
    installService();
    CorvaneController& c = startController();
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        installService();
        test.damage(*this);
        views.alerts.clear();
        views.alertAnswers = {1}; // Cancel
        const int installs = views.installs;
        EXPECT_FALSE(c.startBackgroundService());
        ASSERT_EQ(views.alerts.size(), 1u);
        EXPECT_EQ(views.alerts[0].message,
                  QStringLiteral("The background service cannot be started."));
        EXPECT_TRUE(views.alerts[0].informativeText.contains(test.named(*this)))
            << views.alerts[0].informativeText.toStdString();
        EXPECT_EQ(views.alerts[0].buttons.value(0), QStringLiteral("Install…"));
        EXPECT_EQ(views.installs, installs);
        EXPECT_FALSE(c.serviceStarting());
        EXPECT_FALSE(QFile::exists(pidFile));

        // Its first button is the way out: the installer.
        views.alerts.clear();
        views.alertAnswers = {0};
        c.menuItem(TVKMenuCommand::StartBackgroundService)->trigger();
        EXPECT_EQ(views.installs, installs + 1);
    }
}

TEST_F(ServiceStateTest, InstallWithNothingToInstallStartsTheServiceAndRestoresItsEntry)
{
    // The application's own bundle with the launcher, whose entry the installer writes.
    const QString bundle = home.path() + QStringLiteral("/bundle");
    bundleSet = true;
    if (qEnvironmentVariableIsSet("CORVANE_BUNDLE_DIR"))
        previousBundle = qgetenv("CORVANE_BUNDLE_DIR");
    qputenv("CORVANE_BUNDLE_DIR", QFile::encodeName(bundle));
    installService(false);
    ASSERT_TRUE(writeBundle(bundle + QStringLiteral("/Contents/Library/LoginItems/") + kLauncherID +
                                QStringLiteral(".app"),
                            QStringLiteral("start"), launcherScript()));
    CorvaneController& c = startController();
    ASSERT_EQ(c.serviceState(), TVKServiceState::NoService);

    c.menuItem(TVKMenuCommand::HandleInstall)->trigger();
    ASSERT_EQ(views.alerts.size(), 1u);
    EXPECT_EQ(views.alerts[0].informativeText,
              QStringLiteral("The background service was not running; it has been started."));
    EXPECT_TRUE(QFile::exists(InstallPlatform::autostartEntryPath(kLauncherID)));
    EXPECT_TRUE(waitForState(TVKServiceState::SurfaceConnected, 8000));
}

TEST_F(ServiceStateTest, ASilentServiceIsNotWaitedOnAndIsAskedLessOften)
{
    SilentService silent(ports.socketPath(QStringLiteral("TVK_Corvane")), true);
    LogCapture log;
    // The start-up's request waits its 1.0 s once; after it, nothing waits on the service.
    CorvaneController& c = startController();
    EXPECT_EQ(c.serviceState(), TVKServiceState::NotResponding);
    EXPECT_EQ(c.connectionMenu()->text(), QStringLiteral("Background service not responding"));
    EXPECT_EQ(log.lines().count(QStringLiteral("the background service does not respond; it is "
                                               "not waited on")),
              0)
        << "told after the event that noticed it";

    // The checks back off: 2 s, 4 s, then 8 s.
    EXPECT_EQ(c.connectionPollInterval(), 2000);
    Ticker ticker(50);
    ASSERT_TRUE(spinUntil([&] { return c.connectionPollInterval() >= 8000; }, 12000));
    // A 50 ms timer kept firing throughout (about 120 times in the 6 s): a check that waited
    // its time-out at every poll would hold the loop for a second of every two.
    EXPECT_GE(ticker.ticks, 80);
    EXPECT_EQ(log.lines().count(QStringLiteral("the background service does not respond; it is "
                                               "not waited on")),
              1);
    EXPECT_EQ(c.serviceState(), TVKServiceState::NotResponding);
    EXPECT_GT(silent.bytesRead(), 0);
}

TEST_F(ServiceStateTest, AServiceThatStopsReadingHoldsNothingUpAndGetsEverythingWhenItReadsAgain)
{
    CorvaneModelData model;
    for (int i = 0; i < 3; ++i)
        model.addKeysetWithName(QStringLiteral("KS%1").arg(i),
                                fourCharCodeFromString(QStringLiteral("KS0%1").arg(i)));
    storeConfiguration(model);
    ASSERT_TRUE(startService());
    CorvaneController& c = startController();
    ASSERT_TRUE(waitForState(TVKServiceState::SurfaceConnected));
    LogCapture log;

    // Stopped: it reads nothing more. Whole keysets fill what the system holds for it.
    const pid_t pid = pid_t(service->process().processId());
    ASSERT_EQ(::kill(pid, SIGSTOP), 0);
    int sent = 0;
    while (c.messenger()->isServiceResponding() && sent < 64) {
        c.messenger()->sendUpdateKeysetMessage(1, c.modelData()->keysetAtIndex(1));
        ++sent;
    }
    ASSERT_FALSE(c.messenger()->isServiceResponding()) << "a megabyte keyset " << sent << " times";

    // 100 touches, one per turn of the event loop: none waits on the service, each goes in the
    // queue. They are all through before a 10 ms timer has fired 20 times; waiting its 0.05 s
    // send time-out twice per touch, the 20 ticks would have seen about ten touches.
    const qsizetype from = mark();
    int touches = 0;
    QTimer touching;
    QObject::connect(&touching, &QTimer::timeout, [&] {
        c.hardwareControlChangeForGroup(0, touches % 2 ? 1 : 2, 0, 1);
        if (++touches == 100)
            touching.stop();
    });
    touching.start(0);
    Ticker ticker(10);
    ASSERT_TRUE(spinUntil([&] { return ticker.ticks >= 20; }, 20000));
    EXPECT_EQ(touches, 100);
    ASSERT_TRUE(spinUntil([&] { return touches == 100; }, 20000));
    EXPECT_EQ(c.serviceState(), TVKServiceState::NotResponding);
    EXPECT_EQ(c.connectionMenu()->text(), QStringLiteral("Background service not responding"));

    // Going on, it reads everything, in order, and counts as answering again.
    ASSERT_EQ(::kill(pid, SIGCONT), 0);
    ASSERT_TRUE(waitForCount(QStringLiteral("TCtl"), 200, from, 15000));
    ASSERT_TRUE(waitForState(TVKServiceState::SurfaceConnected, 8000));
    EXPECT_EQ(log.lines().count(QStringLiteral("the background service answers again")), 1);
    const std::vector<QJsonObject> lit = received(QStringLiteral("TCtl"), from);
    EXPECT_EQ(lit.back().value(u"words").toArray(), (QJsonArray{0, 1, 0, 1}));
}
