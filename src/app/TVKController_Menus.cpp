// The controller's menu items: made once, validated (enabled, checked, titled) whenever a menu
// is about to show or the state behind them changes, and performed by command.
#include "app/TVKController.h"
#include "core/FourCharCode.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"

#include <QAction>
#include <QActionGroup>
#include <QKeySequence>
#include <QUndoStack>

using Command = TVKMenuCommand;

namespace {

constexpr corvane::FourCharCode kNoSignature = corvane::fourCC("????");

} // namespace

QAction* TVKController::addMenuItem(TVKMenuCommand command, const QString& title, qint64 tag)
{
    auto* item = new QAction(title, this);
    TVKMenuItems::setCommand(item, command, tag);
    QObject::connect(item, &QAction::triggered, this, [this, item] { perform(item); });
    m_menuItems.push_back(item);
    return item;
}

void TVKController::makeMenuItems()
{
    addMenuItem(Command::HandleNewKeyset, tr("New Keyset for Application…"))
        ->setShortcut(QKeySequence::New);
    addMenuItem(Command::HandleImportKeyset, tr("Import Keyset…"))->setShortcut(QKeySequence::Open);
    addMenuItem(Command::HandleExportKeyset, tr("Export Keyset…"))
        ->setShortcut(QKeySequence::SaveAs);
    makeSheetMenuItems();
    addMenuItem(Command::HandleExportAllKeysets, tr("Export All Keysets…"));
    addMenuItem(Command::HandleInstall, tr("Install…"));
    addMenuItem(Command::HandleUninstall, tr("Uninstall…"));
    addMenuItem(Command::HandleCopyKeyset, tr("Copy keyset"));
    addMenuItem(Command::HandlePasteKeyset, tr("Paste to keyset"));
    addMenuItem(Command::HandleClearKeyset, tr("Clear keyset"));
    addMenuItem(Command::HandleDeleteKeyset, tr("Delete keyset"));
    addMenuItem(Command::HandleLockUnlockMenu, tr("Lock keyset"))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_L));
    addMenuItem(Command::HandleOwnerMenu, tr("Set as Control Surface Owner"));
    addMenuItem(Command::HandleSetOneTouchRecord, tr("One-Touch Record"))->setCheckable(true);
    addMenuItem(Command::HandleDefaultOneTouchRecord, tr("One-Touch Record by Default"))
        ->setCheckable(true);
    const QString emulationTitles[] = {tr("No Emulation"), tr("Emulation Mode A"),
                                       tr("Emulation Mode B"), tr("Emulation Mode C")};
    // A keyset has one emulation mode: the items are one exclusive group and show radio marks.
    auto* emulationModes = new QActionGroup(this);
    emulationModes->setExclusive(true);
    for (int mode = 0; mode < 4; ++mode) {
        QAction* modeItem = addMenuItem(Command::HandleEmulationMenu, emulationTitles[mode], mode);
        modeItem->setCheckable(true);
        emulationModes->addAction(modeItem);
    }
    const QString setAllTitles[] = {
        tr("Set All Controls to Developer Mode"), tr("Set All Controls to Native MIDI"),
        tr("Set All Controls to Emulation"), tr("Set All Controls to Raw Ethernet")};
    for (int mode = 0; mode < 4; ++mode)
        addMenuItem(Command::HandleSetAllMenuItems, setAllTitles[mode], mode);
    addMenuItem(Command::HandleEndCapture, tr("End Mouse Capture"));
    addMenuItem(Command::ShowInspector, tr("Inspector"))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_I));
    addMenuItem(Command::ShowSummary, tr("Keyset Summary"))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_K));
    addMenuItem(Command::ShowMainWindow, tr("Corvane RS"))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_1));
    for (const Command checked : {Command::ShowSummary, Command::ShowMainWindow})
        menuItem(checked)->setCheckable(true);
    addMenuItem(Command::ShowAboutBox, tr("About Corvane"))->setMenuRole(QAction::AboutRole);
    addMenuItem(Command::ShowPreferencePanel, tr("Preferences…"))
        ->setShortcut(QKeySequence::Preferences);
    addMenuItem(Command::ShowAppPortPanel, tr("Set Ethernet Port for Keyset…"));
    m_connectionMenu = addMenuItem(Command::ConnectionIndicator, tr("Surface"));
    m_connectionMenuItem = addMenuItem(Command::AttemptReconnect, tr("reconnect"));
    addMenuItem(Command::StartBackgroundService, tr("Start Background Service"));
    makeActionCommandItems();

    // Undo and Redo follow the stack, and refuse a step whose keyset is locked.
    m_undoManager.setLockTest([this](qint64 index) {
        const TVKKeyset* keyset = keysetAt(index);
        return keyset && keyset->locked();
    });
    // The desktop's keys, and Ctrl+Z / Ctrl+Shift+Z whatever the platform theme offers.
    const auto keys = [](QKeySequence::StandardKey standard, const QKeySequence& own) {
        QList<QKeySequence> all = QKeySequence::keyBindings(standard);
        if (!all.contains(own))
            all.append(own);
        return all;
    };
    m_undoItem = new QAction(tr("Undo"), this);
    m_undoItem->setShortcuts(keys(QKeySequence::Undo, QKeySequence(Qt::CTRL | Qt::Key_Z)));
    QObject::connect(m_undoItem, &QAction::triggered, this, [this] { m_undoManager.undo(); });
    m_redoItem = new QAction(tr("Redo"), this);
    m_redoItem->setShortcuts(
        keys(QKeySequence::Redo, QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)));
    QObject::connect(m_redoItem, &QAction::triggered, this, [this] { m_undoManager.redo(); });
    QObject::connect(&m_undoManager.stack(), &QUndoStack::indexChanged, this,
                     [this] { validateUndoItems(); });
    validateUndoItems();

    // Item 0 of the Keysets menu is fixed; item 1 stands for keyset 0 and keeps its title.
    auto* summary = new QAction(tr("Keyset Summary…"), this);
    TVKMenuItems::setCommand(summary, Command::ShowSummary);
    QObject::connect(summary, &QAction::triggered, this, [this] { showSummary(); });
    auto* first = new QAction(tr("Default"), this);
    TVKMenuItems::setCommand(first, Command::HandleKeysetsMenu, corvane::fourCC("----"));
    first->setCheckable(true);
    QObject::connect(first, &QAction::triggered, this, [this, first] { perform(first); });
    m_keysetsMenu = {summary, first};
}

