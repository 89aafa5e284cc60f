// The binary form "bplist00", written: every repeated object stored once, containers included.

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
            if (PlistBuilder::text(v).size() > kMaxTextUnits) {
                m_error = textLimitError();
                return false;
            }
            result = text(PlistBuilder::text(v));
            break;
        case PlistValue::Type::Data: {
            if (PlistBuilder::bytes(v).size() > kMaxDataBytes) {
                m_error = dataLimitError();
                return false;
            }
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
        for (std::size_t k = 0; k < count; ++k) {
            const PlistKey& name = entries[m_order[mark + k]].first;
            if (name.text().size() > kMaxTextUnits) {
                m_order.resize(mark);
                m_error = textLimitError();
                return false;
            }
            m_refs.push_back(key(name));
        }
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
        if (expandedValues(table) > kMaxExpandedValues) {
            m_error =
                QStringLiteral("the tree expands to more than %1 values").arg(kMaxExpandedValues);
            return false;
        }
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

    // The tree's size as the reader counts it: children come before their containers, so one
    // pass gives every object its weight. Saturates just past the limit.
    static std::uint64_t expandedValues(const ObjectTable& table)
    {
        const std::vector<Object>& objects = table.objects();
        std::vector<std::uint64_t> weight(objects.size(), 1);
        for (std::size_t i = 0; i < objects.size(); ++i) {
            const Object& o = objects[i];
            if (o.kind != Kind::Array && o.kind != Kind::Dict)
                continue;
            const std::size_t n = o.kind == Kind::Dict ? std::size_t(o.count) * 2 : o.count;
            const std::uint32_t* refs = table.references(o);
            std::uint64_t w = 1;
            for (std::size_t k = 0; k < n; ++k)
                w = std::min(w + weight[refs[k]], kMaxExpandedValues + 1);
            weight[i] = w;
        }
        return objects.empty() ? 0 : weight.back();
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

bool writeBinary(const PlistValue& value, Sink& sink, QString& error, WriterThreads threads)
{
    BinaryWriter writer(sink, error, threads);
    return writer.document(value);
}

} // namespace corvane::plist
