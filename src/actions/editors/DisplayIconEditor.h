#pragma once

#include "actions/editors/EditorLogic.h"

class TVKActionContainer;
class TVKControl;

namespace corvane {

// The icon editor of an LCD button: one of the icons held in the button's ROM, or none.
class DisplayIconEditor : public EditorLogic
{
public:
    static constexpr int kNoIcon = -1;

    explicit DisplayIconEditor(TVKActionContainer& container);

    void updateForNewAction();
    // An icon cell: changes the held icon action in place or puts a new one for the display
    // into the container. True when the container changed.
    bool chooseIcon(int icon, TVKControl* display);
    // The no-icon button: removes a held icon action.
    bool clearIcon();

    // The icon shown selected, kNoIcon for none.
    int selectedIcon() const { return m_icon; }

private:
    TVKActionContainer& m_container;
    int m_icon = kNoIcon;
};

} // namespace corvane
