#pragma once

#include <QString>
#include <cstdint>

namespace corvane {

using FourCharCode = std::uint32_t;

// "????" and 0 both mean "no signature" throughout the model.
inline constexpr FourCharCode kUnknownSignature = 0x3F3F3F3Fu;

inline bool isMissingSignature(FourCharCode code)
{
    return code == 0 || code == kUnknownSignature;
}

// Code to text: the four bytes, most significant first, each as one character (Latin-1); the
// code 0 is the empty text.
QString stringFromFourCharCode(FourCharCode code);

// Text to code: the first four characters, a shorter text padded with blanks; the empty text
// is the code 0.
FourCharCode fourCharCodeFromString(const QString& text);

// Compile-time code from a literal such as fourCC("Crvn").
constexpr FourCharCode fourCC(const char (&s)[5])
{
    return (FourCharCode(std::uint8_t(s[0])) << 24) | (FourCharCode(std::uint8_t(s[1])) << 16) |
           (FourCharCode(std::uint8_t(s[2])) << 8) | FourCharCode(std::uint8_t(s[3]));
}

} // namespace corvane
