#pragma once

#include "actions/editors/EditorLogic.h"

#include <QtGlobal>

class TVKActionContainer;
class TVKControl;

namespace corvane {

// The editor of a display that shows the names of the controls sharing it: a box that turns the
// names on, and for the NV's displays how its buttons are labelled (their names, or function and
// parameter numbers).
class ControlNamesEditor : public EditorLogic
{
public:
    // actionType: the encoder-name, button-name or NV button-name display action.
    ControlNamesEditor(TVKActionContainer& container, qint32 actionType);

    qint32 actionType() const { return m_actionType; }
    // Only the NV's button names have a label mode.
    bool hasLabelMode() const;

    void updateForNewAction();
    // The show-names box: ticked puts a names action for the display into the container,
    // unticked removes the action. True when the container changed.
    bool setShowNames(bool shown, TVKControl* display);
    // The label mode pop-up (0 names, 1 function and parameter numbers); acts while the names
    // are shown. True when the container changed.
    bool setLabelMode(unsigned mode, TVKControl* display);

    bool showNames() const { return m_showNames; }
    unsigned labelMode() const { return m_labelMode; }
    bool labelModeEnabled() const { return hasLabelMode() && m_showNames; }

private:
    void makeAction(TVKControl* display);

    TVKActionContainer& m_container;
    qint32 m_actionType;
    bool m_showNames = false;
    unsigned m_labelMode = 0;
};

} // namespace corvane
