#pragma once

#include "actions/TVKAction.h"

#include <memory>

// Makes actions by type code: from an archived dictionary, or fresh for an action mode.
class TVKStandardActionTypes
{
public:
    // Reads "TVKActnType" and restores the action of that class from the same dictionary. A code
    // that cannot be restored (7, 9, 0x100401, an unknown code, a dictionary without a code)
    // gives no action.
    static std::unique_ptr<TVKAction> createActionFromArchive(const corvane::PlistValue& dict,
                                                              TVKControl* control);
    // A fresh action of the type for a control's action mode; emulation types ask the control's
    // layer. Types without a default action give none.
    static std::unique_ptr<TVKAction> createActionWithType(qint32 type, int mode,
                                                           TVKControl* control);
};
