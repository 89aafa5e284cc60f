#include "ControllerFixture.h"
#include "TestConfig.h"
#include "app/TVKRecoveryJournal.h"
#include "core/Log.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <csignal>
#include <sys/stat.h>

using namespace corvane;
using namespace corvane::test;

namespace {

std::unique_ptr<CorvaneModelData> threeKeysets()
{
    auto model = std::make_unique<CorvaneModelData>();
    model->addKeysetWithName(QStringLiteral("Editor"), fourCC("EdIt"));
    model->addKeysetWithName(QStringLiteral("Mixer"), 0, QStringLiteral("org.example.mixer"));
    return model;
}

} // namespace

TEST_F(ControllerTest, StartsFromTheStoreAndTakesOverTheSelectionTheServiceHolds)
{
    storeConfiguration(*threeKeysets());
    ASSERT_TRUE(startService());
    // An earlier run left the service with keyset 2, layer 1 and a control selected.
    {
        CorvaneController& first = startController();
        first.setSelectedKeyset(2);
        first.setSelectedLayer(1);
        first.hardwareControlChangeForGroup(1, 3, 0, 1);
        ASSERT_TRUE(waitForCount(QStringLiteral("TCtl"), 2, 0));
        controller.reset();
    }
    const qsizetype from = mark();
    CorvaneController& c = startController();
    EXPECT_TRUE(waitForCount(QStringLiteral("RqCC"), 1, from));
    EXPECT_EQ(c.modelData()->numberOfKeysets(), 3);
    EXPECT_EQ(c.selectedKeyset(), 2);
    EXPECT_EQ(c.selectedLayer(), 1);
    EXPECT_EQ(c.modelDataGroupIndex(), 1);
    EXPECT_EQ(c.modelDataControlIndex(), 3);
    EXPECT_EQ(c.modelData()->selectedKeysetIndex(), 2);
    EXPECT_EQ(c.modelData()->selectedControlIndex(), 3);
    EXPECT_EQ(views.keysetName, QStringLiteral("Mixer"));
    // No icon of its own: the generic one, 32 x 32.
    EXPECT_EQ(views.keysetIcon.size(), QSize(32, 32));
    // The first connection check runs at the end of start-up, and the finish is shown.
    EXPECT_TRUE(waitForCount(QStringLiteral("Cnct"), 1, from));
    ASSERT_FALSE(views.hardwareImages.empty());
    EXPECT_EQ(views.hardwareImages.back(), QStringLiteral("CorvaneRS_Midnight.png"));
}

TEST_F(ControllerTest, InstallationCheckRunsOnceInEitherWakeUpOrder)
{
    for (const bool windowFirst : {false, true}) {
        SCOPED_TRACE(windowFirst ? "window first" : "controller first");
        views = ScriptedViews();
        controller = std::make_unique<CorvaneController>();
        controller->setViews(views.interfaces());
        views.existing.insert(TVKWindow::Main);
        if (windowFirst)
            controller->windowIsAwake();
        controller->awakeFromNib();
        if (!windowFirst)
            controller->windowIsAwake();
        EXPECT_EQ(views.installs, 0);
        controller->windowDidBecomeKey(TVKWindow::Main);
        EXPECT_EQ(views.installs, 0) << "launching has not finished";
        controller->applicationDidFinishLaunching();
        EXPECT_EQ(views.installs, 1);
        controller->windowDidBecomeKey(TVKWindow::Main);
        controller->applicationDidFinishLaunching();
        EXPECT_EQ(views.installs, 1);
        EXPECT_TRUE(views.installNeedsSetup);
        EXPECT_EQ(views.installNames.driverName,
                  QStringLiteral("CorvaneEthernetMIDIDriver.plugin"));
        EXPECT_TRUE(views.installNames.applicationName.isEmpty()) << "fetched but not passed";
        // The accessibility query goes 20 points into the main window.
        ASSERT_EQ(views.axQueries.size(), 1u);
        EXPECT_EQ(views.axQueries.front(), QPointF(120, 70));
        controller.reset();
    }
}

