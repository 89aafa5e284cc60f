#include "core/PlistValue.h"

#include "core/PlistNodes.h"

#include <QHash>
#include <QTimeZone>
#include <QVariantList>
#include <QVariantMap>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

namespace corvane {

namespace {
constexpr std::size_t kFirstDictCapacity = 6;
}

// Nodes carry no virtual functions (the value type inlines their reference count), so copying
// and freeing go by kind.
PlistValue::Node* PlistValue::cloneNode(const Node* node)
{
    using T = PlistValue::Type;
    switch (node->type) {
    case T::String:
        return static_cast<const PlistValue::StringNode*>(node)->clone();
    case T::Data:
        return static_cast<const PlistValue::DataNode*>(node)->clone();
    case T::Array:
        return static_cast<const PlistValue::ArrayNode*>(node)->clone();
    default:
        return static_cast<const PlistValue::DictNode*>(node)->clone();
    }
}

void PlistValue::destroyNode(Node* node)
{
    using T = PlistValue::Type;
    switch (node->type) {
    case T::String:
        delete static_cast<PlistValue::StringNode*>(node);
        break;
    case T::Data:
        delete static_cast<PlistValue::DataNode*>(node);
        break;
    case T::Array:
        delete static_cast<PlistValue::ArrayNode*>(node);
        break;
    default:
        delete static_cast<PlistValue::DictNode*>(node);
        break;
    }
}

PlistValue::PlistValue(const QString& s)
    : m_node(new StringNode(s)), m_type(Type::String), m_unsigned(false)
{}

PlistValue::PlistValue(const QByteArray& data)
    : m_node(new DataNode(data)), m_type(Type::Data), m_unsigned(false)
{}

PlistValue PlistValue::makeArray(qsizetype reserve)
{
    PlistValue v;
    auto* node = ArrayNode::create(reserve > 0 ? std::size_t(reserve) : 0);
    v.m_node = node;
    v.m_type = Type::Array;
    return v;
}

PlistValue PlistValue::makeDict(qsizetype reserve)
{
    PlistValue v;
    auto* node = DictNode::create(reserve > 0 ? std::size_t(reserve) : 0);
    v.m_node = node;
    v.m_type = Type::Dict;
    return v;
}

PlistValue PlistValue::makeDate(double secondsSince2001)
{
    PlistValue v;
    v.m_real = secondsSince2001;
    v.m_type = Type::Date;
    return v;
}

static const QDateTime& referenceDate()
{
    static const QDateTime epoch(QDate(2001, 1, 1), QTime(0, 0), QTimeZone::utc());
    return epoch;
}

PlistValue PlistValue::makeDate(const QDateTime& when)
{
    return makeDate(double(referenceDate().msecsTo(when)) / 1000.0);
}

PlistValue& PlistValue::operator=(const PlistValue& other) noexcept
{
    if (this != &other) {
        other.retain();
        release();
        m_uint = other.m_uint;
        m_type = other.m_type;
        m_unsigned = other.m_unsigned;
    }
    return *this;
}

PlistValue& PlistValue::operator=(PlistValue&& other) noexcept
{
    if (this != &other) {
        release();
        m_uint = other.m_uint;
        m_type = other.m_type;
        m_unsigned = other.m_unsigned;
        other.m_type = Type::Null;
        other.m_int = 0;
    }
    return *this;
}

void PlistValue::release() noexcept
{
    if (isHeapType(m_type)) {
        if (m_node->refs.fetch_sub(1, std::memory_order_acq_rel) == 1)
            destroyNode(m_node);
        m_type = Type::Null;
        m_int = 0;
    }
}

bool PlistValue::toBool(bool defaultValue) const
{
    switch (m_type) {
    case Type::Boolean:
        return m_bool;
    case Type::Integer:
        return m_int != 0;
    case Type::Real:
        return m_real != 0.0;
    default:
        return defaultValue;
    }
}

qint64 PlistValue::toInteger(qint64 defaultValue) const
{
    switch (m_type) {
    case Type::Boolean:
        return m_bool ? 1 : 0;
    case Type::Integer:
        return m_int;
    case Type::Real: {
        if (std::isnan(m_real))
            return defaultValue;
        if (m_real >= 9223372036854775807.0)
            return std::numeric_limits<qint64>::max();
        if (m_real <= -9223372036854775808.0)
            return std::numeric_limits<qint64>::min();
        return qint64(m_real);
    }
    default:
        return defaultValue;
    }
}

quint64 PlistValue::toUnsigned(quint64 defaultValue) const
{
    if (m_type == Type::Real) {
        if (std::isnan(m_real))
            return defaultValue;
        if (m_real >= 18446744073709551615.0)
            return std::numeric_limits<quint64>::max();
        if (m_real < 0)
            return quint64(toInteger());
        return quint64(m_real);
    }
    return quint64(toInteger(qint64(defaultValue)));
}

double PlistValue::toReal(double defaultValue) const
{
    switch (m_type) {
    case Type::Boolean:
        return m_bool ? 1.0 : 0.0;
    case Type::Integer:
        return m_unsigned ? double(m_uint) : double(m_int);
    case Type::Real:
        return m_real;
    default:
        return defaultValue;
    }
}

QString PlistValue::toString(const QString& defaultValue) const
{
    if (m_type == Type::String)
        return static_cast<const StringNode*>(m_node)->text;
    return defaultValue;
}

QByteArray PlistValue::toData() const
{
    if (m_type == Type::Data)
        return static_cast<const DataNode*>(m_node)->bytes;
    return {};
}

double PlistValue::dateSeconds() const
{
    return m_type == Type::Date ? m_real : 0.0;
}

QDateTime PlistValue::toDateTime() const
{
    if (m_type != Type::Date || !std::isfinite(m_real))
        return {};
    return referenceDate().addMSecs(qint64(std::llround(m_real * 1000.0)));
}

const PlistValue::ArrayNode* PlistValue::arrayNode() const
{
    return m_type == Type::Array ? static_cast<const ArrayNode*>(m_node) : nullptr;
}

const PlistValue::DictNode* PlistValue::dictNode() const
{
    return m_type == Type::Dict ? static_cast<const DictNode*>(m_node) : nullptr;
}

PlistValue::ArrayNode* PlistValue::mutableArray()
{
    if (m_type == Type::Null)
        *this = makeArray();
    if (m_type != Type::Array)
        return nullptr;
    if (m_node->refs.load(std::memory_order_acquire) != 1) {
        Node* copy = cloneNode(m_node);
        release();
        m_node = copy;
        m_type = Type::Array;
    }
    return static_cast<ArrayNode*>(m_node);
}

PlistValue::DictNode* PlistValue::mutableDict()
{
    if (m_type == Type::Null)
        *this = makeDict();
    if (m_type != Type::Dict)
        return nullptr;
    if (m_node->refs.load(std::memory_order_acquire) != 1) {
        Node* copy = cloneNode(m_node);
        release();
        m_node = copy;
        m_type = Type::Dict;
    }
    return static_cast<DictNode*>(m_node);
}

qsizetype PlistValue::size() const
{
    if (const ArrayNode* a = arrayNode())
        return qsizetype(a->items.size());
    if (const DictNode* d = dictNode())
        return qsizetype(d->entries.size());
    return 0;
}

const PlistValue& PlistValue::null()
{
    static const PlistValue nothing;
    return nothing;
}

const PlistValue& PlistValue::at(qsizetype index) const
{
    const ArrayNode* a = arrayNode();
    if (!a || index < 0 || std::size_t(index) >= a->items.size())
        return null();
    return a->items[std::size_t(index)];
}

void PlistValue::append(const PlistValue& value)
{
    if (ArrayNode* a = mutableArray())
        a->items.push_back(value);
}

void PlistValue::append(PlistValue&& value)
{
    if (ArrayNode* a = mutableArray())
        a->items.push_back(std::move(value));
}

void PlistValue::reserve(qsizetype count)
{
    if (count <= 0)
        return;
    if (m_type == Type::Dict) {
        mutableDict()->entries.reserve(std::size_t(count));
    } else if (ArrayNode* a = mutableArray()) {
        a->items.reserve(std::size_t(count));
    }
}

void PlistValue::set(qsizetype index, PlistValue value)
{
    ArrayNode* a = mutableArray();
    if (a && index >= 0 && std::size_t(index) < a->items.size())
        a->items[std::size_t(index)] = std::move(value);
}

namespace {

// The names of an archive, registered once for the whole process: readers and writers share
// one key per name, so that looking a field up compares addresses, not characters. Bounded,
// since documents may carry any number of names of their own.
class KeyRegistry
{
public:
    static constexpr qsizetype kMaxLength = 64;
    static constexpr qsizetype kMaxKeys = 4096;

