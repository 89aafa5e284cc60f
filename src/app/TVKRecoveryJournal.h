#pragma once

#include "service/MessageFrame.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <vector>

class QTimer;

// Every configuration change the controller tells the service, kept in a file beside the
// preference store until the store is written, so that a run that ends without writing (a
// crash, a power cut, a killed process) loses nothing: the next start replays the journal over
// the stored configuration.
//
// The file is a header ("CvJrnl01" and the journal's epoch, a random 64-bit number renewed
// whenever the journal is emptied) followed by records, each a little-endian length and CRC-32
// of its payload, then the payload: message ID, the keyset being edited, the message body. A
// record is written with one write(2), so once append() returns it survives the process; the
// file is flushed to the disk at most a second later. A record cut short by a crash fails its
// length or checksum. Records stand on their own: a damaged one is skipped, up to the next place
// where a whole record starts, and the records after it are read as before; only bytes at the end
// that hold no whole record are a torn tail. Only a regular file is read or opened.
class TVKRecoveryJournal
{
public:
    // Changes of the user's that the service is not told about are kept under IDs of their own,
    // beside the messages; the body is one field word (the new state), the edited keyset that of
    // the record.
    static constexpr corvane::MessageID LockState = corvane::messageID("CvLk");
    static constexpr corvane::MessageID OneTouchRecord = corvane::messageID("CvOT");
    static constexpr corvane::MessageID OneTouchRecordDefault = corvane::messageID("CvOD");
    static constexpr corvane::MessageID HardwareStyle = corvane::messageID("CvHS");
    // The whole configuration, which the records after it apply to instead of the store: what a
    // compaction leaves. The body is a binary property list, the configuration under
    // "TVKModelData" and the number of edits it holds under "TVKCount".
    static constexpr corvane::MessageID Snapshot = corvane::messageID("CvSn");

    struct Record
    {
        corvane::MessageID id = 0;
        int editedKeyset = 0;
        QByteArray body;
    };

    // What an earlier run left behind.
    struct Contents
    {
        std::vector<Record> records;
        quint64 epoch = 0;
        bool tornTail = false; // bytes after the last whole record were dropped
        // Stretches that held no whole record, each skipped; the records after them are kept.
        // "record N (at byte B, L bytes)", N counting from 1 in the file.
        QStringList damaged;
        QString error; // the file exists but could not be read, or is not a regular file
    };

    explicit TVKRecoveryJournal(QString path);
    ~TVKRecoveryJournal();
    TVKRecoveryJournal(const TVKRecoveryJournal&) = delete;
    TVKRecoveryJournal& operator=(const TVKRecoveryJournal&) = delete;

    // "com.tavrik.CorvaneRS.journal" in the folder of the store at storePath.
    static QString pathBeside(const QString& storePath);

    const QString& path() const { return m_path; }
    // Reads the records of the file as it is (none when there is no file).
    Contents read() const;
    // Opens the file for appending, keeping the whole records it holds and dropping a torn tail.
    bool open(QString* error = nullptr);
    bool isOpen() const { return m_fd >= 0; }
    // Appends one record; false when it could not be written (a full disk, a file size limit):
    // what was written of it is taken back, so that the file still ends in a whole record, and
    // the journal is closed with the reason in failure(). The edit lives on in memory and in the
    // service; open() makes the journal writable again.
    bool append(corvane::MessageID id, int editedKeyset, const QByteArray& body);
    // Empties the journal: the store now holds everything it had. False (and closed, as after a
    // failed append) when the file could not be emptied.
    bool clear();
    // Replaces the journal, atomically, by one with a new epoch that holds only the snapshot
    // record with this body; it is open for appending afterwards, even if it was closed before.
    // False with the reason when the new journal could not be written: the old one is then kept
    // as it was, open or closed.
    bool compact(const QByteArray& snapshot, QString* error = nullptr);
    // Flushes what was appended to the disk now.
    void sync();
    void close();
    qint64 recordCount() const { return m_records; }
    // The file's length: its header and every record appended.
    qint64 size() const { return m_size; }
    // The file's length and its records when it was last compacted, emptied or opened: what was
    // appended since is size() - baseSize() in recordCount() - baseRecords() records.
    qint64 baseSize() const { return m_baseSize; }
    qint64 baseRecords() const { return m_baseRecords; }
    // Why the last append or clear failed; empty once the journal is opened again.
    const QString& failure() const { return m_failure; }
    // Stored with the configuration when it is written: a store that carries the journal's
    // epoch already holds every record of it (the run ended between writing the store and
    // emptying the journal), so they are not applied twice.
    quint64 epoch() const { return m_epoch; }

    static quint32 crc32(const char* data, qsizetype size, quint32 crc = 0);

private:
    void scheduleSync();
    bool writeHeader();
    bool writeHeader(int fd, quint64 epoch);
    static QByteArray encodeRecord(corvane::MessageID id, int editedKeyset, const QByteArray& body);
    // Closes the journal after a write that failed with errno.
    void fail(const QString& what);

    QString m_path;
    int m_fd = -1;
    qint64 m_records = 0;
    qint64 m_size = 0;
    qint64 m_baseSize = 0;
    qint64 m_baseRecords = 0;
    QString m_failure;
    quint64 m_epoch = 0;
    bool m_dirty = false;
    QTimer* m_syncTimer = nullptr;
};
