#include "ServiceTestSupport.h"
#include "core/FourCharCode.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/CorvaneKeyset.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "service/CorvaneMessenger.h"
#include "service/MessageCatalogue.h"
#include "service/MessagePort.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <gtest/gtest.h>

using namespace corvane;
using namespace corvane::test;

namespace {

class ServiceSimulatorTest : public LinkTest
{
protected:
    std::unique_ptr<CorvaneMessenger> makeMessenger()
    {
        return std::make_unique<CorvaneMessenger>(&delegate);
    }
};

QJsonArray wordArray(std::initializer_list<qint64> words)
{
    QJsonArray array;
    for (qint64 w : words)
        array.append(w);
    return array;
}

} // namespace

TEST_F(ServiceSimulatorTest, AnswersRequestsFromWhatItWasTold)
{
    SimulatorProcess sim(folder);
    ASSERT_TRUE(sim.start());
    auto messenger = makeMessenger();
    ASSERT_TRUE(sim.waitForEvent(QStringLiteral("connected")));

    qint64 keyset = -1, layer = -1, group = -1, control = -1;
    ASSERT_TRUE(messenger->requestKeyset(keyset, layer, group, control));
    EXPECT_EQ(std::vector<qint64>({keyset, layer, group, control}),
              std::vector<qint64>({0, 0, 0, 0}));

    messenger->sendChangeEditKeysetMessage(2);
    messenger->sendChangeEditLayerMessage(3);
    messenger->sendControlStateMessage(0, 1, 1, 0); // the previous control let go
    messenger->sendControlStateMessage(1, 5, 7, 0);
    ASSERT_TRUE(messenger->requestKeyset(keyset, layer, group, control));
    EXPECT_EQ(std::vector<qint64>({keyset, layer, group, control}),
              std::vector<qint64>({2, 3, 5, 7}));

    bool connected = false;
    EXPECT_TRUE(messenger->requestConnectStatus(connected));
    EXPECT_TRUE(connected);
    const qsizetype mark = sim.lineCount();
    sim.command(QStringLiteral("surface disconnected"));
    ASSERT_TRUE(sim.waitForEvent(QStringLiteral("surface"), mark));
    EXPECT_TRUE(messenger->requestConnectStatus(connected));
    EXPECT_FALSE(connected);

    // What it printed, in order.
    const auto tctl = sim.waitFor([](const QJsonObject& line) {
        return line.value(u"code").toString() == QStringLiteral("TCtl") &&
               line.value(u"words").toArray() == wordArray({5, 7, 0, 1});
    });
    EXPECT_TRUE(tctl);
    EXPECT_EQ(sim.count(hasCode(QStringLiteral("MPCn"))), 2);
    EXPECT_EQ(sim.count([](const QJsonObject& line) {
        return line.value(u"code").toString() == QStringLiteral("RqCC") &&
               line.value(u"request").toBool();
    }),
              2);
    EXPECT_TRUE(sim.waitFor([](const QJsonObject& line) {
        return line.value(u"code").toString() == QStringLiteral("MPCn") &&
               line.value(u"words").toArray() == wordArray({fourCC("Crvn")});
    }));
}

