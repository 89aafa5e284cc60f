// The recovery journal as the controller keeps it: every edit of the user's goes in; once the
// journal has grown as large as the stored configuration and the edits pause, it is compacted into
// one snapshot of the configuration, so that it stays short and a crash costs little to recover;
// and a journal that cannot be written (a full disk) is made writable again as soon as it can be,
// the user being told meanwhile that the edits are not protected.
//
// Compacting writes a snapshot, not the store: a service reads the store when it starts, and the
// application brings a returning service in step from the store it last wrote, so the store
// changes only when the application saves (on quit, when the port sheet closes).
#include "app/TVKController.h"
#include "app/TVKRecoveryJournal.h"
#include "core/Log.h"
#include "core/MoveAside.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/TVKModelData.h"
#include "service/ConfigurationEdits.h"
#include "service/TVK_MessageSpecs.h"

#include <QDateTime>
#include <QFileInfo>
#include <QTimer>
#include <algorithm>

namespace key = corvane::key;
using corvane::PlistValue;

namespace {

// The journal is compacted once it holds this many records, or as many bytes as the store (at
// least kCompactionMinBytes), beyond its last snapshot: replaying more would cost more than
// reading a snapshot, and writing one per snapshot's worth of journal at most doubles what is
// written to the disk.
constexpr qint64 kCompactionRecords = 1000;
constexpr qint64 kCompactionMinBytes = 1 << 20;
// Compacted when the edits pause for this long, never inside an edit or a touch; a journal twice
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
    ++m_editsSinceStored;
    // A journal that is not open is being tried again; the edit is in the model and the service,
    // and the snapshot that opens the journal again will hold it.
    if (!m_journal || !m_journal->isOpen())
        return;
    if (!m_journal->append(id, int(keyset), body)) {
        setEditsUnprotected(m_journal->failure());
        return;
    }
    const qint64 byteLimit = std::max(kCompactionMinBytes, m_storedSize);
    const qint64 records = m_journal->recordCount() - m_journal->baseRecords();
    const qint64 bytes = m_journal->size() - m_journal->baseSize();
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

bool TVKController::writeJournalSnapshot(QString* error)
{
    if (!m_journal || !m_modelData)
        return false;
    PlistValue snapshot = PlistValue::makeDict(2);
    PlistValue configuration = PlistValue::makeDict();
    m_modelData->writeTo(configuration);
    snapshot.insert(key::ModelData, std::move(configuration));
    snapshot.insert(key::Count, PlistValue(m_editsSinceStored));
    return m_journal->compact(corvane::PlistCodec::write(snapshot, corvane::PlistFormat::Binary),
                              error);
}

void TVKController::compactJournal()
{
    if (m_terminated || !m_journal || !m_journal->isOpen() ||
        m_journal->recordCount() == m_journal->baseRecords())
        return;
    // A journal that cannot be compacted now stays as it is; the next edit tries again.
    QString error;
    if (!writeJournalSnapshot(&error))
        corvane::log(QStringLiteral("recovery journal not compacted: %1").arg(error));
}

void TVKController::journalEmptied()
{
    m_editsSinceStored = 0;
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
    // The edits made while the journal was closed are in no journal: a snapshot takes them all,
    // and the journal goes on from it.
    if (!writeJournalSnapshot(&error)) {
        setEditsUnprotected(error);
        return;
    }
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
