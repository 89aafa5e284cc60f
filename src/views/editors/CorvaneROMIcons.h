#pragma once

#include <QString>

class QColor;
class QPainter;
class QRectF;

// The pictures held in an LCD button's ROM, drawn as the button draws them.
namespace CorvaneROMIcons {
inline constexpr int kCount = 16;
QString name(int icon);
void paint(QPainter& painter, const QRectF& rect, int icon, const QColor& ink);
} // namespace CorvaneROMIcons
