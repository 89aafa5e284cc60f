// The recovery journal as the running controller keeps it: made writable again after a write that
// failed, with the user told while edits are unprotected, and kept short by compacting it into a
// snapshot of the configuration once the edits pause, never inside an edit. A crash is played by
// dropping the controller without quitting and starting a new one on the same files.
#include "ControllerFixture.h"
#include "FileSizeLimit.h"
#include "app/TVKRecoveryJournal.h"
#include "core/Log.h"
#include "core/StoredKeys.h"
#include "core/TVKUserDefaults.h"
#include "model/CorvaneModelData.h"
#include "model/TVKKeyset.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>

using namespace corvane;
using namespace corvane::test;

namespace {

class JournalTest : public ControllerTest
{
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        CorvaneModelData model;
        for (const char* name : {"KS0001", "KS0002"})
            model.addKeysetWithName(QString::fromLatin1(name),
                                    fourCharCodeFromString(QString::fromLatin1(name).right(4)));
        storeConfiguration(model);
        journalPath = TVKRecoveryJournal::pathBeside(storePath);
    }

    void start()
    {
        startController();
        m_protected = controller->editsUnprotected().isEmpty();
        // Counted when the protection goes or comes back (the reason may change meanwhile).
        QObject::connect(controller.get(), &TVKController::journalProtectionChanged, [this] {
            const bool now = controller->editsUnprotected().isEmpty();
            protectionChanges += now != m_protected;
            m_protected = now;
        });
    }

    // An edit of the user's that goes into the journal as one small record.
    void rename(int n)
    {
        controller->undoableSetUserName(QStringLiteral("Edit %1").arg(n), 1, 0, 0, 0, false);
    }

    TVKRecoveryJournal::Contents journal() const { return TVKRecoveryJournal(journalPath).read(); }

    PlistValue model() const
    {
        PlistValue dict = PlistValue::makeDict();
        controller->modelData()->writeTo(dict);
        return dict;
    }
    PlistValue stored() const { return TVKUserDefaults(storePath).objectForKey(key::ModelData); }
    // What the user edited: the keysets and the one-touch default.
    PlistValue edited() const
    {
        const PlistValue all = model();
        PlistValue part = PlistValue::makeDict();
        part.insert(key::Keysets, all.value(key::Keysets));
        part.insert(key::OneTchDflt, all.value(key::OneTchDflt));
        return part;
    }
    // The process ends without quitting and starts again: what it finds.
    ::testing::AssertionResult crashRecovers()
    {
        const PlistValue before = edited();
        views.alerts.clear();
        controller.reset();
        start();
        if (edited() != before)
            return ::testing::AssertionFailure() << "the next start did not recover every edit";
        return ::testing::AssertionSuccess();
    }

    int logged(const QString& start) const
    {
        return int(
            log.lines()
                .filter(QRegularExpression(QStringLiteral("^") + QRegularExpression::escape(start)))
                .size());
    }

    LogCapture log;
    QString journalPath;
    int protectionChanges = 0;

private:
    bool m_protected = true;
};

} // namespace

// A disk that fills up during a session: the write that does not fit fails, the user is told once
// that edits are not protected, the edits go on in memory, and once writing works again the store
// takes every edit (those no journal holds as well) and the journal starts again.
TEST_F(JournalTest, AFailedWriteIsToldOnceAndTheJournalReopensWhenWritingWorksAgain)
{
    start();
    TVKController& c = *controller;
    rename(1);
    ASSERT_EQ(journal().records.size(), 1u);
    ASSERT_TRUE(c.editsUnprotected().isEmpty());
    {
        FileSizeLimit full(rlim_t(QFileInfo(journalPath).size() + 8));
        ASSERT_TRUE(full.lowered());
        rename(2);
        EXPECT_FALSE(c.editsUnprotected().isEmpty());
        EXPECT_EQ(protectionChanges, 1);
        // Edits of every kind go on meanwhile; none of them reaches the journal.
        rename(3);
        c.setSelectedKeyset(2);
        c.handleLockUnlockMenu();
        c.handleDefaultOneTouchRecord();
        // Tried again (after 1 s, then 2 s) while the disk is still full: nothing changes, and
        // nothing more is said.
        spinFor(3300);
        EXPECT_FALSE(c.editsUnprotected().isEmpty());
        EXPECT_EQ(protectionChanges, 1);
    }
    EXPECT_EQ(logged(QStringLiteral("recovery journal: edits are not protected")), 1)
        << qPrintable(log.lines().join(u'\n'));
    EXPECT_EQ(logged(QStringLiteral("the configuration could not be saved")), 0)
        << "every retry was logged";
    const TVKRecoveryJournal::Contents during = journal();
    EXPECT_EQ(during.records.size(), 1u);
    EXPECT_FALSE(during.tornTail) << "the failed record was left half written";

    // Writing works again: the next try (4 s after the last) makes the edits safe.
    ASSERT_TRUE(spinUntil([&] { return c.editsUnprotected().isEmpty(); }, 6000));
    EXPECT_EQ(protectionChanges, 2);
    EXPECT_EQ(logged(QStringLiteral("recovery journal: edits are protected again")), 1);
    // A snapshot holds the edits made while the journal was closed; the journal goes on from it.
    const TVKRecoveryJournal::Contents reopened = journal();
    ASSERT_EQ(reopened.records.size(), 1u);
    EXPECT_EQ(reopened.records[0].id, TVKRecoveryJournal::Snapshot);
    rename(4);
    EXPECT_EQ(journal().records.size(), 2u);
    EXPECT_TRUE(crashRecovers());
}

