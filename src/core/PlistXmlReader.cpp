// The XML form, read: a pull parser specialised for property lists, working straight on the
// bytes of the document (a mapped file, usually).

#include "core/PlistFormats.h"
#include "core/PlistText.h"

#include <QSet>
#include <algorithm>
#include <bit>
#include <charconv>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace corvane::plist {

namespace {

inline bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

inline bool isNameChar(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == ':' || c == '-' || c == '.';
}

std::string_view trimmed(std::string_view t)
{
    while (!t.empty() && isSpace(t.front()))
        t.remove_prefix(1);
    while (!t.empty() && isSpace(t.back()))
        t.remove_suffix(1);
    return t;
}

// Quotes a piece of the document for an error message, shortened and with odd bytes escaped.
QString excerpt(std::string_view t)
{
    const bool cut = t.size() > 40;
    QString s = QString::fromUtf8(t.data(), qsizetype(std::min<std::size_t>(t.size(), 40)));
    if (cut)
        s += QStringLiteral("...");
    return u'"' + s + u'"';
}

enum class Tag : std::uint8_t
{
    Plist,
    Dict,
    Array,
    Key,
    String,
    Integer,
    Real,
    Date,
    Data,
    True,
    False,
    Unknown
};

Tag tagOf(std::string_view n)
{
    switch (n.size()) {
    case 3:
        return n == "key" ? Tag::Key : Tag::Unknown;
    case 4:
        if (n == "dict")
            return Tag::Dict;
        if (n == "real")
            return Tag::Real;
        if (n == "date")
            return Tag::Date;
        if (n == "data")
            return Tag::Data;
        if (n == "true")
            return Tag::True;
        return Tag::Unknown;
    case 5:
        if (n == "array")
            return Tag::Array;
        if (n == "plist")
            return Tag::Plist;
        if (n == "false")
            return Tag::False;
        return Tag::Unknown;
    case 6:
        return n == "string" ? Tag::String : Tag::Unknown;
    case 7:
        return n == "integer" ? Tag::Integer : Tag::Unknown;
    default:
        return Tag::Unknown;
    }
}

bool parseInteger(std::string_view t, PlistValue& out, bool& outOfRange)
{
    outOfRange = false;
    t = trimmed(t);
    bool negative = false;
    if (!t.empty() && (t.front() == '-' || t.front() == '+')) {
        negative = t.front() == '-';
        t.remove_prefix(1);
    }
    int base = 10;
    if (t.size() > 2 && t[0] == '0' && (t[1] == 'x' || t[1] == 'X')) {
        base = 16;
        t.remove_prefix(2);
    }
    if (t.empty())
        return false;
    std::uint64_t magnitude = 0;
    const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), magnitude, base);
    if (end != t.data() + t.size() || (ec != std::errc() && ec != std::errc::result_out_of_range))
        return false;
    if (ec == std::errc::result_out_of_range) {
        outOfRange = true;
        return false;
    }
    if (negative) {
        if (magnitude > std::uint64_t(INT64_MAX) + 1) {
            outOfRange = true;
            return false;
        }
        out = PlistValue(qint64(0 - magnitude));
    } else {
        out = PlistValue(quint64(magnitude));
    }
    return true;
}

bool parseReal(std::string_view t, double& out)
{
    t = trimmed(t);
    // Other writers spell infinities "+infinity"; from_chars takes no plus sign.
    if (!t.empty() && t.front() == '+')
        t.remove_prefix(1);
    if (t.empty() || t.front() == '+')
        return false;
    const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), out);
    return ec == std::errc() && end == t.data() + t.size();
}

class XmlReader
{
public:
    XmlReader(const char* begin, const char* end, const PageRelease& release)
        : m_begin(begin), m_p(begin), m_end(end), m_release(release), m_releasedTo(begin)
    {}

    bool run(PlistValue& out, PlistError& error)
    {
        const bool ok = document(out);
        if (!ok) {
            out = PlistValue();
            error.offset = qint64(m_errorAt - m_begin);
            error.reason = m_reason;
        }
        return ok;
    }

private:
    struct Open
    {
        Tag tag = Tag::Unknown;
        bool empty = false;
        std::string_view name;
        const char* at = nullptr;
    };

