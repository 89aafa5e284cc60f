#pragma once

// Storage of the property-list tree, shared by PlistValue and the codec. Nothing outside
// src/core includes this: the rest of the program sees PlistValue only.

#include "core/PlistValue.h"

#include <QHashFunctions>
#include <QString>
#include <atomic>
#include <cstdint>
#include <cstring>
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
    // The registered key for this text, or a null key when the text was never registered.
    static PlistKey registered(QStringView text);
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

struct PlistValue::ArrayNode final : Node
{
    ArrayNode() : Node(Type::Array) {}
    Node* clone() const
    {
        auto* copy = new ArrayNode;
        copy->items = items;
        return copy;
    }
    std::vector<PlistValue> items;
};

struct PlistValue::DictNode final : Node
{
    DictNode() : Node(Type::Dict) {}
    Node* clone() const
    {
        auto* copy = new DictNode;
        copy->entries = entries;
        copy->registeredKeys = registeredKeys;
        return copy;
    }
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
    std::vector<PlistEntry> entries;
    bool registeredKeys = true;
};

// The codec's door into the tree: builds containers from already collected children in one
// step and reads them without copying.
class PlistBuilder
{
public:
    static PlistValue array(std::vector<PlistValue>&& items)
    {
        PlistValue v;
        auto* node = new PlistValue::ArrayNode;
        node->items = std::move(items);
        v.m_node = node;
        v.m_type = PlistValue::Type::Array;
        return v;
    }
    // The caller guarantees that the keys are distinct.
    static PlistValue dict(std::vector<PlistEntry>&& entries)
    {
        PlistValue v;
        auto* node = new PlistValue::DictNode;
        node->entries = std::move(entries);
        for (const PlistEntry& entry : node->entries)
            node->noteKey(entry.first);
        v.m_node = node;
        v.m_type = PlistValue::Type::Dict;
        return v;
    }

    static const std::vector<PlistValue>& items(const PlistValue& array)
    {
        return static_cast<const PlistValue::ArrayNode*>(array.m_node)->items;
    }
    static const std::vector<PlistEntry>& entries(const PlistValue& dict)
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
