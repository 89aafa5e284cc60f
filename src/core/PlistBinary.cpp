// The binary form "bplist00": objects, then a table of their offsets, then a 32-byte trailer.
// Containers refer to their children by index into the offset table.

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
constexpr std::uint64_t kObjectsPerByte = 1024;
constexpr std::uint64_t kBaseBudget = std::uint64_t(1) << 22;

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
        // would pay for. Our own writer shares every repeated action, control and layer; every
        // keyset still stores its own name and numbers, which keeps even a configuration of
        // nothing but unassigned controls at a few hundred objects per byte. Anything past the
        // limit is refused before it can grow without bound.
        m_budget = m_n * kObjectsPerByte + kBaseBudget;
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
            // Strictly ASCII; bytes above 0x7F from other writers are read as Latin-1.
            text = QString::fromLatin1(reinterpret_cast<const char*>(m_d + pos), qsizetype(count));
            return true;
        }
        if (count > m_table || !fits(pos, count * 2))
            return tooLong(offset, count);
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
            return fail(at, QStringLiteral("object references expand beyond the document size"));
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

unsigned bytesFor(std::uint64_t v)
{
    if (v <= 0xFF)
        return 1;
    if (v <= 0xFFFF)
        return 2;
    if (v <= 0xFFFFFFFFull)
        return 4;
    return 8;
}

inline char* putBigEndian(char* d, std::uint64_t v, unsigned size)
{
    if (size == 4) {
        const std::uint32_t w = __builtin_bswap32(std::uint32_t(v));
        std::memcpy(d, &w, 4);
        return d + 4;
    }
    if (size == 8) {
        const std::uint64_t w = __builtin_bswap64(v);
        std::memcpy(d, &w, 8);
        return d + 8;
    }
    for (unsigned i = size; i-- > 0;) {
        d[i] = char(v & 0xFF);
        v >>= 8;
    }
    return d + size;
}

enum class Kind : std::uint8_t
{
    False,
    True,
    Integer,
    Unsigned,
    Real,
    Date,
    Data,
    String,
    Array,
    Dict
};

struct Object
{
    Kind kind;
    union {
        std::uint64_t bits;
        const QString* text;
        const QByteArray* bytes;
    };
    std::uint32_t refs = 0; // first of this container's references in the table's list
    std::uint32_t count = 0;
};

// Every distinct object of a tree, numbered in the order the file lists them: each stored once
// however often it occurs, a container after its children.
class ObjectTable
{
public:
    explicit ObjectTable(QString& error) : m_error(error) {}

    // The list whose items from `cut.mid` on another table collects meanwhile; `finish` waits
    // for it and says whether it succeeded.
    struct Split
    {
        ListSplit cut;
        const ObjectTable* other = nullptr;
        std::function<bool()> finish;
    };
    void setSplit(Split* split) { m_split = split; }

    const std::vector<Object>& objects() const { return m_objects; }
    const std::uint32_t* references(const Object& o) const { return m_flat.data() + o.refs; }

