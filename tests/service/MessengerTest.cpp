#include "ServiceTestSupport.h"
#include "actions/TVKAction.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "service/CorvaneMessenger.h"
#include "service/MessageCatalogue.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>
#include <tuple>

using namespace corvane;
using namespace corvane::test;

namespace {

class MessengerTest : public LinkTest
{
protected:
    QString servicePath() const { return folder.socketPath(QStringLiteral("TVK_Corvane")); }
    QString appPath() const { return folder.socketPath(QStringLiteral("TVK_MessagePort_Crvn")); }

    // The first control of a type in keyset 0, layer 0, as (group, index).
    std::pair<int, int> firstControlOfType(int type) const
    {
        const TVKLayer* layer = model->keysetAtIndex(0)->layerAtIndex(0);
        for (const auto& group : layer->groups()) {
            for (const auto& control : group) {
                if (control && control->tvkControlType() == type)
                    return {control->groupID(), control->controlIndex()};
            }
        }
        ADD_FAILURE() << "no control of type " << type;
        return {0, 0};
    }
};

PlistValue indices(int keyset, int layer, int group, int control)
{
    PlistValue dict = PlistValue::makeDict();
    dict.insert(corvane::info::KeysetIndex, PlistValue(keyset));
    dict.insert(corvane::info::LayerIndex, PlistValue(layer));
    dict.insert(corvane::info::GroupID, PlistValue(group));
    dict.insert(corvane::info::ControlIndex, PlistValue(control));
    return dict;
}

PlistValue with(PlistValue dict, const QString& key, PlistValue value)
{
    dict.insert(key, std::move(value));
    return dict;
}

} // namespace

TEST_F(MessengerTest, AServiceAlreadyThereHearsTheApplicationTwice)
{
    RawService service(servicePath());
    CorvaneMessenger messenger(&delegate);
    EXPECT_EQ(TVK_CarbonCocoaMessenger::defaultTVKMessenger(), &messenger);
    EXPECT_TRUE(messenger.isLocalPortValid());
    EXPECT_TRUE(messenger.isRemotePortValid());
    EXPECT_EQ(messenger.localID(), fourCC("Crvn"));
    EXPECT_EQ(messenger.remotePortName(), QStringLiteral("TVK_Corvane"));
    EXPECT_EQ(messenger.localPort()->name(), QStringLiteral("TVK_MessagePort_Crvn"));
    spinUntil([&] { return service.frames().size() >= 2; });
    spinFor(100);
    const auto connects = service.framesWithCode(msg::MPCn);
    ASSERT_EQ(connects.size(), 2u);
    for (const MessageFrame& frame : connects) {
        EXPECT_EQ(frame.body, hex("6e767243"));
        EXPECT_EQ(frame.flags, 0u);
    }
}

TEST_F(MessengerTest, AServiceStartedLaterIsFoundByTheRetryAndHearsOneAnnouncement)
{
    CorvaneMessenger messenger(&delegate);
    EXPECT_TRUE(messenger.isLocalPortValid());
    EXPECT_FALSE(messenger.doesRemotePortExist());
    EXPECT_FALSE(messenger.sendChangeEditKeysetMessage(1));
    spinFor(450); // a couple of lookups find nothing

    RawService service(servicePath());
    EXPECT_TRUE(spinUntil([&] { return messenger.doesRemotePortExist(); }, 2000));
    spinFor(500);
    EXPECT_EQ(service.framesWithCode(msg::MPCn).size(), 1u);
    EXPECT_EQ(service.frames().size(), 1u);
}

