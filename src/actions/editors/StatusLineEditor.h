#pragma once

#include "actions/editors/EditorLogic.h"

class TVKActionContainer;
class TVKControl;

namespace corvane {

// The status line editor of an LCD button: radios tagged by mode (0 nothing, 1 native MIDI,
// 2 the emulation mode).
class StatusLineEditor : public EditorLogic
{
public:
    explicit StatusLineEditor(TVKActionContainer& container);

    void updateForNewAction();
    // A radio: mode 0 removes the action, another mode changes the held status action in place
    // or puts a new one for the display into the container. True when the container changed.
    bool chooseMode(unsigned mode, TVKControl* display);

    unsigned selectedMode() const { return m_mode; }

private:
    TVKActionContainer& m_container;
    unsigned m_mode = 0;
};

} // namespace corvane