    bool fail(const char* at, const QString& reason)
    {
        if (m_reason.isEmpty()) {
            m_errorAt = at;
            m_reason = reason;
        }
        return false;
    }
    bool failEnd(std::string_view inside)
    {
        return fail(m_end, QStringLiteral("document ends inside <%1>")
                               .arg(QLatin1String(inside.data(), qsizetype(inside.size()))));
    }
    static QString tagName(std::string_view n)
    {
        return QString::fromUtf8(n.data(), qsizetype(n.size()));
    }
    bool startsWith(const char* p, std::string_view s) const
    {
        return std::size_t(m_end - p) >= s.size() && std::memcmp(p, s.data(), s.size()) == 0;
    }
    // Position just past `close` searched from p, or null.
    const char* find(const char* p, std::string_view close) const
    {
        const std::string_view rest(p, std::size_t(m_end - p));
        const std::size_t at = rest.find(close);
        return at == std::string_view::npos ? nullptr : p + at + close.size();
    }

    void skipSpace()
    {
#if defined(__SSE2__)
        // Indentation between elements is a line end and a tab per level: sixteen bytes at a
        // time.
        while (m_end - m_p >= 16) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(m_p));
            const __m128i space =
                _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8(' ')),
                                          _mm_cmpeq_epi8(v, _mm_set1_epi8('\t'))),
                             _mm_or_si128(_mm_cmpeq_epi8(v, _mm_set1_epi8('\n')),
                                          _mm_cmpeq_epi8(v, _mm_set1_epi8('\r'))));
            const unsigned other = ~unsigned(_mm_movemask_epi8(space)) & 0xFFFFu;
            if (other) {
                m_p += std::countr_zero(other);
                return;
            }
            m_p += 16;
        }
