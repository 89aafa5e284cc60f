// The binary form "bplist00", read: objects, then a table of their offsets, then a 32-byte
// trailer. Containers refer to their children by index into the offset table; every offset and
// length is checked before it is followed.

#include "core/PlistFormats.h"
#include "core/PlistText.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <system_error>
#include <thread>

namespace corvane::plist {

namespace {

constexpr std::size_t kTrailerSize = 32;
constexpr std::size_t kHeaderSize = 8;

std::uint64_t bigEndian(const unsigned char* p, unsigned size)
{
    // References and offsets are one or two bytes in small documents and four in a whole
    // configuration; numbers, reals and dates take eight.
    if (size == 1)
        return p[0];
    if (size == 2)
        return std::uint64_t(p[0]) << 8 | p[1];
    if (size == 4) {
        std::uint32_t w;
        std::memcpy(&w, p, 4);
        return __builtin_bswap32(w);
    }
    if (size == 8) {
        std::uint64_t w;
        std::memcpy(&w, p, 8);
        return __builtin_bswap64(w);
    }
    std::uint64_t v = 0;
    for (unsigned i = 0; i < size; ++i)
        v = (v << 8) | p[i];
    return v;
}

class BinaryReader
{
public:
    BinaryReader(const unsigned char* data, std::size_t size) : m_d(data), m_n(size) {}

    bool run(PlistValue& out, PlistError& error)
    {
        const bool ok = document(out);
        if (!ok) {
            out = PlistValue();
            error.offset = qint64(m_errorAt);
            error.reason = m_reason;
        }
        return ok;
    }

private:
    bool fail(std::uint64_t at, const QString& reason)
    {
        if (m_reason.isEmpty()) {
            m_errorAt = at;
            m_reason = reason;
        }
        return false;
    }

    // True when [pos, pos + length) lies inside the object area.
    bool fits(std::uint64_t pos, std::uint64_t length) const
    {
        return pos <= m_table && length <= m_table - pos;
    }

    bool document(PlistValue& out)
    {
        if (m_n < kHeaderSize + 1 + kTrailerSize)
            return fail(0, QStringLiteral("truncated binary property list"));
        const unsigned char* t = m_d + m_n - kTrailerSize;
        const std::uint64_t trailerAt = m_n - kTrailerSize;
        m_offsetSize = t[6];
        m_refSize = t[7];
        m_count = bigEndian(t + 8, 8);
        const std::uint64_t top = bigEndian(t + 16, 8);
        m_table = bigEndian(t + 24, 8);
        if (m_offsetSize < 1 || m_offsetSize > 8 || m_refSize < 1 || m_refSize > 8)
            return fail(trailerAt, QStringLiteral("bad trailer: offset size %1, reference size %2")
                                       .arg(m_offsetSize)
                                       .arg(m_refSize));
        if (m_table < kHeaderSize + 1 || m_table > trailerAt)
            return fail(trailerAt, QStringLiteral("bad trailer: offset table at %1").arg(m_table));
        if (m_count == 0 || m_count > (trailerAt - m_table) / m_offsetSize)
            return fail(
                trailerAt,
                QStringLiteral("bad trailer: %1 objects do not fit the offset table").arg(m_count));
        if (top >= m_count)
            return fail(trailerAt,
                        QStringLiteral("bad trailer: top object %1 of %2").arg(top).arg(m_count));
        m_active.assign(std::size_t(m_count), 0);
        m_slot.assign(std::size_t(m_count), 0);
        // Shared containers let a few bytes stand for an enormous tree, which whoever walks it
        // would pay for: anything past the limit the writer also keeps to is refused before it
        // can grow without bound.
        m_budget = kMaxExpandedValues;
        return object(top, trailerAt, 1, out);
    }

    bool offsetOf(std::uint64_t index, std::uint64_t refAt, std::uint64_t& offset)
    {
        if (index >= m_count)
            return fail(refAt, QStringLiteral("object reference %1 out of range").arg(index));
        offset = bigEndian(m_d + m_table + index * m_offsetSize, m_offsetSize);
        if (offset < kHeaderSize || offset >= m_table)
            return fail(m_table + index * m_offsetSize,
                        QStringLiteral("object %1 at offset %2 outside the object area")
                            .arg(index)
                            .arg(offset));
        return true;
    }

    // After the marker at `at`: the element count, from the low nibble or a following integer.
    bool length(std::uint64_t at, unsigned low, std::uint64_t& pos, std::uint64_t& count)
    {
        pos = at + 1;
        if (low != 0xF) {
            count = low;
            return true;
        }
        if (!fits(pos, 1))
            return fail(at, QStringLiteral("truncated object length"));
        const unsigned marker = m_d[pos];
        if ((marker >> 4) != 0x1 || (marker & 0xF) > 3)
            return fail(pos, QStringLiteral("bad object length marker 0x%1")
                                 .arg(marker, 2, 16, QLatin1Char('0')));
        const unsigned size = 1u << (marker & 0xF);
        if (!fits(pos + 1, size))
            return fail(at, QStringLiteral("truncated object length"));
        count = bigEndian(m_d + pos + 1, size);
        pos += 1 + size;
        return true;
    }

