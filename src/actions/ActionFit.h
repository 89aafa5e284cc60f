#pragma once

#include <QString>

namespace corvane {

// Which actions a control can carry. An action's type code names the kind of control it was made
// for: the control kind in its high byte (1 button, 2 encoder, 3 trackball, 4 shuttle ring, 5 jog
// wheel, 6 fader emulation), or, for a display action, the display kind in bits 8 to 15. Buttons
// and LCD buttons share the button's actions, faders the encoder's (emulation apart: a fader
// plays a console fader), joysticks the trackball's; there is no emulation for trackballs,
// joysticks or the shuttle ring. The NV display lines take the LCD lines' text, emulation and
// built-in actions, and name the NV's buttons with their own action.
bool actionFitsControlType(qint32 actionType, int controlType);

// Whether some control can carry an action of this type: the codes a clipboard or a file may
// hold and this version can restore.
bool isKnownActionType(qint32 actionType);

// The control type an action of this type was made for (for a fader's encoder actions, the
// encoder); -1 for an unknown code.
int controlTypeOfAction(qint32 actionType);

// The control type as a sentence names it: "a button", "an encoder", "the jog wheel".
QString controlTypeWithArticle(int controlType);

// Why an action of the type cannot go to a control of the type ("An action made for a button does
// not fit an encoder."); empty when it fits.
QString actionFitProblem(qint32 actionType, int controlType);

} // namespace corvane
