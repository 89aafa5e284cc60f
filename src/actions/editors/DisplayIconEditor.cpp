#include "actions/editors/DisplayIconEditor.h"

#include "actions/CorvaneLCDButtonDisplayIconAction.h"
#include "actions/TVKActionContainer.h"

namespace corvane {

namespace {

CorvaneLCDButtonDisplayIconAction* heldIcon(TVKActionContainer& container)
{
    return container.actionType() == CorvaneLCDButtonDisplayIconAction::kActionType
               ? static_cast<CorvaneLCDButtonDisplayIconAction*>(container.action())
               : nullptr;
}

} // namespace

DisplayIconEditor::DisplayIconEditor(TVKActionContainer& container) : m_container(container) {}

void DisplayIconEditor::updateForNewAction()
{
    const StateChange change(*this);
    const CorvaneLCDButtonDisplayIconAction* held = heldIcon(m_container);
    m_icon = held ? held->romIcon() : kNoIcon;
}

bool DisplayIconEditor::chooseIcon(int icon, TVKControl* display)
{
    const StateChange change(*this);
    if (icon < 0)
        return clearIcon();
    m_icon = icon;
    if (CorvaneLCDButtonDisplayIconAction* held = heldIcon(m_container)) {
        if (held->romIcon() == icon)
            return false;
        held->setRomIcon(icon);
        return true;
    }
    m_container.setAction(std::make_unique<CorvaneLCDButtonDisplayIconAction>(display, icon));
    return true;
}

bool DisplayIconEditor::clearIcon()
{
    const StateChange change(*this);
    m_icon = kNoIcon;
    if (!heldIcon(m_container))
        return false;
    m_container.setAction(nullptr);
    return true;
}

} // namespace corvane