    bool tooLong(std::uint64_t at, std::uint64_t count)
    {
        return fail(at, QStringLiteral("object length %1 runs past the object area").arg(count));
    }

    bool string(std::uint64_t offset, QString& text)
    {
        const unsigned marker = m_d[offset];
        std::uint64_t pos, count;
        if (!length(offset, marker & 0xF, pos, count))
            return false;
        if ((marker >> 4) == 0x5) {
            if (!fits(pos, count))
                return tooLong(offset, count);
            if (count > std::uint64_t(kMaxTextUnits))
                return fail(offset, textLimitError());
            // Strictly ASCII; bytes above 0x7F from other writers are read as Latin-1.
            text = QString::fromLatin1(reinterpret_cast<const char*>(m_d + pos), qsizetype(count));
            return true;
        }
        if (count > m_table || !fits(pos, count * 2))
            return tooLong(offset, count);
        if (count > std::uint64_t(kMaxTextUnits))
            return fail(offset, textLimitError());
        text.resize(qsizetype(count));
        auto* d = reinterpret_cast<char16_t*>(text.data());
        const unsigned char* s = m_d + pos;
        for (std::uint64_t i = 0; i < count; ++i)
            d[i] = char16_t((s[2 * i] << 8) | s[2 * i + 1]);
        return true;
    }

    bool isString(std::uint64_t offset) const
    {
        const unsigned type = m_d[offset] >> 4;
        return type == 0x5 || type == 0x6;
    }

    // Strings and containers are usually shared (writers store each once): one tree node per
    // object, whatever refers to it. A container remembers how many objects it stands for, so
    // that every further reference still counts in full against the budget.
    struct Cached
    {
        PlistValue value;
        PlistKey key;
        std::uint64_t weight = 0;
    };
    Cached& cached(std::uint64_t index)
    {
        std::uint32_t& slot = m_slot[std::size_t(index)];
        if (!slot) {
            m_cache.emplace_back();
            slot = std::uint32_t(m_cache.size());
        }
        return m_cache[slot - 1];
    }

    bool spend(std::uint64_t at, std::uint64_t objects = 1)
    {
        if (m_budget < objects)
            return fail(at, QStringLiteral("object references expand to more than %1 values")
                                .arg(kMaxExpandedValues));
        m_budget -= objects;
        return true;
    }

    bool key(std::uint64_t index, std::uint64_t refAt, PlistKey& out)
    {
        std::uint64_t offset;
        if (!spend(refAt) || !offsetOf(index, refAt, offset))
            return false;
        if (!isString(offset))
            return fail(offset,
                        QStringLiteral("dictionary key (object %1) is not a string").arg(index));
        Cached& c = cached(index);
        if (!c.key.node()) {
            QString text;
            if (!string(offset, text))
                return false;
            c.key = PlistKey::shared(text);
        }
        out = c.key;
        return true;
    }

    bool object(std::uint64_t index, std::uint64_t refAt, int depth, PlistValue& out)
    {
        std::uint64_t offset;
        if (!spend(refAt) || !offsetOf(index, refAt, offset))
            return false;
        if (depth > kMaxDepth)
            return fail(offset, QStringLiteral("nesting deeper than %1 levels").arg(kMaxDepth));
        const unsigned marker = m_d[offset];
        const unsigned low = marker & 0xF;
        const std::uint64_t body = offset + 1;
        switch (marker >> 4) {
        case 0x0:
            if (low == 0x8 || low == 0x9) {
                out = PlistValue(low == 0x9);
                return true;
            }
            break;
        case 0x1: {
            if (low > 4)
                break;
            const unsigned size = 1u << low;
            if (!fits(body, size))
                return fail(offset, QStringLiteral("truncated integer"));
            if (size < 8) {
                out = PlistValue(qint64(bigEndian(m_d + body, size)));
            } else if (size == 8) {
                out = PlistValue(qint64(bigEndian(m_d + body, 8)));
            } else {
                // Sixteen bytes hold unsigned values above the signed range (high half zero)
                // or, from some writers, sign-extended negative ones.
                const std::uint64_t high = bigEndian(m_d + body, 8);
                const std::uint64_t lowHalf = bigEndian(m_d + body + 8, 8);
                if (high == 0)
                    out = PlistValue(quint64(lowHalf));
                else if (high == ~std::uint64_t(0) && qint64(lowHalf) < 0)
                    out = PlistValue(qint64(lowHalf));
                else
                    return fail(offset, QStringLiteral("integer wider than 64 bits"));
            }
            return true;
        }
        case 0x2:
            if (low == 2 && fits(body, 4)) {
                out = PlistValue(
                    double(std::bit_cast<float>(std::uint32_t(bigEndian(m_d + body, 4)))));
                return true;
            }
            if (low == 3 && fits(body, 8)) {
                out = PlistValue(std::bit_cast<double>(bigEndian(m_d + body, 8)));
                return true;
            }
            if (low == 2 || low == 3)
                return fail(offset, QStringLiteral("truncated real"));
            break;
        case 0x3:
            if (low != 3)
                break;
            if (!fits(body, 8))
                return fail(offset, QStringLiteral("truncated date"));
            out = PlistValue::makeDate(std::bit_cast<double>(bigEndian(m_d + body, 8)));
            return true;
        case 0x4: {
            std::uint64_t pos, count;
            if (!length(offset, low, pos, count))
                return false;
            if (!fits(pos, count))
                return tooLong(offset, count);
            if (count > std::uint64_t(kMaxDataBytes))
                return fail(offset, dataLimitError());
            out =
                PlistValue(QByteArray(reinterpret_cast<const char*>(m_d + pos), qsizetype(count)));
            return true;
        }
        case 0x5:
        case 0x6: {
            Cached& c = cached(index);
            if (c.value.isNull()) {
                QString text;
                if (!string(offset, text))
                    return false;
                c.value = PlistValue(text);
            }
            out = c.value;
            return true;
        }
        case 0xA:
        case 0xD: {
            Cached* c = m_slot[std::size_t(index)] ? &cached(index) : nullptr;
            if (c && c->weight) {
                // Already read: its whole weight but the reference paid above.
                if (!spend(refAt, c->weight - 1))
                    return false;
                out = c->value;
                return true;
            }
            const std::uint64_t before = m_budget + 1;
            if (!((marker >> 4) == 0xA ? array(index, offset, low, depth, out)
                                       : dict(index, offset, low, depth, out)))
                return false;
            Cached& fresh = cached(index);
            fresh.value = out;
            fresh.weight = before - m_budget;
            return true;
        }
        default:
            break;
        }
        return fail(
            offset,
            QStringLiteral("unsupported object type 0x%1").arg(marker, 2, 16, QLatin1Char('0')));
    }