QAction* TVKController::menuItem(TVKMenuCommand command, qint64 tag) const
{
    for (QAction* item : m_menuItems) {
        if (TVKMenuItems::command(item) == command && TVKMenuItems::tag(item) == tag)
            return item;
    }
    return nullptr;
}

void TVKController::validateUndoItems()
{
    const auto validate = [this](QAction* item, const QString& verb, bool possible, bool blocked,
                                 const QString& name, qint64 keysetIndex) {
        QString text = name.isEmpty() ? verb : tr("%1 %2").arg(verb, name);
        QString why;
        if (blocked) {
            const TVKKeyset* keyset = keysetAt(keysetIndex);
            const QString keysetName = keyset ? keyset->name() : QString();
            text = tr("%1 (keyset “%2” is locked)").arg(text, keysetName);
            why = tr("The keyset “%1” is locked. Unlock it to %2 this step.")
                      .arg(keysetName, verb.toLower());
        }
        item->setText(text);
        item->setEnabled(possible);
        item->setToolTip(why.isEmpty() ? text : why);
        item->setStatusTip(why);
    };
    validate(m_undoItem, tr("Undo"), m_undoManager.canUndo(), m_undoManager.undoBlockedByLock(),
             m_undoManager.undoActionName(), m_undoManager.undoKeyset());
    validate(m_redoItem, tr("Redo"), m_undoManager.canRedo(), m_undoManager.redoBlockedByLock(),
             m_undoManager.redoActionName(), m_undoManager.redoKeyset());
}

void TVKController::validateMenuItems()
{
    validateUndoItems();
    for (QAction* item : m_menuItems)
        item->setEnabled(validateMenuItem(item));
    for (QAction* item : m_keysetsMenu) {
        if (TVKMenuItems::command(item) == Command::HandleKeysetsMenu)
            item->setEnabled(validateMenuItem(item));
    }
}