    static KeyRegistry& instance()
    {
        // Never destroyed: registered keys may be released by other static destructors.
        static KeyRegistry* registry = new KeyRegistry;
        return *registry;
    }

    PlistKeyNode* find(QStringView text)
    {
        const std::lock_guard lock(m_mutex);
        return m_keys.value(text, nullptr);
    }

    PlistKeyNode* add(QStringView text)
    {
        if (text.size() > kMaxLength)
            return nullptr;
        const std::lock_guard lock(m_mutex);
        if (PlistKeyNode* node = m_keys.value(text, nullptr))
            return node;
        if (m_keys.size() >= kMaxKeys)
            return nullptr;
        auto* node = new PlistKeyNode(text.toString(), true);
        m_keys.insert(QStringView(node->text), node);
        m_generation.fetch_add(1, std::memory_order_release);
        return node;
    }

    // Changes whenever a key is registered, so that "not registered" can be remembered.
    unsigned generation() const { return m_generation.load(std::memory_order_acquire); }

private:
    std::mutex m_mutex;
    QHash<QStringView, PlistKeyNode*> m_keys;
    std::atomic<unsigned> m_generation{0};
};

// Model readers and writers name millions of fields with a few dozen literals. A literal's
// characters never move, so the address and length of the text find its key without hashing
// or locking; comparing the characters keeps a reused buffer from answering with a stale key.
class KeyCache
{
public:
    static KeyCache& local()
    {
        thread_local KeyCache cache;
        return cache;
    }

