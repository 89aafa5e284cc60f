// The recovery journal as the controller keeps it: every edit of the user's goes in; the store is
// written when the journal has grown as large as a written store would be, once the edits pause,
// so that the journal stays short and a crash costs little to recover; and a journal that cannot
// be written (a full disk) is made writable again as soon as it can be, the user being told
// meanwhile that the edits are not protected.
#include "app/TVKController.h"
#include "app/TVKRecoveryJournal.h"
#include "core/Log.h"
#include "core/MoveAside.h"
#include "service/ConfigurationEdits.h"
#include "service/TVK_MessageSpecs.h"

#include <QDateTime>
#include <QFileInfo>
#include <QTimer>
#include <algorithm>

namespace {

// The store is written once the journal holds this many records, or as many bytes as the store
// itself (at least kCompactionMinBytes): replaying a journal longer than that would cost more
// than reading the store, and writing the store once per store's worth of journal at most
// doubles what is written to the disk.
constexpr qint64 kCompactionRecords = 1000;
constexpr qint64 kCompactionMinBytes = 1 << 20;
// Written when the edits pause for this long, never inside an edit or a touch; a journal twice
// over its limit is compacted at the next turn of the event loop, pause or not.
constexpr int kCompactionPauseMs = 1000;
constexpr int kCompactionOverdue = 2;
// How soon a journal that cannot be written is tried again, doubling up to the longest wait.
constexpr int kRetryFirstMs = 1000;
constexpr int kRetryLongestMs = 8000;

} // namespace

void TVKController::journal(corvane::MessageID id, const QByteArray& body)
{
    if (!m_journalPaused && isConfigurationMessage(id))
        appendToJournal(id, selectedKeyset(), body);
}

void TVKController::journalChange(corvane::MessageID id, qint64 keyset, quint32 state)
{
    appendToJournal(id, keyset, TVK_OneIntSpec(state).data());
}

void TVKController::appendToJournal(corvane::MessageID id, qint64 keyset, const QByteArray& body)
{
    // A journal that is not open is being tried again; the edit is in the model and the service.
    if (!m_journal || !m_journal->isOpen())
        return;
    if (!m_journal->append(id, int(keyset), body)) {
        setEditsUnprotected(m_journal->failure());
        return;
    }
    const qint64 byteLimit = std::max(kCompactionMinBytes, m_storedSize);
    const qint64 records = m_journal->recordCount();
    const qint64 bytes = m_journal->size();
    if (records < kCompactionRecords && bytes < byteLimit)
        return;
    if (!m_journalCompaction) {
        m_journalCompaction = new QTimer(this);
        m_journalCompaction->setSingleShot(true);
        connect(m_journalCompaction, &QTimer::timeout, this, &TVKController::compactJournal);
    }
    const bool overdue = records >= kCompactionOverdue * kCompactionRecords ||
                         bytes >= kCompactionOverdue * byteLimit;
    if (!overdue)
        m_journalCompaction->start(kCompactionPauseMs); // each edit puts it off
    else if (!m_journalCompaction->isActive() || m_journalCompaction->interval() != 0)
        m_journalCompaction->start(0);
}

void TVKController::compactJournal()
{
    if (m_terminated || !m_journal || !m_journal->isOpen() || m_journal->recordCount() == 0)
        return;
    // A store that cannot be written now leaves the journal as it is; the next edit tries again.
    writeDataToDefaults();
}

void TVKController::journalEmptied()
{
    if (m_defaults)
        m_storedSize = QFileInfo(m_defaults->path()).size();
    if (m_journalCompaction)
        m_journalCompaction->stop();
    if (m_journal && m_journal->isOpen() && !m_journal->clear())
        setEditsUnprotected(m_journal->failure());
}

void TVKController::retryJournal()
{
    if (m_terminated || !m_journal)
        return;
    QString error;
    if (m_journalMustGoAside) {
        if (corvane::moveFileAside(m_journal->path(), &error, QDateTime::currentDateTime(),
                                   QStringLiteral("damaged"))
                .isNull()) {
            setEditsUnprotected(error);
            return;
        }
        m_journalMustGoAside = false;
    }
    if (!m_journal->open(&error)) {
        setEditsUnprotected(error);
        return;
    }
    // The edits made while the journal was closed are in no journal: the store takes them all,
    // and the journal starts again from it. Until the store can be written, a journal without
    // them would replay later edits over a configuration that lacks them, so it stays closed.
    m_quietStoreFailure = true;
    const bool stored = writeDataToDefaults();
    m_quietStoreFailure = false;
    if (!stored) {
        m_journal->close();
        setEditsUnprotected(m_storeFailure);
        return;
    }
    if (m_journal->isOpen())
        setEditsUnprotected(QString());
}

void TVKController::setEditsUnprotected(const QString& reason)
{
    if (reason == m_editsUnprotected)
        return;
    const bool wasUnprotected = !m_editsUnprotected.isEmpty();
    // Said once when the protection goes and once when it comes back, however often it is tried.
    if (!wasUnprotected)
        corvane::log(QStringLiteral("recovery journal: edits are not protected: %1").arg(reason));
    else if (reason.isEmpty())
        corvane::log(QStringLiteral("recovery journal: edits are protected again"));
    m_editsUnprotected = reason;
    if (!m_journalRetry) {
        m_journalRetry = new QTimer(this);
        m_journalRetry->setSingleShot(true);
        connect(m_journalRetry, &QTimer::timeout, this, [this] {
            retryJournal();
            if (!m_editsUnprotected.isEmpty() && !m_journalRetry->isActive()) {
                m_journalRetryMs = std::min(m_journalRetryMs * 2, kRetryLongestMs);
                m_journalRetry->start(m_journalRetryMs);
            }
        });
    }
    if (reason.isEmpty()) {
        m_journalRetry->stop();
    } else if (!wasUnprotected) {
        m_journalRetryMs = kRetryFirstMs;
        m_journalRetry->start(m_journalRetryMs);
    }
    Q_EMIT journalProtectionChanged();
}
