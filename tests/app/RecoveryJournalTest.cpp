#include "FileSizeLimit.h"
#include "app/TVKRecoveryJournal.h"
#include "service/MessageCatalogue.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace msg = corvane::msg;

TEST(RecoveryJournal, KeepsWholeRecordsAndDropsATornOne)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("journal"));
    {
        TVKRecoveryJournal journal(path);
        ASSERT_TRUE(journal.open());
        ASSERT_TRUE(journal.append(corvane::messageID("ChLa"), 2, QByteArray("first")));
        ASSERT_TRUE(journal.append(msg::Emul, -1, QByteArray(70000, 'x')));
        ASSERT_TRUE(journal.append(msg::TDlK, 0, QByteArray("third")));
    }
    const qint64 whole = QFileInfo(path).size();
    // A crash in the middle of the third record, and again in the middle of its header.
    for (const qint64 cut : {whole - 3, whole - 14 - 5}) {
        QFile::remove(path + QStringLiteral(".cut"));
        QFile::copy(path, path + QStringLiteral(".cut"));
        QFile file(path + QStringLiteral(".cut"));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.resize(cut));
        file.close();
        TVKRecoveryJournal cutJournal(path + QStringLiteral(".cut"));
        const TVKRecoveryJournal::Contents contents = cutJournal.read();
        ASSERT_EQ(contents.records.size(), 2u);
        EXPECT_TRUE(contents.tornTail);
        EXPECT_EQ(contents.records[0].id, corvane::messageID("ChLa"));
        EXPECT_EQ(contents.records[0].editedKeyset, 2);
        EXPECT_EQ(contents.records[0].body, QByteArray("first"));
        EXPECT_EQ(contents.records[1].editedKeyset, -1);
        EXPECT_EQ(contents.records[1].body.size(), 70000);
        // Opened again, the torn bytes go and the next record follows the whole ones.
        ASSERT_TRUE(cutJournal.open());
        ASSERT_TRUE(cutJournal.append(corvane::messageID("ChCo"), 1, QByteArray("next")));
        const TVKRecoveryJournal::Contents again = cutJournal.read();
        ASSERT_EQ(again.records.size(), 3u);
        EXPECT_FALSE(again.tornTail);
        EXPECT_EQ(again.records[2].body, QByteArray("next"));
    }
}

// Records stand on their own: one flipped bit anywhere in a record (its length, its checksum or
// its payload) loses that record alone, and says which; the records after it are read.
TEST(RecoveryJournal, ADamagedRecordIsSkippedAndTheOthersKept)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("journal"));
    const std::vector<QByteArray> bodies = {QByteArray("first"), QByteArray(70000, 'x'),
                                            QByteArray("third")};
    std::vector<qint64> starts;
    {
        TVKRecoveryJournal journal(path);
        ASSERT_TRUE(journal.open());
        for (size_t i = 0; i < bodies.size(); ++i) {
            starts.push_back(QFileInfo(path).size());
            ASSERT_TRUE(journal.append(msg::Emul, int(i), bodies[i]));
        }
    }
    QFile original(path);
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    const QByteArray whole = original.readAll();
    original.close();
    for (size_t damaged = 0; damaged < bodies.size(); ++damaged) {
        // Bit 0 of the length, a bit of the checksum, a bit of the keyset, a bit of the body.
        for (const qint64 offset : {0, 5, 12, 17}) {
            SCOPED_TRACE(testing::Message() << "record " << damaged << " byte " << offset);
            QByteArray bytes = whole;
            bytes[starts[damaged] + offset] = char(bytes[starts[damaged] + offset] ^ 0x01);
            const QString copy = dir.filePath(QStringLiteral("damaged"));
            QFile file(copy);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write(bytes);
            file.close();
            const TVKRecoveryJournal::Contents contents = TVKRecoveryJournal(copy).read();
            std::vector<int> kept;
            for (const TVKRecoveryJournal::Record& record : contents.records) {
                kept.push_back(record.editedKeyset);
                EXPECT_EQ(record.body, bodies[size_t(record.editedKeyset)]);
            }
            std::vector<int> expected;
            for (size_t i = 0; i < bodies.size(); ++i) {
                if (i != damaged)
                    expected.push_back(int(i));
            }
            EXPECT_EQ(kept, expected);
            // The last record with its length changed cannot be told from one cut short.
            if (damaged == bodies.size() - 1 && offset == 0) {
                EXPECT_TRUE(contents.tornTail);
                continue;
            }
            ASSERT_EQ(contents.damaged.size(), 1) << qPrintable(contents.damaged.join(u'|'));
            EXPECT_TRUE(contents.damaged.first().startsWith(
                QStringLiteral("record %1 (at byte %2,").arg(damaged + 1).arg(starts[damaged])))
                << qPrintable(contents.damaged.first());
            EXPECT_FALSE(contents.tornTail);
        }
    }
}