TEST_F(MessengerTest, EveryOutgoingMessageMatchesTheCatalogue)
{
    RawService service(servicePath());
    CorvaneMessenger messenger(&delegate);
    spinUntil([&] { return service.frames().size() == 2; });

    // Plain variables rather than structured bindings: the lambdas below capture them.
    int jogGroup = 0, jogIndex = 0;
    std::tie(jogGroup, jogIndex) = firstControlOfType(ControlType::Jog);
    int ballGroup = 0, ballIndex = 0;
    std::tie(ballGroup, ballIndex) = firstControlOfType(ControlType::FourWay);
    int litGroup = 0, litIndex = 0;
    std::tie(litGroup, litIndex) = firstControlOfType(ControlType::MultiColorButton);
    int keyGroup = 0, keyIndex = 0;
    std::tie(keyGroup, keyIndex) = firstControlOfType(ControlType::Button);
    auto* jog = dynamic_cast<TVKJogControl*>(model->controlForKeyset(0, 0, jogGroup, jogIndex));
    auto* ball = dynamic_cast<TVK4WayControl*>(model->controlForKeyset(0, 0, ballGroup, ballIndex));
    auto* lit = dynamic_cast<TVKMultiColorButtonControl*>(
        model->controlForKeyset(0, 0, litGroup, litIndex));
    TVKControl* key = model->controlForKeyset(0, 0, keyGroup, keyIndex);
    ASSERT_TRUE(jog && ball && lit && key);
    jog->setSensitivity(99);
    ball->setOnColor(0x2A);
    ball->setBrightness(7);
    lit->setOnColor(0x30);
    lit->setOffColor(0x03);
    key->setLatched(true);
    key->setUserName(QStringLiteral("Play"));
    key->setActionMode(ActionMode::Developer);
    model->controlForKeyset(0, 1, keyGroup, keyIndex)->adoptAction(nullptr);
    PlistValue keyAction = PlistValue::makeDict();
    if (key->action())
        key->action()->writeTo(keyAction);
    PlistValue nullAction = PlistValue::makeDict();
    nullAction.insert(key::ActnType, PlistValue(7));
    PlistValue nullDisplayAction = PlistValue::makeDict();
    nullDisplayAction.insert(key::ActnType, PlistValue(9));
    PlistValue keysetDict = PlistValue::makeDict();
    keysetDict.insert(corvane::info::KeysetIndex, PlistValue(1));
    model->keysetAtIndex(0)->writeTo(keysetDict);
    PlistValue groups = PlistValue::makeArray();
    groups.append(PlistValue(QStringLiteral("Group A")));

    auto& m = messenger;
    // Sends one message and hands back the first frame the service received for it.
    const auto sent = [&](const std::function<bool()>& send, const QString& name) {
        service.clearFrames();
        EXPECT_TRUE(send()) << qPrintable(name);
        EXPECT_TRUE(spinUntil([&] { return !service.frames().empty(); })) << qPrintable(name);
        return service.frames().empty() ? MessageFrame() : service.frames().front();
    };

    // Fixed layouts: the body's exact bytes.
    struct Fixed
    {
        MessageID code;
        std::function<bool()> send;
        QByteArray body;
    };
    const Fixed fixed[] = {
        {msg::MPCn, [&] { return m.sendConnectMessage(); }, hex("6e767243")},
        {msg::TCtl, [&] { return m.sendControlStateMessage(-1, 1, 3, 0); },
         hex("01000000 03000000 00000000 ffffffff")},
        {msg::ChEK, [&] { return m.sendChangeEditKeysetMessage(2); }, hex("02000000")},
        {msg::ChEL, [&] { return m.sendChangeEditLayerMessage(3); }, hex("03000000")},
        {msg::Emul, [&] { return m.sendEmulationModeMessage(5); }, hex("05000000")},
        {msg::TMdF, [&] { return m.sendModifierFunction(0x0102); }, hex("02010000")},
        {msg::TFBk, [&] { return m.sendChangeFrameletBankMessage(1); }, hex("01000000")},
        {msg::TFPB, [&] { return m.sendChangeFrameletParamBankMessage(2); }, hex("02000000")},
        {msg::TFAB, [&] { return m.sendChangeFrameletActionBankMessage(3); }, hex("03000000")},
        {msg::RSoc, [&] { return m.sendResetSocketMessage(QStringLiteral("192.168.1.250"), 23); },
         QByteArray("192.168.1.250", 14) + hex("17000000")},
        {msg::TSTL, [&] { return m.sendStandaloneTLState(true); }, hex("01000000")},
        {msg::TTLW, [&] { return m.sendStandaloneTLWState(false); }, hex("00000000")},
        {msg::TTL2, [&] { return m.sendStandaloneTLW2State(true); }, hex("01000000")},
        {msg::TVNV, [&] { return m.sendStandaloneNVState(true); }, hex("01000000")},
        {msg::TSDZ, [&] { return m.sendStandaloneDZState(false); }, hex("00000000")},
        {msg::NVBk, [&] { return m.sendChangeCorvaneNVBankMessage(4); }, hex("04000000")},
        {msg::NVPB, [&] { return m.sendChangeCorvaneNVParamBankMessage(5); }, hex("05000000")},
        {msg::NVAB, [&] { return m.sendChangeCorvaneNVActionBankMessage(6); }, hex("06000000")},
    };
    for (const Fixed& c : fixed) {
        const QString name = msg::codeText(c.code);
        const MessageFrame frame = sent(c.send, name);
        EXPECT_EQ(frame.code, c.code) << qPrintable(name);
        EXPECT_EQ(frame.flags, 0u) << qPrintable(name);
        EXPECT_EQ(frame.body.toHex(' '), c.body.toHex(' ')) << qPrintable(name);
    }

    // Property-list bodies, written as XML.
    struct Dictionary
    {
        const char* name;
        std::function<bool()> send;
        MessageID code;
        PlistValue dictionary;
    };
    const PlistValue none = PlistValue::makeDict();
    const auto keysetKey = corvane::info::KeysetIndex;
    const auto propertyKey = corvane::info::PropVal;
    const auto actionKey = corvane::info::ActionObject;
    const auto owner = with(none, key::HasOwnerKS, PlistValue(1));
    const auto daw = PlistValue(QStringLiteral("DAWs"));
    const Dictionary dictionaries[] = {
        {"TAdK", [&] { return m.sendAddKeysetMessage(1, model->keysetAtIndex(0)); }, msg::TAdK,
         keysetDict},
        {"TUpK", [&] { return m.sendUpdateKeysetMessage(1, model->keysetAtIndex(0)); }, msg::TUpK,
         keysetDict},
        {"TDlK", [&] { return m.sendDeleteKeysetMessage(2); }, msg::TDlK,
         with(none, keysetKey, PlistValue(2))},
        {"RvRB", [&] { return m.updateProperty(0, 1, 0); }, msg::RvRB,
         with(with(none, keysetKey, PlistValue(0)), propertyKey, PlistValue(1))},
        {"ApEP none", [&] { return m.updateProperty(1, -1, 3); }, msg::ApEP,
         with(with(none, keysetKey, PlistValue(3)), propertyKey, PlistValue(-1))},
        {"InAc", [&] { return m.updateProperty(0, 0, 0, keyGroup, keyIndex); }, messageID("InAc"),
         with(indices(0, 0, keyGroup, keyIndex), actionKey, keyAction)},
        {"InAc without action", [&] { return m.updateProperty(0, 0, 1, keyGroup, keyIndex); },
         messageID("InAc"), with(indices(0, 1, keyGroup, keyIndex), actionKey, nullAction)},
        {"ChLa", [&] { return m.updateProperty(1, 0, 0, keyGroup, keyIndex); }, messageID("ChLa"),
         with(indices(0, 0, keyGroup, keyIndex), key::Latch, PlistValue(1))},
        {"ChCo lit button", [&] { return m.updateProperty(2, 0, 0, litGroup, litIndex); },
         messageID("ChCo"),
         with(indices(0, 0, litGroup, litIndex), corvane::info::Color, PlistValue(0x30))},
        {"ChCo trackball", [&] { return m.updateProperty(2, 0, 0, ballGroup, ballIndex); },
         messageID("ChCo"),
         with(indices(0, 0, ballGroup, ballIndex), corvane::info::Color, PlistValue(0x2A))},
        {"ChCo plain button", [&] { return m.updateProperty(2, 0, 0, keyGroup, keyIndex); },
         msg::MissingProperty, indices(0, 0, keyGroup, keyIndex)},
        {"ChBr", [&] { return m.updateProperty(3, 0, 0, ballGroup, ballIndex); }, messageID("ChBr"),
         with(indices(0, 0, ballGroup, ballIndex), corvane::info::Brightness, PlistValue(7))},
        {"ChBr on a jog wheel", [&] { return m.updateProperty(3, 0, 0, jogGroup, jogIndex); },
         msg::MissingProperty, indices(0, 0, jogGroup, jogIndex)},
        {"ChUN", [&] { return m.updateProperty(4, 0, 0, keyGroup, keyIndex); }, messageID("ChUN"),
         with(indices(0, 0, keyGroup, keyIndex), key::UName, PlistValue(QStringLiteral("Play")))},
        {"COfC", [&] { return m.updateProperty(5, 0, 0, litGroup, litIndex); }, messageID("COfC"),
         with(indices(0, 0, litGroup, litIndex), corvane::info::OffColor, PlistValue(3))},
        {"COfC trackball", [&] { return m.updateProperty(5, 0, 0, ballGroup, ballIndex); },
         msg::MissingProperty, indices(0, 0, ballGroup, ballIndex)},
        {"ChJS", [&] { return m.updateProperty(6, 0, 0, jogGroup, jogIndex); }, messageID("ChJS"),
         with(indices(0, 0, jogGroup, jogIndex), corvane::info::JogSens, PlistValue(99))},
        {"ChJS on a trackball", [&] { return m.updateProperty(6, 0, 0, ballGroup, ballIndex); },
         msg::MissingProperty, indices(0, 0, ballGroup, ballIndex)},
        // The surface has no joystick: its sensitivity never has a control to go with.
        {"ChJy on a jog wheel", [&] { return m.updateProperty(7, 0, 0, jogGroup, jogIndex); },
         msg::MissingProperty, indices(0, 0, jogGroup, jogIndex)},
        {"IDAc without action", [&] { return m.updateDisplayAction(nullptr, 0, 2, 1, 4); },
         msg::IDAc, with(indices(0, 2, 1, 4), actionKey, nullDisplayAction)},
        {"TChO set",
         [&] {
             return m.sendOwnerKeysetChange(true, QStringLiteral("org.example.daw"),
                                            fourCC("DAWs"));
         },
         msg::TChO,
         with(with(owner, key::OwnKSBID, PlistValue(QStringLiteral("org.example.daw"))),
              key::OwnKSSig, daw)},
        {"TChO without bundle",
         [&] { return m.sendOwnerKeysetChange(true, QString(), fourCC("DAWs")); }, msg::TChO,
         with(owner, key::OwnKSSig, daw)},
        {"TChO cleared",
         [&] { return m.sendOwnerKeysetChange(false, QStringLiteral("x"), fourCC("DAWs")); },
         msg::TChO, with(none, key::HasOwnerKS, PlistValue(0))},
        {"TUNV", [&] { return m.sendUpdateCorvaneNVGroupsMessage(groups, 1); }, msg::TUNV,
         with(with(none, key::NVButtonGroups, groups), keysetKey, PlistValue(1))},
        {"TUNB", [&] { return m.updateCorvaneNVLCDButtons(groups, PlistValue::makeArray(), 1, 2); },
         msg::TUNB,
         with(with(with(with(none, keysetKey, PlistValue(1)), corvane::info::LayerIndex,
                        PlistValue(2)),
                   key::LCDBtnList, groups),
              key::LCDBtnDsplList, PlistValue::makeArray())},
    };
    for (const Dictionary& c : dictionaries) {
        const MessageFrame frame = sent(c.send, QString::fromUtf8(c.name));
        EXPECT_EQ(frame.code, c.code) << c.name;
        EXPECT_EQ(frame.flags, 0u) << c.name;
        EXPECT_TRUE(frame.body.startsWith("<?xml")) << c.name;
        const PlistReadResult read = PlistCodec::read(frame.body);
        ASSERT_TRUE(read.ok) << c.name;
        EXPECT_EQ(read.value, c.dictionary) << c.name;
    }

    // Out of range: nothing is sent.
    service.clearFrames();
    EXPECT_FALSE(messenger.updateProperty(8, 0, 0, keyGroup, keyIndex));
    EXPECT_FALSE(messenger.updateProperty(-1, 0, 0, keyGroup, keyIndex));
    EXPECT_FALSE(messenger.updateProperty(2, 5, 0));
    spinFor(50);
    EXPECT_TRUE(service.frames().empty());
}