    // Adds the value and everything below it; containers come after their children, so the
    // top object is the last. Returns false for a tree too deep to read back.
    bool add(const PlistValue& v, int depth, std::uint32_t* index = nullptr)
    {
        if (depth > kMaxDepth) {
            m_error = QStringLiteral("nesting deeper than %1 levels").arg(kMaxDepth);
            return false;
        }
        std::uint32_t result = 0;
        switch (v.type()) {
        case PlistValue::Type::Null:
            break;
        case PlistValue::Type::Boolean:
            result = leaf(v.toBool() ? Kind::True : Kind::False, 0);
            break;
        case PlistValue::Type::Integer:
            result = leaf(v.isUnsignedInteger() ? Kind::Unsigned : Kind::Integer,
                          PlistBuilder::integerBits(v));
            break;
        case PlistValue::Type::Real:
            result = leaf(Kind::Real, std::bit_cast<std::uint64_t>(PlistBuilder::realBits(v)));
            break;
        case PlistValue::Type::Date:
            result = leaf(Kind::Date, std::bit_cast<std::uint64_t>(PlistBuilder::realBits(v)));
            break;
        case PlistValue::Type::String:
            result = text(PlistBuilder::text(v));
            break;
        case PlistValue::Type::Data: {
            Object o{};
            o.kind = Kind::Data;
            o.bytes = &PlistBuilder::bytes(v);
            result = unique(o);
            break;
        }
        case PlistValue::Type::Array: {
            const auto& items = PlistBuilder::items(v);
            std::uint32_t count = 0;
            if (m_split && &items == m_split->cut.items && m_split->cut.level + 1 == depth) {
                // Taken once: a list that stands twice is found stored the second time.
                Split& split = *m_split;
                m_split = nullptr;
                if (!addItems(items, 0, split.cut.mid, depth, count) || !split.finish())
                    return false;
                count += merge(*split.other);
            } else if (!addItems(items, 0, items.size(), depth, count)) {
                return false;
            }
            result = container(Kind::Array, count);
            break;
        }
        case PlistValue::Type::Dict:
            if (!dict(v, depth, result))
                return false;
            break;
        }
        if (index)
            *index = result;
        return true;
    }

    // The items [from, to) of a list at `depth`, nulls left out; their object numbers go on
    // the scratch stack.
    bool addItems(const PlistSlots<PlistValue>& items, std::size_t from, std::size_t to, int depth,
                  std::uint32_t& count)
    {
        for (std::size_t i = from; i < to; ++i) {
            if (items[i].isNull())
                continue;
            std::uint32_t child;
            if (!add(items[i], depth + 1, &child))
                return false;
            m_refs.push_back(child);
            ++count;
        }
        return true;
    }

private:
    static std::uint64_t mix(std::uint64_t h)
    {
        h ^= h >> 33;
        h *= 0xFF51AFD7ED558CCDull;
        h ^= h >> 33;
        return h;
    }

    std::uint64_t hashOf(const Object& o) const
    {
        switch (o.kind) {
        case Kind::String:
            return hashBytes(std::string_view(reinterpret_cast<const char*>(o.text->constData()),
                                              std::size_t(o.text->size()) * 2));
        case Kind::Data:
            return hashBytes(std::string_view(o.bytes->constData(), std::size_t(o.bytes->size()))) ^
                   0x5555;
        default:
            return mix(o.bits + 0x9E3779B97F4A7C15ull * (unsigned(o.kind) + 1));
        }
    }

    static bool same(const Object& a, const Object& b)
    {
        if (a.kind != b.kind)
            return false;
        switch (a.kind) {
        case Kind::String:
            return a.text == b.text || *a.text == *b.text;
        case Kind::Data:
            return a.bytes == b.bytes || *a.bytes == *b.bytes;
        default:
            return a.bits == b.bits;
        }
    }

    // The writer's tables are open-addressing and kept at most half full: doubled, and every
    // used slot placed again by its hash.
    template <typename Slot, typename Used, typename Hash>
    static void grow(std::vector<Slot>& table, Used used, Hash hash)
    {
        std::vector<Slot> old(table.size() * 2);
        old.swap(table);
        const std::size_t mask = table.size() - 1;
        for (const Slot& slot : old) {
            if (!used(slot))
                continue;
            std::size_t j = std::size_t(hash(slot)) & mask;
            while (used(table[j]))
                j = (j + 1) & mask;
            table[j] = slot;
        }
    }

