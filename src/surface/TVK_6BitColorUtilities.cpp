#include "surface/TVK_6BitColorUtilities.h"

#include <algorithm>
#include <cmath>

namespace {

// 0, 85, 170 and 255 out of 256: the palette pictures' intensities.
constexpr std::array<double, 4> kPaletteIntensity = {0.0, 0.33203125, 0.6640625, 0.99609375};

int levelFromComponent(double component)
{
    // Out-of-range components keep their arithmetic but must never reach an undefined cast.
    if (!std::isfinite(component))
        return 0;
    const double scaled = std::clamp(component * 3.0 + 0.5, -1.0e6, 1.0e6);
    return static_cast<int>(scaled);
}

} // namespace

TVK_6BitColorUtilities& TVK_6BitColorUtilities::sharedUtilities()
{
    static TVK_6BitColorUtilities shared;
    return shared;
}

TVK_6BitColorUtilities::TVK_6BitColorUtilities()
{
    for (int p = 0; p < kPaletteSize; ++p) {
        const int red = 3 - p / 16;
        const int green = (p / 4) % 4;
        const int blue = p % 4;
        m_sixBitColors[static_cast<size_t>(p)] = static_cast<quint8>(red * 16 + green * 4 + blue);
        m_colors[static_cast<size_t>(p)] =
            corvane::RgbColor{kPaletteIntensity[static_cast<size_t>(red)],
                              kPaletteIntensity[static_cast<size_t>(green)],
                              kPaletteIntensity[static_cast<size_t>(blue)], 1.0};
    }
}

quint8 TVK_6BitColorUtilities::sixBitColorAtIndex(int position) const
{
    if (position < 0 || position >= kPaletteSize)
        position = 0;
    return m_sixBitColors[static_cast<size_t>(position)];
}

corvane::RgbColor TVK_6BitColorUtilities::nsColorAtIndex(int position) const
{
    if (position < 0 || position >= kPaletteSize)
        position = 0;
    return m_colors[static_cast<size_t>(position)];
}

int TVK_6BitColorUtilities::indexFor6BitColor(quint8 sixBitColor) const
{
    for (int p = 0; p < kPaletteSize; ++p) {
        if (m_sixBitColors[static_cast<size_t>(p)] == sixBitColor)
            return p;
    }
    return 0;
}

quint8 TVK_6BitColorUtilities::sixBitColorFromColor(const corvane::RgbColor& color)
{
    const int red = levelFromComponent(color.red);
    const int green = levelFromComponent(color.green);
    const int blue = levelFromComponent(color.blue);
    return static_cast<quint8>((red * 16 | green * 4 | blue) & 255);
}

corvane::RgbColor TVK_6BitColorUtilities::colorFromSixBitColor(quint8 sixBitColor)
{
    // Red is not masked to two bits: a value above 63 gives a red above 1.
    return corvane::RgbColor{(sixBitColor >> 4) / 3.0, ((sixBitColor >> 2) & 3) / 3.0,
                             (sixBitColor & 3) / 3.0, 1.0};
}
