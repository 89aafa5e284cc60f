#pragma once

#include "SurfaceLayout.h"

#include <QColor>
#include <QImage>
#include <functional>

class QPainter;

// The drawing of the surfaces: panels, wells, silkscreen, display glass and every kind of
// control, unlit or lit, in either finish. Everything is vector drawing in unit coordinates, so
// one call serves every device pixel ratio.
namespace surfacegen {

enum class Finish
{
    Midnight, // style 0
    Silver    // style 1
};

// What a trackball ring's light pipe shows; the colour sets of the ring pictures.
enum class RingLight
{
    Plain,
    Green,
    Blue,
    Red,
    White
};

QColor ringLightColor(RingLight light);

// The panel of a unit with every control unlit.
void paintPanel(QPainter& p, const Layout& layout, Finish finish);
// One control; lit = shown selected.
void paintControl(QPainter& p, const Control& control, Finish finish, bool lit,
                  RingLight ringLight = RingLight::Plain);

// Renders into an image of the given logical size at the device pixel ratio; transparent.
QImage renderImage(QSize logicalSize, qreal dpr, const std::function<void(QPainter&)>& paint);

} // namespace surfacegen
