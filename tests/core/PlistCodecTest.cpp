#include "core/PlistCodec.h"

#include "FailDevice.h"
#include "core/PlistFormats.h"
#include "core/PlistNodes.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimeZone>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

using corvane::PlistCodec;
using corvane::PlistFormat;
using corvane::PlistReadResult;
using corvane::PlistValue;

namespace {

PlistValue str(const char16_t* s)
{
    return PlistValue(QString::fromUtf16(s));
}

PlistValue dict(std::initializer_list<std::pair<const char*, PlistValue>> entries)
{
    PlistValue d = PlistValue::makeDict();
    for (const auto& [key, value] : entries)
        d.insert(QString::fromUtf8(key), value);
    return d;
}

PlistValue array(std::initializer_list<PlistValue> items)
{
    PlistValue a = PlistValue::makeArray();
    for (const PlistValue& item : items)
        a.append(item);
    return a;
}

PlistReadResult readText(const char* text)
{
    return PlistCodec::read(QByteArrayView(text, qsizetype(std::strlen(text))));
}

PlistReadResult readBytes(const QByteArray& bytes)
{
    return PlistCodec::read(QByteArrayView(bytes));
}

const char* formatName(PlistFormat f)
{
    return f == PlistFormat::Xml ? "xml" : "binary";
}

QByteArray header()
{
    return QByteArrayLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                             "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                             "<plist version=\"1.0\">\n");
}

} // namespace

TEST(PlistCodec, EveryKindRoundTripsInBothForms)
{
    const QByteArray bytes1000 = [] {
        QByteArray b(1000, 0);
        for (int i = 0; i < b.size(); ++i)
            b[i] = char(i * 7);
        return b;
    }();
    const struct
    {
        const char* name;
        PlistValue value;
    } cases[] = {
        {"true", PlistValue(true)},
        {"false", PlistValue(false)},
        {"zero", PlistValue(0)},
        {"byte", PlistValue(255)},
        {"two bytes", PlistValue(256)},
        {"four bytes", PlistValue(qint64(65536))},
        {"eight bytes", PlistValue(qint64(1) << 32)},
        {"minus one", PlistValue(-1)},
        {"int64 min", PlistValue(std::numeric_limits<qint64>::min())},
        {"int64 max", PlistValue(std::numeric_limits<qint64>::max())},
        {"unsigned 2^63", PlistValue(quint64(1) << 63)},
        {"unsigned max", PlistValue(std::numeric_limits<quint64>::max())},
        {"integral real", PlistValue(1.0)},
        {"tenth", PlistValue(0.1)},
        {"third", PlistValue(-1.0 / 3.0)},
        {"huge real", PlistValue(1.7976931348623157e308)},
        {"denormal", PlistValue(4.9406564584124654e-324)},
        {"infinity", PlistValue(std::numeric_limits<double>::infinity())},
        {"minus infinity", PlistValue(-std::numeric_limits<double>::infinity())},
        {"nan", PlistValue(std::numeric_limits<double>::quiet_NaN())},
        {"empty string", PlistValue(QString())},
        {"ascii", str(u"Fader Touch 12")},
        {"markup", str(u"<a href=\"x\">&amp; 'q'</a> ]]>")},
        {"line ends", str(u"one\r\ntwo\rthree\n\tfour  ")},
        {"controls", str(u"\x0001\x0008\x000B\x001F\x0000")},
        {"latin and cjk", str(u"M\u00FCller \u65E5\u672C")},
        {"non-BMP", str(u"clef \U0001D11E and \U0001F600")},
        {"lone surrogates", str(u"a\xD800"
                                u"b\xDC00")},
        {"nonchars", str(u"\xFFFE\xFFFF")},
        {"empty data", PlistValue(QByteArray())},
        {"one byte", PlistValue(QByteArray("\x01", 1))},
        {"two bytes data", PlistValue(QByteArray("\xFF\x00", 2))},
        {"long data", PlistValue(bytes1000)},
        {"date epoch", PlistValue::makeDate(0.0)},
        {"date before", PlistValue::makeDate(-978307200.0)},
        {"date late", PlistValue::makeDate(252423993599.0 - 978307200.0)},
        {"empty array", PlistValue::makeArray()},
        {"empty dict", PlistValue::makeDict()},
        {"nested", dict({{"TVKName", str(u"Default")},
                         {"TVKLayers", array({dict({}), array({PlistValue(1), PlistValue(2.5)})})},
                         {"\u00FCber <key>", PlistValue(true)},
                         {"", PlistValue(QByteArray("x"))}})},
        {"long array",
         [] {
             PlistValue a = PlistValue::makeArray();
             for (int i = 0; i < 300; ++i)
                 a.append(PlistValue(QStringLiteral("Button %1").arg(i % 40)));
             return a;
         }()},
    };
    // Characters XML 1.0 cannot carry come back from the XML form as U+FFFD; the binary form
    // keeps them.
    const auto asXmlCarriesIt = [](const PlistValue& value) {
        if (!value.isString())
            return value;
        QString text = value.toString();
        for (qsizetype i = 0; i < text.size(); ++i) {
            const char16_t u = text.at(i).unicode();
            const bool pair =
                QChar::isHighSurrogate(u) && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
            if (pair)
                ++i;
            else if ((u < 0x20 && u != '\t' && u != '\n' && u != '\r') || QChar::isSurrogate(u) ||
                     u == 0xFFFE || u == 0xFFFF)
                text[i] = QChar(0xFFFD);
        }
        return PlistValue(text);
    };
    for (const PlistFormat format : {PlistFormat::Xml, PlistFormat::Binary}) {
        for (const auto& c : cases) {
            SCOPED_TRACE(std::string(formatName(format)) + ": " + c.name);
            const QByteArray bytes = PlistCodec::write(c.value, format);
            ASSERT_FALSE(bytes.isEmpty());
            const PlistReadResult r = readBytes(bytes);
            ASSERT_TRUE(r.ok) << r.error.toString().toStdString();
            EXPECT_EQ(r.format, format);
            EXPECT_EQ(r.value.type(), c.value.type());
            EXPECT_EQ(r.value.isUnsignedInteger(), c.value.isUnsignedInteger());
            EXPECT_EQ(r.value, format == PlistFormat::Xml ? asXmlCarriesIt(c.value) : c.value);
            if (c.value.isReal() && !std::isnan(c.value.toReal())) {
                const double expected = c.value.toReal();
                const double got = r.value.toReal();
                EXPECT_EQ(std::memcmp(&expected, &got, sizeof expected), 0);
            }
            // Equal trees give equal bytes: the output depends on nothing but the tree.
            EXPECT_EQ(PlistCodec::write(r.value, format), bytes);
        }
    }
}

