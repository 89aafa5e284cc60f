#include "core/PlistCodec.h"

#include "core/PlistFormats.h"

#include <QFile>
#include <QFileDevice>
#include <QSaveFile>
#include <algorithm>
#include <cstring>
#include <thread>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace corvane {

using plist::Sink;

namespace {

constexpr std::size_t kDeviceChunk = 1 << 20;
constexpr std::uint64_t kWriteBackStep = 8 << 20;

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

Sink::Sink(QIODevice* device) : m_device(device)
{
    if (auto* file = qobject_cast<QFileDevice*>(device))
        m_file = file->handle();
}

void Sink::flush()
{
    writeOut(m_data, m_length);
    m_flushed += m_length;
    m_length = 0;
    startWriteBack();
}

void Sink::startWriteBack()
{
    // A large file's pages are handed to the disk while the rest is still being made, so that
    // the sync that ends a save has little left to wait for. Only a hint: it never fails a write.
    if (m_file < 0 || m_failed || m_flushed - m_writtenBack < kWriteBackStep)
        return;
#ifdef Q_OS_LINUX
    static_cast<QFileDevice*>(m_device)->flush();
    ::sync_file_range(m_file, off64_t(m_writtenBack), off64_t(m_flushed - m_writtenBack),
                      SYNC_FILE_RANGE_WRITE);
#endif
    m_writtenBack = m_flushed;
}

void Sink::writeOut(const char* p, std::size_t n)
{
    // A device may take part of a chunk; only a write that takes nothing is a failure.
    auto left = qint64(n);
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
}

void Sink::putBlock(const char* s, std::size_t n)
{
    if (!m_device || n < kDeviceChunk) {
        put(s, n);
        return;
    }
    // Straight to the device: a block this large is not copied into the buffer first.
    flush();
    writeOut(s, n);
    m_flushed += n;
    startWriteBack();
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

namespace {

// A document of at least this many values is worth a second core.
constexpr std::size_t kSplitValues = 100000;

// Counts the values of a tree until `left` is used up.
void countValues(const PlistValue& v, std::size_t& left, int depth)
{
    if (left == 0 || depth > kMaxDepth)
        return;
    --left;
    if (v.isArray()) {
        for (const PlistValue& item : PlistBuilder::items(v))
            countValues(item, left, depth + 1);
    } else if (v.isDict()) {
        for (const PlistEntry& entry : PlistBuilder::entries(v))
            countValues(entry.second, left, depth + 1);
    }
}

} // namespace

ListSplit findListSplit(const PlistValue& root, WriterThreads threads)
{
    if (threads != WriterThreads::Two || std::thread::hardware_concurrency() < 2)
        return {};
    ListSplit split;
    std::size_t widest = 1;
    const auto consider = [&](const PlistValue& v, int level) {
        if (!v.isArray())
            return;
        const auto& items = PlistBuilder::items(v);
        const auto width =
            std::size_t(std::count_if(items.begin(), items.end(), [](const PlistValue& item) {
                return item.isArray() || item.isDict();
            }));
        if (width > widest) {
            widest = width;
            split.items = &items;
            split.level = level;
        }
    };
    consider(root, 0);
    if (root.isDict()) {
        for (const PlistEntry& entry : PlistBuilder::entries(root))
            consider(entry.second, 1);
    }
    if (!split.items)
        return {};
    std::size_t left = kSplitValues;
    for (const PlistValue& item : *split.items)
        countValues(item, left, split.level + 2);
    if (left > 0)
        return {};
    split.mid = split.items->size() / 2;
    return split;
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