    // The registered key of the text, or null when it was never registered.
    const PlistKeyNode* lookup(QStringView text)
    {
        Slot& slot = slotFor(text);
        if (matches(slot, text)) {
            if (slot.key.isRegistered())
                return slot.key.node();
            if (slot.generation == KeyRegistry::instance().generation())
                return nullptr;
        }
        const unsigned generation = KeyRegistry::instance().generation();
        PlistKeyNode* node = KeyRegistry::instance().find(text);
        remember(slot, text, node, generation);
        return node;
    }

    // The key an entry under this text is stored with: the registered one whenever possible.
    const PlistKey& keyFor(QStringView text)
    {
        Slot& slot = slotFor(text);
        if (matches(slot, text) && slot.key.isRegistered())
            return slot.key;
        const unsigned generation = KeyRegistry::instance().generation();
        remember(slot, text, KeyRegistry::instance().add(text), generation);
        return slot.key;
    }

private:
    static constexpr std::size_t kSlots = 512;
    struct Slot
    {
        const QChar* data = nullptr;
        PlistKey key;
        unsigned generation = 0;
    };

    Slot& slotFor(QStringView text)
    {
        auto bits = std::uintptr_t(text.data()) ^ std::uintptr_t(text.size());
        bits ^= bits >> 4;
        bits ^= bits >> 10;
        return m_slots[bits & (kSlots - 1)];
    }

