#include "app/TVKRecoveryJournal.h"

#include "core/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTimer>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char kMagic[8] = {'C', 'v', 'J', 'r', 'n', 'l', '0', '1'};
constexpr qsizetype kHeaderSize = sizeof(kMagic) + 8;
constexpr qsizetype kRecordHeaderSize = 8;
constexpr qsizetype kPayloadHeaderSize = 8;
// A keyset's archive is far smaller; a longer length can only be damage.
constexpr quint32 kMaxPayload = 64u << 20;
constexpr int kSyncDelayMs = 1000;

void put32(char* out, quint32 value)
{
    for (int i = 0; i < 4; ++i)
        out[i] = char((value >> (8 * i)) & 0xff);
}

quint32 get32(const char* in)
{
    quint32 value = 0;
    for (int i = 0; i < 4; ++i)
        value |= quint32(quint8(in[i])) << (8 * i);
    return value;
}

quint64 get64(const char* in)
{
    return quint64(get32(in)) | (quint64(get32(in + 4)) << 32);
}

const std::array<quint32, 256>& crcTable()
{
    static const std::array<quint32, 256> table = [] {
        std::array<quint32, 256> t{};
        for (quint32 i = 0; i < 256; ++i) {
            quint32 c = i;
            for (int k = 0; k < 8; ++k)
                c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            t[i] = c;
        }
        return t;
    }();
    return table;
}

bool writeAll(int fd, const char* data, qsizetype size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size_t(size));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += written;
        size -= written;
    }
    return true;
}

// The whole record at `at`, if one starts there: its length and checksum hold.
bool recordAt(const QByteArray& bytes, qsizetype at, quint32* length)
{
    if (bytes.size() - at < kRecordHeaderSize)
        return false;
    *length = get32(bytes.constData() + at);
    if (*length < kPayloadHeaderSize || *length > kMaxPayload ||
        qsizetype(*length) > bytes.size() - at - kRecordHeaderSize)
        return false;
    const quint32 crc = get32(bytes.constData() + at + 4);
    return TVKRecoveryJournal::crc32(bytes.constData() + at + kRecordHeaderSize, *length) == crc;
}

// The whole records of a journal's bytes. A stretch that holds none is skipped up to the next
// place a whole record starts and described in `damaged`; at the end of the bytes it is a torn
// tail instead. Returns where the last whole record ends.
qsizetype parse(const QByteArray& bytes, std::vector<TVKRecoveryJournal::Record>* records,
                QStringList* damaged, bool* tornTail)
{
    qsizetype at = kHeaderSize;
    qsizetype end = at;
    qsizetype count = 0;
    while (at < bytes.size()) {
        quint32 length = 0;
        if (!recordAt(bytes, at, &length)) {
            // Where the next whole record starts, if anywhere.
            qsizetype next = at + 1;
            while (next < bytes.size() && !recordAt(bytes, next, &length))
                ++next;
            // Nothing whole follows. A last record that claims just the bytes left but fails its
            // checksum was damaged; anything else was cut short by the end of the run.
            const quint32 claimed =
                bytes.size() - at >= kRecordHeaderSize ? get32(bytes.constData() + at) : 0;
            if (next >= bytes.size() &&
                qsizetype(claimed) + kRecordHeaderSize != bytes.size() - at) {
                *tornTail = true;
                break;
            }
            if (damaged)
                damaged->append(QStringLiteral("record %1 (at byte %2, %3 bytes)")
                                    .arg(count + 1)
                                    .arg(at)
                                    .arg(next - at));
            if (next >= bytes.size()) {
                end = next;
                break;
            }
            at = next;
        }
        const char* payload = bytes.constData() + at + kRecordHeaderSize;
        if (records) {
            TVKRecoveryJournal::Record record;
            record.id = corvane::MessageID(get32(payload));
            record.editedKeyset = int(qint32(get32(payload + 4)));
            record.body = QByteArray(payload + kPayloadHeaderSize, length - kPayloadHeaderSize);
            records->push_back(std::move(record));
        }
        ++count;
        at += kRecordHeaderSize + length;
        end = at;
    }
    return end;
}

// Opens the file at path only when it is a regular file (a FIFO would block the start-up, a
// device would never end); -1 with the reason otherwise. flags as for open(2), without O_CREAT.
int openRegular(const QString& path, int flags, QString* error)
{
    const int fd = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        if (error)
            *error = QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(strerror(errno)));
        return -1;
    }
    struct stat info = {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        if (error)
            *error = QStringLiteral("%1: not a regular file").arg(path);
        return -1;
    }
    // Appends and reads wait for the disk as usual.
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    return fd;
}

