#pragma once

#include <memory>

class TVKAction;
class TVKControl;

namespace corvane {

// The emulated actions a layer gives its controls and displays. The layer owns the emulation
// tables (which console control a surface control plays); these make the action for one row.

// Kinds of the emulation table are control type codes (corvane::ControlType): a button, encoder,
// jog or fader; any other kind gives no action.
std::unique_ptr<TVKAction> makeEmulationAction(int kind, TVKControl* control, int emulatedGroup,
                                               int emulatedControl, bool namedControl,
                                               bool onlyControlInGroup);

// Display kinds: an LCD display (NV lines too) the emulated text with its source, a timecode
// display the emulated timecode; any other kind gives no action.
std::unique_ptr<TVKAction> makeDisplayEmulationAction(int kind, TVKControl* display, int source);

} // namespace corvane
