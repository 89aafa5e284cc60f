#include "actions/editors/StatusLineEditor.h"

#include "actions/CorvaneButtonDisplayMidiEmulationAction.h"
#include "actions/TVKActionContainer.h"

namespace corvane {

namespace {

CorvaneButtonDisplayMidiEmulationAction* heldStatus(TVKActionContainer& container)
{
    return container.actionType() == CorvaneButtonDisplayMidiEmulationAction::kActionType
               ? static_cast<CorvaneButtonDisplayMidiEmulationAction*>(container.action())
               : nullptr;
}

} // namespace

StatusLineEditor::StatusLineEditor(TVKActionContainer& container) : m_container(container) {}

void StatusLineEditor::updateForNewAction()
{
    const StateChange change(*this);
    const CorvaneButtonDisplayMidiEmulationAction* held = heldStatus(m_container);
    m_mode = held ? held->mode() : 0;
}

bool StatusLineEditor::chooseMode(unsigned mode, TVKControl* display)
{
    const StateChange change(*this);
    m_mode = mode;
    CorvaneButtonDisplayMidiEmulationAction* held = heldStatus(m_container);
    if (mode == 0) {
        if (!held)
            return false;
        m_container.setAction(nullptr);
        return true;
    }
    if (held) {
        if (held->mode() == mode)
            return false;
        held->setMode(mode);
        return true;
    }
    m_container.setAction(std::make_unique<CorvaneButtonDisplayMidiEmulationAction>(display, mode));
    return true;
}

} // namespace corvane
