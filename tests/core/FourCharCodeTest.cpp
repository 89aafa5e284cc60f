#include "core/FourCharCode.h"

#include <gtest/gtest.h>

using namespace corvane;

TEST(FourCharCode, ConvertsMostSignificantByteFirst)
{
    EXPECT_EQ(fourCC("Crvn"), 0x4372766Eu);
    EXPECT_EQ(stringFromFourCharCode(0x4372766Eu), QStringLiteral("Crvn"));
    EXPECT_EQ(fourCharCodeFromString(QStringLiteral("Crvn")), 0x4372766Eu);
    EXPECT_EQ(fourCharCodeFromString(QStringLiteral("????")), kUnknownSignature);
}

TEST(FourCharCode, LongTextsUseFirstFourShortOnesArePadded)
{
    EXPECT_EQ(fourCharCodeFromString(QStringLiteral("appapp-")), fourCC("appa"));
    EXPECT_EQ(fourCharCodeFromString(QStringLiteral("---")), fourCC("--- "));
    EXPECT_EQ(fourCharCodeFromString(QStringLiteral(" ")), fourCC("    "));
    // No code is the empty text both ways, so that it can stand in an XML property list.
    EXPECT_EQ(fourCharCodeFromString(QString()), 0u);
    EXPECT_EQ(stringFromFourCharCode(0), QLatin1String(""));
    EXPECT_FALSE(stringFromFourCharCode(0).isNull());
    EXPECT_TRUE(isMissingSignature(0));
    EXPECT_TRUE(isMissingSignature(fourCC("????")));
    EXPECT_FALSE(isMissingSignature(fourCC("----")));
}