TEST(PlistCodec, XmlOutputIsTheStandardLayout)
{
    PlistValue root = dict({{"b", array({PlistValue(1), PlistValue(-2), PlistValue(0.5)})},
                            {"a", str(u"x & <y>")},
                            {"B", PlistValue::makeArray()},
                            {"c", dict({{"z", PlistValue(false)}, {"y", PlistValue(true)}})},
                            {"d", PlistValue(QByteArray("hello"))},
                            {"e", PlistValue::makeDate(0.0)},
                            {"f", PlistValue::makeDict()},
                            {"g", PlistValue(QString())},
                            {"h", PlistValue(2.0)},
                            {"skipped", PlistValue()}});
    const QByteArray expected =
        header() + QByteArrayLiteral("<dict>\n"
                                     "\t<key>B</key>\n"
                                     "\t<array/>\n"
                                     "\t<key>a</key>\n"
                                     "\t<string>x &amp; &lt;y&gt;</string>\n"
                                     "\t<key>b</key>\n"
                                     "\t<array>\n"
                                     "\t\t<integer>1</integer>\n"
                                     "\t\t<integer>-2</integer>\n"
                                     "\t\t<real>0.5</real>\n"
                                     "\t</array>\n"
                                     "\t<key>c</key>\n"
                                     "\t<dict>\n"
                                     "\t\t<key>y</key>\n"
                                     "\t\t<true/>\n"
                                     "\t\t<key>z</key>\n"
                                     "\t\t<false/>\n"
                                     "\t</dict>\n"
                                     "\t<key>d</key>\n"
                                     "\t<data>aGVsbG8=</data>\n"
                                     "\t<key>e</key>\n"
                                     "\t<date>2001-01-01T00:00:00Z</date>\n"
                                     "\t<key>f</key>\n"
                                     "\t<dict/>\n"
                                     "\t<key>g</key>\n"
                                     "\t<string/>\n"
                                     "\t<key>h</key>\n"
                                     "\t<real>2</real>\n"
                                     "</dict>\n"
                                     "</plist>\n");
    EXPECT_EQ(PlistCodec::write(root), expected);

    // A carriage return is a reference (raw, it would be read as a newline); characters XML 1.0
    // cannot carry at all are U+FFFD; everything else is UTF-8.
    EXPECT_EQ(PlistCodec::write(str(u"\u00E9\U0001D11E\x0001\r\xD800\xFFFF\t\n")),
              header() + QByteArray("<string>\xC3\xA9\xF0\x9D\x84\x9E\xEF\xBF\xBD&#xD;"
                                    "\xEF\xBF\xBD\xEF\xBF\xBD\t\n</string>\n</plist>\n"));
}

TEST(PlistCodec, BinaryOutputHasTheStandardLayout)
{
    // {"a": 1}: the key, the value, then the dictionary referring to both, which is the top
    // object; one-byte offsets and references.
    const QByteArray expected = QByteArray("bplist00"
                                           "\x51\x61"
                                           "\x10\x01"
                                           "\xD1\x00\x01"
                                           "\x08\x0A\x0C"
                                           "\x00\x00\x00\x00\x00\x00\x01\x01"
                                           "\x00\x00\x00\x00\x00\x00\x00\x03"
                                           "\x00\x00\x00\x00\x00\x00\x00\x02"
                                           "\x00\x00\x00\x00\x00\x00\x00\x0F",
                                           50);
    EXPECT_EQ(PlistCodec::write(dict({{"a", PlistValue(1)}}), PlistFormat::Binary), expected);

    // Repeated strings, keys and containers are stored once; non-ASCII text goes out as UTF-16.
    const PlistValue repeated = array(
        {dict({{"k", str(u"v")}}), dict({{"k", str(u"v")}}), str(u"k"), str(u"\u00E9\U0001D11E")});
    const QByteArray bytes = PlistCodec::write(repeated, PlistFormat::Binary);
    EXPECT_EQ(quint8(bytes.at(bytes.size() - 32 + 15)), 5); // "k", "v", dict, "é𝄞", array
    EXPECT_TRUE(bytes.contains(QByteArray("\x63\x00\xE9\xD8\x34\xDD\x1E", 7)));
    EXPECT_EQ(readBytes(bytes).value, repeated);
}

TEST(PlistCodec, RepeatedContainersAreStoredOnceAndReadBackShared)
{
    // Layers repeat the same unassigned controls: each distinct one is stored once.
    PlistValue controls = PlistValue::makeArray();
    for (int i = 0; i < 1000; ++i)
        controls.append(dict({{"TVKName", str(u"Fader")}, {"TVKType", PlistValue(i % 2)}}));
    const PlistValue layers = array({controls, controls, array({}), array({})});
    const QByteArray bytes = PlistCodec::write(layers, PlistFormat::Binary);
    // "TVKName", "Fader", "TVKType", 0, 1, two controls, the control list, the empty list and
    // the list of layers. The thousand references of the control list are stored once.
    EXPECT_EQ(quint8(bytes.at(bytes.size() - 32 + 15)), 10);
    EXPECT_LT(bytes.size(), 1200);

    const PlistReadResult read = readBytes(bytes);
    ASSERT_TRUE(read.ok) << read.error.reason.toStdString();
    EXPECT_EQ(read.value, layers);
    using corvane::PlistBuilder;
    const PlistValue& list = read.value.at(0);
    EXPECT_EQ(PlistBuilder::identity(list), PlistBuilder::identity(read.value.at(1)));
    EXPECT_EQ(PlistBuilder::identity(list.at(0)), PlistBuilder::identity(list.at(998)));
    EXPECT_NE(PlistBuilder::identity(list.at(0)), PlistBuilder::identity(list.at(1)));

    // Changing one shared control changes that one only.
    PlistValue changed = read.value;
    changed.findAt(0)->findAt(4)->insert(QStringLiteral("TVKUName"), str(u"Lead"));
    EXPECT_EQ(changed.at(0).at(4).value(u"TVKUName").toString(), QStringLiteral("Lead"));
    EXPECT_TRUE(changed.at(0).at(2).value(u"TVKUName").isNull());
    EXPECT_TRUE(read.value.at(0).at(4).value(u"TVKUName").isNull());
}

