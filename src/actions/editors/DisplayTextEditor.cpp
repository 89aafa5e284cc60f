#include "actions/editors/DisplayTextEditor.h"

#include "actions/TVKActionContainer.h"
#include "actions/TVKDisplayTextAction.h"
#include "model/TVKControl.h"
#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"

namespace corvane {

namespace {

TVKLCDDisplayTextAction* heldText(TVKActionContainer& container)
{
    return container.actionType() == TVKLCDDisplayTextAction::kActionType
               ? static_cast<TVKLCDDisplayTextAction*>(container.action())
               : nullptr;
}

} // namespace

DisplayTextEditor::DisplayTextEditor(TVKActionContainer& container) : m_container(container) {}

void DisplayTextEditor::updateForNewAction(const TVKControl* display)
{
    const StateChange change(*this);
    m_width = display ? surfaceConstants().widthOfDisplay(display->index(), display->groupID()) : 0;
    if (m_width <= 0)
        m_width = kFallbackWidth;
    const TVKLCDDisplayTextAction* held = heldText(m_container);
    m_text = held ? held->storedText() : QString();
}

bool DisplayTextEditor::setText(const QString& text, TVKControl* display)
{
    const StateChange change(*this);
    const QString cut = text.left(m_width);
    TVKLCDDisplayTextAction* held = heldText(m_container);
    m_text = cut;
    if (held ? held->storedText() == cut : cut.isEmpty())
        return false;
    if (cut.isEmpty())
        m_container.setAction(nullptr);
    else if (held)
        held->setText(cut);
    else
        m_container.setAction(std::make_unique<TVKLCDDisplayTextAction>(display, cut));
    return true;
}

} // namespace corvane
