#pragma once

#include "core/FourCharCode.h"
#include "core/PlistValue.h"

#include <optional>

namespace corvane {

// Flags are archived as the integers 1 and 0 or as booleans; readers take either as a short
// integer, non-zero meaning true. A missing or unreadable value gives the default.
inline bool archivedFlag(const PlistValue& value, bool defaultValue)
{
    if (value.isNull())
        return defaultValue;
    return qint16(value.toInteger(defaultValue ? 1 : 0)) != 0;
}

// Four-character codes are archived as four-character texts; anything else reads as 0.
inline FourCharCode archivedCode(const PlistValue& value)
{
    return value.isString() ? fourCharCodeFromString(value.toString()) : 0;
}

// Optional texts: present only when the archive holds a text.
inline std::optional<QString> archivedOptionalText(const PlistValue& value)
{
    if (!value.isString())
        return std::nullopt;
    return value.toString();
}

} // namespace corvane