// A disk already full at start-up: the journal cannot even get its header, so edits are
// unprotected from the start and the user is told; once there is room, a journal is started and
// the store takes every edit made meanwhile.
TEST_F(JournalTest, AJournalThatCannotBeStartedAtStartUpIsStartedOnceItCanBe)
{
    {
        FileSizeLimit full(0);
        ASSERT_TRUE(full.lowered());
        start();
        EXPECT_TRUE(controller->editsUnprotected().contains(QStringLiteral("large")))
            << qPrintable(controller->editsUnprotected());
        rename(1);
        controller->handleSetOneTouchRecord();
        spinFor(1200);
        EXPECT_FALSE(controller->editsUnprotected().isEmpty());
    }
    TVKController& c = *controller;
    ASSERT_TRUE(spinUntil([&] { return c.editsUnprotected().isEmpty(); }, 4000));
    EXPECT_EQ(protectionChanges, 1);
    EXPECT_EQ(logged(QStringLiteral("recovery journal: edits are not protected")), 1);
    rename(2);
    EXPECT_EQ(journal().records.size(), 2u);
    EXPECT_TRUE(crashRecovers());
}

// A thousand small edits in a row: each is journaled as it is made, and the journal is compacted
// only once they pause, in a turn of its own, into one snapshot; the store is left alone (it
// changes when the user saves), and the next start after a crash has every edit.
TEST_F(JournalTest, ManyEditsAreCompactedOnceTheyPause)
{
    start();
    const PlistValue before = stored();
    for (int n = 0; n < 1000; ++n) {
        rename(n);
        ASSERT_EQ(journal().records.size(), size_t(n + 1)) << "compacted inside an edit";
        if (n % 100 == 0)
            QCoreApplication::processEvents(); // a pause shorter than the compaction's
    }
    ASSERT_TRUE(spinUntil([&] { return journal().records.size() == 1; }, 4000));
    EXPECT_EQ(journal().records[0].id, TVKRecoveryJournal::Snapshot);
    EXPECT_EQ(stored(), before);
    EXPECT_TRUE(controller->editsUnprotected().isEmpty());
    ASSERT_TRUE(crashRecovers());
    ASSERT_EQ(views.alerts.size(), 1u);
    EXPECT_TRUE(views.alerts[0].informativeText.contains(QStringLiteral("1000 edit(s)")))
        << qPrintable(views.alerts[0].informativeText);
}

// Keyset-level edits, each a whole keyset in the journal, made without a pause: the journal is
// compacted all the same once it is well over the store's size, so it never grows without bound.
TEST_F(JournalTest, KeysetEditsWithoutAPauseStillKeepTheJournalBounded)
{
    start();
    TVKController& c = *controller;
    c.setSelectedKeyset(1);
    c.handleCopyKeyset();
    const qint64 storeSize = QFileInfo(storePath).size();
    qint64 largest = 0;
    qint64 record = 0;
    int compactions = 0;
    QElapsedTimer clock;
    clock.start();
    for (int n = 0; n < 60; ++n) {
        c.setSelectedKeyset(n % 2 ? 1 : 2);
        const qint64 was = QFileInfo(journalPath).size();
        c.handlePasteKeyset();
        const qint64 now = QFileInfo(journalPath).size();
        ASSERT_GT(now, was) << "the paste was not journaled";
        record = std::max(record, now - was);
        largest = std::max(largest, now);
        QCoreApplication::processEvents(); // never a pause of a second
        compactions += QFileInfo(journalPath).size() < now;
    }
    ASSERT_LT(clock.elapsed(), 60 * 1000);
    EXPECT_GT(compactions, 0);
    // Compacted at the latest when twice over its limit (the store's size, at least 1 MiB) beyond
    // its snapshot, which is about the store's size.
    EXPECT_LE(largest, 2 * storeSize + 2 * std::max<qint64>(storeSize, 1 << 20) + record);
    // After the pause, what is left beyond the snapshot is under the limit; the next start after
    // a crash has every edit.
    spinFor(1500);
    EXPECT_TRUE(crashRecovers());
}