    static bool matches(const Slot& slot, QStringView text)
    {
        const QString& known = slot.key.text();
        // An empty text may have no characters at all (a null data pointer), which memcmp must
        // not be handed.
        return slot.data == text.data() && slot.key.node() && known.size() == text.size() &&
               (text.isEmpty() || std::memcmp(known.constData(), text.data(),
                                              std::size_t(text.size()) * sizeof(QChar)) == 0);
    }

    static void remember(Slot& slot, QStringView text, PlistKeyNode* node, unsigned generation)
    {
        slot.data = text.data();
        slot.generation = generation;
        // A key of its own copies the text, so that it owns characters that cannot change.
        slot.key = node ? PlistKey(node) : PlistKey(text.toString());
    }

    std::array<Slot, kSlots> m_slots;
};

} // namespace

PlistKey PlistKey::shared(QStringView text)
{
    PlistKeyNode* node = KeyRegistry::instance().add(text);
    return node ? PlistKey(node) : PlistKey(text.toString());
}

const PlistValue* PlistValue::entryValue(QStringView key) const
{
    const DictNode* d = dictNode();
    if (!d)
        return nullptr;
    if (d->registeredKeys) {
        // Every key here is registered, so an unregistered text cannot be among them.
        const PlistKeyNode* k = KeyCache::local().lookup(key);
        return k ? d->findRegistered(k) : nullptr;
    }
    const qsizetype i = d->indexOf(key);
    return i < 0 ? nullptr : &d->entries[std::size_t(i)].second;
}

const PlistValue& PlistValue::value(QStringView key) const
{
    const PlistValue* found = entryValue(key);
    return found ? *found : null();
}

bool PlistValue::contains(QStringView key) const
{
    return entryValue(key) != nullptr;
}

void PlistValue::insert(const QString& key, PlistValue value)
{
    DictNode* d = mutableDict();
    if (!d)
        return;
    const PlistKey& shared = KeyCache::local().keyFor(key);
    for (PlistEntry& entry : d->entries) {
        if (entry.first == shared) {
            entry.second = std::move(value);
            return;
        }
    }
    // Control and action dictionaries are built one entry at a time; one allocation that
    // holds them all beats growing through 1, 2 and 4 entries.
    if (d->entries.capacity() == 0)
        d->entries.reserve(kFirstDictCapacity);
    d->entries.emplace_back(shared, std::move(value));
    d->noteKey(shared);
}

bool PlistValue::remove(QStringView key)
{
    if (!dictNode() || !contains(key))
        return false;
    DictNode* d = mutableDict();
    d->entries.erase(d->entries.begin() + d->indexOf(key));
    return true;
}

QString PlistValue::keyAt(qsizetype index) const
{
    const DictNode* d = dictNode();
    if (!d || index < 0 || std::size_t(index) >= d->entries.size())
        return {};
    return d->entries[std::size_t(index)].first.text();
}

const PlistValue& PlistValue::valueAt(qsizetype index) const
{
    const DictNode* d = dictNode();
    if (!d || index < 0 || std::size_t(index) >= d->entries.size())
        return null();
    return d->entries[std::size_t(index)].second;
}

QStringList PlistValue::keys() const
{
    QStringList result;
    if (const DictNode* d = dictNode()) {
        result.reserve(qsizetype(d->entries.size()));
        for (const auto& entry : d->entries)
            result.append(entry.first.text());
    }
    return result;
}

PlistValue* PlistValue::find(QStringView key)
{
    if (!contains(key))
        return nullptr;
    DictNode* d = mutableDict();
    return &d->entries[std::size_t(d->indexOf(key))].second;
}

PlistValue* PlistValue::findAt(qsizetype index)
{
    if (index < 0 || index >= size())
        return nullptr;
    if (m_type == Type::Array)
        return &mutableArray()->items[std::size_t(index)];
    return &mutableDict()->entries[std::size_t(index)].second;
}

bool PlistValue::operator==(const PlistValue& other) const
{
    if (m_type != other.m_type)
        return false;
    switch (m_type) {
    case Type::Null:
        return true;
    case Type::Boolean:
        return m_bool == other.m_bool;
    case Type::Integer:
        return m_uint == other.m_uint && m_unsigned == other.m_unsigned;
    case Type::Real:
    case Type::Date:
        return m_real == other.m_real || (std::isnan(m_real) && std::isnan(other.m_real));
    case Type::String:
    case Type::Data:
    case Type::Array:
    case Type::Dict:
        break;
    }
    if (m_node == other.m_node)
        return true;
    switch (m_type) {
    case Type::String:
        return toString() == other.toString();
    case Type::Data:
        return toData() == other.toData();
    case Type::Array:
        return arrayNode()->items == other.arrayNode()->items;
    case Type::Dict: {
        const DictNode* a = dictNode();
        const DictNode* b = other.dictNode();
        if (a->entries.size() != b->entries.size())
            return false;
        if (a->entries.size() > 16) {
            // Large dictionaries (a command catalogue, hostile input) would make the
            // pairwise search quadratic.
            QHash<QStringView, const PlistValue*> index;
            index.reserve(qsizetype(b->entries.size()));
            for (const auto& [key, val] : b->entries)
                index.insert(QStringView(key.text()), &val);
            for (const auto& [key, val] : a->entries) {
                const auto it = index.constFind(QStringView(key.text()));
                if (it == index.cend() || **it != val)
                    return false;
            }
            return true;
        }
        for (const auto& [key, val] : a->entries) {
            const qsizetype j = b->indexOf(key.text());
            if (j < 0 || b->entries[std::size_t(j)].second != val)
                return false;
        }
        return true;
    }
    default:
        return false;
    }
}

QVariant PlistValue::toVariant() const
{
    switch (m_type) {
    case Type::Null:
        return {};
    case Type::Boolean:
        return QVariant(m_bool);
    case Type::Integer:
        return m_unsigned ? QVariant(qulonglong(m_uint)) : QVariant(qlonglong(m_int));
    case Type::Real:
        return QVariant(m_real);
    case Type::String:
        return QVariant(toString());
    case Type::Data:
        return QVariant(toData());
    case Type::Date:
        return QVariant(toDateTime());
    case Type::Array: {
        QVariantList list;
        for (const PlistValue& item : arrayNode()->items)
            list.append(item.toVariant());
        return list;
    }
    case Type::Dict: {
        QVariantMap map;
        for (const auto& [key, val] : dictNode()->entries)
            map.insert(key.text(), val.toVariant());
        return map;
    }
    }
    return {};
}

PlistValue PlistValue::fromVariant(const QVariant& variant)
{
    switch (variant.typeId()) {
    case QMetaType::Bool:
        return PlistValue(variant.toBool());
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::Char:
    case QMetaType::SChar:
        return PlistValue(qint64(variant.toLongLong()));
    case QMetaType::UInt:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UShort:
    case QMetaType::UChar:
        return PlistValue(quint64(variant.toULongLong()));
    case QMetaType::Double:
    case QMetaType::Float:
        return PlistValue(variant.toDouble());
    case QMetaType::QString:
        return PlistValue(variant.toString());
    case QMetaType::QByteArray:
        return PlistValue(variant.toByteArray());
    case QMetaType::QDateTime:
        return makeDate(variant.toDateTime());
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        const QVariantList list = variant.toList();
        PlistValue array = makeArray(list.size());
        for (const QVariant& item : list)
            array.append(fromVariant(item));
        return array;
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = variant.toMap();
        PlistValue dict = makeDict(map.size());
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            dict.insert(it.key(), fromVariant(it.value()));
        return dict;
    }
    default:
        return {};
    }
}

} // namespace corvane
