#include "core/FourCharCode.h"
#include "service/MessageCatalogue.h"
#include "service/MessageFrame.h"
#include "service/TVK_MessageSpecs.h"

#include <functional>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

QByteArray hex(const char* text)
{
    return QByteArray::fromHex(QByteArray(text).replace(' ', ""));
}

std::vector<MessageFrame> readAll(MessageFrameReader& reader)
{
    std::vector<MessageFrame> frames;
    MessageFrame frame;
    while (reader.next(frame) == MessageFrameReader::Status::Ready)
        frames.push_back(frame);
    return frames;
}

} // namespace

TEST(MessageFrame, HeaderIsCodeInOrderThenLittleEndianWords)
{
    const QByteArray frame =
        MessageFrame::encode(msg::MPCn, MessageFrame::WantsReply, 0x01020304u, hex("6e 76 72 43"));
    EXPECT_EQ(frame, hex("4d50436e 01000000 04030201 04000000 6e767243"));
    EXPECT_EQ(msg::MPCn, 0x4D50436E);
}

TEST(MessageFrame, ReaderCutsFramesWhateverTheReadBoundaries)
{
    QByteArray stream;
    MessageFrame::appendTo(stream, msg::TCtl, 0, 0, hex("01000000 03000000 00000000 01000000"));
    MessageFrame::appendTo(stream, msg::RqCC, MessageFrame::WantsReply, 7, {});
    MessageFrame::appendTo(stream, msg::Cnct, MessageFrame::IsReply, 8, hex("01000000"));

    // Every split point of the stream into two reads, and one byte at a time.
    for (qsizetype split = 0; split <= stream.size(); ++split) {
        MessageFrameReader reader;
        reader.append(QByteArrayView(stream).first(split));
        std::vector<MessageFrame> frames = readAll(reader);
        reader.append(QByteArrayView(stream).sliced(split));
        for (MessageFrame& f : readAll(reader))
            frames.push_back(f);
        ASSERT_EQ(frames.size(), 3u) << "split at " << split;
        EXPECT_EQ(frames[0].code, msg::TCtl);
        EXPECT_EQ(frames[0].body.size(), 16);
        EXPECT_EQ(frames[1].code, msg::RqCC);
        EXPECT_EQ(frames[1].flags, 1u);
        EXPECT_EQ(frames[1].sequence, 7u);
        EXPECT_TRUE(frames[1].body.isEmpty());
        EXPECT_EQ(frames[2].flags, 2u);
        EXPECT_EQ(frames[2].body, hex("01000000"));
        EXPECT_EQ(reader.bufferedBytes(), 0);
    }
    MessageFrameReader bytewise;
    std::size_t count = 0;
    for (char c : stream) {
        bytewise.append(QByteArrayView(&c, 1));
        count += readAll(bytewise).size();
    }
    EXPECT_EQ(count, 3u);
}

TEST(MessageFrame, HostileHeadersStopTheStream)
{
    struct Case
    {
        const char* name;
        QByteArray bytes;
    };
    const Case cases[] = {
        {"unknown flag bit", hex("5443746c 04000000 00000000 00000000")},
        {"request and reply at once", hex("5443746c 03000000 00000000 00000000")},
        {"body over 64 MiB", hex("5443746c 00000000 00000000 01000004")},
        {"length all ones", hex("5443746c 00000000 00000000 ffffffff")},
    };
    for (const Case& c : cases) {
        MessageFrameReader reader;
        reader.append(c.bytes);
        MessageFrame frame;
        EXPECT_EQ(reader.next(frame), MessageFrameReader::Status::Invalid) << c.name;
        EXPECT_FALSE(reader.errorString().isEmpty()) << c.name;
        // Nothing after the fault is believed, even a well-formed frame.
        reader.append(MessageFrame::encode(msg::TCtl, 0, 0, {}));
        EXPECT_EQ(reader.next(frame), MessageFrameReader::Status::Invalid) << c.name;
    }
    // Exactly the limit is still a frame (it is only waited for).
    MessageFrameReader reader;
    reader.append(hex("5443746c 00000000 00000000 00000004"));
    MessageFrame frame;
    EXPECT_EQ(reader.next(frame), MessageFrameReader::Status::NeedMore);
}

TEST(MessageSpecs, OutgoingBodiesAreFieldWordsInCatalogueOrder)
{
    const std::uint32_t array[] = {5, 6};
    struct Case
    {
        const char* name;
        QByteArray body;
        QByteArray expected;
    };
    const Case cases[] = {
        {"connect", TVK_PortConnectDisconnectSpec(fourCC("Crvn")).data(), hex("6e767243")},
        {"edit keyset", TVK_EditKeysetSpec(3).data(), hex("03000000")},
        {"edit layer", TVK_EditLayerSpec(0x01020304).data(), hex("04030201")},
        {"one int", TVK_OneIntSpec(0xFFFFFFFF).data(), hex("ffffffff")},
        {"two ints", TVK_TwoIntSpec(1, 2).data(), hex("01000000 02000000")},
        {"three ints", TVK_ThreeIntSpec(1, 2, 3).data(), hex("01000000 02000000 03000000")},
        {"control state", TVK_OutgoingControlStateSpec(1, 3, 0, std::uint32_t(-1)).data(),
         hex("01000000 03000000 00000000 ffffffff")},
        {"long array", TVK_OutgoingLongArraySpec(2, array, 9).data(),
         hex("02000000 09000000 05000000 06000000")},
        {"reset socket", TVK_ResetSocketSpec(QStringLiteral("192.168.1.250"), 23).data(),
         QByteArray("192.168.1.250", 14) + hex("17000000")},
        {"reset socket any address", TVK_ResetSocketSpec(QStringLiteral("0.0.0.0"), 49152).data(),
         QByteArray("0.0.0.0", 8) + hex("00c00000")},
        {"reset socket 31 characters", TVK_ResetSocketSpec(QString(31, u'1'), 1).data(),
         QByteArray(31, '1') + QByteArray(1, '\0') + hex("01000000")},
        {"reset socket 32 characters", TVK_ResetSocketSpec(QString(32, u'1'), 1).data(),
         hex("01000000")},
        {"reset socket non-ASCII", TVK_ResetSocketSpec(QStringLiteral("10.0.0.\u00e9"), 2).data(),
         hex("02000000")},
        {"reset socket empty address", TVK_ResetSocketSpec(QString(), 3).data(),
         hex("00 03000000")},
        {"reset socket text ends at a zero",
         TVK_ResetSocketSpec(QStringLiteral("10.0.0.1\u0000junk"), 4).data(),
         QByteArray("10.0.0.1", 9) + hex("04000000")},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.body.toHex(' '), c.expected.toHex(' ')) << c.name;
    EXPECT_EQ(TVK_ResetSocketSpec(QStringLiteral("192.168.1.250"), 23).bufferSize(), 18u);
}

