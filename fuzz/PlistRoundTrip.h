#pragma once

// Whatever reads as a property list must write back in both forms and read again to the same
// tree; anything else must be refused with a reason and no partial tree.

#include "core/PlistCodec.h"

#include <QSet>
#include <cstdint>
#include <cstdlib>

using corvane::PlistCodec;
using corvane::PlistFormat;
using corvane::PlistValue;

namespace {

// The XML form cannot carry some characters (control characters but tab, newline and carriage
// return; unpaired surrogates; U+FFFE, U+FFFF): they are written as U+FFFD.
QString asXmlCarriesIt(QString text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t u = text.at(i).unicode();
        if (QChar::isHighSurrogate(u) && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        else if ((u < 0x20 && u != u'\t' && u != u'\n' && u != u'\r') || QChar::isSurrogate(u) ||
                 u == 0xFFFE || u == 0xFFFF)
            text[i] = QChar(0xFFFD);
    }
    return text;
}

// Whether the XML form changes any text or key of the tree.
bool changedByXml(const PlistValue& v)
{
    if (v.isString())
        return asXmlCarriesIt(v.toString()) != v.toString();
    for (qsizetype i = 0; i < v.size(); ++i) {
        if (v.isDict() && asXmlCarriesIt(v.keyAt(i)) != v.keyAt(i))
            return true;
        if (changedByXml(v.isArray() ? v.at(i) : v.valueAt(i)))
            return true;
    }
    return false;
}

// Whether two keys of one dictionary become the same key in the XML form; the reader then keeps
// only one of them.
bool keysCollideInXml(const PlistValue& v)
{
    if (v.isDict()) {
        QSet<QString> seen;
        for (qsizetype i = 0; i < v.size(); ++i) {
            const QString key = asXmlCarriesIt(v.keyAt(i));
            if (seen.contains(key) || keysCollideInXml(v.valueAt(i)))
                return true;
            seen.insert(key);
        }
    } else if (v.isArray()) {
        for (qsizetype i = 0; i < v.size(); ++i) {
            if (keysCollideInXml(v.at(i)))
                return true;
        }
    }
    return false;
}

// The XML form keeps dates to the whole second within years 0000 to 9999, so two dates agree
// when they are written the same; texts agree as the XML form carries them.
bool sameAfterXml(const PlistValue& a, const PlistValue& b)
{
    if (a.type() != b.type())
        return false;
    if (a.isDate())
        return PlistCodec::write(a) == PlistCodec::write(b);
    if (a.isString())
        return asXmlCarriesIt(a.toString()) == b.toString();
    if (a.isArray()) {
        if (a.size() != b.size())
            return false;
        for (qsizetype i = 0; i < a.size(); ++i) {
            if (!sameAfterXml(a.at(i), b.at(i)))
                return false;
        }
        return true;
    }
    if (a.isDict()) {
        if (a.size() != b.size())
            return false;
        for (qsizetype i = 0; i < a.size(); ++i) {
            const QString key = asXmlCarriesIt(a.keyAt(i));
            if (!b.contains(key) || !sameAfterXml(a.valueAt(i), b.value(key)))
                return false;
        }
        return true;
    }
    return a == b;
}

// Values in the tree as written out, shared containers counted each time they occur; stops
// counting at the limit.
std::size_t logicalSize(const PlistValue& v, std::size_t limit)
{
    std::size_t n = 1;
    for (qsizetype i = 0; i < v.size() && n < limit; ++i)
        n += logicalSize(v.isArray() ? v.at(i) : v.valueAt(i), limit - n);
    return n;
}

} // namespace

inline void checkRoundTrip(const std::uint8_t* data, std::size_t size)
{
    const auto first = PlistCodec::read(QByteArrayView(data, qsizetype(size)));
    if (!first.ok) {
        if (!first.value.isNull() || first.error.reason.isEmpty())
            std::abort();
        return;
    }
    // A few bytes of binary input may share their way to millions of values; writing all of
    // them out as text would take the fuzzer's time and memory, not test anything new.
    if (logicalSize(first.value, 200000) >= 200000)
        return;
    const QByteArray binary = PlistCodec::write(first.value, PlistFormat::Binary);
    const auto fromBinary = PlistCodec::read(binary);
    if (!fromBinary.ok || fromBinary.value != first.value)
        std::abort();
    const QByteArray xml = PlistCodec::write(first.value, PlistFormat::Xml);
    const auto fromXml = PlistCodec::read(xml);
    if (!fromXml.ok)
        std::abort();
    // Keys that the XML form makes equal leave one entry of several; which one is the writer's
    // business, and what it wrote still reads.
    if (keysCollideInXml(first.value))
        return;
    if (!sameAfterXml(first.value, fromXml.value))
        std::abort();
    // Writing what was read gives the same document, except that texts the XML form changed may
    // sort their dictionary keys differently the first time; from then on it is a fixed point.
    const QByteArray again = PlistCodec::write(fromXml.value, PlistFormat::Xml);
    if (!changedByXml(first.value) && again != xml)
        std::abort();
    if (PlistCodec::write(PlistCodec::read(again).value, PlistFormat::Xml) != again)
        std::abort();
}
