// The installer and the uninstaller on real folders and real helper processes: a bundle of test
// helpers (scripts that stay running under their bundle's name), the user's folders in a
// temporary home, a window that presses its buttons as the test says, and a clock the test moves.
#include "ControllerFixture.h"
#include "QtPrinters.h"
#include "TestConfig.h"
#include "app/TVKInstallerController.h"
#include "app/TVKInstanceLink.h"
#include "app/TVKUninstallerController.h"
#include "core/Log.h"
#include "platform/InstallPlatform.h"
#include "service/PortPlatform.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <deque>
#include <functional>
#include <gtest/gtest.h>

namespace install = corvane::InstallPlatform;

namespace {

const TVKInstallParameters kNames{QStringLiteral("corvaneEthernet"),
                                  QStringLiteral("CorvaneEthernetMIDIDriver.plugin"),
                                  QStringLiteral("com.tavrik.CorvaneRS.background.app"),
                                  QStringLiteral("com.tavrik.CorvaneRS.background"),
                                  QStringLiteral("Q7RM4XW2PN.com.tavrik.CorvaneRS.launcher.app"),
                                  QStringLiteral("Q7RM4XW2PN.com.tavrik.CorvaneRS.launcher"),
                                  QStringLiteral("Corvane uninstaller.app")};

void writeFile(const QString& path, const QByteArray& text, bool executable = false)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    file.write(text);
    file.close();
    if (executable)
        file.setPermissions(file.permissions() | QFile::ExeOwner | QFile::ExeUser);
}

void writeBundle(const QString& path, const QString& identifier, const QString& version,
                 const QByteArray& script = {})
{
    const QString executable = script.isEmpty() ? QString() : QStringLiteral("run");
    writeFile(path + QStringLiteral("/Info.plist"),
              QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">"
                             "<dict><key>CFBundleIdentifier</key><string>%1</string>"
                             "<key>CFBundleVersion</key><string>%2</string>"
                             "<key>CFBundleExecutable</key><string>%3</string></dict></plist>\n")
                  .arg(identifier, version, executable)
                  .toUtf8());
    if (!script.isEmpty())
        writeFile(path + QStringLiteral("/run"), script, true);
}

// A helper that runs until it is ended, known by its bundle's path; stubborn ones ignore SIGTERM.
QByteArray stayRunning(bool stubborn = false)
{
    return QByteArray("#!/bin/bash\n") + (stubborn ? "trap '' TERM\n" : "") +
           "exec -a \"$0\" sleep 300\n";
}

bool waitUntil(const std::function<bool()>& condition, int ms = 5000)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > ms)
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(20);
    }
    return true;
}

// The window of the test: remembers what it was shown and presses as scripted, one press per
// time the controller waits for the user.
class ScriptedWindow : public TVKInstallerWindow
{
public:
    std::deque<std::function<void()>> presses;
    std::vector<TVKInstallerFace> shown;
    QString setupPage;
    bool finishSetupResult = true;
    int finishedSetups = 0;
    std::unique_ptr<QEventLoop> loop;

    void refresh(const TVKInstallerFace& face) override { shown.push_back(face); }
    int runModal() override
    {
        loop = std::make_unique<QEventLoop>();
        pressNext();
        const int code = loop->exec();
        loop.reset();
        return code;
    }
    void stopModal(int code) override
    {
        if (loop)
            loop->exit(code);
    }
    void closeWindow() override {}
    void showSetupPage(const QString& controllerName) override { setupPage = controllerName; }
    bool finishSetup() override
    {
        ++finishedSetups;
        return finishSetupResult;
    }
    void pressNext()
    {
        if (presses.empty())
            return;
        auto press = std::move(presses.front());
        presses.pop_front();
        QTimer::singleShot(0, press);
    }
    const TVKInstallerFace& face() const { return shown.back(); }
};

class InstallerTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        corvane::test::ensureGuiApplication();
        ASSERT_TRUE(home.isValid());
        for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "HOME"})
            saved.emplace_back(name, qgetenv(name));
        qputenv("XDG_DATA_HOME", QFile::encodeName(path(QStringLiteral("data"))));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(path(QStringLiteral("config"))));
        qputenv("HOME", QFile::encodeName(path(QStringLiteral("home"))));

        const QString contents = path(QStringLiteral("bundle/Contents"));
        writeBundle(contents + QStringLiteral("/Helpers/") + kNames.driver,
                    QStringLiteral("com.tavrik.CorvaneEthernetMIDIDriver"),
                    QStringLiteral("1.2.9"));
        const QString support = contents + QStringLiteral("/Resources/Helpers/Tavrik/");
        writeBundle(support + kNames.bgApp, kNames.bgAppID, QStringLiteral("1.0"), stayRunning());
        writeBundle(support + QStringLiteral("com.tavrik.Helper.app"),
                    QStringLiteral("com.tavrik.Helper"), QStringLiteral("1.0"), stayRunning());
        writeFile(support + QStringLiteral("TVK_Built_In_Commands.xml"), "<commands/>\n");
        // The launcher leaves a mark, so the test sees that logging in would start it.
        writeBundle(contents + QStringLiteral("/Library/LoginItems/") + kNames.launcherApp,
                    kNames.launcherAppID, QStringLiteral("1.0"),
                    "#!/bin/sh\ntouch \"$XDG_DATA_HOME/launched\"\n");

        environment.bundlePath = path(QStringLiteral("bundle"));
        // Each look at the clock moves it on a little, so that waits on it end.
        environment.now = [this] { return clock += 0.05; };
    }

    void TearDown() override
    {
        for (const char* id : {"com.tavrik.CorvaneRS.background", "com.tavrik.Helper"}) {
            for (const qint64 pid : install::processesOfBundle(QString::fromLatin1(id)))
                ::kill(pid_t(pid), SIGKILL);
        }
        if (midiServer.state() != QProcess::NotRunning) {
            midiServer.kill();
            midiServer.waitForFinished();
        }
        for (const auto& [name, value] : saved)
            qputenv(name, value);
    }

    QString path(const QString& relative) const { return home.path() + u'/' + relative; }
    QString supportPath(const QString& item = QString()) const
    {
        return path(QStringLiteral("data/Tavrik")) + (item.isEmpty() ? QString() : u'/' + item);
    }

    // Starts a helper from the installed support folder, as the login would.
    void startHelper(const QString& bundle)
    {
        ASSERT_TRUE(install::launchBundle(supportPath(bundle)));
    }

    void startMIDIServer()
    {
        const QString server = path(QStringLiteral("MIDIServer"));
        writeFile(server, stayRunning(), true);
        midiServer.start(server, {});
        ASSERT_TRUE(midiServer.waitForStarted());
        environment.midiServerPath = server;
        ASSERT_TRUE(waitUntil([&] { return install::isRunning(server); }));
    }

    std::optional<int> install(ScriptedWindow& window, bool needsSetup)
    {
        return TVKInstallerController::startInstallForController(window, environment, kNames,
                                                                 needsSetup);
    }

    QTemporaryDir home;
    std::vector<std::pair<const char*, QByteArray>> saved;
    TVKInstallEnvironment environment;
    double clock = 1000;
    QProcess midiServer;
};

