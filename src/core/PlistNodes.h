#pragma once

// Storage of the property-list tree, shared by PlistValue and the codec. Nothing outside
// src/core includes this: the rest of the program sees PlistValue only.

#include "core/PlistValue.h"

#include <QHashFunctions>
#include <QString>
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace corvane {

// A dictionary key. Keys repeat across a whole configuration (every control has the same few),
// so every entry holds only a pointer to one copy. The archive's names are registered once for
// the whole process (see PlistKey::shared): such a key lives as long as the program, is never
// counted, and is equal to another registered key only when it is the same one.
struct PlistKeyNode
{
    explicit PlistKeyNode(QString s, bool forever = false)
        : text(std::move(s)), hash(qHash(text)), registered(forever)
    {}
    std::atomic<int> refs{1};
    QString text;
    // Lets readers tell keys apart without comparing text when checking for repeated keys.
    std::size_t hash;
    const bool registered;
};

// Intrusive reference to a key: eight bytes per dictionary entry instead of a whole QString.
class PlistKey
{
public:
    PlistKey() = default;
    explicit PlistKey(const QString& text) : m_node(new PlistKeyNode(text)) {}
    // The process-wide key for this text, registered on first use; a private key only when the
    // text is too long or the registry is full.
    static PlistKey shared(QStringView text);
    bool isRegistered() const { return m_node && m_node->registered; }
    // Refers to a key of the registry, which is never counted.
    explicit PlistKey(PlistKeyNode* registeredNode) : m_node(registeredNode) {}
    PlistKey(const PlistKey& other) noexcept : m_node(other.m_node) { retain(); }
    PlistKey(PlistKey&& other) noexcept : m_node(std::exchange(other.m_node, nullptr)) {}
    PlistKey& operator=(const PlistKey& other) noexcept
    {
        if (m_node != other.m_node) {
            other.retain();
            release();
            m_node = other.m_node;
        }
        return *this;
    }
    PlistKey& operator=(PlistKey&& other) noexcept
    {
        if (this != &other) {
            release();
            m_node = std::exchange(other.m_node, nullptr);
        }
        return *this;
    }
    ~PlistKey() { release(); }

    const QString& text() const
    {
        static const QString empty;
        return m_node ? m_node->text : empty;
    }
    const PlistKeyNode* node() const { return m_node; }
    bool operator==(const PlistKey& other) const
    {
        if (m_node == other.m_node)
            return true;
        if (!m_node || !other.m_node)
            return text() == other.text();
        return m_node->hash == other.m_node->hash && m_node->text == other.m_node->text;
    }

private:
    void retain() const noexcept
    {
        if (m_node && !m_node->registered)
            m_node->refs.fetch_add(1, std::memory_order_relaxed);
    }
    void release() noexcept
    {
        if (m_node && !m_node->registered &&
            m_node->refs.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete m_node;
        m_node = nullptr;
    }
    PlistKeyNode* m_node = nullptr;
};

using PlistEntry = std::pair<PlistKey, PlistValue>;

struct PlistValue::StringNode final : Node
{
    explicit StringNode(QString s) : Node(Type::String), text(std::move(s)) {}
    Node* clone() const { return new StringNode(text); }
    QString text;
};

struct PlistValue::DataNode final : Node
{
    explicit DataNode(QByteArray b) : Node(Type::Data), bytes(std::move(b)) {}
    Node* clone() const { return new DataNode(bytes); }
    QByteArray bytes;
};

// Elements of a container node. Readers know a container's size before they build it, so the
// elements then live in the node's own allocation, one block per container; a container that
// grows later moves them to a buffer of their own.
template <typename T>
class PlistSlots
{
public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    PlistSlots() = default;
    PlistSlots(const PlistSlots&) = delete;
    PlistSlots& operator=(const PlistSlots&) = delete;
    ~PlistSlots()
    {
        std::destroy_n(m_data, m_size);
        if (m_heap)
            ::operator delete(m_data);
    }

    // Storage inside the owning node, handed over once before anything is stored.
    void adopt(T* storage, std::size_t capacity)
    {
        m_data = storage;
        m_capacity = capacity;
    }

    std::size_t size() const { return m_size; }
    std::size_t capacity() const { return m_capacity; }
    bool empty() const { return m_size == 0; }
    T* begin() { return m_data; }
    T* end() { return m_data + m_size; }
    const T* begin() const { return m_data; }
    const T* end() const { return m_data + m_size; }
    T& operator[](std::size_t i) { return m_data[i]; }
    const T& operator[](std::size_t i) const { return m_data[i]; }

    void reserve(std::size_t capacity)
    {
        if (capacity > m_capacity)
            moveTo(capacity, nullptr);
    }

    template <typename... Args>
    T& emplace_back(Args&&... args)
    {
        if (m_size < m_capacity)
            return *std::construct_at(m_data + m_size++, std::forward<Args>(args)...);
        // Built in the new buffer before the old one goes: the argument may be one of ours.
        const std::size_t capacity = m_capacity ? m_capacity * 2 : 1;
        T* buffer = static_cast<T*>(::operator new(capacity * sizeof(T)));
        std::construct_at(buffer + m_size, std::forward<Args>(args)...);
        moveTo(capacity, buffer);
        return m_data[m_size++];
    }
    void push_back(const T& value) { emplace_back(value); }
    void push_back(T&& value) { emplace_back(std::move(value)); }

    T* erase(T* at)
    {
        std::move(at + 1, end(), at);
        std::destroy_at(m_data + --m_size);
        return at;
    }

    bool operator==(const PlistSlots& other) const
    {
        return m_size == other.m_size && std::equal(begin(), end(), other.begin());
    }

private:
    void moveTo(std::size_t capacity, T* buffer)
    {
        if (!buffer)
            buffer = static_cast<T*>(::operator new(capacity * sizeof(T)));
        std::uninitialized_move_n(m_data, m_size, buffer);
        std::destroy_n(m_data, m_size);
        if (m_heap)
            ::operator delete(m_data);
        m_data = buffer;
        m_capacity = capacity;
        m_heap = true;
    }

    T* m_data = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
    bool m_heap = false;
};

// A container node together with room for `capacity` elements after it.
template <typename N, typename T>
N* createWithSlots(std::size_t capacity)
{
    static_assert(sizeof(N) % alignof(T) == 0);
    void* block = ::operator new(sizeof(N) + capacity * sizeof(T));
    N* node = new (block) N;
    if (capacity)
        node->slots().adopt(reinterpret_cast<T*>(static_cast<char*>(block) + sizeof(N)), capacity);
    return node;
}

struct PlistValue::ArrayNode final : Node
{
    static ArrayNode* create(std::size_t capacity)
    {
        return createWithSlots<ArrayNode, PlistValue>(capacity);
    }
    // Unsized: the block is longer than the node.
    static void operator delete(void* block) { ::operator delete(block); }
    ArrayNode* clone() const
    {
        auto* copy = create(items.size());
        for (const PlistValue& item : items)
            copy->items.emplace_back(item);
        return copy;
    }
    PlistSlots<PlistValue>& slots() { return items; }
    PlistSlots<PlistValue> items;

private:
    friend ArrayNode* createWithSlots<ArrayNode, PlistValue>(std::size_t);
    ArrayNode() : Node(Type::Array) {}
};

struct PlistValue::DictNode final : Node
{
    static DictNode* create(std::size_t capacity)
    {
        return createWithSlots<DictNode, PlistEntry>(capacity);
    }
    // Unsized: the block is longer than the node.
    static void operator delete(void* block) { ::operator delete(block); }
    DictNode* clone() const
    {
        auto* copy = create(entries.size());
        for (const PlistEntry& entry : entries)
            copy->entries.emplace_back(entry);
        copy->registeredKeys = registeredKeys;
        return copy;
    }
    PlistSlots<PlistEntry>& slots() { return entries; }
    // Looks a key up by the registered key for its text, comparing addresses only; valid when
    // every key of this dictionary is registered, since one text has one registered key.
    const PlistValue* findRegistered(const PlistKeyNode* key) const
    {
        for (const PlistEntry& entry : entries) {
            if (entry.first.node() == key)
                return &entry.second;
        }
        return nullptr;
    }
    void noteKey(const PlistKey& key) { registeredKeys = registeredKeys && key.isRegistered(); }
    // Archive readers look up every field of every control by name: compared here in place,
    // since keys of one dictionary mostly differ within their first few characters.
    qsizetype indexOf(QStringView key) const
    {
        const qsizetype n = key.size();
        const QChar* wanted = key.data();
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const PlistKeyNode* node = entries[i].first.node();
            if (!node) {
                if (n == 0)
                    return qsizetype(i);
                continue;
            }
            if (node->text.size() != n)
                continue;
            const QChar* text = node->text.constData();
            qsizetype j = 0;
            if (n >= 4) {
                // Four characters at once: names of one archive share short prefixes.
                std::uint64_t a;
                std::uint64_t b;
                std::memcpy(&a, text, sizeof a);
                std::memcpy(&b, wanted, sizeof b);
                if (a != b)
                    continue;
                j = 4;
            }
            while (j < n && text[j] == wanted[j])
                ++j;
            if (j == n)
                return qsizetype(i);
        }
        return -1;
    }
    PlistSlots<PlistEntry> entries;
    bool registeredKeys = true;

private:
    friend DictNode* createWithSlots<DictNode, PlistEntry>(std::size_t);
    DictNode() : Node(Type::Dict) {}
};

// The codec's door into the tree: builds containers from already collected children in one
// step and reads them without copying.
class PlistBuilder
{
public:
    // Moves the `count` items from `first` on into the new array.
    static PlistValue array(PlistValue* first, std::size_t count)
    {
        PlistValue v;
        auto* node = PlistValue::ArrayNode::create(count);
        for (std::size_t i = 0; i < count; ++i)
            node->items.emplace_back(std::move(first[i]));
        v.m_node = node;
        v.m_type = PlistValue::Type::Array;
        return v;
    }
    // Moves the `count` entries from `first` on; the caller guarantees that the keys are
    // distinct.
    static PlistValue dict(PlistEntry* first, std::size_t count)
    {
        PlistValue v;
        auto* node = PlistValue::DictNode::create(count);
        for (std::size_t i = 0; i < count; ++i) {
            node->noteKey(first[i].first);
            node->entries.emplace_back(std::move(first[i]));
        }
        v.m_node = node;
        v.m_type = PlistValue::Type::Dict;
        return v;
    }

    static const PlistSlots<PlistValue>& items(const PlistValue& array)
    {
        return static_cast<const PlistValue::ArrayNode*>(array.m_node)->items;
    }
    static const PlistSlots<PlistEntry>& entries(const PlistValue& dict)
    {
        return static_cast<const PlistValue::DictNode*>(dict.m_node)->entries;
    }
    static const QString& text(const PlistValue& string)
    {
        return static_cast<const PlistValue::StringNode*>(string.m_node)->text;
    }
    static const QByteArray& bytes(const PlistValue& data)
    {
        return static_cast<const PlistValue::DataNode*>(data.m_node)->bytes;
    }
    // Identity of shared storage (strings, data): equal pointers mean equal contents.
    static const void* identity(const PlistValue& value) { return value.m_node; }
    static double realBits(const PlistValue& value) { return value.m_real; }
    static quint64 integerBits(const PlistValue& value) { return value.m_uint; }
};

} // namespace corvane
