// The commands of the Keysets and Edit menus that act on whole keysets.
#include "app/TVKController.h"
#include "app/TVKIconUtils.h"
#include "app/TVKRecoveryJournal.h"
#include "core/FourCharCode.h"
#include "core/Log.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "model/KeysetFiles.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "service/TVK_PrivateMessenger.h"

#include <QAction>
#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>

namespace note = corvane::note;
using corvane::FourCharCode;
using corvane::PlistValue;

namespace {

const QString kPasteboardType = QStringLiteral("TVKKeysetPbType");
constexpr FourCharCode kNoSignature = corvane::fourCC("????");

bool isNoSignature(FourCharCode signature)
{
    return signature == 0 || signature == kNoSignature;
}

QString actionModeName(qint64 mode)
{
    switch (mode) {
    case corvane::ActionMode::Developer:
        return QStringLiteral("Developer Mode");
    case corvane::ActionMode::NativeMIDI:
        return QStringLiteral("Native MIDI");
    case corvane::ActionMode::Emulation:
        return QStringLiteral("Emulation");
    case corvane::ActionMode::RawEthernet:
        return QStringLiteral("Raw Ethernet");
    default:
        return QString();
    }
}

// Holds a keyset for an undo step; the step's operation is run once, then replaced.
using KeptKeyset = std::shared_ptr<std::unique_ptr<TVKKeyset>>;

KeptKeyset keep(std::unique_ptr<TVKKeyset> keyset)
{
    return std::make_shared<std::unique_ptr<TVKKeyset>>(std::move(keyset));
}

} // namespace

void TVKController::handleNewKeyset()
{
    if (!m_modelData)
        return;
    const std::optional<corvane::DesktopApplication> chosen =
        m_views.dialogs->chooseApplication(corvane::DesktopEntries::installedApplications());
    if (!chosen)
        return;
    // Desktop applications have no signature; they are known by their desktop file id.
    const FourCharCode signature = kNoSignature;
    const QString bundleID = chosen->id;
    const QString name = chosen->name;
    const int found = isNoSignature(signature) ? m_modelData->indexOfKeysetWithBundleID(bundleID)
                                               : m_modelData->indexOfKeysetWithSignature(signature);
    if (found >= 0) {
        m_views.dialogs->runAlert(
            {tr("Keyset Already Exists"),
             tr("A keyset for \"%1\" already exists in the list of active keysets").arg(name),
             {tr("OK")}});
        return;
    }
    const QByteArray icon = TVKIconUtils::defaultIconUtils().iconForBundle(*chosen, 32, 32);
    m_modelData->addKeysetWithName(name, signature, bundleID, icon);
    const qint64 index = m_modelData->numberOfKeysets() - 1;
    if (m_messenger)
        m_messenger->sendAddKeysetMessage(int(index), m_modelData->keysetAtIndex(int(index)));
    setSelectedKeyset(index);
    updateKeysetsMenu();
    notifyWithMessage(note::KeysetCountChange{});
}

void TVKController::handleExportKeyset()
{
    TVKKeyset* keyset = keysetAt(selectedKeyset());
    if (!keyset)
        return;
    const QString type = keysetFileType();
    const QString path =
        m_views.dialogs->runSavePanel(type, QStringLiteral("%1.%2").arg(keyset->name(), type));
    if (path.isEmpty())
        return;
    QString error;
    if (!corvane::writeKeysetFile(*keyset, path, &error)) {
        corvane::log(QStringLiteral("export of keyset failed: %1").arg(error));
        m_views.dialogs->runAlert({tr("The Keyset Could Not Be Exported"),
                                   tr("\"%1\" could not be written: %2").arg(path, error),
                                   {tr("OK")}});
    }
}

void TVKController::handleImportKeyset()
{
    if (!m_modelData)
        return;
    const QString path = m_views.dialogs->runOpenPanel({keysetFileType()});
    if (path.isEmpty())
        return;
    importKeysetFile(path);
}

QString TVKController::keysetArchiveProblem(const corvane::PlistReadResult& read)
{
    if (!read.ok)
        return read.error.toString();
    if (!read.value.isDict())
        return tr("it holds a list or a single value, not a keyset");
    return TVKModelData::archiveLimitExceeded(read.value);
}