    // Every object is stored once however often it occurs, found through an open-addressing
    // table so that the whole write stays linear.
    std::uint32_t unique(const Object& o)
    {
        if (m_slots.empty())
            m_slots.assign(4096, Slot{});
        const std::uint64_t h = hashOf(o);
        const std::size_t mask = m_slots.size() - 1;
        std::size_t i = std::size_t(h) & mask;
        while (m_slots[i].index) {
            if (m_slots[i].hash == h && same(m_objects[m_slots[i].index - 1], o))
                return m_slots[i].index - 1;
            i = (i + 1) & mask;
        }
        m_objects.push_back(o);
        const auto index = std::uint32_t(m_objects.size() - 1);
        m_slots[i] = Slot{h, index + 1};
        if (++m_used * 2 > m_slots.size())
            grow(
                m_slots, [](const Slot& slot) { return slot.index != 0; },
                [](const Slot& slot) { return slot.hash; });
        return index;
    }

    std::uint32_t leaf(Kind kind, std::uint64_t bits)
    {
        // Types, channels, notes and flags: most numbers of a configuration are small, and
        // answering them from a small table spares a probe of the large one each time.
        std::uint32_t* known = nullptr;
        if (kind == Kind::Integer && bits < kSmallNumbers)
            known = &m_smallNumbers[bits];
        else if (kind == Kind::True || kind == Kind::False)
            known = &m_booleans[kind == Kind::True];
        if (known && *known)
            return *known - 1;
        Object o{};
        o.kind = kind;
        o.bits = bits;
        const std::uint32_t index = unique(o);
        if (known)
            *known = index + 1;
        return index;
    }

    // Keys and names are mostly shared texts: the same characters at the same address are the
    // same string, found without hashing or comparing them. The tree is not changed while it is
    // written, so an address cannot be reused for other text meanwhile.
    std::uint32_t text(const QString& s)
    {
        if (m_seen.empty())
            m_seen.assign(1024, Seen{});
        const QChar* data = s.constData();
        const auto size = std::uint32_t(s.size());
        const std::size_t mask = m_seen.size() - 1;
        std::size_t i = std::size_t(mix(std::uint64_t(std::uintptr_t(data)) ^ size)) & mask;
        while (m_seen[i].data) {
            if (m_seen[i].data == data && m_seen[i].size == size)
                return m_seen[i].index;
            i = (i + 1) & mask;
        }
        Object o{};
        o.kind = Kind::String;
        o.text = &s;
        const std::uint32_t index = unique(o);
        m_seen[i] = Seen{data, size, index};
        if (++m_seenUsed * 2 > m_seen.size())
            grow(
                m_seen, [](const Seen& e) { return e.data != nullptr; },
                [](const Seen& e) { return mix(std::uint64_t(std::uintptr_t(e.data)) ^ e.size); });
        return index;
    }

    // A configuration has a few dozen shared keys, used millions of times: a small table by
    // the key's shared storage answers before the table of all texts is consulted.
    std::uint32_t key(const PlistKey& k)
    {
        const PlistKeyNode* node = k.node();
        if (!node)
            return text(k.text());
        auto bits = std::uintptr_t(node);
        bits ^= bits >> 4;
        bits ^= bits >> 12;
        KeySlot& slot = m_keySlots[bits & (kKeySlots - 1)];
        if (slot.node != node) {
            slot.node = node;
            slot.index = text(node->text);
        }
        return slot.index;
    }

    // Takes in what another table collected for the rest of a split list, in its order: each
    // object is looked up or added here as it would have been had this table met it itself, so
    // the file comes out the same whichever way it was collected. The other table's list items
    // (the only references left on its scratch stack) follow on this one's; returns their
    // number.
    std::uint32_t merge(const ObjectTable& other)
    {
        std::vector<std::uint32_t> number(other.m_objects.size());
        for (std::size_t j = 0; j < other.m_objects.size(); ++j) {
            const Object& o = other.m_objects[j];
            switch (o.kind) {
            case Kind::Array:
            case Kind::Dict: {
                const std::uint32_t* refs = other.references(o);
                const std::size_t n = o.kind == Kind::Dict ? std::size_t(o.count) * 2 : o.count;
                for (std::size_t k = 0; k < n; ++k)
                    m_refs.push_back(number[refs[k]]);
                number[j] = container(o.kind, o.count);
                break;
            }
            case Kind::String:
                number[j] = text(*o.text);
                break;
            case Kind::Data:
                number[j] = unique(o);
                break;
            default:
                number[j] = leaf(o.kind, o.bits);
                break;
            }
        }
        for (const std::uint32_t item : other.m_refs)
            m_refs.push_back(number[item]);
        return std::uint32_t(other.m_refs.size());
    }