TEST(InstallerVersions, CompareAsReleasesAndStagesOrderCDAB)
{
    const auto compare = &TVKInstallerController::compareVersionString;
    EXPECT_EQ(compare(QStringLiteral("1.2.10"), QStringLiteral("1.2.9")), 1);
    EXPECT_EQ(compare(QStringLiteral("1.2"), QStringLiteral("1.2.1")), -1);
    EXPECT_EQ(compare(QStringLiteral("1.2.b1"), QStringLiteral("1.2")), -1);
    EXPECT_EQ(compare(QStringLiteral("1.2"), QStringLiteral("1.2.b1")), 1);
    EXPECT_EQ(compare(QStringLiteral("1.2.a"), QStringLiteral("1.2.b")), -1);
    EXPECT_EQ(compare(QStringLiteral("1.2.c"), QStringLiteral("1.2.d")), -1);
    EXPECT_EQ(compare(QStringLiteral("1.2.d"), QStringLiteral("1.2.a")), -1);
    EXPECT_EQ(compare(QStringLiteral("1.2.3"), QStringLiteral("1.2.3")), 0);
    EXPECT_EQ(compare(QStringLiteral("1.02"), QStringLiteral("1.2")), 0);
    EXPECT_EQ(compare(QStringLiteral("1.2.3"), QStringLiteral("1.2.b")), 1)
        << "numbers beat stages";
    EXPECT_EQ(compare(QStringLiteral("1..2"), QStringLiteral("1.0.2")), 0) << "an empty part is 0";
    // Stages: a longer text is not newer; a letter beyond "d" is older than anything.
    const auto stage = &TVKInstallerController::compareVersionStage;
    EXPECT_EQ(stage(QStringLiteral("b"), QStringLiteral("b2")), 0);
    EXPECT_EQ(stage(QStringLiteral("b2"), QStringLiteral("b1")), 1);
    EXPECT_EQ(stage(QStringLiteral("x"), QStringLiteral("a")), -1);
    EXPECT_EQ(stage(QStringLiteral("a"), QStringLiteral("x")), 1);
    EXPECT_EQ(stage(QStringLiteral("A"), QStringLiteral("a")), -1) << "equal ranks count as older";
    qint64 value = -1;
    EXPECT_TRUE(TVKInstallerController::scan(QString(), value));
    EXPECT_EQ(value, 0);
    EXPECT_FALSE(TVKInstallerController::scan(QStringLiteral("12a"), value));
}

TEST_F(InstallerTest, InstallsEveryComponentThenRegistersTheLauncherEvenAfterSetupLater)
{
    // An older installation: an old driver, a support folder with a file of the user's, and the
    // previous helper still running (it ignores SIGTERM, so it is killed).
    writeBundle(path(QStringLiteral("data/MIDI Drivers/")) + kNames.driver,
                QStringLiteral("com.tavrik.CorvaneEthernetMIDIDriver"), QStringLiteral("1.2"));
    writeBundle(supportPath(QStringLiteral("com.tavrik.Helper.app")),
                QStringLiteral("com.tavrik.Helper"), QStringLiteral("0.9"), stayRunning(true));
    writeFile(supportPath(QStringLiteral("my-notes.txt")), "mine\n");
    startHelper(QStringLiteral("com.tavrik.Helper.app"));
    ASSERT_TRUE(waitUntil(
        [] { return !install::processesOfBundle(QStringLiteral("com.tavrik.Helper")).empty(); }));
    const qint64 oldHelper =
        install::processesOfBundle(QStringLiteral("com.tavrik.Helper")).front();

    ScriptedWindow window;
    TVKInstallerController* installer = nullptr;
    window.presses.push_back([&] {
        installer = TVKInstallerController::current();
        EXPECT_TRUE(
            window.face().message.startsWith(QStringLiteral("Additional software components")));
        EXPECT_EQ(window.face().proceed.title, QStringLiteral("Install"));
        EXPECT_TRUE(window.face().quitMIDIWarningShown);
        installer->initiateInstall();
        EXPECT_EQ(installer->installStage(), 6);
        EXPECT_EQ(window.face().proceed.title, QStringLiteral("Finish"));
        installer->initiateInstall(); // Finish: the setup page, no MIDI server to wait for
        EXPECT_EQ(installer->installStage(), 7);
        EXPECT_EQ(window.setupPage, QStringLiteral("corvaneEthernet"));
        EXPECT_EQ(window.face().cancel.title, QStringLiteral("Setup Later"));
        EXPECT_EQ(window.face().proceed.title, QStringLiteral("Apply"));
        installer->cancelInstall();
    });
    corvane::LogCapture log;
    EXPECT_EQ(install(window, true), TVKInstallerController::Finished);
    EXPECT_EQ(window.finishedSetups, 0) << "Setup Later stores nothing";

    const QString message = window.shown.back().message;
    EXPECT_EQ(message, QStringLiteral("installing midi driver\n________\ninstalling application "
                                      "support\n________\ninstalling background application\n"
                                      "    background application installed\n________\n"
                                      "*** Click Finish to continue ***"));
    EXPECT_FALSE(QFileInfo::exists(QStringLiteral("/proc/%1/cmdline").arg(oldHelper)) &&
                 install::processesOfBundle(QStringLiteral("com.tavrik.Helper")).size() > 1);
    EXPECT_EQ(
        install::readBundle(path(QStringLiteral("data/MIDI Drivers/")) + kNames.driver)->version,
        QStringLiteral("1.2.9"));
    EXPECT_EQ(install::readBundle(supportPath(QStringLiteral("com.tavrik.Helper.app")))->version,
              QStringLiteral("1.0"));
    EXPECT_TRUE(QFileInfo::exists(supportPath(QStringLiteral("my-notes.txt"))));
    EXPECT_TRUE(QFileInfo::exists(supportPath(QStringLiteral("TVK_Built_In_Commands.xml"))));

    // The helpers but the service are started again; the launcher is the login item and runs.
    EXPECT_TRUE(waitUntil(
        [] { return !install::processesOfBundle(QStringLiteral("com.tavrik.Helper")).empty(); }));
    EXPECT_TRUE(install::processesOfBundle(kNames.bgAppID).empty());
    QFile entry(install::autostartEntryPath(kNames.launcherAppID));
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    EXPECT_TRUE(entry.readAll().contains(kNames.launcherApp.toUtf8() + "/run\"\n"));
    EXPECT_TRUE(
        waitUntil([&] { return QFileInfo::exists(path(QStringLiteral("data/launched"))); }));
    EXPECT_TRUE(log.contains(QStringLiteral(
        "SMLoginItemSetEnabled<2>(Q7RM4XW2PN.com.tavrik.CorvaneRS.launcher, true) returned true")));

    ScriptedWindow again;
    EXPECT_EQ(install(again, true), std::nullopt) << "a current installation shows nothing";
    EXPECT_TRUE(again.shown.empty());
}