TEST_F(ControllerTest, UnreadableStoreIsMovedAsideAndNeverWrittenOver)
{
    QDir().mkpath(QFileInfo(storePath).path());
    const QByteArray damaged = "<?xml version=\"1.0\"?><plist><dict><key>TVKModelData";
    {
        QFile file(storePath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(damaged);
    }
    CorvaneController& c = startController();
    ASSERT_EQ(views.alerts.size(), 1u);
    EXPECT_EQ(views.alerts[0].message,
              QStringLiteral("The Stored Configuration Could Not Be Read"));
    const QStringList aside = QDir(QFileInfo(storePath).path())
                                  .entryList({QStringLiteral("*.unreadable-*")}, QDir::Files);
    ASSERT_EQ(aside.size(), 1);
    EXPECT_TRUE(views.alerts[0].informativeText.contains(aside.first()));
    QFile moved(QFileInfo(storePath).path() + u'/' + aside.first());
    ASSERT_TRUE(moved.open(QIODevice::ReadOnly));
    EXPECT_EQ(moved.readAll(), damaged);
    EXPECT_EQ(c.modelData()->numberOfKeysets(), 1);
    EXPECT_EQ(c.modelData()->keysetAtIndex(0)->name(), QStringLiteral("Default"));
    c.handleTerminateMessage();
    EXPECT_EQ(TVKUserDefaults(storePath).state(), TVKUserDefaults::State::Loaded);
}

TEST_F(ControllerTest, DamagedFilesGoAsideBesideEarlierOnesWithoutReplacingThem)
{
    // Two damaged starts within the same second: the names the first used are taken. Every
    // stamp the start could use is taken here, so each file needs a name of its own.
    QDir().mkpath(QFileInfo(storePath).path());
    const QString journalPath = TVKRecoveryJournal::pathBeside(storePath);
    const QDateTime now = QDateTime::currentDateTime();
    QStringList earlier;
    for (int second = -1; second <= 30; ++second) {
        const QString stamp = now.addSecs(second).toString(QStringLiteral("yyyyMMdd-hhmmss"));
        for (const QString& path : {storePath, journalPath})
            earlier << path + QStringLiteral(".unreadable-") + stamp;
    }
    const auto put = [](const QString& path, const QByteArray& bytes) {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    };
    for (const QString& path : earlier)
        ASSERT_TRUE(put(path, "earlier"));
    const QByteArray damagedStore = "<?xml version=\"1.0\"?><plist><dict><key>TVKModelData";
    const QByteArray damagedJournal = "not a journal at all";
    ASSERT_TRUE(put(storePath, damagedStore));
    ASSERT_TRUE(put(journalPath, damagedJournal));

    CorvaneController& c = startController();
    ASSERT_EQ(views.alerts.size(), 1u);
    for (const QString& path : earlier) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        EXPECT_EQ(file.readAll(), "earlier") << path.toStdString();
    }
    const QDir folder(QFileInfo(storePath).path());
    QMap<QByteArray, QStringList> moved;
    for (const QString& name : folder.entryList({QStringLiteral("*.unreadable-*")}, QDir::Files)) {
        if (earlier.contains(folder.filePath(name)))
            continue;
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        moved[file.readAll()] << name;
    }
    ASSERT_EQ(moved.value(damagedStore).size(), 1) << "the store, once";
    EXPECT_TRUE(views.alerts[0].informativeText.contains(moved.value(damagedStore).first()));
    EXPECT_EQ(moved.value(damagedJournal).size(), 1) << "the journal, once";
    EXPECT_EQ(moved.size(), 2);
    EXPECT_EQ(c.modelData()->numberOfKeysets(), 1);
    c.handleTerminateMessage();
    EXPECT_EQ(TVKUserDefaults(storePath).state(), TVKUserDefaults::State::Loaded);
    EXPECT_TRUE(TVKRecoveryJournal(journalPath).read().error.isEmpty());
}