void TVKController::importKeysetFile(const QString& path)
{
    if (!m_modelData)
        return;
    const corvane::PlistReadResult read = corvane::PlistCodec::readFile(path);
    QString reason = keysetArchiveProblem(read);
    std::unique_ptr<TVKKeyset> keyset;
    if (reason.isEmpty()) {
        keyset = makeKeysetFromArchive(read.value);
        if (!keyset)
            reason = tr("no keyset could be made of it");
    }
    if (!keyset) {
        corvane::log(QStringLiteral("handleImportKeyset exception name: %1 reason: %2")
                         .arg(QStringLiteral("TVKKeysetFileException"), reason));
        m_views.dialogs->runAlert(
            {tr("The Keyset Could Not Be Imported"),
             tr("\"%1\" is not a keyset file: %2").arg(QFileInfo(path).fileName(), reason),
             {tr("OK")}});
        return;
    }

    const int found = m_modelData->indexOfMatchingKeyset(*keyset);
    if (found >= 0) {
        const int button = m_views.dialogs->runAlert(
            {tr("Keyset Already Exists"),
             tr("A keyset for \"%1\" already exists in the list of active keysets")
                 .arg(keyset->name()),
             {tr("Replace Existing Keyset"), tr("Don't Replace Existing Keyset")}});
        if (button != 0)
            return;
        TVKKeyset* imported = keyset.get();
        m_modelData->ReplaceMatchingKeyset(std::move(keyset));
        setSelectedKeyset(found);
        updateKeysetsMenu();
        if (m_messenger)
            m_messenger->sendUpdateKeysetMessage(found, imported);
        return;
    }
    TVKKeyset* imported = keyset.get();
    m_modelData->addKeyset(std::move(keyset));
    const qint64 index = m_modelData->numberOfKeysets() - 1;
    if (m_messenger)
        m_messenger->sendAddKeysetMessage(int(index), imported);
    setSelectedKeyset(index);
    updateKeysetsMenu();
    notifyWithMessage(note::KeysetCountChange{});
}

void TVKController::handleCopyKeyset()
{
    TVKKeyset* keyset = keysetAt(selectedKeyset());
    if (!keyset)
        return;
    PlistValue dict = PlistValue::makeDict(6);
    keyset->writeTo(dict);
    auto* data = new QMimeData;
    data->setData(kPasteboardType, corvane::PlistCodec::write(dict, corvane::PlistFormat::Xml));
    QGuiApplication::clipboard()->setMimeData(data);
}

bool TVKController::clipboardHoldsKeyset()
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return false;
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data && data->hasFormat(kPasteboardType);
}

void TVKController::handlePasteKeyset()
{
    TVKKeyset* target = keysetAt(selectedKeyset());
    if (!target || target->locked())
        return;
    // Without a keyset on the clipboard there is nothing to paste: an empty archive would
    // silently wipe every layer of the keyset.
    if (!clipboardHoldsKeyset())
        return;
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    corvane::PlistReadResult read = corvane::PlistCodec::read(data->data(kPasteboardType));
    const QString reason = keysetArchiveProblem(read);
    if (!reason.isEmpty()) {
        corvane::log(QStringLiteral("paste of keyset refused: %1").arg(reason));
        m_views.dialogs->runAlert(
            {tr("The Keyset Could Not Be Pasted"),
             tr("The clipboard does not hold a usable keyset: %1").arg(reason),
             {tr("OK")}});
        return;
    }
    std::unique_ptr<TVKKeyset> pasted = makeKeysetFromArchive(read.value);
    if (!pasted)
        return;
    // Layers and actions come from the pasteboard; which application it serves does not.
    pasted->setName(target->name());
    pasted->setSignature(target->signature());
    pasted->setBundleID(target->hasBundleID() ? std::optional<QString>(target->bundleID())
                                              : std::nullopt);
    pasted->setEmulationMode(target->emulationMode());
    pasted->setIcon(target->icon());
    pasted->setTargetID(target->targetID());
    undoableSwapKeyset(std::move(pasted), selectedKeyset(), tr("Paste Keyset"));
}

void TVKController::handleClearKeyset()
{
    TVKKeyset* target = keysetAt(selectedKeyset());
    if (!target)
        return;
    std::unique_ptr<TVKKeyset> cleared =
        m_modelData->createKeysetWithName(target->name(), target->signature(), target->bundleID());
    cleared->setEmulationMode(target->emulationMode());
    undoableSwapKeyset(std::move(cleared), selectedKeyset(), tr("Clear Keyset"));
}

