#include "service/MessageFrame.h"

#include <QIODevice>
#include <QtEndian>

namespace corvane {

std::uint32_t readLittleEndian32(const char* p)
{
    return qFromLittleEndian<std::uint32_t>(p);
}

void appendLittleEndian32(QByteArray& out, std::uint32_t value)
{
    char bytes[4];
    qToLittleEndian<std::uint32_t>(value, bytes);
    out.append(bytes, 4);
}

void MessageFrame::appendTo(QByteArray& out, MessageID code, std::uint32_t flags,
                            std::uint32_t sequence, QByteArrayView body)
{
    char header[HeaderSize];
    qToBigEndian<std::uint32_t>(std::uint32_t(code), header);
    qToLittleEndian<std::uint32_t>(flags, header + 4);
    qToLittleEndian<std::uint32_t>(sequence, header + 8);
    qToLittleEndian<std::uint32_t>(std::uint32_t(body.size()), header + 12);
    out.reserve(out.size() + HeaderSize + body.size());
    out.append(header, HeaderSize);
    out.append(body.data(), body.size());
}

QByteArray MessageFrame::encode(MessageID code, std::uint32_t flags, std::uint32_t sequence,
                                QByteArrayView body)
{
    QByteArray out;
    appendTo(out, code, flags, sequence, body);
    return out;
}

void MessageFrameReader::append(QByteArrayView bytes)
{
    if (m_invalid || bytes.isEmpty())
        return;
    compact();
    m_buffer.append(bytes.data(), bytes.size());
}

qint64 MessageFrameReader::readFrom(QIODevice& device)
{
    qint64 total = 0;
    for (;;) {
        const qint64 available = device.bytesAvailable();
        if (available <= 0)
            break;
        if (m_invalid) {
            // Drain and drop: nothing more from this stream is believed.
            total += device.skip(available);
            continue;
        }
        compact();
        const qsizetype old = m_buffer.size();
        m_buffer.resize(old + qsizetype(available));
        const qint64 got = device.read(m_buffer.data() + old, available);
        m_buffer.resize(old + qsizetype(qMax<qint64>(got, 0)));
        if (got <= 0)
            break;
        total += got;
    }
    return total;
}

void MessageFrameReader::compact()
{
    if (m_pos == 0)
        return;
    if (m_pos == m_buffer.size()) {
        m_buffer.resize(0);
        m_pos = 0;
    } else if (m_pos >= 65536 && m_pos * 2 >= m_buffer.size()) {
        m_buffer.remove(0, m_pos);
        m_pos = 0;
    }
}

MessageFrameReader::Status MessageFrameReader::next(MessageFrame& frame)
{
    if (m_invalid)
        return Status::Invalid;
    const qsizetype available = m_buffer.size() - m_pos;
    if (available < MessageFrame::HeaderSize)
        return Status::NeedMore;
    const char* p = m_buffer.constData() + m_pos;
    const std::uint32_t flags = readLittleEndian32(p + 4);
    const std::uint32_t length = readLittleEndian32(p + 12);
    const std::uint32_t known = MessageFrame::WantsReply | MessageFrame::IsReply;
    if ((flags & ~known) != 0 || flags == known) {
        m_invalid = true;
        m_error = QStringLiteral("unknown frame flags 0x%1").arg(flags, 8, 16, QLatin1Char('0'));
        return Status::Invalid;
    }
    if (length > MessageFrame::MaxBodyLength) {
        m_invalid = true;
        m_error = QStringLiteral("frame body of %1 bytes exceeds the limit").arg(length);
        return Status::Invalid;
    }
    if (available - MessageFrame::HeaderSize < qsizetype(length))
        return Status::NeedMore;
    frame.code = MessageID(qFromBigEndian<std::uint32_t>(p));
    frame.flags = flags;
    frame.sequence = readLittleEndian32(p + 8);
    frame.body = QByteArray(p + MessageFrame::HeaderSize, qsizetype(length));
    m_pos += MessageFrame::HeaderSize + qsizetype(length);
    if (m_pos == m_buffer.size()) {
        m_buffer.resize(0);
        m_pos = 0;
    }
    return Status::Ready;
}

} // namespace corvane