TEST_F(ServiceSimulatorTest, StartsDisconnectedWhenAskedAndReportsWhatItIsSent)
{
    SimulatorProcess sim(folder, {QStringLiteral("--disconnected")});
    ASSERT_TRUE(sim.start());
    auto messenger = makeMessenger();
    ASSERT_TRUE(sim.waitForEvent(QStringLiteral("connected")));
    bool connected = true;
    EXPECT_TRUE(messenger->requestConnectStatus(connected));
    EXPECT_FALSE(connected);

    messenger->sendResetSocketMessage(QStringLiteral("192.168.1.250"), 23);
    messenger->sendDeleteKeysetMessage(0);
    const auto reset = sim.waitFor(hasCode(QStringLiteral("RSoc")));
    ASSERT_TRUE(reset);
    EXPECT_EQ(reset->value(u"ip").toString(), QStringLiteral("192.168.1.250"));
    EXPECT_EQ(reset->value(u"port").toInteger(), 23);
    const auto deleted = sim.waitFor(hasCode(QStringLiteral("TDlK")));
    ASSERT_TRUE(deleted);
    EXPECT_EQ(deleted->value(u"plist").toObject().value(corvane::info::KeysetIndex).toInteger(), 0);

    // The service's own messages reach the delegate.
    sim.command(QStringLiteral("send TCtl 1 3 0 -1"));
    sim.command(QStringLiteral("send CurC 2 1 5 7"));
    sim.command(QStringLiteral("send CnSt 1"));
    ASSERT_TRUE(spinUntil([&] { return delegate.calls.size() == 3; }));
    using Args = std::vector<qint64>;
    EXPECT_EQ(delegate.calls[0].args, (Args{1, 3, 0, -1}));
    EXPECT_EQ(delegate.calls[1].args, (Args{2, 1, 5, 7}));
    EXPECT_EQ(delegate.calls[2].name, QStringLiteral("connectionStateChange"));
    EXPECT_EQ(delegate.calls[2].args, Args{1});

    // Bad commands get an error line and the service carries on.
    sim.command(QStringLiteral("frobnicate"));
    sim.command(QStringLiteral("send TCtl 1 2"));
    sim.command(QStringLiteral("send CnSt x"));
    EXPECT_TRUE(sim.waitFor([](const QJsonObject& line) {
        return line.value(u"error").toString().contains(u"not a number");
    }));
    EXPECT_EQ(sim.count([](const QJsonObject& line) { return line.contains(u"error"); }), 3);
    EXPECT_EQ(sim.process().state(), QProcess::Running);
}

TEST_F(ServiceSimulatorTest, AKilledServiceIsNoticedAndFoundAgainAfterARestart)
{
    auto sim = std::make_unique<SimulatorProcess>(folder);
    ASSERT_TRUE(sim->start());
    auto messenger = makeMessenger();
    ASSERT_TRUE(sim->waitForEvent(QStringLiteral("connected")));
    EXPECT_TRUE(messenger->sendChangeEditKeysetMessage(1));

    sim->kill();
    EXPECT_FALSE(messenger->isRemotePortValid());
    EXPECT_TRUE(messenger->doesRemotePortExist());
    EXPECT_FALSE(messenger->sendChangeEditKeysetMessage(1));
    bool connected = true;
    EXPECT_FALSE(messenger->requestConnectStatus(connected));
    EXPECT_FALSE(connected);

    // What the keep-alive does: drop the dead end and look again every 0.2 s.
    messenger->restartRemotePort();
    EXPECT_FALSE(messenger->doesRemotePortExist());
    sim = std::make_unique<SimulatorProcess>(folder);
    ASSERT_TRUE(sim->start());
    ASSERT_TRUE(sim->waitForEvent(QStringLiteral("connected")));
    EXPECT_TRUE(messenger->isRemotePortValid());
    EXPECT_TRUE(messenger->sendChangeEditLayerMessage(2));
    EXPECT_TRUE(sim->waitFor(hasCode(QStringLiteral("ChEL"))));
    EXPECT_EQ(sim->count(hasCode(QStringLiteral("MPCn"))), 1);
}

TEST_F(ServiceSimulatorTest, FollowsTheApplicationWhenItRestarts)
{
    SimulatorProcess sim(folder);
    ASSERT_TRUE(sim.start());
    auto messenger = makeMessenger();
    ASSERT_TRUE(sim.waitForEvent(QStringLiteral("connected")));
    messenger.reset();
    const auto gone = sim.waitForEvent(QStringLiteral("disconnected"));
    ASSERT_TRUE(gone);
    qsizetype mark = sim.lineCount();
    sim.command(QStringLiteral("send CnSt 1"));
    EXPECT_TRUE(
        sim.waitFor([](const QJsonObject& line) { return line.contains(u"error"); }, 5000, mark));

    mark = sim.lineCount();
    messenger = makeMessenger();
    ASSERT_TRUE(sim.waitForEvent(QStringLiteral("connected"), mark));
    sim.command(QStringLiteral("send CnSt 0"));
    ASSERT_TRUE(spinUntil([&] { return !delegate.calls.empty(); }));
    EXPECT_EQ(delegate.calls.back().args, std::vector<qint64>{0});
}

