#pragma once

namespace corvane {

// A screen colour with components in 0..1. The core library has no GUI types; the views turn
// this into a QColor.
struct RgbColor
{
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double alpha = 1.0;

    friend bool operator==(const RgbColor&, const RgbColor&) = default;
};

} // namespace corvane
