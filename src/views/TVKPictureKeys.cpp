#include "views/TVKPictureKeys.h"

#include "app/TVKController.h"
#include "app/TVKMenuCommand.h"

#include <QAction>
#include <QKeySequence>
#include <QMainWindow>
#include <QShortcut>
#include <QStatusBar>

namespace {

// Long enough to be read; the status line then shows the selection again.
constexpr int kRefusalShownMs = 8000;

void run(QWidget* picture, TVKMenuCommand command)
{
    TVKController* controller = TVKController::c();
    if (!controller)
        return;
    controller->validateMenuItems();
    QAction* item = controller->menuItem(command);
    if (!item)
        return;
    if (item->isEnabled()) {
        item->trigger();
        return;
    }
    if (auto* window = qobject_cast<QMainWindow*>(picture->window()))
        window->statusBar()->showMessage(item->statusTip(), kRefusalShownMs);
}

} // namespace

namespace TVKPictureKeys {

void install(QWidget* picture)
{
    const std::pair<QKeySequence::StandardKey, TVKMenuCommand> keys[] = {
        {QKeySequence::Copy, TVKMenuCommand::HandleCopyAction},
        {QKeySequence::Paste, TVKMenuCommand::HandlePasteAction},
        {QKeySequence::Delete, TVKMenuCommand::HandleClearAction}};
    for (const auto& [key, command] : keys) {
        auto* shortcut = new QShortcut(key, picture);
        shortcut->setContext(Qt::WidgetShortcut);
        QObject::connect(shortcut, &QShortcut::activated, picture,
                         [picture, command = command] { run(picture, command); });
    }
}

} // namespace TVKPictureKeys
