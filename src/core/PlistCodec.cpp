#include "core/PlistCodec.h"

#include "core/PlistFormats.h"

#include <QFile>
#include <QSaveFile>
#include <algorithm>
#include <cstring>

#ifdef Q_OS_UNIX
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace corvane {

using plist::Sink;

namespace {

constexpr std::size_t kDeviceChunk = 1 << 20;

bool isBinary(const char* data, std::size_t size)
{
    return size >= 6 && std::memcmp(data, "bplist", 6) == 0;
}

PlistReadResult readBytes(const char* data, std::size_t size, const plist::PageRelease& release)
{
    PlistReadResult result;
    if (size == 0) {
        result.error.offset = 0;
        result.error.reason = QStringLiteral("empty document");
        return result;
    }
    if (isBinary(data, size)) {
        result.format = PlistFormat::Binary;
        if (size < 8 || std::memcmp(data + 6, "00", 2) != 0) {
            result.error.offset = 6;
            result.error.reason = QStringLiteral("unsupported binary property list version");
            return result;
        }
        result.ok = plist::readBinary(data, size, result.value, result.error);
    } else {
        result.format = PlistFormat::Xml;
        result.ok = plist::readXml(data, data + size, result.value, result.error, release);
    }
    return result;
}

bool writeTo(Sink& sink, const PlistValue& value, PlistFormat format, QString& error)
{
    return format == PlistFormat::Binary ? plist::writeBinary(value, sink, error)
                                         : plist::writeXml(value, sink, error);
}

} // namespace

namespace plist {

void Sink::grow(std::size_t n)
{
    if (m_device) {
        flush();
        if (n <= m_capacity)
            return;
        m_buffer.resize(qsizetype(std::max(n, kDeviceChunk)));
    } else {
        const std::size_t wanted = std::max({m_capacity * 2, m_length + n, std::size_t(4096)});
        m_buffer.resize(qsizetype(wanted));
    }
    m_data = m_buffer.data();
    m_capacity = std::size_t(m_buffer.size());
}

void Sink::flush()
{
    // A device may take part of a chunk; only a write that takes nothing is a failure.
    const char* p = m_data;
    qint64 left = qint64(m_length);
    while (left > 0 && !m_failed) {
        const qint64 written = m_device->write(p, left);
        if (written <= 0) {
            m_failed = true;
            m_error = m_device->errorString();
            if (m_error.isEmpty())
                m_error = QStringLiteral("the device accepts no more data");
        } else {
            p += written;
            left -= written;
        }
    }
    m_flushed += m_length;
    m_length = 0;
}

bool Sink::finish()
{
    if (m_device)
        flush();
    return !m_failed;
}

QByteArray Sink::take()
{
    m_buffer.resize(qsizetype(m_length));
    m_data = nullptr;
    m_capacity = 0;
    m_length = 0;
    return std::move(m_buffer);
}

} // namespace plist

QString PlistError::toString() const
{
    if (offset < 0)
        return reason;
    return QStringLiteral("offset %1: %2").arg(offset).arg(reason);
}

PlistReadResult PlistCodec::read(QByteArrayView bytes)
{
    return readBytes(bytes.data(), std::size_t(bytes.size()), {});
}

PlistReadResult PlistCodec::readFile(const QString& path)
{
    PlistReadResult result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.error.reason = QStringLiteral("cannot open %1: %2").arg(path, file.errorString());
        return result;
    }
    const qint64 size = file.size();
    if (size == 0)
        return readBytes(nullptr, 0, {});
    uchar* mapped = file.map(0, size);
    if (!mapped) {
        // Not mappable (a pipe, an odd file system): read it whole instead.
        const QByteArray bytes = file.readAll();
        if (file.error() != QFileDevice::NoError) {
            result.error.reason =
                QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
            return result;
        }
        return read(bytes);
    }
    const auto* data = reinterpret_cast<const char*>(mapped);
    plist::PageRelease release;
#ifdef Q_OS_UNIX
    // A configuration is read front to back once: tell the kernel, and give back the pages
    // already parsed so that the file and the tree built from it are not both resident.
    const std::uintptr_t page = std::uintptr_t(sysconf(_SC_PAGESIZE));
    ::madvise(mapped, std::size_t(size), MADV_SEQUENTIAL);
    std::uintptr_t releasedTo = std::uintptr_t(mapped) & ~(page - 1);
    if (!isBinary(data, std::size_t(size))) {
        release = [page, &releasedTo](const char* upTo) {
            const std::uintptr_t end = std::uintptr_t(upTo) & ~(page - 1);
            if (end > releasedTo) {
                ::madvise(reinterpret_cast<void*>(releasedTo), end - releasedTo, MADV_DONTNEED);
                releasedTo = end;
            }
        };
    }
#endif
    result = readBytes(data, std::size_t(size), release);
    file.unmap(mapped);
    return result;
}

QByteArray PlistCodec::write(const PlistValue& value, PlistFormat format)
{
    Sink sink;
    QString error;
    if (!writeTo(sink, value, format, error))
        return {};
    return sink.take();
}

bool PlistCodec::write(QIODevice& device, const PlistValue& value, PlistFormat format,
                       QString* errorMessage)
{
    Sink sink(&device);
    QString error;
    bool ok = writeTo(sink, value, format, error);
    if (!sink.finish()) {
        error = sink.error();
        ok = false;
    }
    if (!ok && errorMessage)
        *errorMessage = error;
    return ok;
}

bool PlistCodec::writeFile(const QString& path, const PlistValue& value, PlistFormat format,
                           QString* errorMessage)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (errorMessage)
            *errorMessage = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    QString error;
    if (!write(file, value, format, &error)) {
        file.cancelWriting();
        if (errorMessage)
            *errorMessage = QStringLiteral("cannot write %1: %2").arg(path, error);
        return false;
    }
    if (!file.commit()) {
        if (errorMessage)
            *errorMessage = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

} // namespace corvane