TEST_F(InstallerTest, CopyFailuresAreListedAndCancelLeavesEverythingAlone)
{
    QDir(path(QStringLiteral("bundle/Contents/Helpers"))).removeRecursively();
    ScriptedWindow window;
    window.presses.push_back([&] {
        TVKInstallerController& installer = *TVKInstallerController::current();
        installer.initiateInstall();
        installer.cancelInstall();
    });
    EXPECT_EQ(install(window, false), TVKInstallerController::Cancelled);
    const QString message = window.shown.back().message;
    EXPECT_TRUE(message.startsWith(QStringLiteral("installing midi driver\n    The file \"")))
        << qPrintable(message);
    EXPECT_TRUE(message.contains(QStringLiteral("installing application support")));
    EXPECT_FALSE(QFileInfo::exists(install::autostartEntryPath(kNames.launcherAppID)));

    ScriptedWindow cancelled;
    cancelled.presses.push_back([] { TVKInstallerController::current()->cancelInstall(); });
    EXPECT_EQ(install(cancelled, false), TVKInstallerController::Cancelled);
}

TEST_F(InstallerTest, FinishWaitsForTheMIDIServerToRestart)
{
    startMIDIServer();
    ScriptedWindow window;
    corvane::LogCapture log;
    window.presses.push_back([&] {
        TVKInstallerController& installer = *TVKInstallerController::current();
        installer.initiateInstall();
        installer.initiateInstall(); // Finish, without a setup page
        EXPECT_TRUE(log.contains(QStringLiteral("initiateInstall- MIDI Server is rtunning")));
        EXPECT_TRUE(window.face().restartLabelShown);
        EXPECT_FALSE(window.face().proceed.enabled);
        EXPECT_FALSE(window.face().cancel.enabled);
        // The server restarts: it quits, and the run ends.
        QTimer::singleShot(300, [&] { midiServer.kill(); });
    });
    EXPECT_EQ(install(window, false), TVKInstallerController::Finished);
    EXPECT_FALSE(window.face().restartLabelShown);
}

