#pragma once

#include "service/MessageFrame.h"

#include <QByteArray>
#include <QString>
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
// length or checksum and ends the journal there.
class TVKRecoveryJournal
{
public:
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
        QString error;         // the file exists but could not be read
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
    // Appends one record; false when it could not be written (the journal is then closed, and
    // the edit lives on in memory and in the service as before).
    bool append(corvane::MessageID id, int editedKeyset, const QByteArray& body);
    // Empties the journal: the store now holds everything it had.
    bool clear();
    // Flushes what was appended to the disk now.
    void sync();
    qint64 recordCount() const { return m_records; }
    // Stored with the configuration when it is written: a store that carries the journal's
    // epoch already holds every record of it (the run ended between writing the store and
    // emptying the journal), so they are not applied twice.
    quint64 epoch() const { return m_epoch; }

    static quint32 crc32(const char* data, qsizetype size, quint32 crc = 0);

private:
    void scheduleSync();
    void close();
    bool writeHeader();

    QString m_path;
    int m_fd = -1;
    qint64 m_records = 0;
    quint64 m_epoch = 0;
    bool m_dirty = false;
    QTimer* m_syncTimer = nullptr;
};