TEST(MessageSpecs, IncomingBodiesNeverReadPastTheirEnd)
{
    const TVK_IncomingControlStateSpec full(hex("02000000 05000000 01000000 ffffffff"));
    EXPECT_EQ(full.groupIndex(), 2u);
    EXPECT_EQ(full.controlNumOrChannel(), 5u);
    EXPECT_EQ(full.axis(), 1u);
    EXPECT_EQ(full.value(), -1);

    // Short bodies: missing words (and missing bytes of a word) read as zero.
    const TVK_IncomingControlStateSpec shortBody(hex("02000000 0500"));
    EXPECT_EQ(shortBody.groupIndex(), 2u);
    EXPECT_EQ(shortBody.controlNumOrChannel(), 5u);
    EXPECT_EQ(shortBody.axis(), 0u);
    EXPECT_EQ(shortBody.value(), 0);
    const TVK_IncomingCurrentControlInfoSpec empty{QByteArray()};
    EXPECT_EQ(empty.keysetIndex() + empty.layerIndex() + empty.groupIndex() +
                  empty.controlNumOrChannel(),
              0u);
    EXPECT_EQ(empty.pos(), 16u);

    // Longer bodies: the extra bytes are ignored.
    const TVK_IncomingCurrentControlInfoSpec longer(
        hex("01000000 02000000 03000000 04000000 ffffffff"));
    EXPECT_EQ(longer.keysetIndex(), 1u);
    EXPECT_EQ(longer.controlNumOrChannel(), 4u);
}

TEST(MessageCatalogue, ConnectionStateAndConnectReplyHaveDifferentSizes)
{
    EXPECT_EQ(msg::encodeConnectionState(true), hex("01000000 00000000"));
    EXPECT_EQ(msg::decodeConnectionState(hex("01000000 00000000")), std::optional<bool>(true));
    EXPECT_EQ(msg::decodeConnectionState(hex("00000000 00000001")), std::optional<bool>(true));
    EXPECT_EQ(msg::decodeConnectionState(hex("00000000 00000000")), std::optional<bool>(false));
    // A 4-byte state message carries nothing.
    EXPECT_EQ(msg::decodeConnectionState(hex("01000000")), std::nullopt);

    EXPECT_EQ(msg::decodeConnectStatusReply(hex("00000000")), std::optional<bool>(false));
    EXPECT_EQ(msg::decodeConnectStatusReply(hex("00000100")), std::optional<bool>(true));
    EXPECT_EQ(msg::decodeConnectStatusReply(hex("010000")), std::nullopt);
}

TEST(MessageCatalogue, ResetSocketBodiesDecodeBack)
{
    const auto full =
        msg::decodeResetSocket(TVK_ResetSocketSpec(QStringLiteral("10.1.2.3"), 9).data());
    ASSERT_TRUE(full);
    EXPECT_EQ(full->ipAddress, QStringLiteral("10.1.2.3"));
    EXPECT_EQ(full->port, 9u);
    const auto portOnly = msg::decodeResetSocket(hex("17000000"));
    ASSERT_TRUE(portOnly);
    EXPECT_TRUE(portOnly->ipAddress.isEmpty());
    EXPECT_EQ(portOnly->port, 23u);
    EXPECT_FALSE(msg::decodeResetSocket(hex("170000")));
    EXPECT_FALSE(msg::decodeResetSocket(QByteArray("1.2.3.4", 8) + hex("1700")));
    EXPECT_FALSE(msg::decodeResetSocket(QByteArray("no zero byte at all")));
}

TEST(MessageCatalogue, EveryApplicationMessageHasAKnownLayout)
{
    EXPECT_EQ(msg::applicationMessageKind(msg::TCtl), msg::BodyKind::Words);
    EXPECT_EQ(msg::applicationMessageKind(msg::RSoc), msg::BodyKind::ResetSocket);
    EXPECT_EQ(msg::applicationMessageKind(msg::Cnct), msg::BodyKind::Request);
    EXPECT_EQ(msg::applicationMessageKind(messageID("InAc")), msg::BodyKind::PropertyList);
    EXPECT_EQ(msg::applicationMessageKind(msg::MissingProperty), msg::BodyKind::PropertyList);
    // "CnSt" and "CurC" only ever come from the service.
    EXPECT_EQ(msg::applicationMessageKind(msg::CnSt), std::nullopt);
    EXPECT_EQ(msg::codeText(msg::propertyMessage(ControlProperty::JoystickSensitivity)),
              QStringLiteral("ChJy"));
}