TEST_F(ControllerTest, QuittingWritesTheConfigurationAndTheGlobalSettings)
{
    CorvaneController& c = startController();
    c.modelData()->addKeysetWithName(QStringLiteral("Grader"), fourCC("GrAd"));
    c.setIpAddress(QStringLiteral("10.0.0.7"));
    c.setEthernetPort(4321);
    c.handleTerminateMessage();
    c.handleTerminateMessage(); // once only
    const TVKUserDefaults store(storePath);
    ASSERT_EQ(store.state(), TVKUserDefaults::State::Loaded);
    EXPECT_EQ(CorvaneModelData(store.objectForKey(key::ModelData)).numberOfKeysets(), 2);
    EXPECT_EQ(store.objectForKey(key::IPAdr).toString(), QStringLiteral("10.0.0.7"));
    EXPECT_EQ(store.objectForKey(key::EnetPrt).toInteger(), 4321);
    EXPECT_EQ(store.objectForKey(key::StandaloneTLW).toInteger(), 0);
}

TEST_F(ControllerTest, StandaloneTLWInTheStoreAloneDoesNotOpenItsWindow)
{
    PlistValue globals = PlistValue::makeDict();
    globals.insert(key::StandaloneTLW, PlistValue(qint64(1)));
    globals.insert(key::StandaloneTL, PlistValue(qint64(1)));
    storeConfiguration(CorvaneModelData(), globals);
    CorvaneController& c = startController();
    c.windowDidBecomeKey(TVKWindow::Main);
    EXPECT_TRUE(c.corvaneModelData()->standaloneTL());
    EXPECT_FALSE(c.corvaneModelData()->standaloneTLW());
    EXPECT_EQ(std::count(views.shown.begin(), views.shown.end(), TVKWindow::TL), 1);
    EXPECT_EQ(std::count(views.shown.begin(), views.shown.end(), TVKWindow::TLW), 0);
}

TEST_F(ControllerTest, NVStandaloneOpensItsWindowAndSelectsItsFirstGroup)
{
    CorvaneModelData model;
    model.setStandaloneNV(true);
    storeConfiguration(model);
    CorvaneController& c = startController();
    c.windowDidBecomeKey(TVKWindow::Main);
    EXPECT_EQ(std::count(views.shown.begin(), views.shown.end(), TVKWindow::NV), 1);
    EXPECT_EQ(views.key, TVKWindow::NV);
    EXPECT_EQ(c.selectedGroup(), 40);
    EXPECT_EQ(c.selectedControl(), 0);
    c.handleMainWindowChange(TVKWindow::NV);
    EXPECT_TRUE(views.nvMenuShown);
    c.handleMainWindowChange(TVKWindow::Main);
    EXPECT_FALSE(views.nvMenuShown);
}

// --- The application process ended by a signal, or killed ---------------------------------------

namespace {

class Driver
{
public:
    explicit Driver(const QString& home)
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/config"));
        env.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/data"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        m_process.setProcessEnvironment(env);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(CORVANE_BINARY_DIR "/tests/app/corvane-controller-driver"));
    }
    ~Driver()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }

    // Runs one command and waits for its answer; the lines before it are kept.
    bool run(const QString& command)
    {
        m_process.write(command.toUtf8() + '\n');
        return waitFor(QStringLiteral("ok ") + command.section(QLatin1Char(' '), 0, 0));
    }
    bool waitFor(const QString& line)
    {
        while (!m_lines.contains(line)) {
            if (!m_process.waitForReadyRead(10000))
                return false;
            while (m_process.canReadLine())
                m_lines << QString::fromUtf8(m_process.readLine()).trimmed();
        }
        return true;
    }
    const QStringList& lines() const { return m_lines; }
    QProcess& process() { return m_process; }

private:
    QProcess m_process;
    QStringList m_lines;
};

PlistValue readConfiguration(const QString& path)
{
    const PlistReadResult read = PlistCodec::readFile(path);
    return read.ok ? read.value : PlistValue();
}