QByteArray readAll(int fd)
{
    QFile file;
    QByteArray bytes;
    if (file.open(fd, QIODevice::ReadOnly, QFileDevice::DontCloseHandle))
        bytes = file.readAll();
    return bytes;
}

} // namespace

TVKRecoveryJournal::TVKRecoveryJournal(QString path) : m_path(std::move(path)) {}

TVKRecoveryJournal::~TVKRecoveryJournal()
{
    if (m_dirty)
        sync();
    close();
    delete m_syncTimer;
}

QString TVKRecoveryJournal::pathBeside(const QString& storePath)
{
    return QFileInfo(storePath).absolutePath() + QStringLiteral("/com.tavrik.CorvaneRS.journal");
}

quint32 TVKRecoveryJournal::crc32(const char* data, qsizetype size, quint32 crc)
{
    const std::array<quint32, 256>& table = crcTable();
    crc = ~crc;
    for (qsizetype i = 0; i < size; ++i)
        crc = table[(crc ^ quint8(data[i])) & 0xff] ^ (crc >> 8);
    return ~crc;
}

TVKRecoveryJournal::Contents TVKRecoveryJournal::read() const
{
    Contents contents;
    const QFileInfo info(m_path);
    if (!info.exists() && !info.isSymLink())
        return contents;
    const int fd = openRegular(m_path, O_RDONLY, &contents.error);
    if (fd < 0)
        return contents;
    ::lseek(fd, 0, SEEK_SET);
    const QByteArray bytes = readAll(fd);
    ::close(fd);
    if (bytes.isEmpty())
        return contents;
    if (bytes.size() < kHeaderSize || std::memcmp(bytes.constData(), kMagic, sizeof(kMagic)) != 0) {
        contents.error = QStringLiteral("%1: not a recovery journal").arg(m_path);
        return contents;
    }
    contents.epoch = get64(bytes.constData() + sizeof(kMagic));
    parse(bytes, &contents.records, &contents.damaged, &contents.tornTail);
    return contents;
}