TEST(PlistCodec, ReadsXmlInOtherWritersStyles)
{
    const char* text =
        "\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8' standalone='yes'?>\r\n"
        "<!-- written by hand -->\r\n"
        "<!DOCTYPE plist [ <!ENTITY x \"]>\"> ]>\r\n"
        "<?editor keep?>\r\n"
        "<plist version='1.0' xmlns:x=\"a>b\">\r\n"
        "  <dict >\r\n"
        "    <!-- a comment between entries -->\r\n"
        "    <key>a&amp;b</key>   <string>&lt;&gt;&quot;&apos;&#65;&#x42;&#x1F600;</string>\r\n"
        "    <key>cdata</key><string><![CDATA[<raw> & ]]>tail<!-- c --></string>\r\n"
        "    <key>crlf</key><string>one\r\ntwo\rthree</string>\r\n"
        "    <key>ints</key><array><integer> +5 </integer><integer>-7</integer>"
        "<integer>0x1F</integer><integer>18446744073709551615</integer></array>\r\n"
        "    <key>reals</key><array><real>-1.5e3</real><real>+infinity</real>"
        "<real>NaN</real><real>3</real></array>\r\n"
        "    <key>bools</key><array><true></true><false /></array>\r\n"
        "    <key>data</key><data>\r\n\taGVs\r\n\tbG8=\r\n\t</data>\r\n"
        "    <key>date</key><date> 2004-02-29T12:34:56Z </date>\r\n"
        "    <key>dup</key><integer>1</integer><key>dup</key><integer>2</integer>\r\n"
        "    <key></key><string></string>\r\n"
        "  </dict>\r\n"
        "</plist>\r\n"
        "<!-- trailing -->\r\n";
    const PlistReadResult r = readText(text);
    ASSERT_TRUE(r.ok) << r.error.toString().toStdString();
    const PlistValue& v = r.value;
    EXPECT_EQ(v.value(u"a&b").toString(), QString::fromUtf16(u"<>\"'AB\U0001F600"));
    EXPECT_EQ(v.value(u"cdata").toString(), QStringLiteral("<raw> & tail"));
    EXPECT_EQ(v.value(u"crlf").toString(), QStringLiteral("one\ntwo\nthree"));
    const PlistValue& ints = v.value(u"ints");
    EXPECT_EQ(ints.at(0).toInteger(), 5);
    EXPECT_EQ(ints.at(1).toInteger(), -7);
    EXPECT_EQ(ints.at(2).toInteger(), 31);
    EXPECT_TRUE(ints.at(3).isUnsignedInteger());
    const PlistValue& reals = v.value(u"reals");
    EXPECT_EQ(reals.at(0).toReal(), -1500.0);
    EXPECT_TRUE(std::isinf(reals.at(1).toReal()));
    EXPECT_TRUE(std::isnan(reals.at(2).toReal()));
    EXPECT_TRUE(reals.at(3).isReal());
    EXPECT_EQ(v.value(u"bools"), array({PlistValue(true), PlistValue(false)}));
    EXPECT_EQ(v.value(u"data").toData(), QByteArray("hello"));
    EXPECT_EQ(v.value(u"date").toDateTime(),
              QDateTime(QDate(2004, 2, 29), QTime(12, 34, 56), QTimeZone::utc()));
    EXPECT_EQ(v.value(u"dup").toInteger(), 2); // the last of a repeated key wins
    EXPECT_EQ(v.size(), 10);
    EXPECT_TRUE(v.value(u"").isString());

    // A document without the <plist> wrapper is one value.
    EXPECT_EQ(readText("<array><string>x</string></array>").value, array({str(u"x")}));
}

TEST(PlistCodec, RepeatedNamesShareOneCopy)
{
    // Control names and keys repeat thousands of times in a configuration; a read stores each
    // once, which is what keeps a loaded configuration small.
    const PlistValue controls = array(
        {dict({{"TVKName", str(u"Fader Touch 12")}}), dict({{"TVKName", str(u"Fader Touch 12")}})});
    for (const PlistFormat format : {PlistFormat::Xml, PlistFormat::Binary}) {
        SCOPED_TRACE(formatName(format));
        const PlistValue read = readBytes(PlistCodec::write(controls, format)).value;
        using corvane::PlistBuilder;
        EXPECT_EQ(PlistBuilder::identity(read.at(0).value(u"TVKName")),
                  PlistBuilder::identity(read.at(1).value(u"TVKName")));
        EXPECT_EQ(PlistBuilder::entries(read.at(0))[0].first.node(),
                  PlistBuilder::entries(read.at(1))[0].first.node());
    }
}

TEST(PlistCodec, DictionariesOfOneKindAreWrittenInKeyOrder)
{
    // Thousands of dictionaries share their keys; each one must still come out sorted, whatever
    // order its keys were inserted in and whichever of its values are null.
    PlistValue list = PlistValue::makeArray();
    for (int i = 0; i < 40; ++i) {
        PlistValue d = PlistValue::makeDict();
        switch (i % 4) {
        case 0:
            d.insert(QStringLiteral("b"), PlistValue(qint64(i)));
            d.insert(QStringLiteral("a"), PlistValue(qint64(i)));
            d.insert(QStringLiteral("c"), PlistValue(qint64(i)));
            break;
        case 1:
            d.insert(QStringLiteral("c"), PlistValue(qint64(i)));
            d.insert(QStringLiteral("b"), PlistValue(qint64(i)));
            d.insert(QStringLiteral("a"), PlistValue(qint64(i)));
            break;
        case 2:
            d.insert(QStringLiteral("b"), PlistValue(qint64(i)));
            d.insert(QStringLiteral("a"), PlistValue());
            d.insert(QStringLiteral("c"), PlistValue(qint64(i)));
            break;
        default:
            d.insert(QStringLiteral("b"), PlistValue(qint64(i)));
            d.insert(QStringLiteral("a"), PlistValue(qint64(i)));
            d.insert(QStringLiteral("c"), PlistValue(qint64(i)));
            d.insert(QStringLiteral("B"), PlistValue(qint64(i)));
            break;
        }
        list.append(d);
    }
    const QByteArray xml = PlistCodec::write(list, PlistFormat::Xml);
    QStringList keys;
    QStringList seen;
    for (const QByteArray& line : xml.split('\n')) {
        const QByteArray t = line.trimmed();
        if (t.startsWith("<key>")) {
            keys.append(QString::fromUtf8(t.mid(5, t.size() - 11)));
        } else if (t == "</dict>") {
            seen.append(keys.join(QLatin1Char(',')));
            keys.clear();
        }
    }
    ASSERT_EQ(seen.size(), 40);
    for (int i = 0; i < 40; ++i) {
        const char* expected[] = {"a,b,c", "a,b,c", "b,c", "B,a,b,c"};
        EXPECT_EQ(seen[i], QString::fromLatin1(expected[i % 4])) << i;
    }
    const PlistValue back = PlistCodec::read(xml).value;
    PlistValue expected = list;
    for (int i = 2; i < 40; i += 4)
        expected.findAt(i)->remove(u"a");
    EXPECT_EQ(back, expected);
    // Both forms agree, whether the keys were inserted or read.
    EXPECT_EQ(PlistCodec::write(list, PlistFormat::Binary),
              PlistCodec::write(back, PlistFormat::Binary));
    EXPECT_EQ(PlistCodec::read(PlistCodec::write(list, PlistFormat::Binary)).value, expected);
}

