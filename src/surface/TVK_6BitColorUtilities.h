#pragma once

#include "surface/RgbColor.h"

#include <QtGlobal>
#include <array>

// The 64 colours of the surface's multi-colour and LCD buttons. A six-bit colour is one byte:
// red level × 16 + green level × 4 + blue level, each level 0..3.
//
// The palette runs from the brightest reds down to no red: position p holds red level
// 3 − p / 16, green level (p / 4) mod 4 and blue level p mod 4.
class TVK_6BitColorUtilities
{
public:
    static constexpr int kPaletteSize = 64;

    static TVK_6BitColorUtilities& sharedUtilities();

    const std::array<quint8, kPaletteSize>& sixBitColors() const { return m_sixBitColors; }
    const std::array<corvane::RgbColor, kPaletteSize>& colors() const { return m_colors; }

    // A position outside the palette gives position 0's entry.
    quint8 sixBitColorAtIndex(int position) const;
    corvane::RgbColor nsColorAtIndex(int position) const;
    // The first palette position holding the value; 0 when none does.
    int indexFor6BitColor(quint8 sixBitColor) const;

    // Rounds each component to the nearest of four levels (halves up).
    static quint8 sixBitColorFromColor(const corvane::RgbColor& color);
    // Levels divided by 3; the palette's own screen colours use 256ths instead, and the two are
    // deliberately not reconciled.
    static corvane::RgbColor colorFromSixBitColor(quint8 sixBitColor);

private:
    TVK_6BitColorUtilities();

    std::array<quint8, kPaletteSize> m_sixBitColors{};
    std::array<corvane::RgbColor, kPaletteSize> m_colors{};
};