    static std::uint64_t containerHash(std::uint32_t shape, const std::uint32_t* refs,
                                       std::size_t n)
    {
        std::uint64_t h = mix(shape + 0x9E3779B97F4A7C15ull);
        for (std::size_t i = 0; i < n; ++i)
            h = mix(h ^ (refs[i] + 0x9E3779B97F4A7C15ull));
        return h;
    }

    // A dictionary refers to a key and a value per entry.
    static std::size_t referencesOf(std::uint32_t shape)
    {
        return std::size_t(shape >> 1) << (shape & 1);
    }

    // A handful of references as a rule: compared in place rather than through a library call.
    static bool sameReferences(const std::uint32_t* a, const std::uint32_t* b, std::size_t n)
    {
        for (std::size_t i = 0; i < n; ++i) {
            if (a[i] != b[i])
                return false;
        }
        return true;
    }

    // Containers are stored once too, compared by their children's object numbers, which are
    // final before the container itself is added: keysets repeat the same unassigned controls
    // and the same actions layer after layer. Their references are the last ones on the scratch
    // stack (those of nested containers were taken off as each was finished). The table holds
    // what the comparison needs, so that a repeat is found without visiting the object list.
    std::uint32_t container(Kind kind, std::uint32_t count)
    {
        const std::uint32_t shape = count << 1 | (kind == Kind::Dict ? 1u : 0u);
        const std::size_t n = referencesOf(shape);
        const std::uint32_t* refs = m_refs.data() + (m_refs.size() - n);
        const std::uint64_t h = containerHash(shape, refs, n);
        if (m_containers.empty())
            m_containers.assign(4096, ContainerSlot{});
        const std::size_t mask = m_containers.size() - 1;
        std::size_t i = std::size_t(h) & mask;
        const auto check = std::uint32_t(h >> 32);
        for (; m_containers[i].index; i = (i + 1) & mask) {
            const ContainerSlot& slot = m_containers[i];
            if (slot.check == check && slot.shape == shape &&
                sameReferences(refs, m_flat.data() + slot.refs, n)) {
                m_refs.resize(m_refs.size() - n);
                return slot.index - 1;
            }
        }
        Object o{};
        o.kind = kind;
        o.count = count;
        o.refs = std::uint32_t(m_flat.size());
        m_flat.insert(m_flat.end(), refs, refs + n);
        m_refs.resize(m_refs.size() - n);
        m_objects.push_back(o);
        const auto index = std::uint32_t(m_objects.size() - 1);
        m_containers[i] = ContainerSlot{check, index + 1, o.refs, shape};
        if (++m_containerCount * 2 > m_containers.size())
            // The low half of the hash is not kept: worked out again from the references.
            grow(
                m_containers, [](const ContainerSlot& slot) { return slot.index != 0; },
                [this](const ContainerSlot& slot) {
                    return containerHash(slot.shape, m_flat.data() + slot.refs,
                                         referencesOf(slot.shape));
                });
        return index;
    }

    bool dict(const PlistValue& v, int depth, std::uint32_t& result)
    {
        const auto& entries = PlistBuilder::entries(v);
        const std::size_t mark = m_order.size();
        // Sorted like the XML form, so equal trees give equal bytes.
        m_keyOrder.sorted(entries, m_order);
        const std::size_t count = m_order.size() - mark;
        for (std::size_t k = 0; k < count; ++k)
            m_refs.push_back(key(entries[m_order[mark + k]].first));
        for (std::size_t k = 0; k < count; ++k) {
            std::uint32_t child;
            if (!add(entries[m_order[mark + k]].second, depth + 1, &child))
                return false;
            m_refs.push_back(child);
        }
        m_order.resize(mark);
        result = container(Kind::Dict, std::uint32_t(count));
        return true;
    }

