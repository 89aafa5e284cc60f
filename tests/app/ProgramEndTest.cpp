// The program itself, started as a user starts it, each in a home of its own beside its own
// service simulator, and ended by signals sent at many moments of its start-up: before its window
// exists, while an alert of the start-up waits for the user, once it runs. Every start has to
// end, and end having written the configuration.
#include "ServiceTestSupport.h"
#include "TestConfig.h"
#include "app/TVKRecoveryJournal.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "service/MessageCatalogue.h"
#include "service/TVK_MessageSpecs.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <csignal>
#include <deque>
#include <gtest/gtest.h>
#include <memory>

namespace {

using corvane::test::PortFolder;
using corvane::test::SimulatorProcess;

const QString kProgram = QStringLiteral(CORVANE_BINARY_DIR "/src/corvane");
const QString kDriver = QStringLiteral("CorvaneEthernetMIDIDriver.plugin");

void writeFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    file.write(bytes);
}

QByteArray bundleInfo(const char* version)
{
    return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                      "<key>CFBundleIdentifier</key><string>com.tavrik.CorvaneEthernetMIDIDriver"
                      "</string><key>CFBundleVersion</key><string>") +
           version + "</string></dict></plist>\n";
}

// What a start finds: nothing yet, the edits of a run that crashed, or a store that cannot be
// read. Each but the first puts an alert up at start-up.
enum class Found
{
    Nothing,
    CrashedEdits,
    UnreadableStore,
};

// One user's home: the folders of the configuration, the data and the ports, an installation
// that is current (so that the installer stays away unless asked for), the service simulator,
// and the program.
class Home
{
public:
    explicit Home(Found found, bool installed = true) : m_found(found)
    {
        EXPECT_TRUE(m_dir.isValid());
        if (installed) {
            writeFile(path(QStringLiteral("bundle/Contents/Helpers/") + kDriver +
                           QStringLiteral("/Info.plist")),
                      bundleInfo("1.0"));
            writeFile(path(QStringLiteral("data/MIDI Drivers/")) + kDriver +
                          QStringLiteral("/Info.plist"),
                      bundleInfo("1.0"));
            QDir().mkpath(path(QStringLiteral("data/Tavrik")));
        }
        switch (found) {
        case Found::Nothing:
            break;
        case Found::CrashedEdits: {
            // What a run killed after changing the first keyset's emulation leaves behind.
            TVKRecoveryJournal journal(TVKRecoveryJournal::pathBeside(storePath()));
            EXPECT_TRUE(journal.open());
            EXPECT_TRUE(journal.append(corvane::msg::Emul, 0, TVK_OneIntSpec(3).data()));
            break;
        }
        case Found::UnreadableStore:
            writeFile(storePath(), "<?xml version=\"1.0\"?><plist><dict><key>TVKModel");
            break;
        }
    }

    ~Home()
    {
        if (m_program.state() != QProcess::NotRunning) {
            m_program.kill();
            m_program.waitForFinished(5000);
        }
        m_service.reset();
    }

    QString path(const QString& relative) const { return m_dir.path() + u'/' + relative; }
    QString storePath() const
    {
        return path(QStringLiteral("config/Tavrik/com.tavrik.CorvaneRS.plist"));
    }

    QProcessEnvironment environment() const
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("HOME"), path(QStringLiteral("home")));
        env.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("config")));
        env.insert(QStringLiteral("XDG_DATA_HOME"), path(QStringLiteral("data")));
        env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_ports.path());
        env.insert(QStringLiteral("TVK_PORT_DIR"), m_ports.path());
        env.insert(QStringLiteral("CORVANE_BUNDLE_DIR"), path(QStringLiteral("bundle")));
        env.remove(QStringLiteral("CORVANE_MIDI_SERVER"));
        return env;
    }

    // The simulator of this home, then the program.
    bool start()
    {
        // The service keeps its own copy of the configuration.
        m_service = std::make_unique<SimulatorProcess>(m_ports, QStringList(),
                                                       path(QStringLiteral("service")));
        if (!m_service->start())
            return false;
        m_program.setProcessEnvironment(environment());
        m_program.setProcessChannelMode(QProcess::MergedChannels);
        m_program.start(kProgram, {});
        return m_program.waitForStarted(5000);
    }

    // Whether the program catches SIGTERM yet (its handlers are in place).
    bool catchesTermination() const
    {
        QFile status(QStringLiteral("/proc/%1/status").arg(m_program.processId()));
        if (!status.open(QIODevice::ReadOnly))
            return false;
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("SigCgt:"))
                return (line.mid(7).trimmed().toULongLong(nullptr, 16) >> (SIGTERM - 1)) & 1;
        }
        return false;
    }

    void signal(int signalNumber) { ::kill(pid_t(m_program.processId()), signalNumber); }
    QProcess& program() { return m_program; }

    // What the program left: a written configuration and no edit that only the journal holds.
    void expectWritten() const
    {
        const corvane::TVKUserDefaults store(storePath());
        EXPECT_EQ(store.state(), corvane::TVKUserDefaults::State::Loaded);
        const corvane::PlistValue& model = store.objectForKey(corvane::key::ModelData);
        ASSERT_TRUE(model.isDict()) << "the configuration was not written";
        EXPECT_EQ(
            TVKRecoveryJournal(TVKRecoveryJournal::pathBeside(storePath())).read().records.size(),
            0u)
            << "edits were left to the journal";
        if (m_found == Found::CrashedEdits) {
            EXPECT_EQ(
                model.value(corvane::key::Keysets).at(0).value(corvane::key::EMode).toUnsigned(),
                3u)
                << "the recovered edit was not kept";
        }
        if (m_found == Found::UnreadableStore) {
            const QStringList aside =
                QDir(QFileInfo(storePath()).path()).entryList({QStringLiteral("*.unreadable-*")});
            EXPECT_FALSE(aside.isEmpty()) << "the unreadable store was not kept";
        }
    }

