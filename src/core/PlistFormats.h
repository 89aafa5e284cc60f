#pragma once

// The two file forms behind PlistCodec. Internal to src/core.

#include "core/PlistCodec.h"
#include "core/PlistNodes.h"

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

namespace corvane::plist {

// Deeper documents are refused by the readers and never produced by the writers, so hostile
// nesting cannot exhaust the stack and everything written can be read back.
constexpr int kMaxDepth = 512;

// The largest tree a binary document may stand for, counted as its readers walk it: every
// value and every dictionary key, a shared container once for each place it stands. The reader
// refuses a document beyond it and the writer never produces one, so whatever we write we read
// back. A configuration of 50 keysets is about 4.2 million; the most keysets a configuration
// may hold stay far below the limit.
constexpr std::uint64_t kMaxExpandedValues = std::uint64_t(1) << 26;

// Far above what a configuration holds (its largest values are icons of a few kilobytes) and far
// below what could exhaust memory: one text (in UTF-16 units, keys included), one data value,
// and a whole document in either form. Readers refuse and writers never produce more.
constexpr qsizetype kMaxTextUnits = qsizetype(8) << 20;
constexpr qsizetype kMaxDataBytes = qsizetype(16) << 20;
constexpr std::size_t kMaxDocumentBytes = std::size_t(1) << 30;

inline QString textLimitError()
{
    return QStringLiteral("text longer than the limit of %1 characters").arg(kMaxTextUnits);
}
inline QString dataLimitError()
{
    return QStringLiteral("data longer than the limit of %1 bytes").arg(kMaxDataBytes);
}

// Output buffer of the writers: grows one byte array, or hands full chunks to a device so that
// a large configuration is never held twice in memory.
class Sink
{
public:
    Sink() = default;
    explicit Sink(QIODevice* device);

    char* reserve(std::size_t n)
    {
        if (m_length + n > m_capacity)
            grow(n);
        return m_data + m_length;
    }
    void commit(char* end) { m_length = std::size_t(end - m_data); }
    void put(const char* s, std::size_t n)
    {
        char* d = reserve(n);
        std::memcpy(d, s, n);
        m_length += n;
    }
    template <std::size_t N>
    void put(const char (&s)[N])
    {
        put(s, N - 1);
    }
    void put(char c) { *reserve(1) = c, ++m_length; }
    // Bytes made elsewhere, possibly many.
    void putBlock(const char* s, std::size_t n);

    // Device mode: writes what is left; false when the device failed at any point.
    bool finish();
    QByteArray take();
    bool failed() const { return m_failed; }
    const QString& error() const { return m_error; }
    // Bytes written so far, including chunks already handed to the device.
    std::uint64_t total() const { return m_flushed + m_length; }
    // Whether bytes written since the running total was `mark` have gone to the device already.
    bool flushedSince(std::uint64_t mark) const { return mark < m_flushed; }
    // The last `n` bytes still in the buffer.
    const char* tail(std::size_t n) const { return m_data + m_length - n; }

private:
    void grow(std::size_t n);
    void flush();
    void writeOut(const char* p, std::size_t n);
    void startWriteBack();