TEST(PlistCodec, MalformedXmlIsRefusedWithPositionAndReason)
{
    const std::string deep = std::string("<plist>") + [] {
        std::string s;
        for (int i = 0; i < 600; ++i)
            s += "<array>";
        return s;
    }();
    const struct
    {
        std::string text;
        qint64 offset;
        const char* reason;
    } cases[] = {
        {"", 0, "empty document"},
        {"hello", 0, "not a property list"},
        {"  </plist>", 2, "not a property list"},
        {"<plist version=\"1.0\"/>", 0, "empty property list"},
        {"<plist></plist>", 0, "empty property list"},
        {"<plist><dict>", 13, "document ends inside <dict>"},
        {"<plist><string>abc", 18, "document ends inside <string>"},
        {"<plist><dict><key>a</key></dict></plist>", 25, "key \"a\" has no value"},
        {"<plist><dict><string>a</string></dict></plist>", 13,
         "expected <key> in <dict>, found <string>"},
        {"<plist><array></dict></plist>", 14, "expected </array>, found </dict>"},
        {"<plist><array>text</array></plist>", 14, "unexpected text \"text\" in <array>"},
        {"<plist><foo/></plist>", 7, "unknown element <foo>"},
        {"<plist><key>a</key></plist>", 7, "<key> outside a <dict>"},
        {"<plist><string>a<b/></string></plist>", 16, "unexpected element inside <string>"},
        {"<plist><string>&bogus;</string></plist>", 15, "unknown entity &bogus;"},
        {"<plist><string>&#xD8000000;</string></plist>", 15,
         "bad character reference &#xD8000000;"},
        {"<plist><string>&amp</string></plist>", 15, "unterminated entity reference"},
        {"<plist><string>&#99999999999999999999999;</string></plist>", 15,
         "character reference too long"},
        {"<plist><string>&averyveryverylongname;</string></plist>", 15,
         "entity reference too long"},
        {"<plist><string>\xC3\x28</string></plist>", 15, "invalid UTF-8"},
        {"<plist><string>\xED\xA0\x80</string></plist>", 15, "invalid UTF-8"},
        {"<plist><string>&#xDC00;</string></plist>", 15, "invalid UTF-8"},
        {std::string("<plist><string>ab\0c</string></plist>", 36), 17, "NUL character in text"},
        {std::string("<plist><string>&amp;\0</string></plist>", 38), 20, "NUL character in text"},
        {"<plist><data>aGVsbG8=x</data></plist>", 13, "bad base64 in <data>"},
        {"<plist><data>a</data></plist>", 13, "bad base64 in <data>"},
        {"<plist><integer>12a</integer></plist>", 16, "bad integer \"12a\""},
        {"<plist><integer></integer></plist>", 16, "bad integer \"\""},
        {"<plist><integer>18446744073709551616</integer></plist>", 16,
         "integer out of range \"18446744073709551616\""},
        {"<plist><integer>-9223372036854775809</integer></plist>", 16,
         "integer out of range \"-9223372036854775809\""},
        {"<plist><real>1.2.3</real></plist>", 13, "bad real \"1.2.3\""},
        {"<plist><real>1e999</real></plist>", 13, "bad real \"1e999\""},
        {"<plist><date>2001-02-29T00:00:00Z</date></plist>", 13,
         "bad date \"2001-02-29T00:00:00Z\", expected YYYY-MM-DDTHH:MM:SSZ"},
        {"<plist><date>2001-01-01 00:00:00</date></plist>", 13,
         "bad date \"2001-01-01 00:00:00\", expected YYYY-MM-DDTHH:MM:SSZ"},
        {"<plist><true>yes</true></plist>", 13, "<true> must be empty"},
        {"<plist><string>a</string><string>b</string></plist>", 25,
         "more than one value in <plist>"},
        {"<plist><true/></plist>junk", 22, "unexpected content after the property list"},
        {"<plist><!-- open", 7, "unterminated comment"},
        {"<plist><string><![CDATA[x</string></plist>", 15, "unterminated CDATA section"},
        {"<!DOCTYPE plist", 0, "unterminated DOCTYPE"},
        {deep, 7 + 512 * 7, "nesting deeper than 512 levels"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.substr(0, 60));
        const PlistReadResult r =
            PlistCodec::read(QByteArrayView(c.text.data(), qsizetype(c.text.size())));
        EXPECT_FALSE(r.ok);
        EXPECT_TRUE(r.value.isNull());
        EXPECT_EQ(r.error.reason.toStdString(), c.reason);
        EXPECT_EQ(r.error.offset, c.offset);
    }
    EXPECT_EQ(readText("<plist><foo/></plist>").error.toString(),
              QStringLiteral("offset 7: unknown element <foo>"));
}

namespace {

// Builds a binary document from raw object bytes: offsets are computed, the trailer written.
QByteArray binary(const std::vector<QByteArray>& objects, quint64 top = 0, int refSize = 1)
{
    QByteArray out("bplist00");
    std::vector<int> offsets;
    for (const QByteArray& o : objects) {
        offsets.push_back(int(out.size()));
        out += o;
    }
    const int table = int(out.size());
    for (const int offset : offsets)
        out += char(offset);
    QByteArray trailer(32, 0);
    trailer[6] = 1;
    trailer[7] = char(refSize);
    trailer[15] = char(objects.size());
    trailer[23] = char(top);
    trailer[30] = char(table >> 8);
    trailer[31] = char(table);
    return out + trailer;
}

QByteArray bytesOf(std::initializer_list<int> values)
{
    QByteArray b;
    for (const int v : values)
        b += char(v);
    return b;
}

} // namespace