TEST_F(ServiceSimulatorTest, EndsCleanlyOnTerminationAndOnEndOfInput)
{
    {
        SimulatorProcess sim(folder);
        ASSERT_TRUE(sim.start());
        EXPECT_TRUE(QFile::exists(folder.socketPath(QStringLiteral("TVK_Corvane"))));
        sim.terminate();
        EXPECT_EQ(sim.process().exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(sim.process().exitCode(), 0);
        EXPECT_FALSE(QFile::exists(folder.socketPath(QStringLiteral("TVK_Corvane"))));
    }
    {
        SimulatorProcess sim(folder);
        ASSERT_TRUE(sim.start());
        // The last command, cut off by the end of input without its line end, still runs.
        const QString dumped = folder.path() + QStringLiteral("/last.plist");
        sim.process().write((QStringLiteral("dump ") + dumped).toUtf8());
        sim.process().closeWriteChannel();
        EXPECT_TRUE(sim.process().waitForFinished(5000));
        EXPECT_EQ(sim.process().exitCode(), 0);
        EXPECT_TRUE(QFile::exists(dumped));
    }
    {
        SimulatorProcess first(folder);
        ASSERT_TRUE(first.start());
        // The name is taken: a second service refuses to start.
        SimulatorProcess second(folder);
        EXPECT_FALSE(second.start());
        EXPECT_NE(second.process().exitCode(), 0);
    }
    QProcess help;
    help.start(SimulatorProcess::program(), {QStringLiteral("--help")});
    ASSERT_TRUE(help.waitForFinished(5000));
    EXPECT_TRUE(help.readAllStandardOutput().contains("dump <file>"));
}

// The mirror proves the service was kept in step: the same edits made to the application's
// model and sent as messages leave both configurations equal.
TEST_F(ServiceSimulatorTest, TheMirrorFollowsEveryEdit)
{
    // Start from a stored configuration with a second keyset, in the application's store.
    model->addKeysetWithName(QStringLiteral("Editor"), fourCC("EdIt"),
                             QStringLiteral("org.example.editor"));
    const QString configHome = folder.path() + QStringLiteral("/config");
    QDir().mkpath(configHome + QStringLiteral("/Tavrik"));
    PlistValue stored = PlistValue::makeDict();
    PlistValue modelDict = PlistValue::makeDict();
    model->writeTo(modelDict);
    stored.insert(key::ModelData, modelDict);
    ASSERT_TRUE(PlistCodec::writeFile(
        configHome + QStringLiteral("/Tavrik/com.tavrik.CorvaneRS.plist"), stored));

    // Quiet: a keyset as a JSON line fills the output pipe while this process is busy sending.
    SimulatorProcess sim(folder, {QStringLiteral("--quiet")}, configHome);
    ASSERT_TRUE(sim.start());
    auto messenger = makeMessenger();
    ASSERT_TRUE(sim.waitForEvent(QStringLiteral("connected")));

    bool sent = true;
    // A keyset added, and one deleted.
    model->addKeysetWithName(QStringLiteral("Mixer"), fourCC("MiXr"));
    sent &= messenger->sendAddKeysetMessage(2, model->keysetAtIndex(2));
    model->addKeysetWithName(QStringLiteral("Doomed"), fourCC("DoOm"));
    sent &= messenger->sendAddKeysetMessage(3, model->keysetAtIndex(3));
    model->deleteKeysetAtIndex(3);
    sent &= messenger->sendDeleteKeysetMessage(3);

    // Control properties of keyset 1, layer 2.
    const TVKLayer* layer = model->keysetAtIndex(1)->layerAtIndex(2);
    int edited = 0;
    for (const auto& group : layer->groups()) {
        for (const auto& control : group) {
            TVKControl* c = control.get();
            const int g = c->groupID(), i = c->controlIndex();
            if (auto* lit = dynamic_cast<TVKMultiColorButtonControl*>(c)) {
                lit->setOnColor(0x21);
                lit->setOffColor(0x01);
                sent &= messenger->updateProperty(2, 1, 2, g, i);
                sent &= messenger->updateProperty(5, 1, 2, g, i);
            } else if (auto* ball = dynamic_cast<TVK4WayControl*>(c)) {
                ball->setOnColor(0x15);
                ball->setBrightness(3);
                sent &= messenger->updateProperty(2, 1, 2, g, i);
                sent &= messenger->updateProperty(3, 1, 2, g, i);
            } else if (auto* jog = dynamic_cast<TVKJogControl*>(c)) {
                jog->setSensitivity(12);
                sent &= messenger->updateProperty(6, 1, 2, g, i);
            }
            c->setLatched(!c->latched());
            sent &= messenger->updateProperty(1, 1, 2, g, i);
            c->setUserName(QStringLiteral("ctl %1.%2").arg(g).arg(i));
            sent &= messenger->updateProperty(4, 1, 2, g, i);
            c->setActionMode((g + i) % 2 ? ActionMode::NativeMIDI : ActionMode::Developer);
            sent &= messenger->updateProperty(0, 1, 2, g, i);
            ++edited;
        }
    }
    ASSERT_GT(edited, 20);

    // Keyset and model-wide settings.
    auto* editor = dynamic_cast<CorvaneKeyset*>(model->keysetAtIndex(1));
    ASSERT_TRUE(editor);
    editor->setReverseRBButtons(true);
    sent &= messenger->updateProperty(0, 1, 1);
    editor->setConnectViaEthernet(true);
    editor->setEthernetPort(50001);
    sent &= messenger->updateProperty(1, 50001, 1);
    model->keysetAtIndex(2)->setConnectViaEthernet(false);
    sent &= messenger->updateProperty(1, -1, 2);
    sent &= messenger->sendChangeEditKeysetMessage(1);
    editor->setEmulationMode(corvane::EmulationMode(4)); // beyond C, kept as it comes
    sent &= messenger->sendEmulationModeMessage(4);
    model->setHasOwnerKeyset(true, QStringLiteral("org.example.editor"), fourCC("EdIt"));
    sent &= messenger->sendOwnerKeysetChange(true, QStringLiteral("org.example.editor"),
                                             fourCC("EdIt"));
    model->setStandaloneTL(true);
    sent &= messenger->sendStandaloneTLState(true);
    model->setStandaloneNV(true);
    sent &= messenger->sendStandaloneNVState(true);
    model->setIpAddress(QStringLiteral("10.0.0.7"));
    model->setEthernetPort(49152);
    sent &= messenger->sendResetSocketMessage(QStringLiteral("10.0.0.7"), 49152);

    EXPECT_TRUE(sent);
    // A request on the same connection is answered only after every message before it; the
    // service may still be busy with the keysets when the first one times out.
    qint64 k, l, g, c;
    ASSERT_TRUE(spinUntil([&] { return messenger->requestKeyset(k, l, g, c); }, 30000));
    const QString dumped = folder.path() + QStringLiteral("/mirror.plist");
    sim.command(QStringLiteral("dump ") + dumped);
    ASSERT_TRUE(sim.waitForEvent(QStringLiteral("dumped")));
    EXPECT_EQ(sim.count([](const QJsonObject& line) { return line.contains(u"error"); }), 0);

    const PlistReadResult mirror = PlistCodec::readFile(dumped);
    ASSERT_TRUE(mirror.ok);
    PlistValue expected = PlistValue::makeDict();
    model->writeTo(expected);
    EXPECT_EQ(mirror.value.value(key::Keysets).size(), 3);
    for (const QString& key : expected.keys())
        EXPECT_TRUE(mirror.value.value(key) == expected.value(key))
            << key.toStdString() << "\n"
            << PlistCodec::write(mirror.value.value(key)).left(2000).constData() << "\n"
            << PlistCodec::write(expected.value(key)).left(2000).constData();
    EXPECT_TRUE(mirror.value == expected);
}

TEST_F(ServiceSimulatorTest, ReadsABareConfigurationAndRefusesAnUnreadableOne)
{
    model->addKeysetWithName(QStringLiteral("Bare"), fourCC("BaRe"));
    PlistValue dict = PlistValue::makeDict();
    model->writeTo(dict);
    const QString bare = folder.path() + QStringLiteral("/bare.plist");
    ASSERT_TRUE(PlistCodec::writeFile(bare, dict));
    {
        SimulatorProcess sim(folder, {QStringLiteral("--config"), bare});
        ASSERT_TRUE(sim.start());
        const QString dumped = folder.path() + QStringLiteral("/dumped.plist");
        sim.command(QStringLiteral("dump ") + dumped);
        ASSERT_TRUE(sim.waitForEvent(QStringLiteral("dumped")));
        const PlistReadResult mirror = PlistCodec::readFile(dumped);
        ASSERT_TRUE(mirror.ok);
        EXPECT_TRUE(mirror.value == dict);
    }
    const QString broken = folder.path() + QStringLiteral("/broken.plist");
    QFile file(broken);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<?xml version=\"1.0\"?><plist><dict><key>TVK");
    file.close();
    SimulatorProcess sim(folder, {QStringLiteral("--config"), broken});
    EXPECT_FALSE(sim.start());
    EXPECT_EQ(sim.process().exitCode(), 1);
    // The file it could not read is left as it was.
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().endsWith("<key>TVK"));
    file.close();

    // A preference store whose configuration entry is of the wrong kind is refused too, not
    // taken for an empty configuration.
    PlistValue store = PlistValue::makeDict();
    store.insert(key::ModelData, PlistValue(QStringLiteral("damaged")));
    const QString damaged = folder.path() + QStringLiteral("/damaged.plist");
    ASSERT_TRUE(PlistCodec::writeFile(damaged, store));
    SimulatorProcess refused(folder, {QStringLiteral("--config"), damaged});
    EXPECT_FALSE(refused.start());
    EXPECT_EQ(refused.process().exitCode(), 1);
}