const QStringList kEdits = {
    QStringLiteral("select 0 2"), QStringLiteral("latch 1 1"), QStringLiteral("color 37 0"),
    QStringLiteral("name Punch"), QStringLiteral("delete-action 1"), QStringLiteral("set-all 1"),
    QStringLiteral("undo"), QStringLiteral("set-all 0"), QStringLiteral("emulation 2"),
    QStringLiteral("layer 2"), QStringLiteral("latch 1 0"), QStringLiteral("undo"),
    QStringLiteral("redo"),
    // Changes the service is not told about; the lock last, as it refuses the edits after it.
    QStringLiteral("one-touch"), QStringLiteral("one-touch-default"), QStringLiteral("keyset 2"),
    QStringLiteral("lock-button 1"), QStringLiteral("keyset 1"), QStringLiteral("lock")};

} // namespace

TEST_F(ControllerTest, KilledAfterEditsTheNextStartRecoversEveryOne)
{
    storeConfiguration(*threeKeysets());
    const QString before = home.path() + QStringLiteral("/before.plist");
    {
        Driver driver(home.path());
        ASSERT_TRUE(driver.waitFor(QStringLiteral("ready")));
        ASSERT_TRUE(driver.run(QStringLiteral("keyset 1")));
        for (const QString& edit : kEdits)
            ASSERT_TRUE(driver.run(edit)) << edit.toStdString();
        ASSERT_TRUE(driver.run(QStringLiteral("dump ") + before));
        ::kill(pid_t(driver.process().processId()), SIGKILL);
        driver.process().waitForFinished();
    }
    const PlistValue edited = readConfiguration(before);
    ASSERT_TRUE(edited.isDict());
    const PlistValue stored = readConfiguration(storePath).value(key::ModelData);
    EXPECT_NE(servicePart(edited), servicePart(readConfiguration(storePath).value(key::ModelData)))
        << "the store was not written before the kill";

    const QString after = home.path() + QStringLiteral("/after.plist");
    Driver second(home.path());
    ASSERT_TRUE(second.waitFor(QStringLiteral("ready")));
    ASSERT_TRUE(second.run(QStringLiteral("dump ") + after));
    EXPECT_TRUE(second.lines().filter(QStringLiteral("alert Unsaved Edits Recovered")).size() == 1)
        << second.lines().join(u'\n').toStdString();
    const PlistValue recovered = readConfiguration(after);
    EXPECT_EQ(readablePart(recovered.value(key::Keysets)),
              readablePart(edited.value(key::Keysets)));
    EXPECT_EQ(recovered.value(key::OneTchDflt), edited.value(key::OneTchDflt));
    EXPECT_NE(recovered.value(key::OneTchDflt), stored.value(key::OneTchDflt))
        << "the default was never changed";
    // Made safe at once: the store holds it and the journal starts again.
    EXPECT_EQ(
        readablePart(TVKUserDefaults(storePath).objectForKey(key::ModelData).value(key::Keysets)),
        readablePart(edited.value(key::Keysets)));
    EXPECT_TRUE(
        TVKRecoveryJournal(TVKRecoveryJournal::pathBeside(storePath)).read().records.empty());
}