TEST(PlistCodec, ReadsBinaryFromOtherWriters)
{
    // Two-byte references, a UTF-16 string with a surrogate pair, a float, an integer given in
    // sixteen bytes, a long ASCII string whose length follows the marker.
    QByteArray sixteen = bytesOf({0x14});
    sixteen += QByteArray(8, 0);
    sixteen += QByteArray(8, char(0xFF));
    const std::vector<QByteArray> objects = {
        bytesOf({0xA5, 0, 1, 0, 2, 0, 3, 0, 4, 0, 5}),
        bytesOf({0x63, 0x00, 0x41, 0xD8, 0x34, 0xDD, 0x1E}),
        bytesOf({0x22, 0x3F, 0xC0, 0x00, 0x00}),
        sixteen,
        bytesOf({0x5F, 0x10, 0x10}) + QByteArray(16, 'x'),
        bytesOf({0x33, 0x41, 0xCD, 0xCD, 0x65, 0, 0, 0, 0}),
    };
    const PlistReadResult r = readBytes(binary(objects, 0, 2));
    ASSERT_TRUE(r.ok) << r.error.toString().toStdString();
    EXPECT_EQ(r.format, PlistFormat::Binary);
    EXPECT_EQ(r.value.at(0).toString(), QString::fromUtf16(u"A\U0001D11E"));
    EXPECT_EQ(r.value.at(1).toReal(), 1.5);
    EXPECT_TRUE(r.value.at(2).isUnsignedInteger());
    EXPECT_EQ(r.value.at(2).toUnsigned(), std::numeric_limits<quint64>::max());
    EXPECT_EQ(r.value.at(3).toString(), QString(16, u'x'));
    EXPECT_EQ(r.value.at(4).dateSeconds(), 1000000000.0);
}

TEST(PlistCodec, MalformedBinaryIsRefusedWithPositionAndReason)
{
    QByteArray badTrailer = binary({bytesOf({0x09})});
    badTrailer[badTrailer.size() - 26] = 9;
    QByteArray tableOutside = binary({bytesOf({0x09})});
    tableOutside[tableOutside.size() - 1] = char(0xF0);
    QByteArray tooMany = binary({bytesOf({0x09})});
    tooMany[tooMany.size() - 17] = char(200);
    QByteArray badOffset = binary({bytesOf({0x09})});
    badOffset[9] = char(100);

    // a[0] = a[1] = b, b[0] = b[1] = c, ...: a tree of 2^30 leaves from a few bytes.
    std::vector<QByteArray> doubling;
    for (int i = 0; i < 30; ++i)
        doubling.push_back(bytesOf({0xA2, i + 1, i + 1}));
    doubling.push_back(bytesOf({0x09}));

    const struct
    {
        const char* name;
        QByteArray bytes;
        qint64 offset;
        const char* reason;
    } cases[] = {
        {"short", QByteArray("bplist00\x09"), 0, "truncated binary property list"},
        {"version", QByteArray("bplist01") + QByteArray(40, 0), 6,
         "unsupported binary property list version"},
        {"offset size", badTrailer, 10, "bad trailer: offset size 9, reference size 1"},
        {"table outside", tableOutside, 10, "bad trailer: offset table at 240"},
        {"object count", tooMany, 10, "bad trailer: 200 objects do not fit the offset table"},
        {"top object", binary({bytesOf({0x09})}, 1), 10, "bad trailer: top object 1 of 1"},
        {"object offset", badOffset, 9, "object 0 at offset 100 outside the object area"},
        {"reference", binary({bytesOf({0xA1, 0x07})}), 9, "object reference 7 out of range"},
        {"cycle", binary({bytesOf({0xA1, 0x01}), bytesOf({0xA1, 0x00})}), 8,
         "object reference cycle through object 0"},
        {"self", binary({bytesOf({0xD1, 0x01, 0x00}), bytesOf({0x51, 'k'})}), 8,
         "object reference cycle through object 0"},
        {"length", binary({bytesOf({0x5F, 0x13, 0x7F, 0, 0, 0, 0, 0, 0, 0})}), 8,
         "object length 9151314442816847872 runs past the object area"},
        {"array length", binary({bytesOf({0xAF, 0x12, 0x10, 0, 0, 0})}), 8,
         "object length 268435456 runs past the object area"},
        {"length marker", binary({bytesOf({0x4F, 0x23, 0})}), 9, "bad object length marker 0x23"},
        {"truncated int", binary({bytesOf({0x13, 0, 0})}), 8, "truncated integer"},
        {"wide int", binary({bytesOf({0x14, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0})}), 8,
         "integer wider than 64 bits"},
        {"uid", binary({bytesOf({0x80, 0x01})}), 8, "unsupported object type 0x80"},
        {"null", binary({bytesOf({0x00})}), 8, "unsupported object type 0x00"},
        {"key", binary({bytesOf({0xD1, 0x01, 0x01}), bytesOf({0x10, 0x01})}), 11,
         "dictionary key (object 1) is not a string"},
        {"expansion", binary(doubling), 8, "object references expand to more than 67108864 values"},
        {"depth",
         [] {
             std::vector<QByteArray> objects;
             for (int i = 0; i < 600; ++i)
                 objects.push_back(bytesOf({0xA1, (i + 1) >> 8, (i + 1) & 0xFF}));
             objects.push_back(bytesOf({0x09}));
             QByteArray out("bplist00");
             std::vector<int> offsets;
             for (const QByteArray& o : objects) {
                 offsets.push_back(int(out.size()));
                 out += o;
             }
             const int table = int(out.size());
             for (const int offset : offsets) {
                 out += char(offset >> 8);
                 out += char(offset);
             }
             QByteArray trailer(32, 0);
             trailer[6] = 2;
             trailer[7] = 2;
             trailer[14] = char(objects.size() >> 8);
             trailer[15] = char(objects.size());
             trailer[30] = char(table >> 8);
             trailer[31] = char(table);
             return out + trailer;
         }(),
         8 + 512 * 3, "nesting deeper than 512 levels"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const PlistReadResult r = readBytes(c.bytes);
        EXPECT_FALSE(r.ok);
        EXPECT_TRUE(r.value.isNull());
        EXPECT_EQ(r.error.reason.toStdString(), c.reason);
        if (std::string_view(c.name) == "expansion")
            continue; // wherever the budget runs out
        EXPECT_EQ(r.error.offset, c.offset);
    }
    // Every prefix of a good document is refused cleanly.
    const QByteArray good = PlistCodec::write(
        dict({{"TVKName", str(u"Default")}, {"TVKLayers", array({PlistValue(1.5)})}}),
        PlistFormat::Binary);
    for (qsizetype n = 0; n < good.size(); ++n)
        EXPECT_FALSE(readBytes(good.left(n)).ok) << n;
}

namespace {

PlistValue nestedArrays(int depth)
{
    PlistValue deep = PlistValue::makeArray();
    for (int i = 1; i < depth; ++i) {
        PlistValue outer = PlistValue::makeArray();
        outer.append(deep);
        deep = outer;
    }
    return deep;
}

} // namespace

TEST(PlistCodec, WritersRefuseWhatCannotBeRead)
{
    for (const PlistFormat format : {PlistFormat::Xml, PlistFormat::Binary}) {
        SCOPED_TRACE(formatName(format));
        const PlistValue deepest = nestedArrays(512);
        const PlistReadResult r = readBytes(PlistCodec::write(deepest, format));
        ASSERT_TRUE(r.ok) << r.error.toString().toStdString();
        EXPECT_EQ(r.value, deepest);
        EXPECT_TRUE(PlistCodec::write(nestedArrays(513), format).isEmpty());
        EXPECT_TRUE(PlistCodec::write(PlistValue(), format).isEmpty());
        FailDevice device(1 << 20);
        QString error;
        EXPECT_FALSE(PlistCodec::write(device, PlistValue(), format, &error));
        EXPECT_EQ(error, QStringLiteral("nothing to write: the value is null"));
    }
}

TEST(PlistCodec, DeviceFailuresAreReported)
{
    PlistValue big = PlistValue::makeArray();
    for (int i = 0; i < 60000; ++i)
        big.append(PlistValue(QStringLiteral("Encoder Push %1").arg(i)));
    for (const PlistFormat format : {PlistFormat::Xml, PlistFormat::Binary}) {
        const QByteArray whole = PlistCodec::write(big, format);
        for (const qint64 capacity : {qint64(0), qint64(10), qint64(whole.size() - 1)}) {
            SCOPED_TRACE(std::string(formatName(format)) + " " + std::to_string(capacity));
            FailDevice device(capacity);
            QString error;
            EXPECT_FALSE(PlistCodec::write(device, big, format, &error));
            EXPECT_EQ(error, QStringLiteral("No space left on device"));
        }
        FailDevice roomy(whole.size());
        EXPECT_TRUE(PlistCodec::write(roomy, big, format));
        EXPECT_EQ(roomy.written(), whole);
    }
}

TEST(PlistCodec, FilesAreReplacedAtomically)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("Keyset.CvKs"));
    const PlistValue first = dict({{"TVKName", str(u"Default")}});
    QString error;
    ASSERT_TRUE(PlistCodec::writeFile(path, first, PlistFormat::Xml, &error))
        << error.toStdString();
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    file.close();
    EXPECT_EQ(before, PlistCodec::write(first));

    EXPECT_FALSE(PlistCodec::writeFile(path, nestedArrays(600), PlistFormat::Binary, &error));
    EXPECT_TRUE(error.startsWith(QStringLiteral("cannot write ")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), before);
    file.close();
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("Keyset.CvKs")});

    EXPECT_FALSE(PlistCodec::writeFile(dir.filePath(QStringLiteral("missing/x.plist")), first,
                                       PlistFormat::Xml, &error));

    const PlistReadResult missing = PlistCodec::readFile(dir.filePath(QStringLiteral("none")));
    EXPECT_FALSE(missing.ok);
    EXPECT_EQ(missing.error.reason, QStringLiteral("No such file or directory"));
    EXPECT_EQ(missing.error.toString(), missing.error.reason);
}

