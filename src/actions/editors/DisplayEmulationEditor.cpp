#include "actions/editors/DisplayEmulationEditor.h"

#include "actions/TVKActionContainer.h"
#include "actions/TVKDisplayEmulationAction.h"
#include "actions/editors/EmulationActionEditor.h"
#include "core/Notifications.h"

namespace corvane {

DisplayEmulationEditor::DisplayEmulationEditor(TVKActionContainer& container, qint32 actionType)
    : m_container(container), m_actionType(actionType)
{
    m_emulationChangeObservation = NotificationCenter::defaultCenter().observe<note::EmulChg>(
        nullptr, [this](const note::EmulChg&) { updateForNewAction(); });
}

bool DisplayEmulationEditor::isTimecode() const
{
    return m_actionType == TVKTimecodeDisplayEmulationAction::kActionType;
}

void DisplayEmulationEditor::updateForNewAction()
{
    const StateChange change(*this);
    m_emulationMode = EmulationActionEditor::selectedKeysetEmulationMode();
    const bool held = m_container.actionType() == m_actionType;
    m_timecodeShown = held && isTimecode();
    m_source = held && !isTimecode()
                   ? static_cast<const TVKLCDDisplayEmulationAction*>(m_container.action())
                         ->displaySource()
                   : kNoSource;
}

bool DisplayEmulationEditor::setSource(int source, TVKControl* display)
{
    const StateChange change(*this);
    if (isTimecode())
        return false;
    const bool held = m_container.actionType() == m_actionType;
    if (source < 0) {
        m_source = kNoSource;
        if (!held)
            return false;
        m_container.setAction(nullptr);
        return true;
    }
    m_source = source;
    if (held) {
        auto* action = static_cast<TVKLCDDisplayEmulationAction*>(m_container.action());
        if (action->displaySource() == source)
            return false;
        action->setDisplaySource(source);
        return true;
    }
    m_container.setAction(std::make_unique<TVKLCDDisplayEmulationAction>(display, source));
    return true;
}

bool DisplayEmulationEditor::setTimecodeShown(bool shown, TVKControl* display)
{
    const StateChange change(*this);
    if (!isTimecode())
        return false;
    const bool held = m_container.actionType() == m_actionType;
    m_timecodeShown = shown;
    if (shown == held)
        return false;
    if (shown)
        m_container.setAction(std::make_unique<TVKTimecodeDisplayEmulationAction>(display));
    else
        m_container.setAction(nullptr);
    return true;
}

} // namespace corvane