TEST_F(InstallerTest, AServerThatNeverRestartsLeavesTheChoiceToTheUser)
{
    startMIDIServer();
    ScriptedWindow window;
    window.presses.push_back([&] {
        TVKInstallerController& installer = *TVKInstallerController::current();
        installer.initiateInstall();
        installer.initiateInstall(); // Finish: the setup page, and the wait beside it
        EXPECT_FALSE(window.face().proceed.enabled);
        clock += 7.5;
        QTimer::singleShot(400, [&] {
            EXPECT_EQ(window.face().restartLabel, QStringLiteral("Couldn't restart MIDI Server"));
            EXPECT_TRUE(window.face().cancel.enabled);
            EXPECT_FALSE(window.face().progressRunning);
            installer.initiateInstall(); // Apply
        });
    });
    EXPECT_EQ(install(window, true), TVKInstallerController::Finished);
    EXPECT_EQ(window.finishedSetups, 1);
}

class UninstallerTest : public InstallerTest
{
protected:
    void installed()
    {
        ScriptedWindow window;
        window.presses.push_back([] {
            TVKInstallerController::current()->initiateInstall();
            TVKInstallerController::current()->initiateInstall();
        });
        ASSERT_EQ(install(window, false), TVKInstallerController::Finished);
        // The launcher of the test does not start the service: start it as logging in would.
        startHelper(kNames.bgApp);
        ASSERT_TRUE(waitUntil([] {
            return !install::processesOfBundle(QStringLiteral("com.tavrik.Helper")).empty();
        }));
        ASSERT_TRUE(waitUntil([] { return !install::processesOfBundle(kNames.bgAppID).empty(); }));
    }

    int uninstall(ScriptedWindow& window)
    {
        return TVKUninstallerController::startUninstallForController(
            window, environment, QStringLiteral("Corvane Ethernet"), kNames);
    }
};

TEST_F(UninstallerTest, WithOtherHelpersRunningOnlyTheServiceGoes)
{
    installed();
    ScriptedWindow window;
    window.presses.push_back([&] {
        EXPECT_EQ(
            window.face().message,
            QStringLiteral("Do you want to uninstall the Corvane Ethernet software components?"));
        EXPECT_EQ(window.face().proceed.title, QStringLiteral("Uninstall"));
        TVKUninstallerController& uninstaller = *TVKUninstallerController::current();
        uninstaller.okayUninstall();
        EXPECT_EQ(window.face().message, QStringLiteral("Uninstall Complete!"));
        EXPECT_EQ(window.face().proceed.title, QStringLiteral("Finish"));
        EXPECT_FALSE(window.face().cancel.shown);
        uninstaller.okayUninstall();
    });
    EXPECT_EQ(uninstall(window), 1);
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("data/MIDI Drivers/")) + kNames.driver));
    EXPECT_FALSE(QFileInfo::exists(install::autostartEntryPath(kNames.launcherAppID)));
    EXPECT_FALSE(QFileInfo::exists(supportPath(kNames.bgApp)));
    EXPECT_TRUE(QFileInfo::exists(supportPath(QStringLiteral("com.tavrik.Helper.app"))));
    EXPECT_TRUE(waitUntil([] { return install::processesOfBundle(kNames.bgAppID).empty(); }));
    // Without a MIDI server to wait for, the helpers are not started again.
    QThread::msleep(200);
    EXPECT_TRUE(install::processesOfBundle(QStringLiteral("com.tavrik.Helper")).empty());
}