TEST_F(MessengerTest, TheServicesMessagesReachTheDelegate)
{
    CorvaneMessenger messenger(&delegate);
    QLocalSocket service;
    service.connectToServer(appPath());
    ASSERT_TRUE(service.waitForConnected(1000));

    QByteArray stream;
    MessageFrame::appendTo(stream, msg::TCtl, 0, 0, hex("01000000 03000000 00000000 ffffffff"));
    MessageFrame::appendTo(stream, msg::CurC, 0, 0, hex("02000000 01000000 05000000 07000000"));
    MessageFrame::appendTo(stream, msg::CnSt, 0, 0, hex("01000000 00000000"));
    MessageFrame::appendTo(stream, msg::CnSt, 0, 0, hex("00000000")); // too short: ignored
    MessageFrame::appendTo(stream, messageID("Zzzz"), 0, 0, hex("01000000"));
    MessageFrame::appendTo(stream, msg::CnSt, 0, 0, hex("00000000 00000000"));
    MessageFrame::appendTo(stream, msg::TCtl, 0, 0, hex("04000000 02000000")); // short body
    // Asked for a reply: answered, empty.
    MessageFrame::appendTo(stream, msg::CurC, MessageFrame::WantsReply, 11,
                           hex("00000000 00000000 00000000 00000000"));
    // Written in two pieces, the cut inside a frame.
    service.write(stream.left(23));
    service.flush();
    spinFor(20);
    service.write(stream.mid(23));
    service.flush();

    ASSERT_TRUE(spinUntil([&] { return delegate.calls.size() == 6; }));
    using Args = std::vector<qint64>;
    EXPECT_EQ(delegate.calls[0].name, QStringLiteral("hardwareControlChange"));
    EXPECT_EQ(delegate.calls[0].args, (Args{1, 3, 0, -1}));
    EXPECT_EQ(delegate.calls[1].name, QStringLiteral("currentControlInfo"));
    EXPECT_EQ(delegate.calls[1].args, (Args{2, 1, 5, 7}));
    EXPECT_EQ(delegate.calls[2].name, QStringLiteral("connectionStateChange"));
    EXPECT_EQ(delegate.calls[2].args, Args{1});
    EXPECT_EQ(delegate.calls[3].args, Args{0});
    EXPECT_EQ(delegate.calls[4].args, (Args{4, 2, 0, 0}));
    EXPECT_EQ(delegate.calls[5].args, (Args{0, 0, 0, 0}));

    MessageFrameReader reader;
    MessageFrame reply;
    ASSERT_TRUE(spinUntil([&] {
        reader.readFrom(service);
        return reader.next(reply) == MessageFrameReader::Status::Ready;
    }));
    EXPECT_EQ(reply.code, msg::CurC);
    EXPECT_EQ(reply.flags, std::uint32_t(MessageFrame::IsReply));
    EXPECT_EQ(reply.sequence, 11u);
    EXPECT_TRUE(reply.body.isEmpty());
    spinFor(50);
    EXPECT_EQ(delegate.calls.size(), 6u);
}

