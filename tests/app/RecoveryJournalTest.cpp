#include "app/TVKRecoveryJournal.h"
#include "service/MessageCatalogue.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

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

    // A flipped byte inside a record ends the journal there.
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(16 + 8 + 8 + 2));
    file.write("X");
    file.close();
    EXPECT_TRUE(TVKRecoveryJournal(path).read().records.empty());
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
