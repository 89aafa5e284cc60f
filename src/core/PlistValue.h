#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <atomic>
#include <cstdint>

namespace corvane {

class PlistBuilder;

// One property-list value: the tree type of the whole program (archives, message bodies,
// pasteboard, command catalogue). A value is 16 bytes; strings, data, arrays and dictionaries
// live in shared, reference-counted nodes and are copied on write, so copying a whole
// configuration tree is cheap and a copy never changes its source.
//
// Integers keep their width and sign: a value read as an unsigned 64-bit number above INT64_MAX
// stays unsigned. Dictionaries keep their insertion order; writers sort the keys.
//
// The typed readers are lenient in the way the archive rules need: a value of the wrong kind
// gives the caller's default instead of failing.
class PlistValue
{
public:
    enum class Type : std::uint8_t
    {
        Null,
        Boolean,
        Integer,
        Real,
        String,
        Data,
        Date,
        Array,
        Dict
    };

    PlistValue() noexcept : m_int(0), m_type(Type::Null), m_unsigned(false) {}
    explicit PlistValue(bool b) noexcept : m_int(0), m_type(Type::Boolean), m_unsigned(false)
    {
        m_bool = b;
    }
    explicit PlistValue(int i) noexcept : PlistValue(qint64(i)) {}
    explicit PlistValue(unsigned u) noexcept : PlistValue(qint64(u)) {}
    explicit PlistValue(qint64 i) noexcept : m_int(i), m_type(Type::Integer), m_unsigned(false) {}
    explicit PlistValue(quint64 u) noexcept
        : m_uint(u), m_type(Type::Integer), m_unsigned(u > quint64(INT64_MAX))
    {}
    explicit PlistValue(double d) noexcept : m_real(d), m_type(Type::Real), m_unsigned(false) {}
    explicit PlistValue(const QString& s);
    explicit PlistValue(const QByteArray& data);
    // A pointer would otherwise silently become a boolean.
    PlistValue(const char*) = delete;

    static PlistValue makeArray(qsizetype reserve = 0);
    static PlistValue makeDict(qsizetype reserve = 0);
    // Dates are held as seconds since 2001-01-01 00:00:00 UTC, as both file forms store them.
    static PlistValue makeDate(double secondsSince2001);
    static PlistValue makeDate(const QDateTime& when);

    // Copies and moves are inline: a tree read or written copies millions of values.
    PlistValue(const PlistValue& other) noexcept
        : m_uint(other.m_uint), m_type(other.m_type), m_unsigned(other.m_unsigned)
    {
        retain();
    }
    PlistValue(PlistValue&& other) noexcept
        : m_uint(other.m_uint), m_type(other.m_type), m_unsigned(other.m_unsigned)
    {
        other.m_type = Type::Null;
        other.m_int = 0;
    }
    PlistValue& operator=(const PlistValue& other) noexcept;
    PlistValue& operator=(PlistValue&& other) noexcept;
    ~PlistValue()
    {
        if (isHeapType(m_type))
            release();
    }

    Type type() const { return m_type; }
    bool isNull() const { return m_type == Type::Null; }
    bool isBool() const { return m_type == Type::Boolean; }
    bool isInteger() const { return m_type == Type::Integer; }
    bool isUnsignedInteger() const { return m_type == Type::Integer && m_unsigned; }
    bool isReal() const { return m_type == Type::Real; }
    bool isNumber() const { return isInteger() || isReal(); }
    bool isString() const { return m_type == Type::String; }
    bool isData() const { return m_type == Type::Data; }
    bool isDate() const { return m_type == Type::Date; }
    bool isArray() const { return m_type == Type::Array; }
    bool isDict() const { return m_type == Type::Dict; }

    // Boolean, integer (non-zero) or real (non-zero); anything else gives the default.
    bool toBool(bool defaultValue = false) const;
    // Integer (an unsigned one reinterpreted), boolean (0/1) or real (truncated, saturated).
    qint64 toInteger(qint64 defaultValue = 0) const;
    quint64 toUnsigned(quint64 defaultValue = 0) const;
    double toReal(double defaultValue = 0.0) const;
    // Strings only; the raw accessors give empty values for other kinds.
    QString toString(const QString& defaultValue = QString()) const;
    QByteArray toData() const;
    double dateSeconds() const;
    QDateTime toDateTime() const;

    // Arrays and dictionaries: element count (0 for every other kind).
    qsizetype size() const;
    bool isEmpty() const { return size() == 0; }

    // Arrays. at() out of range, or on a non-array, gives a null value.
    const PlistValue& at(qsizetype index) const;
    // A null value becomes an empty array first; other kinds are left alone.
    void append(const PlistValue& value);
    void append(PlistValue&& value);
    void reserve(qsizetype count);
    void set(qsizetype index, PlistValue value);

    // Dictionaries. value() of a missing key, or on a non-dictionary, gives a null value.
    const PlistValue& value(QStringView key) const;
    bool contains(QStringView key) const;
    // Replaces an existing entry in place; a null value becomes an empty dictionary first.
    void insert(const QString& key, PlistValue value);
    bool remove(QStringView key);
    QString keyAt(qsizetype index) const;
    const PlistValue& valueAt(qsizetype index) const;
    QStringList keys() const;
    // Mutable access to one child (detaches shared storage); null when absent.
    PlistValue* find(QStringView key);
    PlistValue* findAt(qsizetype index);

    // Deep comparison; dictionaries compare as sets of entries, integers by value.
    bool operator==(const PlistValue& other) const;
    bool operator!=(const PlistValue& other) const { return !(*this == other); }

    // For Qt interfaces that want variants (QVariantMap for dictionaries, QVariantList for arrays).
    QVariant toVariant() const;
    static PlistValue fromVariant(const QVariant& variant);

    // Shared null value, for references to "nothing".
    static const PlistValue& null();

private:
    friend class PlistBuilder;
    // Shared storage of strings, data, arrays and dictionaries; the kinds are defined with the
    // codec's internals.
    struct Node
    {
        explicit Node(Type t) : type(t) {}
        std::atomic<int> refs{1};
        Type type;
    };
    struct StringNode;
    struct DataNode;
    struct ArrayNode;
    struct DictNode;

    static constexpr bool isHeapType(Type t)
    {
        return t == Type::String || t == Type::Data || t == Type::Array || t == Type::Dict;
    }
    static Node* cloneNode(const Node* node);
    static void destroyNode(Node* node);
    void release() noexcept;
    void retain() const noexcept
    {
        if (isHeapType(m_type))
            m_node->refs.fetch_add(1, std::memory_order_relaxed);
    }
    // The value stored under the key, or null when this is no dictionary or has no such key.
    const PlistValue* entryValue(QStringView key) const;
    ArrayNode* mutableArray();
    DictNode* mutableDict();
    const ArrayNode* arrayNode() const;
    const DictNode* dictNode() const;

    union {
        qint64 m_int;
        quint64 m_uint;
        double m_real;
        bool m_bool;
        Node* m_node;
    };
    Type m_type;
    bool m_unsigned;
};

} // namespace corvane
