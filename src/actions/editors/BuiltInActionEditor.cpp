#include "actions/editors/BuiltInActionEditor.h"

#include "actions/ActionText.h"
#include "actions/TVKActionContainer.h"
#include "actions/TVKBuiltInAction.h"
#include "actions/editors/EditorActions.h"
#include "core/Notifications.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"

#include <QCoreApplication>

namespace corvane {

BuiltInActionEditor::BuiltInActionEditor(TVKActionContainer& container, qint32 actionType,
                                         const QString& cataloguePath)
    : m_container(container), m_actionType(actionType),
      m_usage(usageWordForBuiltInType(actionType)), m_cataloguePath(cataloguePath)
{
    loadForSelectedKeyset();
    m_keysetChangeObservation =
        NotificationCenter::defaultCenter().observe<corvane::note::SelectedKeysetChange>(
            nullptr,
            [this](const corvane::note::SelectedKeysetChange&) { loadForSelectedKeyset(); });
}

void BuiltInActionEditor::loadForSelectedKeyset()
{
    const TVKModelData* model = TVKModelData::defaultModelData();
    const TVKKeyset* keyset =
        model && model->numberOfKeysets() > 0 ? model->selectedKeyset() : nullptr;
    loadCommandList(keyset, m_cataloguePath);
}

void BuiltInActionEditor::loadCommandList(const TVKKeyset* keyset, const QString& cataloguePath)
{
    loadCommandList(keyset, BuiltInCommandCatalogue::load(cataloguePath));
}

void BuiltInActionEditor::loadCommandList(const TVKKeyset* keyset,
                                          const BuiltInCommandCatalogue& catalogue)
{
    const StateChange change(*this);
    m_groups.clear();
    if (keyset)
        m_groups = catalogue.commandsFor(BuiltInCommandCatalogue::lookupKey(*keyset), m_usage);
    const QString name = keyset ? keyset->name() : QString();
    m_keysetName = name;
    m_title = m_groups.empty()
                  ? fillFormat(QStringLiteral("No Built In Commands available for %@"), {name}, {})
                  : fillFormat(QStringLiteral("Built In Commands for %@:"), {name}, {});
}

bool BuiltInActionEditor::isGroupRowEnabled(int groupRow) const
{
    return groupRow >= 0 && size_t(groupRow) < m_groups.size() &&
           !m_groups[size_t(groupRow)].isSeparator();
}

bool BuiltInActionEditor::isGroupRowLeaf(int groupRow) const
{
    return groupRow >= 0 && size_t(groupRow) < m_groups.size() &&
           m_groups[size_t(groupRow)].isSeparator();
}

BuiltInActionEditor::Choice BuiltInActionEditor::chooseCommand(int groupRow, int commandRow,
                                                               bool lastColumnSelected)
{
    const StateChange change(*this);
    Choice choice;
    if (!lastColumnSelected || groupRow < 0 || size_t(groupRow) >= m_groups.size())
        return choice;
    const BuiltInCommandGroup& group = m_groups[size_t(groupRow)];
    if (commandRow < 0 || size_t(commandRow) >= group.commands.size())
        return choice;
    const BuiltInCommand& command = group.commands[size_t(commandRow)];

    if (m_container.actionType() == m_actionType) {
        auto* action = static_cast<TVKBuiltInAction*>(m_container.action());
        action->setCommandGroupIndex(groupRow);
        action->setCommandIndex(commandRow);
        action->setCommandGroupName(group.name);
        action->setCommandName(command.name);
        action->setMode(command.mode);
        action->setProcedure(command.procedure);
        // A procedure command leaves the old keystroke where it was; the service ignores it.
        if (command.mode == 0) {
            TVKKeystrokeList& sequence = action->sequence();
            if (sequence.empty())
                TVKKeySequenceAction::addKeystroke(QString(), command.keyCode, command.modifiers,
                                                   sequence);
            else
                TVKKeySequenceAction::setKeystroke(QString(), command.keyCode, command.modifiers, 0,
                                                   sequence);
        }
    } else {
        std::unique_ptr<TVKBuiltInAction> action = makeBuiltInActionOfType(
            m_actionType, groupRow, commandRow, group.name, command.name, command.mode,
            command.procedure, command.keyCode, command.modifiers);
        if (!action)
            return choice;
        m_container.setAction(std::move(action));
    }
    choice.chosen = true;
    choice.userName = command.name;
    return choice;
}

QString BuiltInActionEditor::browserPath() const
{
    if (m_container.actionType() != m_actionType)
        return QString();
    const auto* action = static_cast<const TVKBuiltInAction*>(m_container.action());
    return pathSeparator() + objectText(action->commandGroupName()) + pathSeparator() +
           objectText(action->commandName());
}

QString BuiltInActionEditor::unavailableNotice() const
{
    if (m_container.actionType() != m_actionType || m_keysetName.isNull())
        return {};
    const auto* action = static_cast<const TVKBuiltInAction*>(m_container.action());
    for (const BuiltInCommandGroup& group : m_groups) {
        if (group.isSeparator() || group.name != action->commandGroupName())
            continue;
        for (const BuiltInCommand& command : group.commands)
            if (command.name == action->commandName())
                return {};
    }
    return QCoreApplication::translate("BuiltInActionEditor",
                                       "Not available for %1: “%2: %3” is not one of the built-in "
                                       "commands for %1.")
        .arg(m_keysetName, objectText(action->commandGroupName()),
             objectText(action->commandName()));
}

} // namespace corvane