TEST_F(UninstallerTest, WithTheServiceAloneTheFolderGoesAndTheServerIsWaitedFor)
{
    installed();
    for (const qint64 pid : install::processesOfBundle(QStringLiteral("com.tavrik.Helper")))
        install::forceQuit(pid);
    startMIDIServer();
    ScriptedWindow window;
    window.presses.push_back([&] {
        TVKUninstallerController& uninstaller = *TVKUninstallerController::current();
        uninstaller.okayUninstall();
        EXPECT_EQ(window.face().message, QStringLiteral("Waiting for MIDI Server…"));
        EXPECT_TRUE(window.face().progressRunning);
        QTimer::singleShot(300, [&] { midiServer.kill(); });
        // Pressed once the server is gone and the button reads "Finished".
        QTimer::singleShot(1500, [&] {
            EXPECT_EQ(window.face().proceed.title, QStringLiteral("Finished"));
            uninstaller.okayUninstall();
        });
    });
    EXPECT_EQ(uninstall(window), 1);
    EXPECT_FALSE(QFileInfo::exists(supportPath()));
    EXPECT_EQ(window.face().message,
              QStringLiteral("Uninstall Complete!\n\nIf there are multiple user accounts on this "
                             "Mac, please don't delete this application until the corvaneEthernet "
                             "software has been uninstalled from all accounts."));

    ScriptedWindow cancelled;
    cancelled.presses.push_back([] { TVKUninstallerController::current()->cancelUninstall(); });
    EXPECT_EQ(uninstall(cancelled), 2);
}

// corvane --install and --uninstall: the same steps without windows and without a display, in a
// real child process.
class ProgramInstallerTest : public InstallerTest
{
protected:
    QProcessEnvironment windowless() const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("CORVANE_BUNDLE_DIR"), environment.bundlePath);
        for (const char* name :
             {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "CORVANE_MIDI_SERVER"})
            env.remove(QString::fromLatin1(name));
        return env;
    }
};

TEST_F(ProgramInstallerTest, InstallsAndUninstallsWithoutADisplayInPlainLines)
{
    QProcess corvane;
    corvane.setProcessEnvironment(windowless());
    corvane.start(QStringLiteral(CORVANE_BINARY_DIR "/src/corvane"), {QStringLiteral("--install")});
    ASSERT_TRUE(corvane.waitForFinished(30000));
    const QString out = QString::fromUtf8(corvane.readAllStandardOutput());
    const QString err = QString::fromUtf8(corvane.readAllStandardError());
    EXPECT_EQ(corvane.exitStatus(), QProcess::NormalExit) << qPrintable(err);
    EXPECT_EQ(corvane.exitCode(), 0) << qPrintable(out + err);
    EXPECT_TRUE(out.startsWith(QStringLiteral("Additional software components")))
        << qPrintable(out);
    EXPECT_TRUE(out.contains(QStringLiteral("\ninstalling midi driver\ninstalling application "
                                            "support\ninstalling background application\n")))
        << qPrintable(out);
    // Nothing meant for a window: no prompt to press a button, no separator, no log line.
    EXPECT_FALSE(out.contains(QStringLiteral("Click Finish"))) << qPrintable(out);
    EXPECT_FALSE(out.contains(QStringLiteral("____"))) << qPrintable(out);
    EXPECT_FALSE((out + err).contains(QStringLiteral("SMLoginItemSetEnabled"))) << qPrintable(err);
    EXPECT_TRUE(err.isEmpty()) << qPrintable(err);
    EXPECT_TRUE(QFileInfo::exists(install::autostartEntryPath(kNames.launcherAppID)));

    corvane.start(QStringLiteral(CORVANE_BINARY_DIR "/src/corvane"), {QStringLiteral("--install")});
    ASSERT_TRUE(corvane.waitForFinished(30000));
    EXPECT_EQ(corvane.exitCode(), 0);
    EXPECT_TRUE(corvane.readAllStandardOutput().contains("installed and current"));

    corvane.start(QStringLiteral(CORVANE_BINARY_DIR "/src/corvane"),
                  {QStringLiteral("--uninstall")});
    ASSERT_TRUE(corvane.waitForFinished(30000));
    EXPECT_EQ(corvane.exitCode(), 0) << corvane.readAllStandardError().toStdString();
    EXPECT_TRUE(corvane.readAllStandardOutput().contains("Uninstall Complete!"));
    EXPECT_FALSE(QFileInfo::exists(path(QStringLiteral("data/MIDI Drivers/")) + kNames.driver));
}

