// Edit → Copy, Paste and Clear Action: one control's action through the clipboard. Paste and
// Clear are control edits like the inspector's, through the same undoable primitives, so the
// service hears of them as it hears of every edit.
#include "actions/ActionClipboard.h"
#include "actions/ActionFit.h"
#include "actions/TVKAction.h"
#include "actions/TVKNULLAction.h"
#include "actions/TVKStandardActionTypes.h"
#include "app/TVKController.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QKeySequence>
#include <QMimeData>
#include <QScopedValueRollback>

using Command = TVKMenuCommand;
namespace ActionClipboard = corvane::ActionClipboard;

namespace {

QClipboard* clipboard()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance())
               ? QGuiApplication::clipboard()
               : nullptr;
}

ActionClipboard::Content clipboardAction()
{
    const QClipboard* board = clipboard();
    return ActionClipboard::read(board ? board->mimeData() : nullptr);
}

// What the commands call the control: the name the user gave it, else its own.
QString shownName(const TVKControl& control)
{
    return control.userName().isEmpty() ? control.name() : control.userName();
}

} // namespace

void TVKController::makeActionCommandItems()
{
    // The menu shows the keys, but they belong to the surface pictures, which carry shortcuts of
    // their own for them: a text field keeps its own Copy, Paste and Delete, and the key capture
    // of the key sequence editor still records Ctrl+C. Tied to a widget that never has the
    // focus, the items' own shortcuts never fire.
    const std::pair<Command, QKeySequence> items[] = {
        {Command::HandleCopyAction, QKeySequence(QKeySequence::Copy)},
        {Command::HandlePasteAction, QKeySequence(QKeySequence::Paste)},
        {Command::HandleClearAction, QKeySequence(QKeySequence::Delete)}};
    const QString titles[] = {tr("Copy Action"), tr("Paste Action"), tr("Clear Action")};
    for (size_t i = 0; i < std::size(items); ++i) {
        QAction* item = addMenuItem(items[i].first, titles[i]);
        item->setShortcut(items[i].second);
        item->setShortcutContext(Qt::WidgetShortcut);
    }
}

TVKControl* TVKController::actionCommandTarget() const
{
    if (!m_modelData || m_modelData->numberOfKeysets() == 0)
        return nullptr;
    return displaySelected() ? m_modelData->selectedDisplay() : m_modelData->selectedControl();
}

QString TVKController::actionCommandProblem(TVKMenuCommand command) const
{
    const TVKControl* target = actionCommandTarget();
    if (!target)
        return tr("Select a control or a display first.");
    const TVKKeyset* keyset = keysetAt(selectedKeyset());
    if (command == Command::HandleCopyAction) {
        // Copying changes nothing, so a locked keyset may be copied from, as a whole keyset may.
        if (!target->action())
            return tr("“%1” has no action to copy.").arg(shownName(*target));
        return {};
    }
    if (keyset && keyset->locked())
        return command == Command::HandlePasteAction
                   ? tr("The keyset “%1” is locked. Unlock it to paste an action.")
                         .arg(keyset->name())
                   : tr("The keyset “%1” is locked. Unlock it to clear an action.")
                         .arg(keyset->name());
    if (command == Command::HandlePasteAction) {
        const ActionClipboard::Content content = clipboardAction();
        if (!content.ok())
            return content.problem;
        return corvane::actionFitProblem(content.actionType, target->tvkControlType());
    }
    // Clear: something to clear on one of the layers it reaches.
    if (target->action())
        return {};
    if (!displaySelected() && m_views.windows->inspectorCopiesToAllLayers()) {
        const TVKSelection at = selection();
        for (const qint64 layer : affectedLayers(at.layer, true)) {
            const TVKControl* other = controlAt(at.keyset, layer, at.group, at.control);
            if (other && other->action())
                return {};
        }
        return tr("“%1” has no action to clear on any layer.").arg(shownName(*target));
    }
    return tr("“%1” has no action to clear.").arg(shownName(*target));
}

bool TVKController::validateActionCommandItem(QAction* item)
{
    const Command command = TVKMenuItems::command(item);
    const QString problem = actionCommandProblem(command);
    const TVKKeyset* keyset = keysetAt(selectedKeyset());
    QString title = command == Command::HandleCopyAction    ? tr("Copy Action")
                    : command == Command::HandlePasteAction ? tr("Paste Action")
                                                            : tr("Clear Action");
    // As Undo and Redo do, the title says that the lock is what keeps the item grey.
    if (command != Command::HandleCopyAction && keyset && keyset->locked())
        title = tr("%1 (keyset “%2” is locked)").arg(title, keyset->name());
    item->setText(title);
    item->setToolTip(problem.isEmpty() ? title : problem);
    item->setStatusTip(problem);
    return problem.isEmpty();
}

void TVKController::handleCopyAction()
{
    const TVKControl* target = actionCommandTarget();
    QClipboard* board = clipboard();
    if (!target || !target->action() || !board)
        return;
    board->setMimeData(ActionClipboard::mimeData(*target->action()).release());
}

void TVKController::handlePasteAction()
{
    if (!actionCommandProblem(Command::HandlePasteAction).isEmpty())
        return;
    TVKControl* target = actionCommandTarget();
    const ActionClipboard::Content content = clipboardAction();
    std::shared_ptr<const TVKAction> action =
        TVKStandardActionTypes::createActionFromArchive(content.archive, target);
    if (!action)
        return;
    const QScopedValueRollback fromMenu(m_editFromMenuCommand, true);
    const TVKSelection at = selection();
    if (at.displaySelected) {
        undoableInsertDisplayAction(std::move(action), at.keyset, at.layer, at.displayGroup,
                                    at.display, tr("Paste Action"));
        return;
    }
    const bool copy = m_views.windows->inspectorCopiesToAllLayers();
    const size_t layers = affectedLayers(at.layer, copy).size();
    undoableInsertAction(ActionList(layers, action), at.keyset, at.layer, at.group, at.control,
                         tr("Paste Action"), copy);
}

void TVKController::handleClearAction()
{
    if (!actionCommandProblem(Command::HandleClearAction).isEmpty())
        return;
    const QScopedValueRollback fromMenu(m_editFromMenuCommand, true);
    const TVKSelection at = selection();
    if (at.displaySelected) {
        undoableInsertDisplayAction(nullptr, at.keyset, at.layer, at.displayGroup, at.display,
                                    tr("Clear Action"));
        return;
    }
    const bool copy = m_views.windows->inspectorCopiesToAllLayers();
    const size_t layers = affectedLayers(at.layer, copy).size();
    const std::shared_ptr<const TVKAction> none = std::make_shared<TVKNULLAction>();
    undoableInsertAction(ActionList(layers, none), at.keyset, at.layer, at.group, at.control,
                         tr("Clear Action"), copy);
}