    struct Slot
    {
        std::uint64_t hash = 0;
        std::uint32_t index = 0; // object index + 1; 0 for an empty slot
    };

    QString& m_error;
    Split* m_split = nullptr;
    std::vector<Object> m_objects;
    std::vector<std::uint32_t> m_refs;
    std::vector<std::uint32_t> m_flat;
    std::vector<std::uint32_t> m_order;
    KeyOrder m_keyOrder;
    std::vector<Slot> m_slots;
    std::size_t m_used = 0;
    struct ContainerSlot
    {
        std::uint32_t check = 0; // high half of the hash
        std::uint32_t index = 0; // object index + 1; 0 for an empty slot
        std::uint32_t refs = 0;  // first reference in m_flat
        std::uint32_t shape = 0; // count << 1, low bit set for a dictionary
    };
    std::vector<ContainerSlot> m_containers;
    std::size_t m_containerCount = 0;
    struct Seen
    {
        const QChar* data = nullptr;
        std::uint32_t size = 0;
        std::uint32_t index = 0;
    };
    std::vector<Seen> m_seen;
    struct KeySlot
    {
        const PlistKeyNode* node = nullptr;
        std::uint32_t index = 0;
    };
    static constexpr std::size_t kKeySlots = 256;
    KeySlot m_keySlots[kKeySlots] = {};
    static constexpr std::uint64_t kSmallNumbers = 1024;
    std::uint32_t m_smallNumbers[kSmallNumbers] = {}; // object index + 1; 0 until stored
    std::uint32_t m_booleans[2] = {};
    std::size_t m_seenUsed = 0;
};

class BinaryWriter
{
public:
    BinaryWriter(Sink& out, QString& error, WriterThreads threads)
        : m_out(out), m_error(error), m_threads(threads)
    {}

    bool document(const PlistValue& value)
    {
        if (value.isNull()) {
            m_error = QStringLiteral("nothing to write: the value is null");
            return false;
        }
        ObjectTable table(m_error);
        std::uint32_t top = 0;
        if (!collect(value, table, top))
            return false;
        m_table = &table;
        const std::vector<Object>& objects = table.objects();
        m_refSize = bytesFor(objects.size() - 1);
        m_out.put("bplist00", 8);
        std::vector<std::uint64_t> offsets(objects.size());
        for (std::size_t i = 0; i < objects.size(); ++i) {
            offsets[i] = m_out.total();
            write(objects[i]);
        }
        const std::uint64_t position = m_out.total();
        const unsigned offsetSize = bytesFor(position);
        for (const std::uint64_t offset : offsets) {
            char* d = m_out.reserve(offsetSize);
            m_out.commit(putBigEndian(d, offset, offsetSize));
        }
        char* d = m_out.reserve(kTrailerSize);
        std::memset(d, 0, 6);
        d[6] = char(offsetSize);
        d[7] = char(m_refSize);
        d = putBigEndian(d + 8, objects.size(), 8);
        d = putBigEndian(d, top, 8);
        d = putBigEndian(d, position, 8);
        m_out.commit(d);
        return true;
    }

private:
    // A large document is collected by two tables at once, the second taking the second half
    // of its widest list; the first takes in the second's objects when it gets there.
    bool collect(const PlistValue& value, ObjectTable& table, std::uint32_t& top)
    {
        const ListSplit cut = findListSplit(value, m_threads);
        if (!cut.items)
            return table.add(value, 1, &top);
        ObjectTable::Split split{cut, nullptr, {}};
        QString otherError;
        ObjectTable other(otherError);
        bool otherDone = false;
        std::jthread helper;
        try {
            helper = std::jthread([&] {
                std::uint32_t count = 0;
                otherDone =
                    other.addItems(*cut.items, cut.mid, cut.items->size(), cut.level + 1, count);
            });
        } catch (const std::system_error&) {
            // No thread to be had: this one collects it all.
            return table.add(value, 1, &top);
        }
        split.other = &other;
        split.finish = [&] {
            helper.join();
            if (!otherDone)
                m_error = otherError;
            return otherDone;
        };
        table.setSplit(&split);
        return table.add(value, 1, &top);
    }

