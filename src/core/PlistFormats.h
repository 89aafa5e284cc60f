#pragma once

// The two file forms behind PlistCodec. Internal to src/core.

#include "core/PlistCodec.h"
#include "core/PlistNodes.h"

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <cstring>
#include <functional>
#include <vector>

namespace corvane::plist {

// Deeper documents are refused by the readers and never produced by the writers, so hostile
// nesting cannot exhaust the stack and everything written can be read back.
constexpr int kMaxDepth = 512;

// Output buffer of the writers: grows one byte array, or hands full chunks to a device so that
// a large configuration is never held twice in memory.
class Sink
{
public:
    Sink() = default;
    explicit Sink(QIODevice* device) : m_device(device) {}

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

    // Device mode: writes what is left; false when the device failed at any point.
    bool finish();
    QByteArray take();
    bool failed() const { return m_failed; }
    const QString& error() const { return m_error; }
    // Bytes written so far, including chunks already handed to the device.
    std::uint64_t total() const { return m_flushed + m_length; }

private:
    void grow(std::size_t n);
    void flush();

    QByteArray m_buffer;
    char* m_data = nullptr;
    std::size_t m_length = 0;
    std::size_t m_capacity = 0;
    std::uint64_t m_flushed = 0;
    QIODevice* m_device = nullptr;
    bool m_failed = false;
    QString m_error;
};

// Gives back pages of a mapped file once the reader has passed them.
using PageRelease = std::function<void(const char* upTo)>;

bool readXml(const char* begin, const char* end, PlistValue& out, PlistError& error,
             const PageRelease& release = {});
bool readBinary(const char* begin, std::size_t size, PlistValue& out, PlistError& error);

// False, with the reason, for trees no property list can hold (a null value, deeper than
// kMaxDepth).
bool writeXml(const PlistValue& value, Sink& sink, QString& error);
bool writeBinary(const PlistValue& value, Sink& sink, QString& error);

// Readers collect a dictionary's entries first; a key given twice keeps its last value.
void removeDuplicateKeys(std::vector<PlistEntry>& entries, std::size_t from);

} // namespace corvane::plist
