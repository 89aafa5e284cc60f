#include "actions/ActionText.h"

#include <cstdio>

namespace corvane {

QString hexByte(unsigned value)
{
    char buffer[16];
    const int n = std::snprintf(buffer, sizeof buffer, "%.2x", value);
    return QString::fromLatin1(buffer, n);
}

QString roundedNumber(double value)
{
    char buffer[512];
    const int n = std::snprintf(buffer, sizeof buffer, "%.0f", value);
    if (n < 0)
        return QString();
    return QString::fromLatin1(buffer, qMin(n, int(sizeof buffer) - 1));
}

} // namespace corvane