void TVKController::undoableSwapKeyset(std::unique_ptr<TVKKeyset> keyset, qint64 index,
                                       const QString& actionName)
{
    if (!m_modelData || !keyset)
        return;
    TVKKeyset* incoming = keyset.get();
    std::unique_ptr<TVKKeyset> previous =
        m_modelData->replaceKeysetAtIndex(int(index), std::move(keyset));
    if (previous.get() == incoming)
        return; // no keyset at that index: nothing was swapped
    notifyKeysetSummaryNeedsUpdate();
    notifyOfRemoteControlChange(selectedControl(), selectedGroup(), true);
    setSelectedKeyset(index);
    updateKeysetsMenu();
    m_undoManager.registerUndo(
        [this, kept = keep(std::move(previous)), index, actionName] {
            undoableSwapKeyset(std::move(*kept), index, actionName);
        },
        actionName, index);
    if (m_messenger)
        m_messenger->sendUpdateKeysetMessage(int(index), incoming);
}

void TVKController::handleDeleteKeyset()
{
    TVKKeyset* keyset = keysetAt(selectedKeyset());
    if (!keyset || selectedKeyset() == 0)
        return;
    const int button = m_views.dialogs->runAlert(
        {tr("Delete Keyset?"),
         tr("Do you really want to delete the keyset \"%1\"?").arg(keyset->name()),
         {tr("Delete"), tr("Don't Delete")}});
    if (button != 0)
        return;
    // The service may have moved the selection while the alert was open: the keyset asked
    // about is the one deleted.
    if (keysetAt(selectedKeyset()) != keyset) {
        int now = -1;
        for (int i = 0; i < m_modelData->numberOfKeysets(); ++i) {
            if (m_modelData->keysetAtIndex(i) == keyset)
                now = i;
        }
        if (now <= 0)
            return;
        setSelectedKeyset(now);
    }
    undoableDeleteKeyset(selectedKeyset());
}

void TVKController::undoableDeleteKeyset(qint64 index)
{
    if (!m_modelData)
        return;
    // The model deletes its current keyset, which is the one at the index.
    m_modelData->setSelectedKeysetIndex(int(index));
    std::unique_ptr<TVKKeyset> deleted = m_modelData->deleteCurrentKeyset();
    if (m_messenger)
        m_messenger->sendDeleteKeysetMessage(int(index));
    qint64 selection = index;
    if (selection >= m_modelData->numberOfKeysets())
        selection -= 1;
    setSelectedKeyset(selection);
    updateKeysetsMenu();
    m_undoManager.registerUndo([this, kept = keep(std::move(deleted)),
                                index] { undoableRestoreKeyset(std::move(*kept), index); },
                               tr("Delete Keyset"), TVKUndoManager::kNoKeyset);
    notifyWithMessage(note::KeysetCountChange{});
}

void TVKController::undoableRestoreKeyset(std::unique_ptr<TVKKeyset> keyset, qint64 index)
{
    if (!m_modelData || !keyset)
        return;
    TVKKeyset* restored = keyset.get();
    // Stores the keyset at the index (see insertKeyset); the service does the same with "TAdK".
    m_modelData->insertKeyset(std::move(keyset), int(index));
    if (m_messenger)
        m_messenger->sendAddKeysetMessage(int(index), restored);
    setSelectedKeyset(index);
    updateKeysetsMenu();
    m_undoManager.registerUndo([this, index] { undoableDeleteKeyset(index); }, tr("Delete Keyset"),
                               index);
}

void TVKController::handleLockUnlockMenu()
{
    const TVKKeyset* keyset = keysetAt(selectedKeyset());
    setKeysetLockState(!(keyset && keyset->locked()));
}

void TVKController::setKeysetLockState(bool locked)
{
    if (TVKKeyset* keyset = keysetAt(selectedKeyset()); keyset && keyset->locked() != locked) {
        keyset->setLocked(locked);
        journalChange(TVKRecoveryJournal::LockState, selectedKeyset(), locked ? 1 : 0);
    }
    m_views.windows->setLockButtonState(locked);
    notifyWithMessage(note::LockStateChange{locked});
    validateMenuItems();
}

void TVKController::handleLockUnlockButton(bool buttonState)
{
    if (TVKKeyset* keyset = keysetAt(selectedKeyset()); keyset && keyset->locked() != buttonState) {
        keyset->setLocked(buttonState);
        journalChange(TVKRecoveryJournal::LockState, selectedKeyset(), buttonState ? 1 : 0);
    }
    notifyWithMessage(note::LockStateChange{buttonState});
    validateMenuItems();
}

