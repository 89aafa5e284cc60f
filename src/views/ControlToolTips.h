#pragma once

#include <QPoint>
#include <QString>
#include <optional>

class QHelpEvent;
class QWidget;
class TVKControl;
class TVKDisplayView;
class TVKModelData;
class TVKMultiStateButton;

// The tooltips of the pictures: over a control or display, its name and what it does in full,
// read from the model when the tooltip is asked for, so that it follows every edit, undo and
// change of keyset or layer without being kept anywhere.
namespace corvane {

// Whose controls a picture shows: a keyset and layer of a model.
struct PictureScope
{
    const TVKModelData* model = nullptr;
    int keyset = 0;
    int layer = 0;
};

// The application's: the live model at the controller's selected keyset and layer; none
// without a controller or a model.
std::optional<PictureScope> applicationScope();

// The control (or display) a point of a picture lies on, in the scope; none off every control.
TVKControl* controlAt(const TVKMultiStateButton& picture, QPoint point, const PictureScope& scope);
TVKControl* displayAt(const TVKDisplayView& view, QPoint point, const PictureScope& scope);

// "Play “Punch In”" over what it does: its name, the user's name for it where there is one, and
// the full description of its action.
QString controlToolTip(const TVKControl& control);

// Answers a tooltip event of a picture (or display view) with the control's tooltip, kept while
// the pointer stays on the control, or hides the tooltip where the point lies on no control.
void showControlToolTip(QWidget& picture, const QHelpEvent& event, const TVKControl* control);

} // namespace corvane