    QByteArray m_buffer;
    char* m_data = nullptr;
    std::size_t m_length = 0;
    std::size_t m_capacity = 0;
    std::uint64_t m_flushed = 0;
    QIODevice* m_device = nullptr;
    // A file's descriptor, so that the disk starts on what is written while the rest is made.
    int m_file = -1;
    std::uint64_t m_writtenBack = 0;
    bool m_failed = false;
    QString m_error;
};

// The writers put a dictionary's entries in key order. Dictionaries of one kind (every control,
// every action) hold the same shared keys in the same order, so the order is worked out once
// per kind and reused; the keys are shared and the tree does not change while it is written,
// so equal key addresses mean equal keys.
class KeyOrder
{
public:
    // Appends the indices of the entries that are not null, sorted by key.
    void sorted(const PlistSlots<PlistEntry>& entries, std::vector<std::uint32_t>& order)
    {
        const std::size_t mark = order.size();
        std::uint64_t signature = entries.size();
        bool shared = true;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (entries[i].second.isNull())
                continue;
            order.push_back(std::uint32_t(i));
            const void* key = entries[i].first.node();
            shared = shared && key;
            signature = (signature ^ std::uint64_t(std::uintptr_t(key))) * 0xFF51AFD7ED558CCDull;
            signature ^= signature >> 31;
        }
        const std::size_t count = order.size() - mark;
        if (count < 2)
            return;
        std::uint32_t* first = order.data() + mark;
        const auto byKey = [&entries](std::uint32_t a, std::uint32_t b) {
            return entries[a].first.text() < entries[b].first.text();
        };
        if (!shared || count > kMaxKeys) {
            std::sort(first, first + count, byKey);
            return;
        }
        Memo& memo = m_memos[signature & (kMemos - 1)];
        bool hit = memo.signature == signature && memo.count == count;
        for (std::size_t k = 0; hit && k < count; ++k)
            hit = memo.keys[k] == entries[first[k]].first.node();
        if (hit) {
            std::uint32_t unsorted[kMaxKeys];
            std::copy(first, first + count, unsorted);
            for (std::size_t k = 0; k < count; ++k)
                first[k] = unsorted[memo.position[k]];
            return;
        }
        memo.signature = signature;
        memo.count = count;
        std::uint8_t position[kMaxKeys];
        for (std::size_t k = 0; k < count; ++k) {
            memo.keys[k] = entries[first[k]].first.node();
            position[k] = std::uint8_t(k);
        }
        std::sort(position, position + count,
                  [&](std::uint8_t a, std::uint8_t b) { return byKey(first[a], first[b]); });
        std::uint32_t unsorted[kMaxKeys];
        std::copy(first, first + count, unsorted);
        for (std::size_t k = 0; k < count; ++k) {
            memo.position[k] = position[k];
            first[k] = unsorted[position[k]];
        }
    }

private:
    static constexpr std::size_t kMaxKeys = 16;
    static constexpr std::size_t kMemos = 64;
    struct Memo
    {
        std::uint64_t signature = 0;
        std::size_t count = 0;
        const void* keys[kMaxKeys] = {};
        std::uint8_t position[kMaxKeys] = {};
    };
    Memo m_memos[kMemos];
};

// The writers use both cores for large documents unless told otherwise; the output is the same
// either way.
enum class WriterThreads
{
    Two,
    One
};

// Where a writer cuts a large document in two: the widest list at the top of the tree (the top
// itself at level 0, or one of the top dictionary's values at level 1: a configuration's
// keysets). A helper thread writes its items from `mid` on while the caller writes the rest.
// None (no items) for one thread, a small document, or no list of at least two containers.
struct ListSplit
{
    const PlistSlots<PlistValue>* items = nullptr;
    std::size_t mid = 0;
    int level = 0;
};
ListSplit findListSplit(const PlistValue& root, WriterThreads threads);

// Gives back pages of a mapped file once the reader has passed them.
using PageRelease = std::function<void(const char* upTo)>;

bool readXml(const char* begin, const char* end, PlistValue& out, PlistError& error,
             const PageRelease& release = {});
bool readBinary(const char* begin, std::size_t size, PlistValue& out, PlistError& error);

// False, with the reason, for trees no property list can hold (a null value, deeper than
// kMaxDepth).
bool writeXml(const PlistValue& value, Sink& sink, QString& error,
              WriterThreads threads = WriterThreads::Two);
bool writeBinary(const PlistValue& value, Sink& sink, QString& error,
                 WriterThreads threads = WriterThreads::Two);

// Readers collect a dictionary's entries first; a key given twice keeps its last value.
void removeDuplicateKeys(std::vector<PlistEntry>& entries, std::size_t from);

} // namespace corvane::plist
