#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <cstdint>

class QIODevice;

namespace corvane {

// A message ID: the four characters of its code, the first in the most significant byte, held
// as a signed 32-bit number ("MPCn" is 0x4D50436E).
using MessageID = qint32;

constexpr MessageID messageID(const char (&s)[5])
{
    return MessageID((std::uint32_t(std::uint8_t(s[0])) << 24) |
                     (std::uint32_t(std::uint8_t(s[1])) << 16) |
                     (std::uint32_t(std::uint8_t(s[2])) << 8) | std::uint32_t(std::uint8_t(s[3])));
}

// One unit on a port connection. The header is 16 bytes: the code's four characters in order,
// then flags, sequence and body length as little-endian 32-bit words.
struct MessageFrame
{
    enum Flag : std::uint32_t
    {
        WantsReply = 1, // the sender waits for exactly one reply frame
        IsReply = 2,    // answers the request with the same code and sequence
    };

    static constexpr qsizetype HeaderSize = 16;
    // Larger bodies are refused: no message of the link comes near it, and a reader must not be
    // made to buffer without bound.
    static constexpr std::uint32_t MaxBodyLength = 64u * 1024u * 1024u;

    MessageID code = 0;
    std::uint32_t flags = 0;
    std::uint32_t sequence = 0;
    QByteArray body;

    QByteArray encoded() const { return encode(code, flags, sequence, body); }
    static QByteArray encode(MessageID code, std::uint32_t flags, std::uint32_t sequence,
                             QByteArrayView body);
    static void appendTo(QByteArray& out, MessageID code, std::uint32_t flags,
                         std::uint32_t sequence, QByteArrayView body);
};

// Accumulates the bytes of one connection and cuts them into frames. A frame may arrive over
// several reads and one read may carry many frames; a read is never taken to be a message.
// Once the stream is found invalid (unknown flag bits, an over-long body) the reader stops for
// good: the connection's framing can no longer be trusted and the caller closes it.
class MessageFrameReader
{
public:
    enum class Status
    {
        NeedMore,
        Ready,
        Invalid
    };

    void append(QByteArrayView bytes);
    // Reads what the device has ready straight into the buffer; returns the bytes read.
    qint64 readFrom(QIODevice& device);
    Status next(MessageFrame& frame);

    bool isInvalid() const { return m_invalid; }
    QString errorString() const { return m_error; }
    qsizetype bufferedBytes() const { return m_buffer.size() - m_pos; }

private:
    void compact();

    QByteArray m_buffer;
    qsizetype m_pos = 0;
    bool m_invalid = false;
    QString m_error;
};

// Field words and the 64-bit connection state are little-endian on the wire.
std::uint32_t readLittleEndian32(const char* p);
void appendLittleEndian32(QByteArray& out, std::uint32_t value);

} // namespace corvane
