#pragma once

#include "model/TVKControl.h"

// A display of the surface. Its action is a display action (what the display shows); the action
// modes mean something else here than for the other controls.
class TVKDisplayControl : public TVKControl
{
public:
    using TVKControl::TVKControl;

    bool isDisplay() const override { return true; }
    // Mode 1 asks the standard action types for the native-MIDI status action, mode 2 the layer
    // for the emulated display; every other mode clears the action.
    void setActionMode(int mode) override;

protected:
    void copyActionWithoutEmulation(const TVKControl& source) override;
    // Whether an action of the source is copied when leaving emulation.
    virtual bool copiesActionWithoutEmulation(const TVKAction& action) const;
};

// The main LCD lines (type 5) and the NV display lines (type 11).
class TVKLCDDisplayControl : public TVKDisplayControl
{
public:
    using TVKDisplayControl::TVKDisplayControl;
};

class TVKTimecodeDisplayControl : public TVKDisplayControl
{
public:
    using TVKDisplayControl::TVKDisplayControl;
};

// The display of one LCD button (TLW and NV).
class TVKLCDButtonDisplayControl : public TVKDisplayControl
{
public:
    using TVKDisplayControl::TVKDisplayControl;

    // User name and action.
    void copyDisplay(const TVKLCDButtonDisplayControl& display);

protected:
    bool copiesActionWithoutEmulation(const TVKAction& action) const override;
};

// Displays of the partner surface variant, with no behaviour beyond their bases.
class TVKFrameletLCDButtonDisplayControl : public TVKLCDButtonDisplayControl
{
public:
    using TVKLCDButtonDisplayControl::TVKLCDButtonDisplayControl;
};

class TVKFrameletLCDDisplayControl : public TVKLCDDisplayControl
{
public:
    using TVKLCDDisplayControl::TVKLCDDisplayControl;
};