// A script reads the installer's output through a pipe: it gets it all and the pipe closes when
// corvane returns, though the helpers it started run on; what they say goes nowhere near it.
TEST_F(ProgramInstallerTest, APipeReadingTheInstallerClosesWhenItReturns)
{
    writeBundle(path(QStringLiteral("bundle/Contents/Resources/Helpers/Tavrik/")) +
                    QStringLiteral("com.tavrik.Helper.app"),
                QStringLiteral("com.tavrik.Helper"), QStringLiteral("1.0"),
                "#!/bin/bash\necho helper-speaks\necho helper-complains >&2\n"
                "exec -a \"$0\" sleep 300\n");
    QProcess script;
    script.setProcessEnvironment(windowless());
    script.start(QStringLiteral("/bin/sh"),
                 {QStringLiteral("-c"), QStringLiteral("\"$0\" --install 2>&1 | cat"),
                  QStringLiteral(CORVANE_BINARY_DIR "/src/corvane")});
    const bool ended = script.waitForFinished(20000);
    const QString out = QString::fromUtf8(script.readAll());
    ASSERT_TRUE(ended) << "the pipe stayed open: " << qPrintable(out);
    EXPECT_EQ(script.exitCode(), 0) << qPrintable(out);
    EXPECT_TRUE(out.contains(QStringLiteral("installing midi driver"))) << qPrintable(out);
    EXPECT_FALSE(out.contains(QStringLiteral("helper-"))) << qPrintable(out);
    // The helper was started all the same, and runs on.
    EXPECT_TRUE(waitUntil(
        [] { return !install::processesOfBundle(QStringLiteral("com.tavrik.Helper")).empty(); }));
}

} // namespace

namespace {

// A second start hands its files to the running Corvane; without one, nobody takes them.
TEST(InstanceLink, TheRunningInstanceTakesTheFilesOfASecondStart)
{
    corvane::test::ensureGuiApplication();
    QTemporaryDir ports;
    const QByteArray previous = qgetenv("TVK_PORT_DIR");
    qputenv("TVK_PORT_DIR", QFile::encodeName(ports.path()));
    EXPECT_FALSE(TVKInstanceLink::sendToRunningInstance({QStringLiteral("/tmp/a.CvKs")}, 200));
    {
        TVKInstanceLink running;
        ASSERT_TRUE(running.listen());
        QStringList received;
        int requests = 0;
        QObject::connect(&running, &TVKInstanceLink::openRequested, [&](const QStringList& files) {
            received = files;
            ++requests;
        });
        const QStringList files = {QStringLiteral("/tmp/My Mixer.CvKs"),
                                   QStringLiteral("/tmp/ü.CvKs")};
        EXPECT_TRUE(TVKInstanceLink::sendToRunningInstance(files, 200));
        EXPECT_TRUE(waitUntil([&] { return requests == 1; }));
        EXPECT_EQ(received, files);
        // No files: it only comes to the front.
        EXPECT_TRUE(TVKInstanceLink::sendToRunningInstance({}, 200));
        EXPECT_TRUE(waitUntil([&] { return requests == 2; }));
        EXPECT_TRUE(received.isEmpty());
    }
    // A socket left behind by an instance that ended is taken over.
    TVKInstanceLink next;
    EXPECT_TRUE(next.listen());

    // A listener of another user gets no file; the caller becomes the instance itself.
    struct Foreign : corvane::SystemPortPlatform
    {
        std::optional<unsigned> peerUserId(qintptr) const override { return userId() + 4242; }
    } foreign;
    corvane::PortPlatform::setCurrent(&foreign);
    {
        corvane::LogCapture log;
        bool delivered = false;
        QObject::connect(&next, &TVKInstanceLink::openRequested, [&] { delivered = true; });
        EXPECT_FALSE(TVKInstanceLink::sendToRunningInstance({QStringLiteral("/tmp/a.CvKs")}, 200));
        EXPECT_EQ(
            log.lines().filter(QStringLiteral("single instance: refused the listener")).size(), 1);
        TVKInstanceLink mine;
        EXPECT_TRUE(mine.listen());
        // And a request from another user is dropped unread.
        QCoreApplication::processEvents();
        EXPECT_FALSE(delivered);
    }
    corvane::PortPlatform::setCurrent(nullptr);
    qputenv("TVK_PORT_DIR", previous);
}

} // namespace