TEST(PlistCodec, LargeFilesReadBackWhole)
{
    // Larger than the step at which the reader gives back pages it has passed.
    PlistValue layers = PlistValue::makeArray();
    for (int i = 0; i < 50000; ++i)
        layers.append(dict({{"TVKName", PlistValue(QStringLiteral("Fader Touch %1").arg(i % 97))},
                            {"TVKIndex", PlistValue(i)},
                            {"TVKColor", PlistValue(0.25 * i)}}));
    const PlistValue root = dict({{"TVKLayers", layers}});
    QTemporaryDir dir;
    for (const PlistFormat format : {PlistFormat::Xml, PlistFormat::Binary}) {
        SCOPED_TRACE(formatName(format));
        const QString path = dir.filePath(QStringLiteral("config.plist"));
        ASSERT_TRUE(PlistCodec::writeFile(path, root, format));
        if (format == PlistFormat::Xml) {
            EXPECT_GT(QFile(path).size(), 4 << 20);
        }
        const PlistReadResult r = PlistCodec::readFile(path);
        ASSERT_TRUE(r.ok) << r.error.toString().toStdString();
        EXPECT_EQ(r.format, format);
        EXPECT_EQ(r.value, root);
    }
}

TEST(PlistCodec, CharactersNeedingCareAreWrittenWhereverTheyFall)
{
    // Each special character at every position of texts longer than the runs the writer copies
    // in one step, as values and as keys used by many dictionaries.
    const std::pair<char16_t, const char*> cases[] = {{u'&', "&amp;"},
                                                      {u'<', "&lt;"},
                                                      {u'>', "&gt;"},
                                                      {u'\t', "\t"},
                                                      {u'\r', "&#xD;"},
                                                      {u'\x1', "\xEF\xBF\xBD"},
                                                      {u'\xE9', "\xC3\xA9"},
                                                      {u'\x20AC', "\xE2\x82\xAC"},
                                                      {u'\xFFFE', "\xEF\xBF\xBD"},
                                                      {u'\xD800', "\xEF\xBF\xBD"},
                                                      {u'\x7F', "\x7F"}};
    for (const auto& [c, written] : cases) {
        for (int at = 0; at < 19; ++at) {
            QString text = QStringLiteral("abcdefghijklmnopqr");
            text.insert(at, QChar(c));
            QByteArray expected = QStringLiteral("abcdefghijklmnopqr").toUtf8();
            expected.insert(at, written);
            PlistValue list = PlistValue::makeArray();
            for (int i = 0; i < 3; ++i) {
                PlistValue d = PlistValue::makeDict();
                d.insert(text, PlistValue(text));
                list.append(d);
            }
            const QByteArray xml = PlistCodec::write(list, PlistFormat::Xml);
            EXPECT_EQ(xml.count("<key>" + expected + "</key>\n"), 3) << int(c) << ' ' << at;
            EXPECT_EQ(xml.count("<string>" + expected + "</string>\n"), 3) << int(c) << ' ' << at;
            // What XML cannot carry reads back as the replacement character.
            const bool replaced = c == u'\x1' || c == u'\xFFFE' || c == u'\xD800';
            QString back = text;
            back[at] = replaced ? QChar(0xFFFD) : QChar(c);
            PlistValue backList = PlistValue::makeArray();
            for (int i = 0; i < 3; ++i) {
                PlistValue d = PlistValue::makeDict();
                d.insert(back, PlistValue(back));
                backList.append(d);
            }
            EXPECT_EQ(PlistCodec::read(xml).value, backList) << int(c) << ' ' << at;
        }
    }
}