TEST_F(ServiceSimulatorTest, BodiesItCannotApplyAreRefusedAsReceived)
{
    SimulatorProcess sim(folder, {});
    ASSERT_TRUE(sim.start());
    auto messenger = makeMessenger();
    ASSERT_TRUE(sim.waitForEvent(QStringLiteral("connected")));

    // Keyset indices beyond what an int holds are refused, never narrowed onto keyset 0.
    const auto port = RemoteMessagePort::create(QStringLiteral("TVK_Corvane"));
    ASSERT_TRUE(port && port->isValid());
    for (const qint64 index : {qint64(1) << 32, qint64(1) << 31}) {
        PlistValue keyset = PlistValue::makeDict();
        keyset.insert(corvane::info::KeysetIndex, PlistValue(index));
        keyset.insert(key::Name, PlistValue(QStringLiteral("Intruder")));
        EXPECT_EQ(port->send(msg::TAdK, PlistCodec::write(keyset), 1000),
                  RemoteMessagePort::Status::Success);
    }
    // Only dotted IPv4 addresses are taken for the surface.
    for (const QString& address : {QStringLiteral("surface.local"), QStringLiteral("10.0.0.256"),
                                   QStringLiteral("1.2.3.4.5"), QString(31, QLatin1Char('7'))})
        EXPECT_TRUE(messenger->sendResetSocketMessage(address, 23));
    // Bytes beyond ASCII, which the application never sends.
    EXPECT_EQ(port->send(msg::RSoc, QByteArray("10.0.0.\xd9\xa7\0\x17\0\0\0", 14), 1000),
              RemoteMessagePort::Status::Success);

    ASSERT_TRUE(spinUntil(
        [&] { return sim.count([](const QJsonObject& l) { return l.contains(u"error"); }) == 7; }));
    const auto errors = [&](const QString& text) {
        return sim.count(
            [&](const QJsonObject& l) { return l.value(u"error").toString() == text; });
    };
    EXPECT_EQ(errors(QStringLiteral("TAdK: no keyset at index 4294967296")), 1);
    EXPECT_EQ(errors(QStringLiteral("TAdK: no keyset at index 2147483648")), 1);
    EXPECT_EQ(errors(QStringLiteral("RSoc: reset-socket address is not a dotted IPv4 address")), 5);

    const QString dumped = folder.path() + QStringLiteral("/mirror.plist");
    sim.command(QStringLiteral("dump ") + dumped);
    ASSERT_TRUE(sim.waitForEvent(QStringLiteral("dumped")));
    const PlistReadResult mirror = PlistCodec::readFile(dumped);
    ASSERT_TRUE(mirror.ok);
    const PlistValue& keysets = mirror.value.value(key::Keysets);
    ASSERT_EQ(keysets.size(), 1);
    EXPECT_EQ(keysets.at(0).value(key::Name).toString(), QStringLiteral("Default"));
    EXPECT_EQ(mirror.value.value(key::IPAdr).toString(), QStringLiteral("192.168.1.250"));
}
