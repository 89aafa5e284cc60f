// The XML form: a pull parser specialised for property lists, working straight on the bytes
// of the document (a mapped file, usually), and a writer in the standard layout.

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
        if (!semi)
            return fail(at, QStringLiteral("unterminated entity reference"));
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
        if (decodeUtf8(text, out) >= 0)
            return fail(at, QStringLiteral("invalid UTF-8"));
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
            if (!decodeBase64(text, bytes))
                return fail(textAt, QStringLiteral("bad base64 in <data>"));
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

class XmlWriter
{
public:
    XmlWriter(Sink& out, QString& error) : m_out(out), m_error(error) {}

    bool document(const PlistValue& value, WriterThreads threads)
    {
        if (value.isNull()) {
            m_error = QStringLiteral("nothing to write: the value is null");
            return false;
        }
        m_out.put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                  "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                  "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                  "<plist version=\"1.0\">\n");
        if (!split(value, threads))
            return false;
        m_out.put("</plist>\n");
        return true;
    }

private:
    // A large document's widest list is written in two halves at once: a helper writes the
    // items of the second half into memory, and this writer copies them out when it gets
    // there. The text is independent of what came before but for the indentation, so it is
    // the same either way.
    bool split(const PlistValue& value, WriterThreads threads)
    {
        const ListSplit cut = findListSplit(value, threads);
        if (!cut.items)
            return element(value, 0);
        Sink otherSink;
        QString otherError;
        XmlWriter other(otherSink, otherError);
        bool otherDone = false;
        std::jthread helper;
        try {
            helper = std::jthread([&] {
                otherDone = other.items(*cut.items, cut.mid, cut.items->size(), cut.level + 1);
            });
        } catch (const std::system_error&) {
            // No thread to be had: this one writes it all.
            return element(value, 0);
        }
        m_cut = &cut;
        m_finish = [&] {
            helper.join();
            if (!otherDone) {
                m_error = otherError;
                return false;
            }
            const QByteArray text = otherSink.take();
            m_out.putBlock(text.constData(), std::size_t(text.size()));
            return true;
        };
        const bool done = element(value, 0);
        m_cut = nullptr;
        m_finish = {};
        return done;
    }

    bool items(const PlistSlots<PlistValue>& list, std::size_t from, std::size_t to, int depth)
    {
        for (std::size_t i = from; i < to; ++i) {
            if (!element(list[i], depth))
                return false;
        }
        return true;
    }

    void indent(int depth)
    {
        char* d = m_out.reserve(std::size_t(depth));
        std::memset(d, '\t', std::size_t(depth));
        m_out.commit(d + depth);
    }

    // Eight UTF-16 units at a time while they are plain ASCII text: names and numbers in a
    // configuration are almost always that. Returns where the plain run ends.
    static std::size_t plainRun(const char16_t* u, std::size_t i, std::size_t stop, char*& d)
    {
#if defined(__SSE2__)
        const __m128i space = _mm_set1_epi16(0x20);
        const __m128i ascii = _mm_set1_epi16(0x7F);
        const __m128i amp = _mm_set1_epi16('&');
        const __m128i lt = _mm_set1_epi16('<');
        const __m128i gt = _mm_set1_epi16('>');
        while (i + 8 <= stop) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(u + i));
            // Signed compares: units from 0x8000 up count as below the space, so they stop the
            // run as well.
            const __m128i special = _mm_or_si128(
                _mm_or_si128(_mm_cmplt_epi16(v, space), _mm_cmpgt_epi16(v, ascii)),
                _mm_or_si128(_mm_cmpeq_epi16(v, amp),
                             _mm_or_si128(_mm_cmpeq_epi16(v, lt), _mm_cmpeq_epi16(v, gt))));
            if (_mm_movemask_epi8(special))
                break;
            _mm_storel_epi64(reinterpret_cast<__m128i*>(d), _mm_packus_epi16(v, v));
            d += 8;
            i += 8;
        }
#else
        (void)u;
        (void)stop;
        (void)d;