void TVKController::validateTitledKeysetItem(QAction* item, const QString& verb, bool enabled)
{
    const TVKKeyset* keyset = keysetAt(selectedKeyset());
    item->setText(QStringLiteral("%1 %2 keyset").arg(verb, keyset ? keyset->name() : QString()));
    item->setEnabled(enabled);
}

bool TVKController::validateMenuItem(QAction* item)
{
    const TVKKeyset* keyset = keysetAt(selectedKeyset());
    const bool locked = keyset && keyset->locked();
    const qint64 tag = TVKMenuItems::tag(item);
    switch (TVKMenuItems::command(item)) {
    case Command::ShowInspector:
        return !m_views.windows->exists(TVKWindow::Inspector) ||
               !m_views.windows->isVisible(TVKWindow::Inspector);
    case Command::HandleEmulationMenu:
        item->setChecked(keyset && qint64(keyset->emulationMode()) == tag);
        return !locked;
    case Command::HandleSetAllMenuItems:
        if (locked)
            return false;
        if (tag == corvane::ActionMode::RawEthernet)
            return keyset && keyset->connectViaEthernet();
        if (tag == corvane::ActionMode::Emulation)
            return keyset && keyset->emulationMode() != corvane::EmulationMode::None &&
                   keyset->emulationMode() != corvane::EmulationMode::C;
        return true;
    case Command::HandleKeysetsMenu: {
        const auto signature = corvane::FourCharCode(tag);
        if (signature != kNoSignature) {
            item->setChecked(keyset && keyset->signature() == signature);
        } else if (keyset && keyset->signature() != 0 && keyset->signature() != kNoSignature) {
            item->setChecked(false);
        } else {
            // The title must be the very keyset name, not an equal text: QString shares its
            // data, so the same data means the same name.
            item->setChecked(keyset && item->text().isSharedWith(keyset->name()));
        }
        return true;
    }
    case Command::HandleEndCapture:
        return m_capturing && !locked;
    case Command::HandleExportKeyset:
        return selectedKeyset() != 0;
    case Command::HandlePrintKeyset:
    case Command::HandleExportKeysetSheet:
        return keyset != nullptr;
    case Command::HandleExportAllKeysets:
        return m_modelData && m_modelData->numberOfKeysets() > 1;
    case Command::HandleSetOneTouchRecord:
        item->setChecked(keyset && keyset->oneTouchRecord());
        return true;
    case Command::HandleDefaultOneTouchRecord:
        item->setChecked(m_modelData && m_modelData->oneTouchRecordDefault());
        return !locked;
    case Command::ShowAppPortPanel:
        item->setText(
            tr("Set Ethernet Port for %1 Keyset").arg(keyset ? keyset->name() : QString()));
        return true;
    case Command::ShowSummary:
        item->setChecked(m_views.windows->exists(TVKWindow::Summary) &&
                         m_views.windows->isKey(TVKWindow::Summary));
        return true;
    case Command::ShowMainWindow:
        item->setChecked(m_views.windows->exists(TVKWindow::Main) &&
                         m_views.windows->isKey(TVKWindow::Main));
        return true;
    case Command::AttemptReconnect:
        return serviceState() != TVKServiceState::SurfaceConnected;
    case Command::StartBackgroundService:
        return serviceState() == TVKServiceState::NoService && !m_serviceStarting;
    case Command::HandleLockUnlockMenu:
        item->setText(QStringLiteral("%1ock %2 keyset")
                          .arg(locked ? QStringLiteral("Unl") : QStringLiteral("L"),
                               keyset ? keyset->name() : QString()));
        return true;
    case Command::HandlePasteKeyset: {
        const bool enabled = !locked && clipboardHoldsKeyset();
        validateTitledKeysetItem(item, QStringLiteral("Paste to"), enabled);
        return enabled;
    }
    case Command::HandleClearKeyset:
        validateTitledKeysetItem(item, QStringLiteral("Clear"), !locked);
        return !locked;
    case Command::HandleDeleteKeyset:
        validateTitledKeysetItem(item, QStringLiteral("Delete"), selectedKeyset() != 0 && !locked);
        return selectedKeyset() != 0 && !locked;
    case Command::HandleCopyKeyset:
        validateTitledKeysetItem(item, QStringLiteral("Copy"), true);
        return true;
    case Command::HandleOwnerMenu: {
        if (!m_modelData)
            return false;
        if (!m_modelData->controlSurfaceHasOwnerKeyset()) {
            item->setText(QStringLiteral("%1 %2 as Control Surface Owner")
                              .arg(QStringLiteral("Set"), keyset ? keyset->name() : QString()));
            return selectedKeyset() != 0;
        }
        // An owner without a bundle identifier is found by its signature alone.
        int owner = !m_modelData->ownerKeysetBundleID().isEmpty()
                        ? m_modelData->indexOfKeysetWithBundleID(m_modelData->ownerKeysetBundleID())
                        : -1;
        if (owner < 0)
            owner = m_modelData->indexOfKeysetWithSignature(m_modelData->ownerKeysetSignature());
        if (owner < 0)
            return false;
        item->setText(
            QStringLiteral("%1 %2 as Control Surface Owner")
                .arg(QStringLiteral("Remove"), m_modelData->keysetAtIndex(owner)->name()));
        return true;
    }
    case Command::ConnectionIndicator:
        return true;
    case Command::HandleCopyAction:
    case Command::HandlePasteAction:
    case Command::HandleClearAction:
        return validateActionCommandItem(item);
    default:
        return true;
    }
}