// Only a regular file is a journal: a FIFO or a folder at its path is neither read (which
// would wait for a writer forever) nor opened.
TEST(RecoveryJournal, OnlyARegularFileIsReadOrOpened)
{
    QTemporaryDir dir;
    const QString fifo = dir.filePath(QStringLiteral("fifo"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const QString folder = dir.filePath(QStringLiteral("folder"));
    ASSERT_TRUE(QDir().mkpath(folder));
    for (const QString& path : {fifo, folder}) {
        TVKRecoveryJournal journal(path);
        const TVKRecoveryJournal::Contents contents = journal.read();
        EXPECT_TRUE(contents.records.empty());
        EXPECT_TRUE(contents.error.contains(QStringLiteral("not a regular file")) ||
                    contents.error.contains(QStringLiteral("directory")))
            << qPrintable(contents.error);
        QString error;
        EXPECT_FALSE(journal.open(&error));
        EXPECT_FALSE(error.isEmpty());
        EXPECT_FALSE(journal.isOpen());
    }
}

TEST(RecoveryJournal, EmptiedWithANewEpochAndNeverReadFromAStranger)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("journal"));
    TVKRecoveryJournal journal(path);
    ASSERT_TRUE(journal.open());
    const quint64 epoch = journal.epoch();
    ASSERT_TRUE(journal.append(corvane::messageID("ChLa"), 0, QByteArray("a")));
    ASSERT_TRUE(journal.clear());
    EXPECT_NE(journal.epoch(), epoch);
    const TVKRecoveryJournal::Contents contents = journal.read();
    EXPECT_TRUE(contents.records.empty());
    EXPECT_EQ(contents.epoch, journal.epoch());

    QFile other(dir.filePath(QStringLiteral("other")));
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.write("<?xml version=\"1.0\"?>\n<plist/>\n");
    other.close();
    EXPECT_FALSE(TVKRecoveryJournal(other.fileName()).read().error.isEmpty());
}

// A write that does not fit (a full disk; here the file size limit, which holds for root too)
// fails after writing part of the record: that part is taken back, so the file still ends in a
// whole record, the journal closes with the reason, and opened again it goes on after the last
// whole record.
TEST(RecoveryJournal, AFailedWriteLeavesTheFileWholeAndOpensAgain)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("journal"));
    TVKRecoveryJournal journal(path);
    ASSERT_TRUE(journal.open());
    ASSERT_TRUE(journal.append(corvane::messageID("ChLa"), 1, QByteArray("kept")));
    const qint64 whole = QFileInfo(path).size();
    EXPECT_EQ(journal.size(), whole);
    for (const qint64 room : {qint64(0), qint64(5), qint64(40)}) {
        SCOPED_TRACE(room);
        {
            FileSizeLimit full(rlim_t(whole + room));
            ASSERT_TRUE(full.lowered());
            EXPECT_FALSE(journal.append(msg::Emul, 2, QByteArray(64, 'x')));
        }
        EXPECT_FALSE(journal.isOpen());
        EXPECT_TRUE(journal.failure().contains(QStringLiteral("large")))
            << qPrintable(journal.failure());
        EXPECT_EQ(QFileInfo(path).size(), whole) << "part of the failed record stayed";
        EXPECT_EQ(journal.size(), whole);
        // Closed, it refuses quietly until it is opened again.
        EXPECT_FALSE(journal.append(msg::Emul, 2, QByteArray("while closed")));
        const TVKRecoveryJournal::Contents contents = journal.read();
        EXPECT_FALSE(contents.tornTail);
        EXPECT_TRUE(contents.damaged.isEmpty());
        ASSERT_EQ(contents.records.size(), 1u);
        ASSERT_TRUE(journal.open());
        EXPECT_TRUE(journal.failure().isEmpty());
    }
    ASSERT_TRUE(journal.append(corvane::messageID("ChCo"), 3, QByteArray("after")));
    const TVKRecoveryJournal::Contents contents = journal.read();
    ASSERT_EQ(contents.records.size(), 2u);
    EXPECT_EQ(contents.records[1].body, QByteArray("after"));
    EXPECT_EQ(journal.size(), QFileInfo(path).size());

    // Emptying it needs room for its header; without, it closes as well.
    {
        FileSizeLimit full(0);
        ASSERT_TRUE(full.lowered());
        EXPECT_FALSE(journal.clear());
    }
    EXPECT_FALSE(journal.isOpen());
    EXPECT_TRUE(journal.read().records.empty());
}

// Compacting replaces the journal by one snapshot record under a new epoch, and opens it even
// after a failed write had closed it; a compaction that cannot be written keeps the old journal.
TEST(RecoveryJournal, CompactedIntoOneSnapshotOrKeptAsItWas)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("journal"));
    TVKRecoveryJournal journal(path);
    ASSERT_TRUE(journal.open());
    ASSERT_TRUE(journal.append(corvane::messageID("ChLa"), 1, QByteArray("one")));
    const QByteArray before = [&] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }();
    {
        FileSizeLimit full(rlim_t(QFileInfo(path).size()));
        ASSERT_TRUE(full.lowered());
        EXPECT_FALSE(journal.compact(QByteArray(4096, 's')));
        EXPECT_FALSE(journal.append(corvane::messageID("ChLa"), 1, QByteArray(4096, 'x')));
    }
    EXPECT_FALSE(journal.isOpen());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before) << "the old journal was not kept as it was";
    file.close();
    EXPECT_FALSE(QFileInfo::exists(path + QStringLiteral(".new")));

    const quint64 epoch = journal.epoch();
    ASSERT_TRUE(journal.compact(QByteArray("snapshot")));
    EXPECT_TRUE(journal.isOpen());
    EXPECT_NE(journal.epoch(), epoch);
    EXPECT_EQ(journal.baseSize(), journal.size());
    ASSERT_TRUE(journal.append(corvane::messageID("ChCo"), 2, QByteArray("after")));
    const TVKRecoveryJournal::Contents contents = journal.read();
    ASSERT_EQ(contents.records.size(), 2u);
    EXPECT_EQ(contents.records[0].id, TVKRecoveryJournal::Snapshot);
    EXPECT_EQ(contents.records[0].body, QByteArray("snapshot"));
    EXPECT_EQ(contents.records[1].body, QByteArray("after"));
    EXPECT_EQ(contents.epoch, journal.epoch());
    EXPECT_EQ(journal.recordCount() - journal.baseRecords(), 1);
}