void TVKController::handleOwnerMenu()
{
    if (!m_modelData)
        return;
    if (m_modelData->controlSurfaceHasOwnerKeyset()) {
        m_modelData->setHasOwnerKeyset(false, std::nullopt, 0);
        if (m_messenger)
            m_messenger->sendOwnerKeysetChange(false, QString(), 0);
        return;
    }
    const TVKKeyset* keyset = keysetAt(selectedKeyset());
    if (!keyset)
        return;
    m_modelData->setHasOwnerKeyset(
        true,
        keyset->bundleID().isEmpty() ? std::nullopt : std::optional<QString>(keyset->bundleID()),
        keyset->signature());
    if (m_messenger)
        m_messenger->sendOwnerKeysetChange(true, keyset->bundleID(), keyset->signature());
}

void TVKController::handleSetOneTouchRecord()
{
    if (TVKKeyset* keyset = keysetAt(selectedKeyset())) {
        keyset->setOneTouchRecord(!keyset->oneTouchRecord());
        journalChange(TVKRecoveryJournal::OneTouchRecord, selectedKeyset(),
                      keyset->oneTouchRecord() ? 1 : 0);
    }
}

void TVKController::handleDefaultOneTouchRecord()
{
    if (m_modelData) {
        m_modelData->setOneTouchRecordDefault(!m_modelData->oneTouchRecordDefault());
        journalChange(TVKRecoveryJournal::OneTouchRecordDefault, selectedKeyset(),
                      m_modelData->oneTouchRecordDefault() ? 1 : 0);
    }
}

void TVKController::handleEmulationMenu(qint64 mode)
{
    TVKKeyset* keyset = keysetAt(selectedKeyset());
    if (!keyset)
        return;
    const auto chosen = corvane::EmulationMode(mode);
    if (chosen == corvane::EmulationMode::None &&
        keyset->emulationMode() != corvane::EmulationMode::None)
        undoableSwapKeyset(keyset->copyWithoutEmulation(), selectedKeyset(),
                           tr("Disable Emulation"));
    else
        keyset->setEmulationMode(chosen);
    notifyWithMessage(note::EmulChg{});
    if (m_messenger)
        m_messenger->sendEmulationModeMessage(mode);
    validateMenuItems();
}

void TVKController::handleSetAllMenuItems(qint64 mode)
{
    const TVKKeyset* keyset = keysetAt(selectedKeyset());
    if (!keyset)
        return;
    std::unique_ptr<TVKKeyset> changed = m_modelData->createKeysetWithPropertiesOfKeyset(*keyset);
    changed->setEmulationMode(keyset->emulationMode());
    changed->setAllControlsToActionMode(int(mode));
    undoableSwapKeyset(std::move(changed), selectedKeyset(),
                       tr("Set All Controls to %1").arg(actionModeName(mode)));
}

void TVKController::handleKeysetsMenu(QAction* item)
{
    if (!m_modelData || !item)
        return;
    const FourCharCode tag = FourCharCode(TVKMenuItems::tag(item));
    const int index = tag == kNoSignature ? m_modelData->indexOfKeysetWithName(item->text())
                                          : m_modelData->indexOfKeysetWithSignature(tag);
    setSelectedKeyset(index);
}

void TVKController::updateKeysetsMenu()
{
    if (!m_modelData)
        return;
    const qsizetype items = qsizetype(m_keysetsMenu.size());
    const qsizetype keysets = m_modelData->numberOfKeysets();
    const qsizetype retitled = std::min(items - 1, keysets);
    const auto describe = [](QAction* item, const TVKKeyset* keyset) {
        item->setText(keyset->name());
        const FourCharCode signature = keyset->signature();
        TVKMenuItems::setCommand(item, TVKMenuCommand::HandleKeysetsMenu,
                                 signature == 0 ? kNoSignature : signature);
        item->setShortcut(QKeySequence());
        item->setEnabled(true);
        item->setCheckable(true);
    };
    for (qsizetype i = 2; i <= retitled; ++i)
        describe(m_keysetsMenu[size_t(i)], m_modelData->keysetAtIndex(int(i - 1)));
    if (keysets < items - 1) {
        for (qsizetype removed = 0; removed < items - 1 - retitled; ++removed) {
            delete m_keysetsMenu[size_t(retitled + 1)];
            m_keysetsMenu.erase(m_keysetsMenu.begin() + retitled + 1);
        }
    }
    if (keysets >= items) {
        for (qsizetype k = items - 1; k < keysets; ++k) {
            auto* item = new QAction(this);
            describe(item, m_modelData->keysetAtIndex(int(k)));
            QObject::connect(item, &QAction::triggered, this, [this, item] { perform(item); });
            m_keysetsMenu.push_back(item);
        }
    }
    Q_EMIT keysetsMenuChanged();
}
