#include "surface/TVK_6BitColorUtilities.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using corvane::RgbColor;

TVK_6BitColorUtilities& utilities()
{
    return TVK_6BitColorUtilities::sharedUtilities();
}

TEST(SixBitColor, PaletteOrderRunsFromBrightRedToNoRed)
{
    EXPECT_EQ(&utilities(), &TVK_6BitColorUtilities::sharedUtilities());
    const auto& values = utilities().sixBitColors();
    for (int p = 0; p < 64; ++p) {
        const int expected = (3 - p / 16) * 16 + p % 16;
        EXPECT_EQ(values[static_cast<size_t>(p)], expected) << p;
        EXPECT_EQ(utilities().sixBitColorAtIndex(p), expected);
        EXPECT_EQ(utilities().indexFor6BitColor(static_cast<quint8>(expected)), p);
    }
    // Every six-bit value appears exactly once.
    std::array<int, 64> hits{};
    for (quint8 v : values)
        ++hits[v];
    for (int h : hits)
        EXPECT_EQ(h, 1);

    EXPECT_EQ(utilities().indexFor6BitColor(48), 0);
    EXPECT_EQ(utilities().indexFor6BitColor(63), 15);
    EXPECT_EQ(utilities().indexFor6BitColor(0), 48);
    EXPECT_EQ(utilities().indexFor6BitColor(3), 51);
    EXPECT_EQ(utilities().indexFor6BitColor(64), 0);
    EXPECT_EQ(utilities().indexFor6BitColor(255), 0);

    EXPECT_EQ(utilities().sixBitColorAtIndex(64), 48);
    EXPECT_EQ(utilities().sixBitColorAtIndex(-1), 48);
}

TEST(SixBitColor, PaletteColoursUse256ths)
{
    const RgbColor first = utilities().nsColorAtIndex(0);
    EXPECT_EQ(first, (RgbColor{0.99609375, 0.0, 0.0, 1.0}));
    EXPECT_EQ(utilities().nsColorAtIndex(26), (RgbColor{0.6640625, 0.6640625, 0.6640625, 1.0}));
    EXPECT_EQ(utilities().nsColorAtIndex(51), (RgbColor{0.0, 0.0, 0.99609375, 1.0}));
    EXPECT_EQ(utilities().nsColorAtIndex(21), (RgbColor{0.6640625, 0.33203125, 0.33203125, 1.0}));
    EXPECT_EQ(utilities().nsColorAtIndex(64), first);
    EXPECT_EQ(utilities().nsColorAtIndex(-5), first);
    for (const RgbColor& c : utilities().colors())
        EXPECT_EQ(c.alpha, 1.0);
    // The palette's colour converts back to its own six-bit value.
    for (int p = 0; p < 64; ++p)
        EXPECT_EQ(TVK_6BitColorUtilities::sixBitColorFromColor(utilities().nsColorAtIndex(p)),
                  utilities().sixBitColorAtIndex(p))
            << p;
}

TEST(SixBitColor, DirectConversions)
{
    struct Case
    {
        RgbColor color;
        int value;
    };
    const Case cases[] = {
        {{0.5, 0.5, 0.5, 1.0}, 42},
        {{0.49, 0.16, 0.17, 1.0}, 17},
        {{1.0, 1.0, 1.0, 1.0}, 63},
        {{0.0, 0.0, 0.0, 0.0}, 0},
        {{1.0 / 6.0, 0.0, 0.0, 1.0}, 16}, // exactly half a level rounds up
        {{2.0, 0.0, 0.0, 1.0}, 96},       // beyond 1 keeps its arithmetic, masked to a byte
        {{std::nan(""), -1.0, 0.0, 1.0}, 248},
    };
    for (const Case& c : cases)
        EXPECT_EQ(TVK_6BitColorUtilities::sixBitColorFromColor(c.color), c.value)
            << c.color.red << "," << c.color.green << "," << c.color.blue;

    const RgbColor grey = TVK_6BitColorUtilities::colorFromSixBitColor(42);
    EXPECT_DOUBLE_EQ(grey.red, 2.0 / 3.0);
    EXPECT_DOUBLE_EQ(grey.green, 2.0 / 3.0);
    EXPECT_DOUBLE_EQ(grey.blue, 2.0 / 3.0);
    EXPECT_EQ(grey.alpha, 1.0);
    EXPECT_NE(grey, utilities().nsColorAtIndex(utilities().indexFor6BitColor(42)));

    // Red is not masked: the top bits of an out-of-range value raise it above 1.
    const RgbColor over = TVK_6BitColorUtilities::colorFromSixBitColor(0xF0);
    EXPECT_DOUBLE_EQ(over.red, 5.0);
    EXPECT_DOUBLE_EQ(over.green, 0.0);

    for (int v = 0; v < 64; ++v)
        EXPECT_EQ(TVK_6BitColorUtilities::sixBitColorFromColor(
                      TVK_6BitColorUtilities::colorFromSixBitColor(static_cast<quint8>(v))),
                  v);
}

} // namespace