bool TVKRecoveryJournal::open(QString* error)
{
    close();
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    const QFileInfo info(m_path);
    if (!info.exists() && !info.isSymLink()) {
        const int made = ::open(QFile::encodeName(m_path).constData(),
                                O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (made >= 0)
            ::close(made);
    }
    const int fd = openRegular(m_path, O_RDWR, error);
    if (fd < 0)
        return false;
    const QByteArray bytes = readAll(fd);
    qsizetype keep = 0;
    m_records = 0;
    if (bytes.size() >= kHeaderSize &&
        std::memcmp(bytes.constData(), kMagic, sizeof(kMagic)) == 0) {
        std::vector<Record> records;
        bool torn = false;
        keep = parse(bytes, &records, nullptr, &torn);
        m_records = qint64(records.size());
        m_epoch = get64(bytes.constData() + sizeof(kMagic));
    }
    m_fd = fd;
    // A torn record is cut off, so the next record follows the last whole one. (A journal with
    // damage in it was moved aside before it is opened again.)
    m_size = keep;
    bool ok = ::ftruncate(fd, keep) == 0 && ::lseek(fd, keep, SEEK_SET) == keep;
    if (ok && keep == 0)
        ok = writeHeader();
    if (!ok) {
        m_fd = -1;
        if (error)
            *error = QStringLiteral("%1: %2").arg(m_path, QString::fromLocal8Bit(strerror(errno)));
        ::close(fd);
        return false;
    }
    m_failure.clear();
    m_baseSize = m_size;
    m_baseRecords = m_records;
    return true;
}

bool TVKRecoveryJournal::append(corvane::MessageID id, int editedKeyset, const QByteArray& body)
{
    if (m_fd < 0)
        return false;
    const QByteArray record = encodeRecord(id, editedKeyset, body);
    if (!writeAll(m_fd, record.constData(), record.size())) {
        fail(QString::fromLocal8Bit(strerror(errno)));
        return false;
    }
    ++m_records;
    m_size += record.size();
    scheduleSync();
    return true;
}

QByteArray TVKRecoveryJournal::encodeRecord(corvane::MessageID id, int editedKeyset,
                                            const QByteArray& body)
{
    const qsizetype payload = kPayloadHeaderSize + body.size();
    QByteArray record(kRecordHeaderSize + payload, Qt::Uninitialized);
    char* out = record.data();
    put32(out + kRecordHeaderSize, quint32(id));
    put32(out + kRecordHeaderSize + 4, quint32(qint32(editedKeyset)));
    std::memcpy(out + kRecordHeaderSize + kPayloadHeaderSize, body.constData(),
                size_t(body.size()));
    put32(out, quint32(payload));
    put32(out + 4, crc32(out + kRecordHeaderSize, payload));
    return record;
}

bool TVKRecoveryJournal::compact(const QByteArray& snapshot, QString* error)
{
    // Written beside the journal and renamed over it once it is on the disk, so that a crash at
    // any moment leaves either the old journal or the new one, whole.
    const QString next = m_path + QStringLiteral(".new");
    const QByteArray nextName = QFile::encodeName(next);
    const int fd = ::open(nextName.constData(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const quint64 epoch = QRandomGenerator::system()->generate64();
    const QByteArray record = encodeRecord(Snapshot, -1, snapshot);
    const bool written = fd >= 0 && writeHeader(fd, epoch) &&
                         writeAll(fd, record.constData(), record.size()) && ::fdatasync(fd) == 0 &&
                         ::rename(nextName.constData(), QFile::encodeName(m_path).constData()) == 0;
    if (!written) {
        if (error)
            *error = QStringLiteral("%1: %2").arg(next, QString::fromLocal8Bit(strerror(errno)));
        if (fd >= 0)
            ::close(fd);
        ::unlink(nextName.constData());
        return false;
    }
    close();
    m_fd = fd;
    m_epoch = epoch;
    m_records = m_baseRecords = 1;
    m_size = m_baseSize = kHeaderSize + record.size();
    m_dirty = false;
    m_failure.clear();
    return true;
}

bool TVKRecoveryJournal::clear()
{
    m_records = 0;
    m_baseRecords = 0;
    m_dirty = false;
    if (m_fd < 0)
        return QFile::remove(m_path) || !QFile::exists(m_path);
    m_size = 0;
    if (::ftruncate(m_fd, 0) != 0 || ::lseek(m_fd, 0, SEEK_SET) != 0 || !writeHeader()) {
        fail(QString::fromLocal8Bit(strerror(errno)));
        return false;
    }
    ::fdatasync(m_fd);
    m_baseSize = m_size;
    return true;
}

void TVKRecoveryJournal::sync()
{
    if (m_fd >= 0)
        ::fdatasync(m_fd);
    m_dirty = false;
}

void TVKRecoveryJournal::scheduleSync()
{
    // The write already survives the process; the disk flush is gathered, so that a series of
    // edits costs one flush, not one each.
    m_dirty = true;
    if (!m_syncTimer) {
        m_syncTimer = new QTimer;
        m_syncTimer->setSingleShot(true);
        m_syncTimer->setInterval(kSyncDelayMs);
        QObject::connect(m_syncTimer, &QTimer::timeout, [this] { sync(); });
    }
    if (!m_syncTimer->isActive())
        m_syncTimer->start();
}

bool TVKRecoveryJournal::writeHeader()
{
    m_epoch = QRandomGenerator::system()->generate64();
    if (!writeHeader(m_fd, m_epoch))
        return false;
    m_size += kHeaderSize;
    return true;
}

bool TVKRecoveryJournal::writeHeader(int fd, quint64 epoch)
{
    char header[kHeaderSize];
    std::memcpy(header, kMagic, sizeof(kMagic));
    put32(header + sizeof(kMagic), quint32(epoch));
    put32(header + sizeof(kMagic) + 4, quint32(epoch >> 32));
    return writeAll(fd, header, kHeaderSize);
}

void TVKRecoveryJournal::fail(const QString& what)
{
    // What part of the record reached the file is taken back: the next record, once the journal
    // is writable again, follows the last whole one. A journal that cannot even be cut back is
    // read up to its last whole record all the same.
    if (::ftruncate(m_fd, m_size) != 0)
        m_size = ::lseek(m_fd, 0, SEEK_END);
    m_failure = what;
    corvane::log(QStringLiteral("recovery journal %1: %2").arg(m_path, what));
    close();
}

void TVKRecoveryJournal::close()
{
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}