void TVKController::perform(QAction* item)
{
    const qint64 tag = TVKMenuItems::tag(item);
    switch (TVKMenuItems::command(item)) {
    case Command::ShowInspector:
        showInspector();
        break;
    case Command::ShowSummary:
        showSummary();
        break;
    case Command::ShowMainWindow:
        showMainWindow();
        break;
    case Command::ShowAboutBox:
        showAboutBox();
        break;
    case Command::ShowPreferencePanel:
        showPreferencePanel();
        break;
    case Command::ShowAppPortPanel:
        showAppPortPanel();
        break;
    case Command::HandleNewKeyset:
        handleNewKeyset();
        break;
    case Command::HandleImportKeyset:
        handleImportKeyset();
        break;
    case Command::HandleInstall:
        handleInstall();
        break;
    case Command::HandleUninstall:
        handleUninstall();
        break;
    case Command::HandleExportKeyset:
        handleExportKeyset();
        break;
    case Command::HandlePrintKeyset:
        handlePrintKeyset();
        break;
    case Command::HandleExportKeysetSheet:
        handleExportKeysetSheet();
        break;
    case Command::HandleExportAllKeysets:
        handleExportAllKeysets();
        break;
    case Command::HandleCopyKeyset:
        handleCopyKeyset();
        break;
    case Command::HandlePasteKeyset:
        handlePasteKeyset();
        break;
    case Command::HandleClearKeyset:
        handleClearKeyset();
        break;
    case Command::HandleDeleteKeyset:
        handleDeleteKeyset();
        break;
    case Command::HandleLockUnlockMenu:
        handleLockUnlockMenu();
        break;
    case Command::HandleOwnerMenu:
        handleOwnerMenu();
        break;
    case Command::HandleSetOneTouchRecord:
        handleSetOneTouchRecord();
        break;
    case Command::HandleDefaultOneTouchRecord:
        handleDefaultOneTouchRecord();
        break;
    case Command::HandleEmulationMenu:
        handleEmulationMenu(tag);
        break;
    case Command::HandleSetAllMenuItems:
        handleSetAllMenuItems(tag);
        break;
    case Command::HandleKeysetsMenu:
        handleKeysetsMenu(item);
        break;
    case Command::HandleEndCapture:
        handleEndCapture();
        break;
    case Command::AttemptReconnect:
        attemptReconnect();
        break;
    case Command::StartBackgroundService:
        startBackgroundService();
        break;
    case Command::HandleCopyAction:
        handleCopyAction();
        break;
    case Command::HandlePasteAction:
        handlePasteAction();
        break;
    case Command::HandleClearAction:
        handleClearAction();
        break;
    default:
        break;
    }
    validateMenuItems();
}