#endif
        while (m_p < m_end && isSpace(*m_p))
            ++m_p;
    }

    // Whitespace, comments and processing instructions, which may stand between any elements.
    bool skipMisc(bool allowDoctype)
    {
        for (;;) {
            skipSpace();
            // Between elements the next thing is almost always a tag: decide that cheaply.
            if (m_end - m_p < 2 || *m_p != '<' || (m_p[1] != '?' && m_p[1] != '!'))
                return true;
            if (m_p[1] == '?') {
                const char* after = find(m_p + 2, "?>");
                if (!after)
                    return fail(m_p, QStringLiteral("unterminated processing instruction"));
                m_p = after;
            } else if (startsWith(m_p, "<!--")) {
                const char* after = find(m_p + 4, "-->");
                if (!after)
                    return fail(m_p, QStringLiteral("unterminated comment"));
                m_p = after;
            } else if (allowDoctype && startsWith(m_p, "<!DOCTYPE")) {
                if (!skipDoctype())
                    return false;
            } else {
                return true;
            }
        }
    }

    bool skipDoctype()
    {
        const char* start = m_p;
        const char* p = m_p + 9;
        bool inSubset = false;
        while (p < m_end) {
            const char c = *p;
            if (c == '"' || c == '\'') {
                const void* q = std::memchr(p + 1, c, std::size_t(m_end - p - 1));
                if (!q)
                    break;
                p = static_cast<const char*>(q) + 1;
                continue;
            }
            if (c == '[')
                inSubset = true;
            else if (c == ']')
                inSubset = false;
            else if (c == '>' && !inSubset) {
                m_p = p + 1;
                return true;
            }
            ++p;
        }
        return fail(start, QStringLiteral("unterminated DOCTYPE"));
    }

    // At '<' of an opening tag; attributes are read past and ignored.
    bool readOpen(Open& tag)
    {
        tag.at = m_p;
        const char* p = m_p + 1;
        const char* nameStart = p;
        while (p < m_end && isNameChar(*p))
            ++p;
        tag.name = std::string_view(nameStart, std::size_t(p - nameStart));
        if (tag.name.empty()) {
            if (p < m_end && *p == '!' && startsWith(p, "![CDATA["))
                return fail(tag.at, QStringLiteral("unexpected CDATA section"));
            return fail(tag.at, QStringLiteral("malformed tag"));
        }
        tag.tag = tagOf(tag.name);
        while (p < m_end) {
            const char c = *p;
            if (c == '>') {
                tag.empty = false;
                m_p = p + 1;
                return true;
            }
            if (c == '/' && p + 1 < m_end && p[1] == '>') {
                tag.empty = true;
                m_p = p + 2;
                return true;
            }
            if (c == '"' || c == '\'') {
                const void* q = std::memchr(p + 1, c, std::size_t(m_end - p - 1));
                if (!q)
                    break;
                p = static_cast<const char*>(q);
            } else if (c == '<') {
                return fail(p, QStringLiteral("malformed tag <%1>").arg(tagName(tag.name)));
            }
            ++p;
        }
        return failEnd(tag.name);
    }

    // At "</": the closing tag must match the element being read.
    bool readClose(std::string_view expected)
    {
        const char* at = m_p;
        const char* p = m_p + 2;
        const char* nameStart = p;
        while (p < m_end && isNameChar(*p))
            ++p;
        const std::string_view name(nameStart, std::size_t(p - nameStart));
        while (p < m_end && isSpace(*p))
            ++p;
        if (p >= m_end)
            return failEnd(expected);
        if (*p != '>' || name != expected)
            return fail(at, QStringLiteral("expected </%1>, found </%2>")
                                .arg(tagName(expected), tagName(name)));
        m_p = p + 1;
        return true;
    }

    // The character content of a text element, up to and including its closing tag. Plain
    // content is returned in place; entities, CDATA sections, comments and line ends are
    // resolved into a scratch buffer.
    bool readText(const Open& tag, std::string_view& text)
    {
        if (tag.empty) {
            text = {};
            return true;
        }
        const char* start = m_p;
        const auto* lt =
            static_cast<const char*>(std::memchr(start, '<', std::size_t(m_end - start)));
        if (!lt)
            return failEnd(tag.name);
        const std::size_t span = std::size_t(lt - start);
        // XML 1.0 has no NUL character, raw or in a CDATA section.
        if (const auto* nul = static_cast<const char*>(std::memchr(start, '\0', span)))
            return fail(nul, QStringLiteral("NUL character in text"));
        if (lt + 1 < m_end && lt[1] == '/' && !std::memchr(start, '&', span) &&
            !std::memchr(start, '\r', span)) {
            m_p = lt;
            text = std::string_view(start, span);
            return readClose(tag.name);
        }
        m_text.clear();
        const char* p = start;
        for (;;) {
            const char* run = p;
            while (p < m_end && *p != '<' && *p != '&' && *p != '\r')
                ++p;
            if (const auto* nul =
                    static_cast<const char*>(std::memchr(run, '\0', std::size_t(p - run))))
                return fail(nul, QStringLiteral("NUL character in text"));
            m_text.append(run, std::size_t(p - run));
            if (p >= m_end)
                return failEnd(tag.name);
            if (*p == '\r') {
                // XML reads every line end as a single newline.
                m_text.push_back('\n');
                ++p;
                if (p < m_end && *p == '\n')
                    ++p;
            } else if (*p == '&') {
                if (!entity(p))
                    return false;
            } else if (startsWith(p, "</")) {
                m_p = p;
                text = m_text;
                return readClose(tag.name);
            } else if (startsWith(p, "<![CDATA[")) {
                const char* after = find(p + 9, "]]>");
                if (!after)
                    return fail(p, QStringLiteral("unterminated CDATA section"));
                if (const auto* nul =
                        static_cast<const char*>(std::memchr(p, '\0', std::size_t(after - p))))
                    return fail(nul, QStringLiteral("NUL character in text"));
                for (const char* c = p + 9; c < after - 3; ++c) {
                    if (*c != '\r') {
                        m_text.push_back(*c);
                    } else {
                        m_text.push_back('\n');
                        if (c + 1 < after - 3 && c[1] == '\n')
                            ++c;
                    }
                }
                p = after;
            } else if (startsWith(p, "<!--")) {
                const char* after = find(p + 4, "-->");
                if (!after)
                    return fail(p, QStringLiteral("unterminated comment"));
                p = after;
            } else if (startsWith(p, "<?")) {
                const char* after = find(p + 2, "?>");
                if (!after)
                    return fail(p, QStringLiteral("unterminated processing instruction"));
                p = after;
            } else {
                return fail(
                    p, QStringLiteral("unexpected element inside <%1>").arg(tagName(tag.name)));
            }
        }
    }

    // At '&': appends the character it stands for and moves past the ';'.
    bool entity(const char*& p)
    {
        const char* at = p;
        const std::size_t room = std::min<std::size_t>(std::size_t(m_end - p), 16);
        const auto* semi = static_cast<const char*>(std::memchr(p, ';', room));
        if (!semi) {
            // No entity or character reference is that long; one that ends further on is still
            // terminated, just not one we know.
            const std::size_t wider = std::min<std::size_t>(std::size_t(m_end - p), 256);
            const auto* far = static_cast<const char*>(std::memchr(p, ';', wider));
            const auto* tag = static_cast<const char*>(std::memchr(p, '<', wider));
            if (!far || (tag && tag < far))
                return fail(at, QStringLiteral("unterminated entity reference"));
            return fail(at, p[1] == '#' ? QStringLiteral("character reference too long")
                                        : QStringLiteral("entity reference too long"));
        }
        const std::string_view name(p + 1, std::size_t(semi - p - 1));
        p = semi + 1;
        if (name == "lt")
            m_text.push_back('<');
        else if (name == "gt")
            m_text.push_back('>');
        else if (name == "amp")
            m_text.push_back('&');
        else if (name == "quot")
            m_text.push_back('"');
        else if (name == "apos")
            m_text.push_back('\'');
        else if (name.size() >= 2 && name[0] == '#') {
            const bool hex = name[1] == 'x';
            const std::string_view digits = name.substr(hex ? 2 : 1);
            std::uint32_t cp = 0;
            const auto [end, ec] =
                std::from_chars(digits.data(), digits.data() + digits.size(), cp, hex ? 16 : 10);
            if (digits.empty() || ec != std::errc() || end != digits.data() + digits.size() ||
                cp > 0x10FFFF)
                return fail(at, QStringLiteral("bad character reference &%1;").arg(tagName(name)));
            appendCodePoint(m_text, cp);
        } else {
            return fail(at, QStringLiteral("unknown entity &%1;").arg(tagName(name)));
        }
        return true;
    }

    bool decode(std::string_view text, const char* at, QString& out)
    {
        // UTF-8 takes at least one byte per UTF-16 unit: a text within the limit is never
        // decoded only to be refused.
        if (text.size() > std::size_t(kMaxTextUnits) * 3)
            return fail(at, textLimitError());
        if (decodeUtf8(text, out) >= 0)
            return fail(at, QStringLiteral("invalid UTF-8"));
        if (out.size() > kMaxTextUnits)
            return fail(at, textLimitError());
        return true;
    }

    bool makeKey(std::string_view text, const char* at, PlistKey& key)
    {
        bool bad = false;
        const PlistKey* shared = m_keys.get(text, [&] {
            QString s;
            bad = decodeUtf8(text, s) >= 0;
            return PlistKey::shared(s);
        });
        if (bad)
            return fail(at, QStringLiteral("invalid UTF-8"));
        if (shared) {
            key = *shared;
            return true;
        }
        QString s;
        if (!decode(text, at, s))
            return false;
        key = PlistKey::shared(s);
        return true;
    }

    bool makeString(std::string_view text, const char* at, PlistValue& value)
    {
        bool bad = false;
        const PlistValue* shared = m_strings.get(text, [&] {
            QString s;
            bad = decodeUtf8(text, s) >= 0;
            return PlistValue(s);
        });
        if (bad)
            return fail(at, QStringLiteral("invalid UTF-8"));
        if (shared) {
            value = *shared;
            return true;
        }
        QString s;
        if (!decode(text, at, s))
            return false;
        value = PlistValue(s);
        return true;
    }

    void releasePassedPages()
    {
        constexpr std::ptrdiff_t kStep = 4 << 20;
        if (m_release && m_p - m_releasedTo > kStep) {
            m_release(m_p);
            m_releasedTo = m_p;
        }
    }

    // Between the children of a container: the next child's opening tag, or the closing tag.
    // Returns false on error; sets `closed` when the container ended.
    bool nextChild(std::string_view container, bool& closed, Open& child)
    {
        if (!skipMisc(false))
            return false;
        if (m_p >= m_end)
            return failEnd(container);
        if (*m_p != '<') {
            const auto room = std::size_t(std::min<std::ptrdiff_t>(m_end - m_p, 41));
            const auto* lt = static_cast<const char*>(std::memchr(m_p, '<', room));
            const std::string_view text(m_p, lt ? std::size_t(lt - m_p) : room);
            return fail(m_p, QStringLiteral("unexpected text %1 in <%2>")
                                 .arg(excerpt(text), tagName(container)));
        }
        if (m_p + 1 < m_end && m_p[1] == '/') {
            closed = true;
            return readClose(container);
        }
        closed = false;
        return readOpen(child);
    }

    bool dict(const Open& tag, int depth, PlistValue& out)
    {
        if (tag.empty) {
            out = PlistValue::makeDict();
            return true;
        }
        const std::size_t mark = m_entries.size();
        for (;;) {
            bool closed = false;
            Open keyTag;
            if (!nextChild("dict", closed, keyTag))
                return false;
            if (closed)
                break;
            if (keyTag.tag != Tag::Key)
                return fail(keyTag.at, QStringLiteral("expected <key> in <dict>, found <%1>")
                                           .arg(tagName(keyTag.name)));
            std::string_view text;
            const char* textAt = m_p;
            if (!readText(keyTag, text))
                return false;
            PlistKey key;
            if (!makeKey(text, textAt, key))
                return false;
            if (!skipMisc(false))
                return false;
            const char* valueAt = m_p;
            Open valueTag;
            if (!nextChild("dict", closed, valueTag))
                return false;
            if (closed)
                return fail(valueAt, QStringLiteral("key %1 has no value").arg(excerpt(text)));
            PlistValue value;
            if (!element(valueTag, depth + 1, value))
                return false;
            m_entries.emplace_back(std::move(key), std::move(value));
            releasePassedPages();
        }
        removeDuplicateKeys(m_entries, mark);
        out = PlistBuilder::dict(m_entries.data() + mark, m_entries.size() - mark);
        m_entries.resize(mark);
        return true;
    }

    bool array(const Open& tag, int depth, PlistValue& out)
    {
        if (tag.empty) {
            out = PlistValue::makeArray();
            return true;
        }
        const std::size_t mark = m_values.size();
        for (;;) {
            bool closed = false;
            Open child;
            if (!nextChild("array", closed, child))
                return false;
            if (closed)
                break;
            PlistValue value;
            if (!element(child, depth + 1, value))
                return false;
            m_values.push_back(std::move(value));
            releasePassedPages();
        }
        out = PlistBuilder::array(m_values.data() + mark, m_values.size() - mark);
        m_values.resize(mark);
        return true;
    }

    bool element(const Open& tag, int depth, PlistValue& out)
    {
        if (depth > kMaxDepth)
            return fail(tag.at, QStringLiteral("nesting deeper than %1 levels").arg(kMaxDepth));
        std::string_view text;
        const char* textAt = m_p;
        switch (tag.tag) {
        case Tag::Dict:
            return dict(tag, depth, out);
        case Tag::Array:
            return array(tag, depth, out);
        case Tag::String:
            return readText(tag, text) && makeString(text, textAt, out);
        case Tag::Integer: {
            if (!readText(tag, text))
                return false;
            bool outOfRange = false;
            if (!parseInteger(text, out, outOfRange))
                return fail(textAt, (outOfRange ? QStringLiteral("integer out of range %1")
                                                : QStringLiteral("bad integer %1"))
                                        .arg(excerpt(text)));
            return true;
        }
        case Tag::Real: {
            if (!readText(tag, text))
                return false;
            double d = 0;
            if (!parseReal(text, d))
                return fail(textAt, QStringLiteral("bad real %1").arg(excerpt(text)));
            out = PlistValue(d);
            return true;
        }
        case Tag::Date: {
            if (!readText(tag, text))
                return false;
            double seconds = 0;
            if (!parseIsoDate(trimmed(text), seconds))
                return fail(textAt, QStringLiteral("bad date %1, expected YYYY-MM-DDTHH:MM:SSZ")
                                        .arg(excerpt(text)));
            out = PlistValue::makeDate(seconds);
            return true;
        }
        case Tag::Data: {
            if (!readText(tag, text))
                return false;
            QByteArray bytes;
            // Base64 takes four characters for three bytes, whitespace aside.
            if (text.size() / 4 * 3 > std::size_t(kMaxDataBytes) * 2)
                return fail(textAt, dataLimitError());
            if (!decodeBase64(text, bytes))
                return fail(textAt, QStringLiteral("bad base64 in <data>"));
            if (bytes.size() > kMaxDataBytes)
                return fail(textAt, dataLimitError());
            out = PlistValue(bytes);
            return true;
        }
        case Tag::True:
        case Tag::False:
            if (!tag.empty) {
                skipSpace();
                if (!startsWith(m_p, "</"))
                    return fail(m_p, QStringLiteral("<%1> must be empty").arg(tagName(tag.name)));
                if (!readClose(tag.name))
                    return false;
            }
            out = PlistValue(tag.tag == Tag::True);
            return true;
        case Tag::Key:
            return fail(tag.at, QStringLiteral("<key> outside a <dict>"));
        case Tag::Plist:
            return fail(tag.at, QStringLiteral("<plist> inside a property list"));
        case Tag::Unknown:
            break;
        }
        return fail(tag.at, QStringLiteral("unknown element <%1>").arg(tagName(tag.name)));
    }

    bool document(PlistValue& out)
    {
        if (startsWith(m_p, "\xEF\xBB\xBF"))
            m_p += 3;
        if (!skipMisc(true))
            return false;
        if (m_p >= m_end || *m_p != '<' || (m_p + 1 < m_end && m_p[1] == '/'))
            return fail(m_p, QStringLiteral("not a property list"));
        Open root;
        if (!readOpen(root))
            return false;
        if (root.tag == Tag::Plist) {
            if (root.empty)
                return fail(root.at, QStringLiteral("empty property list"));
            bool closed = false;
            Open top;
            if (!nextChild("plist", closed, top))
                return false;
            if (closed)
                return fail(root.at, QStringLiteral("empty property list"));
            if (!element(top, 1, out))
                return false;
            Open extra;
            if (!nextChild("plist", closed, extra))
                return false;
            if (!closed)
                return fail(extra.at, QStringLiteral("more than one value in <plist>"));
        } else if (!element(root, 1, out)) {
            return false;
        }
        if (!skipMisc(false))
            return false;
        if (m_p != m_end)
            return fail(m_p, QStringLiteral("unexpected content after the property list"));
        return true;
    }

    const char* m_begin;
    const char* m_p;
    const char* m_end;
    const PageRelease& m_release;
    const char* m_releasedTo;
    const char* m_errorAt = nullptr;
    QString m_reason;
    std::string m_text;
    std::vector<PlistEntry> m_entries;
    std::vector<PlistValue> m_values;
    Interner<PlistKey> m_keys;
    Interner<PlistValue> m_strings;
};

} // namespace

