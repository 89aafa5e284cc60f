#include "core/PlistCodec.h"

#include "core/PlistFormats.h"

#include <QFile>
#include <QFileDevice>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace corvane {

using plist::Sink;

namespace {

constexpr std::size_t kDeviceChunk = 1 << 20;
constexpr std::uint64_t kWriteBackStep = 8 << 20;

bool isBinary(const char* data, std::size_t size)
{
    return size >= 6 && std::memcmp(data, "bplist", 6) == 0;
}

PlistReadResult readWithin(const char* data, std::size_t size, const plist::PageRelease& release);

PlistReadResult readBytes(const char* data, std::size_t size, const plist::PageRelease& release)
{
    PlistReadResult result;
    if (size == 0) {
        result.error.offset = 0;
        result.error.reason = QStringLiteral("empty document");
        return result;
    }
    if (size > plist::kMaxDocumentBytes) {
        result.error.reason = QStringLiteral("the document is larger than the limit of %1 bytes")
                                  .arg(plist::kMaxDocumentBytes);
        return result;
    }
    // Every size a document may have is bounded, but memory may still run out: that is an
    // error like any other, never the end of the program.
    try {
        return readWithin(data, size, release);
    } catch (const std::bad_alloc&) {
        result = PlistReadResult();
        result.error.reason = QStringLiteral("not enough memory to read the document");
        return result;
    }
}

PlistReadResult readWithin(const char* data, std::size_t size, const plist::PageRelease& release)
{
    PlistReadResult result;
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

namespace {

// What the system said of the last call that failed.
QString systemError()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

// The file's bytes in private memory. A file is read, not mapped: another program may shorten a
// mapped file while it is parsed, and touching the lost pages would kill the process. Large
// files go into anonymous pages that the XML reader hands back as it passes them, so the file
// and the tree built from it are not both resident for long.
class FileBytes
{
public:
    FileBytes() = default;
    ~FileBytes()
    {
        if (m_pages)
            ::munmap(m_pages, m_capacity);
    }
    FileBytes(const FileBytes&) = delete;
    FileBytes& operator=(const FileBytes&) = delete;

    const char* data() const { return m_mapped ? m_mapped : m_small.constData(); }
    std::size_t size() const { return m_size; }
    bool released() const { return m_mapped != nullptr; }

    // Reads the whole file; false with the reason otherwise (the reason does not name the file:
    // the caller does).
    bool read(const QString& path, QString& reason)
    {
        const QByteArray name = QFile::encodeName(path);
        // Non-blocking, so that a FIFO without a writer cannot hold the open forever.
        const int fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
        if (fd < 0) {
            reason = systemError();
            return false;
        }
        const bool ok = readOpen(fd, reason);
        ::close(fd);
        return ok;
    }

private:
    bool readOpen(int fd, QString& reason)
    {
        struct stat info;
        if (::fstat(fd, &info) != 0) {
            reason = systemError();
            return false;
        }
        if (S_ISDIR(info.st_mode)) {
            reason = QStringLiteral("is a folder, not a file");
            return false;
        }
        if (!S_ISREG(info.st_mode)) {
            reason = QStringLiteral("not a regular file");
            return false;
        }
        // Blocking from here on: a regular file never waits, and plain reads are simplest.
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
        const auto expected = std::size_t(info.st_size);
        if (expected > plist::kMaxDocumentBytes) {
            reason = QStringLiteral("the file is larger than the limit of %1 bytes")
                         .arg(plist::kMaxDocumentBytes);
            return false;
        }
        if (expected == 0)
            return readStream(fd, reason); // /proc and friends report 0 for content
        if (expected >= kMappedFrom) {
            // Large pages: filling the buffer then costs a fault per 2 MiB instead of one per
            // page. They need a 2 MiB aligned start, hence the slack.
            m_capacity = expected + kLargePage;
            void* pages = ::mmap(nullptr, m_capacity, PROT_READ | PROT_WRITE,
                                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
            if (pages == MAP_FAILED) {
                reason = systemError();
                return false;
            }
            m_pages = pages;
            const std::uintptr_t aligned =
                (std::uintptr_t(pages) + kLargePage - 1) & ~std::uintptr_t(kLargePage - 1);
            m_mapped = reinterpret_cast<char*>(aligned);
            ::madvise(m_mapped, expected, MADV_HUGEPAGE);
        } else {
            m_small.resize(qsizetype(expected));
        }
        char* into = m_mapped ? m_mapped : m_small.data();
        while (m_size < expected) {
            const ssize_t got = ::read(fd, into + m_size, std::min(expected - m_size, kChunk));
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0) {
                reason = systemError();
                return false;
            }
            if (got == 0)
                break;
            m_size += std::size_t(got);
        }
        char extra;
        if (m_size != expected || ::read(fd, &extra, 1) > 0) {
            reason = QStringLiteral("the file changed while it was read");
            return false;
        }
        return true;
    }

    bool readStream(int fd, QString& reason)
    {
        for (;;) {
            if (m_small.size() > kMaxStream) {
                reason = QStringLiteral("the file is larger than the limit of %1 bytes")
                             .arg(plist::kMaxDocumentBytes);
                return false;
            }
            const qsizetype at = m_small.size();
            m_small.resize(at + qsizetype(kChunk));
            const ssize_t got = ::read(fd, m_small.data() + at, kChunk);
            if (got < 0 && errno == EINTR) {
                m_small.resize(at);
                continue;
            }
            if (got < 0) {
                reason = systemError();
                return false;
            }
            m_small.resize(at + got);
            if (got == 0)
                break;
        }
        m_size = std::size_t(m_small.size());
        return true;
    }

    static constexpr std::size_t kChunk = 1 << 20;
    // Below this a plain buffer; above it pages that can be handed back while parsing.
    static constexpr std::size_t kMappedFrom = 256 << 10;
    static constexpr std::size_t kLargePage = 2 << 20;
    // A file whose size the system does not know is read as a stream up to this much.
    static constexpr qsizetype kMaxStream = qsizetype(plist::kMaxDocumentBytes);

    QByteArray m_small;
    void* m_pages = nullptr;  // the whole anonymous mapping
    char* m_mapped = nullptr; // where the file's bytes start in it
    std::size_t m_capacity = 0;
    std::size_t m_size = 0;
};

} // namespace

PlistReadResult PlistCodec::readFile(const QString& path)
{
    PlistReadResult result;
    FileBytes bytes;
    try {
        if (!bytes.read(path, result.error.reason))
            return result;
    } catch (const std::bad_alloc&) {
        result.error.reason = QStringLiteral("not enough memory to read the document");
        return result;
    }
    const char* data = bytes.data();
    const std::size_t size = bytes.size();
    plist::PageRelease release;
    // A configuration is read front to back once: the pages already parsed go back to the
    // system as the XML reader passes them.
    const std::uintptr_t page = std::uintptr_t(sysconf(_SC_PAGESIZE));
    std::uintptr_t releasedTo = std::uintptr_t(data) & ~(page - 1);
    if (bytes.released() && !isBinary(data, size)) {
        release = [page, &releasedTo](const char* upTo) {
            const std::uintptr_t end = std::uintptr_t(upTo) & ~(page - 1);
            if (end > releasedTo) {
                ::madvise(reinterpret_cast<void*>(releasedTo), end - releasedTo, MADV_DONTNEED);
                releasedTo = end;
            }
        };
    }
    return readBytes(data, size, release);
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
    // Replacing a device node, a FIFO, a socket or a folder with a regular file would destroy
    // what stood there; only a regular file (or none) is ever written.
    const QFileInfo existing(path);
    if (existing.exists() && !existing.isFile()) {
        if (errorMessage)
            *errorMessage = QStringLiteral("cannot write %1: not a regular file").arg(path);
        return false;
    }
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