#endif
        return i;
    }

    // A key's line is written once per key and then copied: the same few shared keys make up
    // half the lines of a configuration, and the tree does not change while it is written.
    void key(const PlistKey& key, int depth)
    {
        const PlistKeyNode* node = key.node();
        auto bits = std::uintptr_t(node);
        bits ^= bits >> 4;
        bits ^= bits >> 12;
        RenderedKey& slot = m_renderedKeys[bits & (kRenderedKeys - 1)];
        if (!node || slot.node != node) {
            line(depth, "<key>");
            const std::uint64_t start = m_out.total();
            escaped(key.text());
            m_out.put("</key>\n");
            if (node && !m_out.flushedSince(start)) {
                slot.node = node;
                slot.text.assign(m_out.tail(std::size_t(m_out.total() - start)),
                                 std::size_t(m_out.total() - start));
            }
            return;
        }
        char* d = m_out.reserve(std::size_t(depth) + 5 + slot.text.size());
        std::memset(d, '\t', std::size_t(depth));
        d += depth;
        std::memcpy(d, "<key>", 5);
        std::memcpy(d + 5, slot.text.data(), slot.text.size());
        m_out.commit(d + 5 + slot.text.size());
    }

    void escaped(const QString& s)
    {
        // constData(), not utf16(): the latter copies literal text to terminate it.
        const char16_t* u = reinterpret_cast<const char16_t*>(s.constData());
        const std::size_t n = std::size_t(s.size());
        std::size_t i = 0;
        while (i < n) {
            const std::size_t stop = std::min(n, i + 1024);
            // At most eight bytes per UTF-16 unit ("&#xDFFF;"), plus a pair's second half.
            char* d = m_out.reserve((stop - i) * 8 + 8);
            while (i < stop) {
                i = plainRun(u, i, stop, d);
                if (i == stop)
                    break;
                const char16_t c = u[i++];
                if (c < 0x80) {
                    if (c >= 0x20 || c == '\t' || c == '\n') {
                        if (c == '&') {
                            std::memcpy(d, "&amp;", 5);
                            d += 5;
                        } else if (c == '<') {
                            std::memcpy(d, "&lt;", 4);
                            d += 4;
                        } else if (c == '>') {
                            std::memcpy(d, "&gt;", 4);
                            d += 4;
                        } else {
                            *d++ = char(c);
                        }
                    } else {
                        // Carriage returns would be read as newlines and other control
                        // characters cannot appear in XML text: references keep them intact.
                        d = reference(d, c);
                    }
                } else if (c < 0x800) {
                    *d++ = char(0xC0 | (c >> 6));
                    *d++ = char(0x80 | (c & 0x3F));
                } else if (c >= 0xD800 && c <= 0xDBFF && i < n && u[i] >= 0xDC00 &&
                           u[i] <= 0xDFFF) {
                    const char32_t cp =
                        0x10000 + ((char32_t(c) - 0xD800) << 10) + (u[i++] - 0xDC00);
                    *d++ = char(0xF0 | (cp >> 18));
                    *d++ = char(0x80 | ((cp >> 12) & 0x3F));
                    *d++ = char(0x80 | ((cp >> 6) & 0x3F));
                    *d++ = char(0x80 | (cp & 0x3F));
                } else if ((c >= 0xD800 && c <= 0xDFFF) || c == 0xFFFE || c == 0xFFFF) {
                    // An unpaired surrogate has no UTF-8 form; keep it as a reference.
                    d = reference(d, c);
                } else {
                    *d++ = char(0xE0 | (c >> 12));
                    *d++ = char(0x80 | ((c >> 6) & 0x3F));
                    *d++ = char(0x80 | (c & 0x3F));
                }
            }
            m_out.commit(d);
        }
    }

    static char* reference(char* d, char16_t c)
    {
        static const char hex[] = "0123456789ABCDEF";
        *d++ = '&';
        *d++ = '#';
        *d++ = 'x';
        bool started = false;
        for (int shift = 12; shift >= 0; shift -= 4) {
            const unsigned nibble = (c >> shift) & 0xF;
            if (nibble || started || shift == 0) {
                *d++ = hex[nibble];
                started = true;
            }
        }
        *d++ = ';';
        return d;
    }

    template <std::size_t N>
    void line(int depth, const char (&s)[N])
    {
        indent(depth);
        m_out.put(s, N - 1);
    }

    void number(int depth, const char* open, std::size_t openLength, const char* close,
                std::size_t closeLength, const char* digits, std::size_t length)
    {
        indent(depth);
        char* d = m_out.reserve(openLength + closeLength + length);
        std::memcpy(d, open, openLength);
        std::memcpy(d + openLength, digits, length);
        std::memcpy(d + openLength + length, close, closeLength);
        m_out.commit(d + openLength + length + closeLength);
    }

    bool element(const PlistValue& v, int depth)
    {
        if (depth >= kMaxDepth) {
            m_error = QStringLiteral("nesting deeper than %1 levels").arg(kMaxDepth);
            return false;
        }
        char buffer[40];
        switch (v.type()) {
        case PlistValue::Type::Null:
            return true;
        case PlistValue::Type::Boolean:
            if (v.toBool())
                line(depth, "<true/>\n");
            else
                line(depth, "<false/>\n");
            return true;
        case PlistValue::Type::Integer: {
            const auto r = v.isUnsignedInteger()
                               ? std::to_chars(buffer, buffer + sizeof buffer, v.toUnsigned())
                               : std::to_chars(buffer, buffer + sizeof buffer, v.toInteger());
            number(depth, "<integer>", 9, "</integer>\n", 11, buffer, std::size_t(r.ptr - buffer));
            return true;
        }
        case PlistValue::Type::Real: {
            const double d = v.toReal();
            std::size_t length;
            if (std::isnan(d)) {
                length = 3;
                std::memcpy(buffer, "nan", 3);
            } else if (std::isinf(d)) {
                length = 9;
                std::memcpy(buffer, d > 0 ? "+infinity" : "-infinity", 9);
            } else {
                // Shortest text that reads back to the same bits.
                length = std::size_t(std::to_chars(buffer, buffer + sizeof buffer, d).ptr - buffer);
            }
            number(depth, "<real>", 6, "</real>\n", 8, buffer, length);
            return true;
        }
        case PlistValue::Type::Date:
            formatIsoDate(v.dateSeconds(), buffer);
            number(depth, "<date>", 6, "</date>\n", 8, buffer, 20);
            return true;
        case PlistValue::Type::String: {
            const QString& s = PlistBuilder::text(v);
            if (s.isEmpty()) {
                line(depth, "<string/>\n");
                return true;
            }
            line(depth, "<string>");
            escaped(s);
            m_out.put("</string>\n");
            return true;
        }
        case PlistValue::Type::Data:
            data(PlistBuilder::bytes(v), depth);
            return true;
        case PlistValue::Type::Array: {
            const auto& items = PlistBuilder::items(v);
            const bool empty = std::all_of(items.begin(), items.end(),
                                           [](const PlistValue& item) { return item.isNull(); });
            if (empty) {
                line(depth, "<array/>\n");
                return true;
            }
            line(depth, "<array>\n");
            if (m_cut && &items == m_cut->items && m_cut->level == depth) {
                // Taken once: a list that stands twice is written in full the second time.
                const std::size_t mid = m_cut->mid;
                m_cut = nullptr;
                if (!this->items(items, 0, mid, depth + 1) || !m_finish())
                    return false;
            } else if (!this->items(items, 0, items.size(), depth + 1)) {
                return false;
            }
            line(depth, "</array>\n");
            return true;
        }
        case PlistValue::Type::Dict:
            return dict(v, depth);
        }
        return true;
    }

    bool dict(const PlistValue& v, int depth)
    {
        const auto& entries = PlistBuilder::entries(v);
        const std::size_t mark = m_order.size();
        // Sorted, so equal trees give equal files.
        m_keyOrder.sorted(entries, m_order);
        if (m_order.size() == mark) {
            line(depth, "<dict/>\n");
            return true;
        }
        line(depth, "<dict>\n");
        const std::size_t count = m_order.size() - mark;
        for (std::size_t k = 0; k < count; ++k) {
            const PlistEntry& entry = entries[m_order[mark + k]];
            key(entry.first, depth + 1);
            if (!element(entry.second, depth + 1))
                return false;
        }
        m_order.resize(mark);
        line(depth, "</dict>\n");
        return true;
    }

    void data(const QByteArray& bytes, int depth)
    {
        static const char alphabet[] =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        line(depth, "<data>");
        const auto* s = reinterpret_cast<const unsigned char*>(bytes.constData());
        const std::size_t n = std::size_t(bytes.size());
        char* d = m_out.reserve((n + 2) / 3 * 4);
        std::size_t i = 0;
        for (; i + 3 <= n; i += 3) {
            const std::uint32_t w = (std::uint32_t(s[i]) << 16) | (s[i + 1] << 8) | s[i + 2];
            *d++ = alphabet[w >> 18];
            *d++ = alphabet[(w >> 12) & 63];
            *d++ = alphabet[(w >> 6) & 63];
            *d++ = alphabet[w & 63];
        }
        if (n - i == 1) {
            const std::uint32_t w = std::uint32_t(s[i]) << 16;
            *d++ = alphabet[w >> 18];
            *d++ = alphabet[(w >> 12) & 63];
            *d++ = '=';
            *d++ = '=';
        } else if (n - i == 2) {
            const std::uint32_t w = (std::uint32_t(s[i]) << 16) | (s[i + 1] << 8);
            *d++ = alphabet[w >> 18];
            *d++ = alphabet[(w >> 12) & 63];
            *d++ = alphabet[(w >> 6) & 63];
            *d++ = '=';
        }
        m_out.commit(d);
        m_out.put("</data>\n");
    }

    Sink& m_out;
    QString& m_error;
    const ListSplit* m_cut = nullptr;
    std::function<bool()> m_finish;
    std::vector<std::uint32_t> m_order;
    KeyOrder m_keyOrder;
    struct RenderedKey
    {
        const PlistKeyNode* node = nullptr;
        std::string text; // after "<key>", up to and including the line end
    };
    static constexpr std::size_t kRenderedKeys = 256;
    std::vector<RenderedKey> m_renderedKeys = std::vector<RenderedKey>(kRenderedKeys);
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

bool writeXml(const PlistValue& value, Sink& sink, QString& error, WriterThreads threads)
{
    XmlWriter writer(sink, error);
    return writer.document(value, threads);
}

} // namespace corvane::plist
