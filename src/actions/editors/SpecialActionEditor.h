#pragma once

#include "actions/editors/EditorLogic.h"

#include <QtGlobal>

class TVKActionContainer;

namespace corvane {

// The special-function editor's decisions: a matrix of radio cells whose tags are the modes.
class SpecialActionEditor : public EditorLogic
{
public:
    SpecialActionEditor(TVKActionContainer& container, qint32 actionType);

    // The cell to select when the container's action is shown: the action's mode when it is of
    // this editor's type, else 0.
    int selectedCellTag() const;
    // A click on the radio matrix. Only sender tag 0 acts: mode 0 removes the action, another
    // mode changes the held action in place or puts a new one into the container.
    void click(int senderTag, int selectedCellTag);

private:
    TVKActionContainer& m_container;
    qint32 m_actionType;
};

} // namespace corvane
