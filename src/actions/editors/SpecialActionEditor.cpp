#include "actions/editors/SpecialActionEditor.h"

#include "actions/TVKActionContainer.h"
#include "actions/TVKSpecialAction.h"
#include "actions/editors/EditorActions.h"

namespace corvane {

SpecialActionEditor::SpecialActionEditor(TVKActionContainer& container, qint32 actionType)
    : m_container(container), m_actionType(actionType)
{}

int SpecialActionEditor::selectedCellTag() const
{
    if (m_container.actionType() != m_actionType)
        return 0;
    return static_cast<const TVKSpecialAction*>(m_container.action())->mode();
}

void SpecialActionEditor::click(int senderTag, int selectedCellTag)
{
    const StateChange change(*this);
    if (senderTag != 0)
        return;
    if (selectedCellTag == 0) {
        m_container.setAction(nullptr);
        return;
    }
    if (m_container.actionType() == m_actionType) {
        static_cast<TVKSpecialAction*>(m_container.action())->setMode(selectedCellTag);
        return;
    }
    m_container.setAction(makeSpecialActionOfType(m_actionType, selectedCellTag));
}

} // namespace corvane
