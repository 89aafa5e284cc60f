// The XML form, written in the standard layout.

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
                    } else if (c == '\r') {
                        // A raw carriage return would be read as a newline.
                        d = reference(d, c);
                    } else {
                        d = replacement(d);
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
                    d = replacement(d);
                } else {
                    *d++ = char(0xE0 | (c >> 12));
                    *d++ = char(0x80 | ((c >> 6) & 0x3F));
                    *d++ = char(0x80 | (c & 0x3F));
                }
            }
            m_out.commit(d);
        }
    }

    // XML 1.0 cannot carry the other control characters, unpaired surrogates, U+FFFE and U+FFFF,
    // not even as references, and the standard readers refuse a document holding them. They are
    // written as U+FFFD REPLACEMENT CHARACTER, so that every document we write can be read by
    // any reader; the binary form keeps them as they are.
    static char* replacement(char* d)
    {
        std::memcpy(d, "\xEF\xBF\xBD", 3);
        return d + 3;
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
            if (s.size() > kMaxTextUnits) {
                m_error = textLimitError();
                return false;
            }
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
            if (PlistBuilder::bytes(v).size() > kMaxDataBytes) {
                m_error = dataLimitError();
                return false;
            }
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
            if (entry.first.text().size() > kMaxTextUnits) {
                m_error = textLimitError();
                return false;
            }
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

bool writeXml(const PlistValue& value, Sink& sink, QString& error, WriterThreads threads)
{
    XmlWriter writer(sink, error);
    return writer.document(value, threads);
}

} // namespace corvane::plist
