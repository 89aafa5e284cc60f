#pragma once

#include <memory>

class TVKAction;
class TVKControl;

namespace corvane {

// The emulated actions a layer gives its controls and displays. The layer owns the emulation
// tables (which console control a surface control plays); these make the action for one row.

// Control kinds of the emulation table: 0 button, 1 encoder, 4 jog, 7 fader; any other kind
// gives no action.
std::unique_ptr<TVKAction> makeEmulationAction(int kind, TVKControl* control, int emulatedGroup,
                                               int emulatedControl, bool namedControl,
                                               bool onlyControlInGroup);

// Display kinds: 5 and 11 the emulated LCD text with its source, 6 the emulated timecode; any
// other kind gives no action.
std::unique_ptr<TVKAction> makeDisplayEmulationAction(int kind, TVKControl* display, int source);

} // namespace corvane
