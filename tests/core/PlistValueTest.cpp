#include "core/PlistValue.h"

#include <gtest/gtest.h>

using corvane::PlistValue;

TEST(PlistValue, LenientReadersGiveDefaultsForWrongKinds)
{
    const PlistValue text(QStringLiteral("12"));
    EXPECT_EQ(text.toInteger(7), 7);
    EXPECT_FALSE(text.toBool());
    EXPECT_EQ(PlistValue(true).toInteger(), 1);
    EXPECT_TRUE(PlistValue(qint64(-3)).toBool());
    EXPECT_EQ(PlistValue(2.9).toInteger(), 2);
    EXPECT_EQ(PlistValue(qint64(5)).toString(QStringLiteral("d")), QStringLiteral("d"));
    EXPECT_TRUE(PlistValue::makeArray().value(u"x").isNull());
    EXPECT_TRUE(PlistValue(qint64(1)).at(0).isNull());
}

TEST(PlistValue, IntegersKeepSignAndWidth)
{
    const PlistValue big(quint64(0xFFFFFFFFFFFFFFFFull));
    EXPECT_TRUE(big.isUnsignedInteger());
    EXPECT_EQ(big.toUnsigned(), 0xFFFFFFFFFFFFFFFFull);
    const PlistValue minusOne(qint64(-1));
    EXPECT_FALSE(minusOne.isUnsignedInteger());
    EXPECT_NE(big, minusOne);
    EXPECT_EQ(PlistValue(quint64(5)), PlistValue(qint64(5)));
    EXPECT_NE(PlistValue(1.0), PlistValue(qint64(1)));
}

TEST(PlistValue, CopiesNeverChangeTheirSource)
{
    PlistValue dict = PlistValue::makeDict();
    dict.insert(QStringLiteral("TVKName"), PlistValue(QStringLiteral("Default")));
    PlistValue layers = PlistValue::makeArray();
    layers.append(PlistValue::makeDict());
    dict.insert(QStringLiteral("TVKLayers"), layers);

    PlistValue copy = dict;
    copy.insert(QStringLiteral("TVKName"), PlistValue(QStringLiteral("Other")));
    copy.find(u"TVKLayers")->append(PlistValue(qint64(1)));
    EXPECT_EQ(dict.value(u"TVKName").toString(), QStringLiteral("Default"));
    EXPECT_EQ(dict.value(u"TVKLayers").size(), 1);
    EXPECT_EQ(copy.value(u"TVKLayers").size(), 2);
    EXPECT_NE(dict, copy);

    copy.insert(QStringLiteral("TVKName"), PlistValue(QStringLiteral("Default")));
    copy.find(u"TVKLayers")->set(1, PlistValue());
    EXPECT_TRUE(copy.remove(u"TVKLayers"));
    EXPECT_FALSE(copy.remove(u"TVKLayers"));
    EXPECT_EQ(copy.keys(), QStringList{QStringLiteral("TVKName")});
}

TEST(PlistValue, DictionariesCompareAsSetsAndConvertToVariants)
{
    PlistValue a = PlistValue::makeDict();
    a.insert(QStringLiteral("x"), PlistValue(qint64(1)));
    a.insert(QStringLiteral("y"), PlistValue(QByteArray("\x00\x01", 2)));
    PlistValue b = PlistValue::makeDict();
    b.insert(QStringLiteral("y"), PlistValue(QByteArray("\x00\x01", 2)));
    b.insert(QStringLiteral("x"), PlistValue(qint64(1)));
    EXPECT_EQ(a, b);

    a.insert(QStringLiteral("when"), PlistValue::makeDate(0.0));
    const QVariantMap map = a.toVariant().toMap();
    EXPECT_EQ(map.value(QStringLiteral("x")).toLongLong(), 1);
    EXPECT_EQ(map.value(QStringLiteral("when")).toDateTime().toSecsSinceEpoch(), 978307200);
    EXPECT_EQ(PlistValue::fromVariant(map), a);
}

TEST(PlistValue, KeysFollowTheirTextNotItsAddress)
{
    // The same buffer read as a key twice with different contents gives two different keys;
    // literals inserted again and again give equal keys.
    QChar buffer[] = {QChar(u'a'), QChar(u'b')};
    PlistValue first = PlistValue::makeDict();
    first.insert(QString::fromRawData(buffer, 2), PlistValue(qint64(1)));
    buffer[0] = QChar(u'x');
    PlistValue second = PlistValue::makeDict();
    second.insert(QString::fromRawData(buffer, 2), PlistValue(qint64(2)));
    buffer[0] = QChar(u'z');
    EXPECT_EQ(first.keyAt(0), QStringLiteral("ab"));
    EXPECT_EQ(second.keyAt(0), QStringLiteral("xb"));
    // Lookups through one buffer follow its text as well.
    buffer[0] = QChar(u'a');
    EXPECT_EQ(first.value(QStringView(buffer, 2)).toInteger(), 1);
    buffer[0] = QChar(u'x');
    EXPECT_EQ(second.value(QStringView(buffer, 2)).toInteger(), 2);
    EXPECT_FALSE(first.contains(QStringView(buffer, 2)));

    // A name never used before is not found, and is found once a dictionary holds it.
    const QString late = QStringLiteral("NameFirstUsedHere");
    EXPECT_FALSE(first.contains(late));
    first.insert(late, PlistValue(qint64(3)));
    EXPECT_EQ(first.value(late).toInteger(), 3);
    // Names too long to be shared are still keys like any other, next to shared ones.
    const QString longName(200, QChar(u'n'));
    first.insert(longName, PlistValue(qint64(4)));
    EXPECT_EQ(first.value(longName).toInteger(), 4);
    EXPECT_EQ(first.value(u"ab").toInteger(), 1);
    EXPECT_FALSE(first.contains(QString(199, QChar(u'n'))));
    PlistValue copy = first;
    copy.remove(longName);
    EXPECT_EQ(copy.value(late).toInteger(), 3);
    EXPECT_EQ(first.value(longName).toInteger(), 4);

    PlistValue controls = PlistValue::makeArray();
    for (int i = 0; i < 3; ++i) {
        PlistValue control = PlistValue::makeDict();
        for (int k = 0; k < 9; ++k)
            control.insert(QStringLiteral("TVKName"), PlistValue(qint64(k)));
        control.insert(QStringLiteral("TVKType"), PlistValue(qint64(i)));
        EXPECT_EQ(control.size(), 2);
        EXPECT_EQ(control.value(u"TVKName").toInteger(), 8);
        controls.append(control);
    }
    // Lookups tell apart keys of one length that share their first characters.
    PlistValue action = PlistValue::makeDict();
    const char16_t* names[] = {u"TVKAppBID", u"TVKAction", u"TVKAppTID", u"TVK", u"TV", u""};
    for (int i = 0; i < 6; ++i)
        action.insert(QString::fromUtf16(names[i]), PlistValue(qint64(i)));
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(action.value(QStringView(names[i])).toInteger(-1), i) << i;
    EXPECT_FALSE(action.contains(u"TVKAppXID"));
    EXPECT_FALSE(action.contains(u"TVKA"));
    EXPECT_EQ(controls.at(2).keys(),
              (QStringList{QStringLiteral("TVKName"), QStringLiteral("TVKType")}));
}