    bool enter(std::uint64_t index, std::uint64_t offset)
    {
        if (m_active[std::size_t(index)])
            return fail(offset,
                        QStringLiteral("object reference cycle through object %1").arg(index));
        m_active[std::size_t(index)] = 1;
        return true;
    }

    std::uint64_t ref(std::uint64_t pos) const { return bigEndian(m_d + pos, m_refSize); }

    bool array(std::uint64_t index, std::uint64_t offset, unsigned low, int depth, PlistValue& out)
    {
        std::uint64_t pos, count;
        if (!length(offset, low, pos, count))
            return false;
        if (count > m_table || !fits(pos, count * m_refSize))
            return tooLong(offset, count);
        if (!enter(index, offset))
            return false;
        // Children gather on one stack shared by all levels, then move into the node in one go.
        const std::size_t mark = m_items.size();
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint64_t at = pos + i * m_refSize;
            PlistValue item;
            if (!object(ref(at), at, depth + 1, item))
                return false;
            m_items.push_back(std::move(item));
        }
        m_active[std::size_t(index)] = 0;
        out = PlistBuilder::array(m_items.data() + mark, m_items.size() - mark);
        m_items.resize(mark);
        return true;
    }

    bool dict(std::uint64_t index, std::uint64_t offset, unsigned low, int depth, PlistValue& out)
    {
        std::uint64_t pos, count;
        if (!length(offset, low, pos, count))
            return false;
        if (count > m_table || !fits(pos, count * 2 * m_refSize))
            return tooLong(offset, count);
        if (!enter(index, offset))
            return false;
        const std::size_t mark = m_entries.size();
        const std::uint64_t values = pos + count * m_refSize;
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint64_t keyAt = pos + i * m_refSize;
            const std::uint64_t valueAt = values + i * m_refSize;
            PlistKey k;
            PlistValue v;
            if (!key(ref(keyAt), keyAt, k) || !object(ref(valueAt), valueAt, depth + 1, v))
                return false;
            m_entries.emplace_back(std::move(k), std::move(v));
        }
        m_active[std::size_t(index)] = 0;
        removeDuplicateKeys(m_entries, mark);
        out = PlistBuilder::dict(m_entries.data() + mark, m_entries.size() - mark);
        m_entries.resize(mark);
        return true;
    }

    const unsigned char* m_d;
    std::uint64_t m_n;
    unsigned m_offsetSize = 0;
    unsigned m_refSize = 0;
    std::uint64_t m_count = 0;
    std::uint64_t m_table = 0;
    std::uint64_t m_budget = 0;
    std::vector<std::uint8_t> m_active;
    std::vector<std::uint32_t> m_slot;
    std::vector<Cached> m_cache;
    std::vector<PlistValue> m_items;
    std::vector<PlistEntry> m_entries;
    std::uint64_t m_errorAt = 0;
    QString m_reason;
};

} // namespace

bool readBinary(const char* begin, std::size_t size, PlistValue& out, PlistError& error)
{
    BinaryReader reader(reinterpret_cast<const unsigned char*>(begin), size);
    return reader.run(out, error);
}

} // namespace corvane::plist