// Containers come out of the readers sized exactly to their contents: editing them afterwards
// (growing past that size, appending one of their own elements, removing, copying) must behave
// as on containers built by hand.
TEST(PlistCodec, ReadContainersEditLikeBuiltOnes)
{
    const PlistValue original =
        dict({{"TVKName", str(u"Default")}, {"TVKLayers", array({PlistValue(1), PlistValue(2)})}});
    for (PlistFormat format : {PlistFormat::Xml, PlistFormat::Binary}) {
        SCOPED_TRACE(formatName(format));
        const PlistReadResult r = readBytes(PlistCodec::write(original, format));
        ASSERT_TRUE(r.ok);
        const PlistValue untouched = r.value;
        PlistValue edited = r.value;

        PlistValue* layers = edited.find(u"TVKLayers");
        ASSERT_NE(layers, nullptr);
        layers->append(layers->at(0));
        layers->append(layers->at(2));
        for (int i = 0; i < 6; ++i)
            edited.insert(QStringLiteral("TVKExtra%1").arg(i), PlistValue(i));
        EXPECT_TRUE(edited.remove(u"TVKName"));
        EXPECT_TRUE(edited.remove(u"TVKExtra5"));
        edited.insert(QStringLiteral("TVKName"), str(u"Other"));

        PlistValue expected = dict(
            {{"TVKLayers", array({PlistValue(1), PlistValue(2), PlistValue(1), PlistValue(1)})}});
        for (int i = 0; i < 5; ++i)
            expected.insert(QStringLiteral("TVKExtra%1").arg(i), PlistValue(i));
        expected.insert(QStringLiteral("TVKName"), str(u"Other"));
        EXPECT_EQ(edited, expected);
        EXPECT_EQ(edited.keyAt(0), QStringLiteral("TVKLayers"));
        EXPECT_EQ(edited.keyAt(6), QStringLiteral("TVKName"));
        EXPECT_EQ(untouched, original);
        EXPECT_EQ(readBytes(PlistCodec::write(edited, format)).value, expected);
    }

    PlistValue reserved = PlistValue::makeArray(2);
    for (int i = 0; i < 5; ++i)
        reserved.append(PlistValue(i));
    EXPECT_EQ(reserved,
              array({PlistValue(0), PlistValue(1), PlistValue(2), PlistValue(3), PlistValue(4)}));
}

namespace {

// Shaped like a stored configuration and large enough to be collected on two threads: keysets
// of layers of controls, names and actions repeating across keysets, some values only once.
PlistValue configurationLike(int keysets, bool gaps = false)
{
    PlistValue list = PlistValue::makeArray();
    for (int k = 0; k < keysets; ++k) {
        PlistValue layers = PlistValue::makeArray();
        for (int l = 0; l < 4; ++l) {
            PlistValue controls = PlistValue::makeArray();
            for (int c = 0; c < 1500; ++c) {
                PlistValue control =
                    dict({{"TVKName", PlistValue(QStringLiteral("Encoder %1").arg(c % 300))},
                          {"TVKAction", dict({{"TVKType", PlistValue(c % 7)},
                                              {"TVKValue", PlistValue(0.5 * (c % 5))}})}});
                if (c % 20 == k)
                    control.insert(QStringLiteral("TVKUsrName"),
                                   PlistValue(QStringLiteral("Gain \u00e9 %1").arg(k * c)));
                if (c % 333 == 0)
                    control.insert(QStringLiteral("TVKIcon"),
                                   PlistValue(QByteArray(40, char(k + c % 3))));
                if (c % 250 == 1)
                    control.insert(QStringLiteral("TVKBig"),
                                   PlistValue(quint64(0xF000000000000000ull) + quint64(k)));
                controls.append(control);
            }
            layers.append(controls);
        }
        list.append(dict({{"TVKName", PlistValue(QStringLiteral("Keyset %1").arg(k % 3))},
                          {"TVKLayers", layers},
                          {"TVKOffset", PlistValue(-k)},
                          {"TVKDate", PlistValue::makeDate(1000.0 * k)},
                          {"TVKLocked", PlistValue(k % 2 == 0)}}));
        // Null items, which the writers leave out, move where the list is cut.
        if (gaps && k % 2)
            list.append(PlistValue());
    }
    return dict({{"TVKKeysets", list}, {"TVKHardwareStyle", PlistValue(2)}});
}

QByteArray written(const PlistValue& tree, PlistFormat format,
                   corvane::plist::WriterThreads threads, QString* error = nullptr)
{
    corvane::plist::Sink sink;
    QString reason;
    const bool ok = format == PlistFormat::Xml
                        ? corvane::plist::writeXml(tree, sink, reason, threads)
                        : corvane::plist::writeBinary(tree, sink, reason, threads);
    if (!ok) {
        if (error)
            *error = reason;
        return {};
    }
    return sink.take();
}

} // namespace

