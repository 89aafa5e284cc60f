#pragma once

#include "surface/SurfaceConstants.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace corvane {

// The descriptor texts are printf-style formats; these helpers give the exact C behaviour of the
// conversions they use, so texts match what the background service and older files show.

// A text substituted for "%@": an absent text prints as "(null)".
inline QString objectText(const QString& text)
{
    return text.isNull() ? QStringLiteral("(null)") : text;
}

// "%.2x": at least two lower-case hex digits.
QString hexByte(unsigned value);

// "%.0f": C rounding (to nearest, ties to even on the binary value).
QString roundedNumber(double value);

} // namespace corvane

namespace corvane {

// Fills a descriptor format of the system's vocabulary ("%@", "%.0f", "%ld", "%%"). Texts and
// numbers are taken from separate queues, each in order: the formats were always filled that
// way, which is why, for instance, a mouse location prints its vertical distance first.
QString fillFormat(const QString& format, const QStringList& texts, const QList<double>& numbers);

} // namespace corvane