TEST_F(ControllerTest, TerminationSignalsWriteTheStoreOnceAndExitCleanly)
{
    for (const int signalNumber : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(signalNumber);
        const QString dump = home.path() + QStringLiteral("/live-%1.plist").arg(signalNumber);
        Driver driver(home.path());
        ASSERT_TRUE(driver.waitFor(QStringLiteral("ready")));
        ASSERT_TRUE(driver.run(QStringLiteral("set-all %1").arg(signalNumber % 2)));
        ASSERT_TRUE(driver.run(QStringLiteral("latch 1 1")));
        ASSERT_TRUE(driver.run(QStringLiteral("dump ") + dump));
        ::kill(pid_t(driver.process().processId()), signalNumber);
        ASSERT_TRUE(driver.process().waitForFinished(10000));
        EXPECT_EQ(driver.process().exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(driver.process().exitCode(), 0);
        EXPECT_EQ(TVKUserDefaults(storePath).objectForKey(key::ModelData).value(key::Keysets),
                  readConfiguration(dump).value(key::Keysets));
        EXPECT_TRUE(
            TVKRecoveryJournal(TVKRecoveryJournal::pathBeside(storePath)).read().records.empty());
    }
}

// One flipped bit in the first record of a crashed run's journal: that edit alone is lost, the
// user is told which, the later ones are recovered, and the damaged journal is kept as it was.
TEST_F(ControllerTest, ADamagedJournalRecordIsSkippedTheRestRecoveredAndTheJournalKept)
{
    storeConfiguration(*threeKeysets());
    const QString journalPath = TVKRecoveryJournal::pathBeside(storePath);
    {
        Driver driver(home.path());
        ASSERT_TRUE(driver.waitFor(QStringLiteral("ready")));
        for (const char* edit :
             {"keyset 1", "name Punch", "select 0 2", "latch 1 1", "emulation 2", "one-touch"})
            ASSERT_TRUE(driver.run(QString::fromLatin1(edit))) << edit;
        ::kill(pid_t(driver.process().processId()), SIGKILL);
        driver.process().waitForFinished();
    }
    const qsizetype records = qsizetype(TVKRecoveryJournal(journalPath).read().records.size());
    ASSERT_GE(records, 4);
    QFile file(journalPath);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray damaged = file.readAll();
    file.close();
    // The first record starts after the 16-byte header; a bit of its payload flips.
    damaged[16 + 8 + 2] = char(damaged[16 + 8 + 2] ^ 0x10);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(damaged);
    file.close();

    Driver second(home.path());
    ASSERT_TRUE(second.waitFor(QStringLiteral("ready")));
    // An alert's text runs over several lines of the driver's output.
    const QString alerts = second.lines().join(u'\n');
    EXPECT_TRUE(alerts.contains(QStringLiteral("%1 edit(s) made").arg(records - 1)))
        << qPrintable(alerts);
    EXPECT_TRUE(alerts.contains(QStringLiteral("damaged and skipped: record 1 (at byte 16,")))
        << qPrintable(alerts);
    const QStringList aside = QDir(QFileInfo(journalPath).path())
                                  .entryList({QStringLiteral("*.journal.damaged-*")}, QDir::Files);
    ASSERT_EQ(aside.size(), 1);
    EXPECT_TRUE(alerts.contains(aside.first())) << qPrintable(alerts);
    QFile kept(QFileInfo(journalPath).path() + u'/' + aside.first());
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), damaged) << "the damaged journal was not kept as it was";
    // The later edits were recovered and saved; the journal starts again.
    const PlistValue keyset =
        TVKUserDefaults(storePath).objectForKey(key::ModelData).value(key::Keysets).at(1);
    EXPECT_EQ(keyset.value(key::EMode).toUnsigned(), 2u);
    EXPECT_EQ(keyset.value(key::OneTchRcd).toInteger(), 1);
    EXPECT_TRUE(TVKRecoveryJournal(journalPath).read().records.empty());
}

// A FIFO at the journal's path would hold the start-up inside open() forever: it is not read,
// it goes aside, and a journal of regular file takes its place.
TEST_F(ControllerTest, AFifoAtTheJournalPathDoesNotHoldUpTheStart)
{
    const QString journalPath = TVKRecoveryJournal::pathBeside(storePath);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(journalPath).path()));
    ASSERT_EQ(::mkfifo(QFile::encodeName(journalPath).constData(), 0600), 0);
    Driver driver(home.path());
    ASSERT_TRUE(driver.waitFor(QStringLiteral("ready"))) << "the start-up waited on the FIFO";
    ASSERT_TRUE(driver.run(QStringLiteral("emulation 1")));
    EXPECT_TRUE(QFileInfo(journalPath).isFile());
    EXPECT_EQ(TVKRecoveryJournal(journalPath).read().records.size(), 1u);
    EXPECT_EQ(QDir(QFileInfo(journalPath).path())
                  .entryList({QStringLiteral("*.journal.unreadable-*")}, QDir::System)
                  .size(),
              1);
}