TEST(PlistCodec, LargeDocumentsComeOutTheSameOnOneOrTwoThreads)
{
    using corvane::plist::WriterThreads;
    for (const PlistFormat format : {PlistFormat::Xml, PlistFormat::Binary}) {
        for (const int keysets : {4, 7}) {
            SCOPED_TRACE(std::string(formatName(format)) + " " + std::to_string(keysets));
            const PlistValue tree = configurationLike(keysets);
            const QByteArray two = written(tree, format, WriterThreads::Two);
            EXPECT_EQ(two, written(tree, format, WriterThreads::One));
            EXPECT_EQ(two, written(configurationLike(keysets, true), format, WriterThreads::Two));
            const PlistReadResult r = readBytes(two);
            ASSERT_TRUE(r.ok) << r.error.toString().toStdString();
            EXPECT_EQ(r.value, tree);

            // The list that is cut, standing twice: the helper's half is taken in once.
            PlistValue twice = tree;
            twice.insert(QStringLiteral("TVKBackup"), tree.value(u"TVKKeysets"));
            EXPECT_EQ(written(twice, format, WriterThreads::Two),
                      written(twice, format, WriterThreads::One));

            // To a device, where the second half goes out as one block, or fails to.
            FailDevice full(two.size() - 1);
            QString error;
            EXPECT_FALSE(PlistCodec::write(full, tree, format, &error));
            EXPECT_EQ(error, QStringLiteral("No space left on device"));
            FailDevice roomy(two.size());
            EXPECT_TRUE(PlistCodec::write(roomy, tree, format));
            EXPECT_EQ(roomy.written(), two);
        }
    }
}

TEST(PlistCodec, TooDeepAnywhereInALargeDocumentIsRefused)
{
    using corvane::plist::WriterThreads;
    // Too deep in the first keyset, written by the calling thread, or in the last, written by
    // the second one.
    for (const bool first : {true, false}) {
        SCOPED_TRACE(first);
        PlistValue tree = configurationLike(4);
        PlistValue keysets = tree.value(u"TVKKeysets");
        const qsizetype at = first ? 0 : keysets.size() - 1;
        PlistValue keyset = keysets.at(at);
        keyset.insert(QStringLiteral("TVKDeep"), nestedArrays(600));
        keysets.set(at, keyset);
        tree.insert(QStringLiteral("TVKKeysets"), keysets);
        for (const PlistFormat format : {PlistFormat::Xml, PlistFormat::Binary}) {
            for (const auto threads : {WriterThreads::Two, WriterThreads::One}) {
                QString error;
                EXPECT_TRUE(written(tree, format, threads, &error).isEmpty());
                EXPECT_EQ(error, QStringLiteral("nesting deeper than 512 levels"));
            }
        }
    }
}

// One limit for both sides of the binary form: the writer refuses exactly the shared trees the
// reader would refuse to expand, so whatever we write we read back.
TEST(PlistCodec, SharedTreesAreWrittenOnlyWhereTheyCanBeRead)
{
    // Level d of a list doubling the one below stands for 2^(d+1) - 1 values.
    PlistValue level = PlistValue(true);
    for (int d = 1; d <= 26; ++d) {
        PlistValue twice = PlistValue::makeArray();
        twice.append(level);
        twice.append(level);
        level = twice;
        if (d < 25)
            continue;
        QString error;
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        const bool written = PlistCodec::write(buffer, level, PlistFormat::Binary, &error);
        if (d == 25) {
            // 2^26 - 1 values: just within the limit.
            ASSERT_TRUE(written) << error.toStdString();
            const PlistReadResult read = PlistCodec::read(buffer.data());
            ASSERT_TRUE(read.ok) << read.error.toString().toStdString();
            EXPECT_EQ(read.value, level);
        } else {
            EXPECT_FALSE(written);
            EXPECT_EQ(error, QStringLiteral("the tree expands to more than 67108864 values"));
        }
    }
}

// Limits far above real use keep a small or hostile file from taking the memory it asks for;
// each is refused with the limit named, and the writers never produce what the readers refuse.
TEST(PlistCodec, ValuesAndDocumentsBeyondTheLimitsAreRefused)
{
    const QString longText(8 * 1024 * 1024 + 1, QLatin1Char('x'));
    const QByteArray longData(16 * 1024 * 1024 + 1, 'x');
    for (const PlistValue& value : {PlistValue(longText), PlistValue(longData)}) {
        for (const PlistFormat format : {PlistFormat::Xml, PlistFormat::Binary}) {
            QBuffer buffer;
            buffer.open(QIODevice::WriteOnly);
            QString error;
            EXPECT_FALSE(PlistCodec::write(buffer, value, format, &error));
            EXPECT_EQ(error,
                      value.isString()
                          ? QStringLiteral("text longer than the limit of 8388608 characters")
                          : QStringLiteral("data longer than the limit of 16777216 bytes"));
        }
    }
    PlistValue longKey = PlistValue::makeDict();
    longKey.insert(longText, PlistValue(true));
    EXPECT_TRUE(PlistCodec::write(longKey, PlistFormat::Binary).isEmpty());
    EXPECT_TRUE(PlistCodec::write(longKey, PlistFormat::Xml).isEmpty());

    // Written by hand, the readers refuse them.
    const PlistReadResult text =
        PlistCodec::read("<plist><string>" + longText.toLatin1() + "</string></plist>");
    EXPECT_EQ(text.error.toString(),
              QStringLiteral("offset 15: text longer than the limit of 8388608 characters"));
    const PlistReadResult data =
        PlistCodec::read("<plist><data>" + longData.toBase64() + "</data></plist>");
    EXPECT_EQ(data.error.toString(),
              QStringLiteral("offset 13: data longer than the limit of 16777216 bytes"));
    QByteArray binary("bplist00\x4F\x13\x00\x00\x00\x00\x01\x00\x00\x01", 18);
    binary += longData;
    const qint64 table = binary.size();
    binary += QByteArray("\x08", 1);
    binary += QByteArray(6, 0) + char(1) + char(4) + QByteArray(7, 0) + char(1) + QByteArray(8, 0);
    for (int shift = 56; shift >= 0; shift -= 8)
        binary += char((table >> shift) & 0xFF);
    EXPECT_EQ(PlistCodec::read(binary).error.toString(),
              QStringLiteral("offset 8: data longer than the limit of 16777216 bytes"));

    // A file beyond the document limit is refused before anything of it is read.
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("sparse.plist"));
    QFile sparse(path);
    ASSERT_TRUE(sparse.open(QIODevice::WriteOnly));
    ASSERT_TRUE(sparse.resize(qint64(1) << 30 | 1));
    sparse.close();
    EXPECT_EQ(PlistCodec::readFile(path).error.toString(),
              QStringLiteral("the file is larger than the limit of 1073741824 bytes"));
}