TEST_F(MessengerTest, ASecondCopyOfTheApplicationRunsSendOnly)
{
    RawService service(servicePath());
    CorvaneMessenger first(&delegate);
    RecordingDelegate secondDelegate;
    secondDelegate.model = model.get();
    CorvaneMessenger second(&secondDelegate);
    EXPECT_TRUE(first.isLocalPortValid());
    EXPECT_FALSE(second.isLocalPortValid());
    EXPECT_EQ(second.localPort(), nullptr);
    EXPECT_TRUE(second.isRemotePortValid());
    EXPECT_TRUE(second.sendChangeEditLayerMessage(2));
    EXPECT_TRUE(spinUntil([&] { return !service.framesWithCode(msg::ChEL).empty(); }));
    EXPECT_EQ(service.framesWithCode(msg::MPCn).size(), 4u);
}

TEST_F(MessengerTest, ASilentServiceFailsRequestsAndLeavesTheResultsAlone)
{
    RawService silent(servicePath());
    CorvaneMessenger messenger(&delegate);
    qint64 keyset = 9, layer = 9, group = 9, control = 9;
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(messenger.requestKeyset(keyset, layer, group, control));
    EXPECT_GE(clock.elapsed(), 990);
    EXPECT_EQ(keyset + layer + group + control, 36);
    bool connected = true;
    EXPECT_FALSE(messenger.requestConnectStatus(connected));
    EXPECT_FALSE(connected);

    // After the time-out the service is not waited on: the next request goes out and fails at
    // once. Its late answer shows that the service answers again.
    // (This service runs in the test's own event loop: it answers only while nothing waits.)
    EXPECT_FALSE(messenger.isServiceResponding());
    silent.answer = [](const MessageFrame&) { return std::optional<QByteArray>(hex("01000000")); };
    silent.clearFrames();
    EXPECT_FALSE(messenger.requestConnectStatus(connected)) << "answered, but not waited for";
    EXPECT_FALSE(connected);
    ASSERT_TRUE(spinUntil([&] { return messenger.isServiceResponding(); }));
    // Both requests since the time-out went out, neither waited for.
    EXPECT_EQ(silent.framesWithCode(msg::Cnct).size(), 2u);
}