void removeDuplicateKeys(std::vector<PlistEntry>& entries, std::size_t from)
{
    const std::size_t n = entries.size() - from;
    if (n < 2)
        return;
    std::vector<std::size_t> drop;
    if (n <= 16) {
        for (std::size_t i = from + 1; i < entries.size(); ++i) {
            for (std::size_t j = from; j < i; ++j) {
                if (entries[j].first == entries[i].first) {
                    entries[j].second = std::move(entries[i].second);
                    drop.push_back(i);
                    break;
                }
            }
        }
    } else {
        QHash<QStringView, std::size_t> seen;
        seen.reserve(qsizetype(n));
        for (std::size_t i = from; i < entries.size(); ++i) {
            const auto it = seen.constFind(QStringView(entries[i].first.text()));
            if (it == seen.cend()) {
                seen.insert(QStringView(entries[i].first.text()), i);
            } else {
                entries[*it].second = std::move(entries[i].second);
                drop.push_back(i);
            }
        }
    }
    if (drop.empty())
        return;
    std::size_t out = from;
    std::size_t next = 0;
    for (std::size_t i = from; i < entries.size(); ++i) {
        if (next < drop.size() && drop[next] == i) {
            ++next;
            continue;
        }
        if (out != i)
            entries[out] = std::move(entries[i]);
        ++out;
    }
    entries.resize(out);
}

bool readXml(const char* begin, const char* end, PlistValue& out, PlistError& error,
             const PageRelease& release)
{
    XmlReader reader(begin, end, release);
    return reader.run(out, error);
}

} // namespace corvane::plist
