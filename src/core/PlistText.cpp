#include "core/PlistText.h"

#include <array>
#include <cmath>

namespace corvane::plist {

qsizetype decodeUtf8(std::string_view bytes, QString& out)
{
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    const std::size_t n = bytes.size();
    std::size_t ascii = 0;
    while (ascii < n && s[ascii] < 0x80)
        ++ascii;
    if (ascii == n) {
        out = QString::fromLatin1(bytes.data(), qsizetype(n));
        return -1;
    }
    out.resize(qsizetype(n));
    char16_t* d = reinterpret_cast<char16_t*>(out.data());
    for (std::size_t k = 0; k < ascii; ++k)
        *d++ = s[k];
    std::size_t i = ascii;
    while (i < n) {
        const unsigned char c = s[i];
        if (c < 0x80) {
            *d++ = c;
            ++i;
            continue;
        }
        std::size_t len;
        char32_t cp;
        char32_t min;
        if ((c & 0xE0) == 0xC0) {
            len = 2;
            cp = c & 0x1F;
            min = 0x80;
        } else if ((c & 0xF0) == 0xE0) {
            len = 3;
            cp = c & 0x0F;
            min = 0x800;
        } else if ((c & 0xF8) == 0xF0) {
            len = 4;
            cp = c & 0x07;
            min = 0x10000;
        } else {
            return qsizetype(i);
        }
        if (n - i < len)
            return qsizetype(i);
        for (std::size_t k = 1; k < len; ++k) {
            if ((s[i + k] & 0xC0) != 0x80)
                return qsizetype(i);
            cp = (cp << 6) | (s[i + k] & 0x3F);
        }
        // Surrogates are halves of UTF-16 pairs, never characters of their own: encoded in
        // UTF-8 they are invalid (and XML 1.0 forbids them).
        if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            return qsizetype(i);
        if (cp >= 0x10000) {
            cp -= 0x10000;
            *d++ = char16_t(0xD800 + (cp >> 10));
            *d++ = char16_t(0xDC00 + (cp & 0x3FF));
        } else {
            *d++ = char16_t(cp);
        }
        i += len;
    }
    out.resize(qsizetype(d - reinterpret_cast<char16_t*>(out.data())));
    return -1;
}

void appendCodePoint(std::string& out, char32_t cp)
{
    if (cp < 0x80) {
        out.push_back(char(cp));
    } else if (cp < 0x800) {
        out.push_back(char(0xC0 | (cp >> 6)));
        out.push_back(char(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.push_back(char(0xE0 | (cp >> 12)));
        out.push_back(char(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(char(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(char(0xF0 | (cp >> 18)));
        out.push_back(char(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(char(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(char(0x80 | (cp & 0x3F)));
    }
}

namespace {

// Days since 1970-01-01 in the proleptic Gregorian calendar.
std::int64_t daysFromCivil(std::int64_t y, unsigned m, unsigned d)
{
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const std::int64_t yoe = y - era * 400;
    const std::int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 719468;
}

void civilFromDays(std::int64_t z, std::int64_t& y, unsigned& m, unsigned& d)
{
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const std::int64_t doe = z - era * 146097;
    const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    y = yoe + era * 400;
    const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const std::int64_t mp = (5 * doy + 2) / 153;
    d = unsigned(doy - (153 * mp + 2) / 5 + 1);
    m = unsigned(mp < 10 ? mp + 3 : mp - 9);
    y += m <= 2;
}

constexpr std::int64_t kDays2001 = 11323; // 2001-01-01 counted from 1970-01-01

std::int64_t secondsOf(std::int64_t y, unsigned mo, unsigned d, unsigned h, unsigned mi, unsigned s)
{
    return (daysFromCivil(y, mo, d) - kDays2001) * 86400 + h * 3600 + mi * 60 + s;
}

bool digits(std::string_view t, std::size_t at, std::size_t count, unsigned& value)
{
    value = 0;
    for (std::size_t k = at; k < at + count; ++k) {
        if (t[k] < '0' || t[k] > '9')
            return false;
        value = value * 10 + unsigned(t[k] - '0');
    }
    return true;
}

} // namespace

bool parseIsoDate(std::string_view t, double& seconds)
{
    if (t.size() != 20 || t[4] != '-' || t[7] != '-' || t[10] != 'T' || t[13] != ':' ||
        t[16] != ':' || t[19] != 'Z')
        return false;
    unsigned y, mo, d, h, mi, s;
    if (!digits(t, 0, 4, y) || !digits(t, 5, 2, mo) || !digits(t, 8, 2, d) ||
        !digits(t, 11, 2, h) || !digits(t, 14, 2, mi) || !digits(t, 17, 2, s))
        return false;
    if (mo < 1 || mo > 12 || d < 1 || h > 23 || mi > 59 || s > 59)
        return false;
    static constexpr unsigned kMonthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    if (d > kMonthDays[mo - 1] + ((mo == 2 && leap) ? 1 : 0))
        return false;
    seconds = double(secondsOf(y, mo, d, h, mi, s));
    return true;
}

void formatIsoDate(double seconds, char* out)
{
    static const double lowest = double(secondsOf(0, 1, 1, 0, 0, 0));
    static const double highest = double(secondsOf(9999, 12, 31, 23, 59, 59));
    double whole = std::isnan(seconds) ? 0.0 : std::floor(seconds);
    whole = whole < lowest ? lowest : (whole > highest ? highest : whole);
    const auto total = std::int64_t(whole);
    std::int64_t days = total / 86400;
    std::int64_t rest = total % 86400;
    if (rest < 0) {
        rest += 86400;
        --days;
    }
    std::int64_t y;
    unsigned mo, d;
    civilFromDays(days + kDays2001, y, mo, d);
    const auto put = [&out](std::size_t at, unsigned value, std::size_t width) {
        for (std::size_t k = width; k-- > 0;) {
            out[at + k] = char('0' + value % 10);
            value /= 10;
        }
    };
    put(0, unsigned(y), 4);
    out[4] = '-';
    put(5, mo, 2);
    out[7] = '-';
    put(8, d, 2);
    out[10] = 'T';
    put(11, unsigned(rest / 3600), 2);
    out[13] = ':';
    put(14, unsigned(rest / 60 % 60), 2);
    out[16] = ':';
    put(17, unsigned(rest % 60), 2);
    out[19] = 'Z';
}

bool decodeBase64(std::string_view text, QByteArray& out)
{
    static const auto table = [] {
        std::array<signed char, 256> t{};
        t.fill(-1);
        const char* alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        for (int i = 0; i < 64; ++i)
            t[static_cast<unsigned char>(alphabet[i])] = static_cast<signed char>(i);
        t[' '] = t['\t'] = t['\n'] = t['\r'] = -2;
        t['='] = -3;
        return t;
    }();
    out.resize(qsizetype(text.size() / 4 * 3 + 3));
    char* d = out.data();
    std::uint32_t bits = 0;
    int count = 0;
    int padding = 0;
    for (const char ch : text) {
        const signed char v = table[static_cast<unsigned char>(ch)];
        if (v == -2)
            continue;
        if (v == -3) {
            ++padding;
            continue;
        }
        if (v < 0 || padding)
            return false;
        bits = (bits << 6) | std::uint32_t(v);
        if (++count == 4) {
            *d++ = char(bits >> 16);
            *d++ = char(bits >> 8);
            *d++ = char(bits);
            bits = 0;
            count = 0;
        }
    }
    // A final group of two or three characters carries one or two bytes; the padding that
    // should follow is optional, but it must not be more than the group needs.
    if (count == 1 || padding > (count == 0 ? 0 : 4 - count))
        return false;
    if (count == 2) {
        *d++ = char(bits >> 4);
    } else if (count == 3) {
        *d++ = char(bits >> 10);
        *d++ = char(bits >> 2);
    }
    out.resize(qsizetype(d - out.data()));
    return true;
}

} // namespace corvane::plist
