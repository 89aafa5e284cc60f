// Frames and message bodies from a hostile peer: the frame reader fed in pieces of varying size,
// then every body through every decoder of the link.
#include "core/PlistCodec.h"
#include "service/MessageCatalogue.h"
#include "service/MessageFrame.h"
#include "service/TVK_MessageSpecs.h"

#include <cstddef>
#include <cstdint>

using namespace corvane;

static void decodeBody(const MessageFrame& frame)
{
    const TVK_IncomingControlStateSpec state(frame.body);
    const TVK_IncomingCurrentControlInfoSpec info(frame.body);
    volatile std::uint32_t sink = state.groupIndex() ^ state.controlNumOrChannel() ^ state.axis() ^
                                  std::uint32_t(state.value()) ^ info.keysetIndex() ^
                                  info.controlNumOrChannel();
    (void)sink;
    (void)msg::decodeConnectionState(frame.body);
    (void)msg::decodeConnectStatusReply(frame.body);
    if (const auto reset = msg::decodeResetSocket(frame.body))
        (void)reset->ipAddress.size();
    if (msg::applicationMessageKind(frame.code) == msg::BodyKind::PropertyList) {
        const PlistReadResult read = PlistCodec::read(frame.body);
        if (read.ok)
            (void)msg::encodePropertyList(read.value);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    // The first byte chooses how the stream is cut into reads.
    const std::size_t piece = std::size_t(data[0] % 31) + 1;
    const char* bytes = reinterpret_cast<const char*>(data + 1);
    const std::size_t length = size - 1;

    MessageFrameReader reader;
    MessageFrame frame;
    for (std::size_t at = 0; at < length; at += piece) {
        const std::size_t n = at + piece <= length ? piece : length - at;
        reader.append(QByteArrayView(bytes + at, qsizetype(n)));
        MessageFrameReader::Status status;
        while ((status = reader.next(frame)) == MessageFrameReader::Status::Ready)
            decodeBody(frame);
        if (status == MessageFrameReader::Status::Invalid)
            break;
    }
    // The whole input as one body too, whatever its framing.
    frame.code = msg::propertyMessage(corvane::ControlProperty::Action);
    frame.body = QByteArray(bytes, qsizetype(length));
    decodeBody(frame);
    return 0;
}
