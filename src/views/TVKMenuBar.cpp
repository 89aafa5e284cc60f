#include "views/TVKMenuBar.h"

#include "app/CorvaneController.h"
#include "app/TVKMenuCommand.h"
#include "model/EmulationMode.h"
#include "model/TVKControl.h"

#include <QApplication>

using Command = TVKMenuCommand;

TVKMenuBar::TVKMenuBar(CorvaneController& controller, const std::vector<QAction*>& viewItems,
                       const std::vector<QAction*>& windowItems,
                       const std::vector<QAction*>& helpItems, std::function<void()> quit,
                       QWidget* parent)
    : QMenuBar(parent), m_controller(controller)
{
    const auto item = [&controller](Command command, qint64 tag = 0) {
        return controller.menuItem(command, tag);
    };
    const auto validating = [this](QMenu* menu) {
        connect(menu, &QMenu::aboutToShow, this, [this] { m_controller.validateMenuItems(); });
        return menu;
    };

    QMenu* file = validating(addMenu(tr("&File")));
    file->addAction(item(Command::HandleNewKeyset));
    file->addSeparator();
    file->addAction(item(Command::HandleImportKeyset));
    file->addAction(item(Command::HandleExportKeyset));
    file->addAction(item(Command::HandleExportAllKeysets));
    file->addSeparator();
    file->addAction(item(Command::HandleExportKeysetSheet));
    file->addAction(item(Command::HandlePrintKeyset));
    file->addSeparator();
    file->addAction(item(Command::HandleInstall));
    file->addAction(item(Command::HandleUninstall));
    file->addSeparator();
    QAction* quitItem = file->addAction(tr("&Quit"));
    // Some platform themes have no standard Quit key; Ctrl+Q always quits.
    QList<QKeySequence> quitKeys = QKeySequence::keyBindings(QKeySequence::Quit);
    const QKeySequence ctrlQ(Qt::CTRL | Qt::Key_Q);
    if (!quitKeys.contains(ctrlQ))
        quitKeys.append(ctrlQ);
    quitItem->setShortcuts(quitKeys);
    quitItem->setMenuRole(QAction::QuitRole);
    connect(quitItem, &QAction::triggered, this, [quit] { quit(); });

    QMenu* edit = validating(addMenu(tr("&Edit")));
    edit->addAction(controller.undoMenuItem());
    edit->addAction(controller.redoMenuItem());
    edit->addSeparator();
    // The action items say why they are greyed.
    edit->setToolTipsVisible(true);
    for (const Command command :
         {Command::HandleCopyAction, Command::HandlePasteAction, Command::HandleClearAction})
        edit->addAction(item(command));
    edit->addSeparator();
    edit->addAction(item(Command::HandleCopyKeyset));
    edit->addAction(item(Command::HandlePasteKeyset));
    edit->addAction(item(Command::HandleClearKeyset));
    edit->addAction(item(Command::HandleDeleteKeyset));
    edit->addSeparator();
    QMenu* setAll = edit->addMenu(tr("Set All Controls To"));
    for (int mode = corvane::ActionMode::Developer; mode <= corvane::ActionMode::RawEthernet;
         ++mode)
        setAll->addAction(item(Command::HandleSetAllMenuItems, mode));
    edit->addSeparator();
    edit->addAction(item(Command::HandleLockUnlockMenu));

    QMenu* view = addMenu(tr("&View"));
    for (QAction* extra : viewItems)
        view->addAction(extra);

    m_keysets = validating(addMenu(tr("&Keysets")));
    rebuildKeysetsMenu();
    connect(&controller, &TVKController::keysetsMenuChanged, this, &TVKMenuBar::rebuildKeysetsMenu);

    QMenu* surface = validating(addMenu(tr("&Surface")));
    for (const corvane::EmulationMode mode :
         {corvane::EmulationMode::None, corvane::EmulationMode::A, corvane::EmulationMode::B,
          corvane::EmulationMode::C})
        surface->addAction(item(Command::HandleEmulationMenu, qint64(mode)));
    surface->addSeparator();
    surface->addAction(item(Command::HandleOwnerMenu));
    surface->addAction(item(Command::HandleSetOneTouchRecord));
    surface->addAction(item(Command::HandleDefaultOneTouchRecord));
    surface->addAction(item(Command::ReverseRBButtons));
    surface->addSeparator();
    surface->addAction(item(Command::HandleEndCapture));
    surface->addAction(controller.connectionMenuItem());
    surface->addAction(item(Command::StartBackgroundService));
    surface->addSeparator();
    surface->addAction(item(Command::ShowAppPortPanel));
    surface->addAction(item(Command::ShowPreferencePanel));

    QMenu* window = validating(addMenu(tr("&Window")));
    // The expander items say why they are greyed.
    window->setToolTipsVisible(true);
    window->addAction(item(Command::ShowMainWindow));
    window->addAction(item(Command::ShowSummary));
    window->addSeparator();
    window->addAction(item(Command::ShowExpander));
    window->addAction(item(Command::ShowTLW));
    window->addAction(item(Command::ShowTLW2));
    window->addAction(item(Command::ShowNV));
    for (QAction* extra : windowItems)
        window->addAction(extra);

    QMenu* help = validating(addMenu(tr("&Help")));
    for (QAction* extra : helpItems)
        help->addAction(extra);
    if (!helpItems.empty())
        help->addSeparator();
    help->addAction(item(Command::ShowAboutBox));
    m_helpMenu = help->menuAction();
}

void TVKMenuBar::rebuildKeysetsMenu()
{
    m_keysets->clear();
    for (QAction* keysetItem : m_controller.keysetsMenu())
        m_keysets->addAction(keysetItem);
}

void TVKMenuBar::showCorvaneNVMenu(QMenu* menu, bool shown)
{
    if (shown)
        insertMenu(m_helpMenu, menu);
    else
        removeAction(menu->menuAction());
}
