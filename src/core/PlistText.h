#pragma once

// Small text helpers of the codec: interning, UTF-8 decoding, numbers, dates and base64.

#include "core/PlistNodes.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::plist {

inline std::uint64_t hashBytes(std::string_view s)
{
    // Multiply-rotate over eight-byte words: short names dominate, so this stays a few cycles.
    std::uint64_t h = 0x9E3779B97F4A7C15ull ^ s.size();
    const char* p = s.data();
    std::size_t n = s.size();
    while (n >= 8) {
        std::uint64_t w;
        std::memcpy(&w, p, 8);
        h = (h ^ w) * 0xFF51AFD7ED558CCDull;
        h ^= h >> 29;
        p += 8;
        n -= 8;
    }
    if (n) {
        std::uint64_t w = 0;
        std::memcpy(&w, p, n);
        h = (h ^ w) * 0xC4CEB9FE1A85EC53ull;
    }
    h ^= h >> 32;
    return h;
}

// Open-addressing table from UTF-8 bytes to one shared item (a key or a string value), so a
// name that occurs a hundred thousand times in a configuration is stored once.
template <typename T>
class Interner
{
public:
    static constexpr std::size_t kMaxLength = 64;
    // Bounds the table (a few MiB) when a document holds many distinct short strings.
    static constexpr std::size_t kMaxItems = 1u << 16;

    // Null when the text is not interned (too long, or the table is full); the caller then
    // makes a fresh item.
    template <typename Make>
    const T* get(std::string_view text, Make&& make)
    {
        if (text.size() > kMaxLength)
            return nullptr;
        if (m_slots.empty())
            m_slots.resize(1024);
        const std::uint64_t h = hashBytes(text);
        std::size_t mask = m_slots.size() - 1;
        std::size_t i = std::size_t(h) & mask;
        while (m_slots[i].used) {
            Slot& s = m_slots[i];
            if (s.hash == h && s.length == text.size() &&
                (text.empty() ||
                 std::memcmp(m_arena.data() + s.offset, text.data(), text.size()) == 0))
                return &s.item;
            i = (i + 1) & mask;
        }
        if (m_count >= kMaxItems)
            return nullptr;
        if ((m_count + 1) * 2 > m_slots.size()) {
            rehash();
            mask = m_slots.size() - 1;
            i = std::size_t(h) & mask;
            while (m_slots[i].used)
                i = (i + 1) & mask;
        }
        Slot& s = m_slots[i];
        s.used = true;
        s.hash = h;
        s.offset = std::uint32_t(m_arena.size());
        s.length = std::uint32_t(text.size());
        m_arena.append(text);
        s.item = make();
        ++m_count;
        return &s.item;
    }

private:
    struct Slot
    {
        std::uint64_t hash = 0;
        std::uint32_t offset = 0;
        std::uint32_t length = 0;
        bool used = false;
        T item;
    };
    void rehash()
    {
        std::vector<Slot> old(m_slots.size() * 2);
        old.swap(m_slots);
        const std::size_t mask = m_slots.size() - 1;
        for (Slot& s : old) {
            if (!s.used)
                continue;
            std::size_t i = std::size_t(s.hash) & mask;
            while (m_slots[i].used)
                i = (i + 1) & mask;
            m_slots[i] = std::move(s);
        }
    }
    std::vector<Slot> m_slots;
    std::string m_arena;
    std::size_t m_count = 0;
};

// Decodes UTF-8 into UTF-16. Encoded surrogates are refused like any other invalid sequence
// (whether raw or spelled as character references): XML 1.0 has no such characters, and the
// writer never produces them. Returns the offset of the first bad byte, or -1.
qsizetype decodeUtf8(std::string_view bytes, QString& out);
// Appends the UTF-8 (surrogates as three-byte sequences) of one code point.
void appendCodePoint(std::string& out, char32_t cp);

// "YYYY-MM-DDTHH:MM:SSZ" to seconds since 2001-01-01 and back (years 0000 to 9999).
bool parseIsoDate(std::string_view text, double& seconds);
// Writes 20 characters. Fractions are dropped and years beyond the range are clamped: the
// XML form carries whole seconds only.
void formatIsoDate(double seconds, char* out);

// Base64 with whitespace allowed anywhere, as other writers wrap their lines.
bool decodeBase64(std::string_view text, QByteArray& out);

} // namespace corvane::plist
