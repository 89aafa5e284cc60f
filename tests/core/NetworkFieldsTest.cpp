// What an address part and a port may hold: the one rule every field and the controller use.
#include "core/NetworkFields.h"

#include <gtest/gtest.h>

using namespace corvane;

TEST(NetworkFields, AddressPartsAreZeroTo255InAtMostThreeAsciiDigits)
{
    for (int value = 0; value <= 255; ++value) {
        EXPECT_EQ(addressPartValue(QString::number(value)), value);
    }
    EXPECT_EQ(addressPartValue(u"001"), 1);
    EXPECT_EQ(addressPartValue(u"000"), 0);
    for (const char16_t* bad :
         {u"", u"256", u"999", u"0001", u"abc", u"1a", u"-1", u"+1", u" 1", u"1 ", u"1.", u"0x1",
          u"\u0661\u0662" /* Arabic-Indic 12 */, u"\uff11" /* full-width 1 */}) {
        EXPECT_FALSE(addressPartValue(bad).has_value()) << QString::fromUtf16(bad).toStdString();
    }
}

TEST(NetworkFields, PortsAreOneTo65535)
{
    EXPECT_EQ(portValue(u"1"), 1);
    EXPECT_EQ(portValue(u"23"), 23);
    EXPECT_EQ(portValue(u"08080"), 8080);
    EXPECT_EQ(portValue(u"65535"), 65535);
    for (const char16_t* bad : {u"", u"0", u"00000", u"65536", u"99999", u"100000", u"abc", u"80a",
                                u"-80", u" 80", u"8.0", u"\u0668\u0660"}) {
        EXPECT_FALSE(portValue(bad).has_value()) << QString::fromUtf16(bad).toStdString();
    }
}

TEST(NetworkFields, AWholeAddressSplitsIntoItsFourParts)
{
    const auto parts = addressParts(u"192.168.1.250");
    ASSERT_TRUE(parts.has_value());
    EXPECT_EQ(*parts, (std::array<QString, 4>{QStringLiteral("192"), QStringLiteral("168"),
                                              QStringLiteral("1"), QStringLiteral("250")}));
    // As a clipboard often holds it.
    EXPECT_TRUE(addressParts(u"  10.0.0.1\n").has_value());
    for (const char16_t* bad :
         {u"", u"192.168.1", u"192.168.1.250.1", u"192.168.1.256", u"192.168..1", u"192.168.1.",
          u"a.b.c.d", u"192 168 1 250", u"1234.5.6.7", u"fe80::1"}) {
        EXPECT_FALSE(addressParts(bad).has_value()) << QString::fromUtf16(bad).toStdString();
    }
}