private:
    Found m_found;
    QTemporaryDir m_dir;
    PortFolder m_ports;
    std::unique_ptr<SimulatorProcess> m_service;
    QProcess m_program;
};

bool waitUntil(const std::function<bool()>& condition, int ms)
{
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > ms)
            return false;
        QThread::msleep(5);
    }
    return true;
}

struct Moment
{
    int afterMs; // after the handlers are in place
    int signalNumber;
    bool twice; // a second signal right after the first
};

// Starts one program per moment, side by side, signals each at its moment and expects each to
// end normally within a few seconds, having written everything.
void endAtEveryMoment(Found found, bool installed)
{
    const std::vector<Moment> moments = {
        {0, SIGTERM, false},   {30, SIGINT, false},   {120, SIGTERM, false},  {300, SIGHUP, false},
        {600, SIGTERM, false}, {1200, SIGTERM, true}, {2500, SIGTERM, false}, {2500, SIGINT, true},
    };
    std::deque<std::unique_ptr<Home>> homes;
    for (size_t i = 0; i < moments.size(); ++i) {
        homes.push_back(std::make_unique<Home>(found, installed));
        ASSERT_TRUE(homes.back()->start());
    }
    std::vector<QElapsedTimer> caught(moments.size());
    for (size_t i = 0; i < moments.size(); ++i) {
        ASSERT_TRUE(waitUntil([&] { return homes[i]->catchesTermination(); }, 10000))
            << "start " << i << " never caught SIGTERM";
        caught[i].start();
    }
    std::vector<bool> sent(moments.size(), false);
    QElapsedTimer clock;
    clock.start();
    while (std::find(sent.begin(), sent.end(), false) != sent.end() && clock.elapsed() < 20000) {
        for (size_t i = 0; i < moments.size(); ++i) {
            if (sent[i] || caught[i].elapsed() < moments[i].afterMs)
                continue;
            homes[i]->signal(moments[i].signalNumber);
            if (moments[i].twice)
                homes[i]->signal(SIGTERM);
            sent[i] = true;
        }
        QThread::msleep(2);
    }
    for (size_t i = 0; i < moments.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "signal " << moments[i].signalNumber << " "
                                        << moments[i].afterMs << " ms after start");
        QProcess& program = homes[i]->program();
        ASSERT_TRUE(program.waitForFinished(15000))
            << "still running: " << program.readAll().toStdString();
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0) << program.readAll().toStdString();
        homes[i]->expectWritten();
    }
    while (!homes.empty())
        homes.pop_back();
}

class ProgramEndTest : public ::testing::Test
{
protected:
    void SetUp() override { corvane::test::ensureApplication(); }
};

TEST_F(ProgramEndTest, EverySignalDuringAPlainStartEndsIt)
{
    endAtEveryMoment(Found::Nothing, true);
}

TEST_F(ProgramEndTest, EverySignalEndsItWhileTheRecoveredEditsAlertIsUp)
{
    endAtEveryMoment(Found::CrashedEdits, true);
}

TEST_F(ProgramEndTest, EverySignalEndsItWhileTheUnreadableStoreAlertIsUp)
{
    endAtEveryMoment(Found::UnreadableStore, true);
}

TEST_F(ProgramEndTest, EverySignalEndsItWhileTheInstallerWaits)
{
    endAtEveryMoment(Found::Nothing, false);
}

// The reproduction: a run killed outright, then a run ended by SIGTERM a second after it
// started. The second ends, and since nothing was edited, nothing was recovered.
TEST_F(ProgramEndTest, AfterACrashWithoutEditsNothingIsRecoveredAndTheNextRunEnds)
{
    Home home(Found::Nothing);
    ASSERT_TRUE(home.start());
    ASSERT_TRUE(waitUntil([&] { return home.catchesTermination(); }, 10000));
    QThread::msleep(1500);
    home.signal(SIGKILL);
    ASSERT_TRUE(home.program().waitForFinished(5000));
    const QString journal = TVKRecoveryJournal::pathBeside(home.storePath());
    EXPECT_EQ(TVKRecoveryJournal(journal).read().records.size(), 0u)
        << "the start-up itself was journaled as an edit";

    ASSERT_TRUE(home.start());
    ASSERT_TRUE(waitUntil([&] { return home.catchesTermination(); }, 10000));
    QThread::msleep(1000);
    home.signal(SIGTERM);
    ASSERT_TRUE(home.program().waitForFinished(10000)) << "the second run did not end";
    EXPECT_EQ(home.program().exitCode(), 0);
    home.expectWritten();
}

// Help and the version need no display, and neither does the window system's absence abort them.
TEST_F(ProgramEndTest, HelpAndVersionNeedNoDisplay)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        env.remove(QString::fromLatin1(name));
    for (const char* argument : {"--help", "-h", "--version", "-v"}) {
        SCOPED_TRACE(argument);
        QProcess program;
        program.setProcessEnvironment(env);
        program.start(kProgram, {QString::fromLatin1(argument)});
        ASSERT_TRUE(program.waitForFinished(10000));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
        const QString out = QString::fromUtf8(program.readAllStandardOutput());
        if (QByteArray(argument).contains('h'))
            EXPECT_TRUE(out.contains(QStringLiteral("--install"))) << qPrintable(out);
        else
            EXPECT_TRUE(out.contains(QStringLiteral(CORVANE_VERSION))) << qPrintable(out);
    }
}

} // namespace