    void header(unsigned type, std::uint64_t count)
    {
        if (count < 15) {
            m_out.put(char((type << 4) | count));
            return;
        }
        const unsigned size = bytesFor(count);
        char* d = m_out.reserve(2 + size);
        d[0] = char((type << 4) | 0xF);
        d[1] = char(0x10 | std::countr_zero(size));
        m_out.commit(putBigEndian(d + 2, count, size));
    }

    void write(const Object& o)
    {
        switch (o.kind) {
        case Kind::False:
            m_out.put(char(0x08));
            return;
        case Kind::True:
            m_out.put(char(0x09));
            return;
        case Kind::Integer: {
            const auto v = qint64(o.bits);
            // Short forms are unsigned; negative numbers always take eight bytes.
            const unsigned size = v < 0 ? 8 : bytesFor(std::uint64_t(v));
            char* d = m_out.reserve(1 + size);
            d[0] = char(0x10 | std::countr_zero(size));
            m_out.commit(putBigEndian(d + 1, o.bits, size));
            return;
        }
        case Kind::Unsigned: {
            char* d = m_out.reserve(17);
            d[0] = char(0x14);
            d = putBigEndian(d + 1, 0, 8);
            m_out.commit(putBigEndian(d, o.bits, 8));
            return;
        }
        case Kind::Real:
        case Kind::Date: {
            char* d = m_out.reserve(9);
            d[0] = char(o.kind == Kind::Real ? 0x23 : 0x33);
            m_out.commit(putBigEndian(d + 1, o.bits, 8));
            return;
        }
        case Kind::Data:
            header(0x4, std::uint64_t(o.bytes->size()));
            m_out.put(o.bytes->constData(), std::size_t(o.bytes->size()));
            return;
        case Kind::String: {
            const QString& s = *o.text;
            const char16_t* u = reinterpret_cast<const char16_t*>(s.constData());
            const std::size_t n = std::size_t(s.size());
            const bool ascii = std::all_of(u, u + n, [](char16_t c) { return c < 0x80; });
            header(ascii ? 0x5 : 0x6, n);
            char* d = m_out.reserve(ascii ? n : n * 2);
            for (std::size_t i = 0; i < n; ++i) {
                if (ascii) {
                    *d++ = char(u[i]);
                } else {
                    *d++ = char(u[i] >> 8);
                    *d++ = char(u[i] & 0xFF);
                }
            }
            m_out.commit(d);
            return;
        }
        case Kind::Array:
        case Kind::Dict: {
            header(o.kind == Kind::Array ? 0xA : 0xD, o.count);
            const std::uint32_t refs = o.kind == Kind::Array ? o.count : o.count * 2;
            const std::uint32_t* numbers = m_table->references(o);
            char* d = m_out.reserve(std::size_t(refs) * m_refSize);
            for (std::uint32_t i = 0; i < refs; ++i)
                d = putBigEndian(d, numbers[i], m_refSize);
            m_out.commit(d);
            return;
        }
        }
    }

    Sink& m_out;
    QString& m_error;
    WriterThreads m_threads;
    const ObjectTable* m_table = nullptr;
    unsigned m_refSize = 1;
};

} // namespace

bool readBinary(const char* begin, std::size_t size, PlistValue& out, PlistError& error)
{
    BinaryReader reader(reinterpret_cast<const unsigned char*>(begin), size);
    return reader.run(out, error);
}

bool writeBinary(const PlistValue& value, Sink& sink, QString& error, WriterThreads threads)
{
    BinaryWriter writer(sink, error, threads);
    return writer.document(value);
}

} // namespace corvane::plist
