#pragma once

#include "actions/TVKAction.h"

// A fixed function of the surface itself (layer selectors, developer mode, raw Ethernet ...).
// The mode is the function; the classes differ only in the kind of control they serve.
class TVKSpecialAction : public TVKAction
{
public:
    // The functions a special action may hold; a mode outside them is never stored.
    static constexpr int kModeCount = 11;

    TVKSpecialAction() = default;
    explicit TVKSpecialAction(TVKControl* control) : TVKAction(control) {}
    // initWithControl:andMode:
    TVKSpecialAction(TVKControl* control, int mode);
    // Reads "TVKSpMode"; a value outside the functions reads as 0 ("Undefined").
    TVKSpecialAction(const corvane::PlistValue& archive, TVKControl* control);

    int mode() const { return m_mode; }
    // A mode outside the functions is refused and leaves the mode as it was.
    void setMode(int mode);

    // The text of the mode, as the surface constants give it.
    QString actionDescriptor() const override;
    corvane::FourCharCode editorTabID() const override;
    void writeTo(corvane::PlistValue& dict) const override;

protected:
    TVKSpecialAction(const TVKSpecialAction&) = default;

private:
    int m_mode = 0;
};

CORVANE_ACTION_FOR_CONTROL_KIND(TVKButtonSpecialAction, TVKSpecialAction, 261)
CORVANE_ACTION_FOR_CONTROL_KIND(TVKEncoderSpecialAction, TVKSpecialAction, 517)
CORVANE_ACTION_FOR_CONTROL_KIND(TVKSpecial4WayAction, TVKSpecialAction, 773)
CORVANE_ACTION_FOR_CONTROL_KIND(TVKShuttleSpecialAction, TVKSpecialAction, 1029)
CORVANE_ACTION_FOR_CONTROL_KIND(TVKSpecialJogAction, TVKSpecialAction, 1285)
