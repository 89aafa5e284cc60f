#include "actions/editors/ControlNamesEditor.h"

#include "actions/TVKActionContainer.h"
#include "actions/TVKDisplayControlNameAction.h"

namespace corvane {

ControlNamesEditor::ControlNamesEditor(TVKActionContainer& container, qint32 actionType)
    : m_container(container), m_actionType(actionType)
{}

bool ControlNamesEditor::hasLabelMode() const
{
    return m_actionType == TVKFrameletCorvaneNVLCDDisplayButtonNameAction::kActionType;
}

void ControlNamesEditor::updateForNewAction()
{
    const StateChange change(*this);
    m_showNames = m_container.actionType() == m_actionType;
    m_labelMode = 0;
    if (m_showNames && hasLabelMode())
        m_labelMode =
            static_cast<const TVKFrameletCorvaneNVLCDDisplayButtonNameAction*>(m_container.action())
                ->lcdDisplayMode();
}

bool ControlNamesEditor::setShowNames(bool shown, TVKControl* display)
{
    const StateChange change(*this);
    const bool held = m_container.actionType() == m_actionType;
    m_showNames = shown;
    if (shown == held)
        return false;
    if (shown)
        makeAction(display);
    else
        m_container.setAction(nullptr);
    return true;
}

bool ControlNamesEditor::setLabelMode(unsigned mode, TVKControl* display)
{
    const StateChange change(*this);
    if (!hasLabelMode() || mode == m_labelMode)
        return false;
    m_labelMode = mode;
    if (!m_showNames)
        return false;
    makeAction(display);
    return true;
}

void ControlNamesEditor::makeAction(TVKControl* display)
{
    switch (m_actionType) {
    case TVKLCDDisplayButtonNameAction::kActionType:
        m_container.setAction(std::make_unique<TVKLCDDisplayButtonNameAction>(display));
        break;
    case TVKFrameletCorvaneNVLCDDisplayButtonNameAction::kActionType: {
        auto action = std::make_unique<TVKFrameletCorvaneNVLCDDisplayButtonNameAction>(display);
        action->setLcdDisplayMode(m_labelMode);
        m_container.setAction(std::move(action));
        break;
    }
    default:
        m_container.setAction(std::make_unique<TVKLCDDisplayEncoderNameAction>(display));
        break;
    }
}

} // namespace corvane
