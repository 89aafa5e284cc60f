#include "views/WindowPlacement.h"

#include <QScreen>
#include <QString>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <tuple>

namespace corvane {

namespace {

const QString kX = QStringLiteral("X");
const QString kY = QStringLiteral("Y");
const QString kWidth = QStringLiteral("Width");
const QString kHeight = QStringLiteral("Height");

// The top of a window: its title and the header below it.
constexpr int kTopBand = 64;

bool coversATop(const QRect& frame, const std::vector<QRect>& open)
{
    return std::any_of(open.begin(), open.end(), [&](const QRect& other) {
        return frame.intersects(QRect(other.topLeft(), QSize(other.width(), kTopBand)));
    });
}

qint64 coveredArea(const QRect& frame, const std::vector<QRect>& open)
{
    qint64 area = 0;
    for (const QRect& other : open) {
        const QRect common = frame.intersected(other);
        if (!common.isEmpty())
            area += qint64(common.width()) * common.height();
    }
    return area;
}

} // namespace

QRect clampToScreen(const QRect& frame, const QRect& available)
{
    if (!available.isValid())
        return frame;
    const QSize size(std::min(frame.width(), available.width()),
                     std::min(frame.height(), available.height()));
    const int x = std::clamp(frame.x(), available.left(), available.right() + 1 - size.width());
    const int y = std::clamp(frame.y(), available.top(), available.bottom() + 1 - size.height());
    return QRect(QPoint(x, y), size);
}

QRect placeWindow(QSize frameSize, const QRect& available, const std::vector<QRect>& open,
                  const std::optional<QRect>& remembered)
{
    if (remembered)
        return clampToScreen(*remembered, available);
    const QRect screen = available.isValid() ? available : QRect(QPoint(0, 0), frameSize);
    const QSize size(std::min(frameSize.width(), screen.width()),
                     std::min(frameSize.height(), screen.height()));

    std::vector<QPoint> beside{screen.topLeft()};
    for (const QRect& other : open) {
        beside.emplace_back(other.right() + 1, other.top());
        beside.emplace_back(other.left(), other.bottom() + 1);
    }
    for (const QPoint& place : beside) {
        const QRect frame(place, size);
        if (screen.contains(frame) && coveredArea(frame, open) == 0)
            return frame;
    }

    // No free place: the lower corners first, then the places beside, pulled onto the screen.
    std::vector<QRect> candidates{
        clampToScreen(
            QRect(QPoint(screen.right() + 1 - size.width(), screen.bottom() + 1 - size.height()),
                  size),
            screen),
        clampToScreen(QRect(QPoint(screen.left(), screen.bottom() + 1 - size.height()), size),
                      screen)};
    for (const QPoint& place : beside)
        candidates.push_back(clampToScreen(QRect(place, size), screen));
    // The main window's top matters most, then how many tops are covered, then how much.
    const auto cost = [&](const QRect& frame) {
        int tops = 0;
        for (const QRect& other : open)
            tops += coversATop(frame, {other}) ? 1 : 0;
        return std::make_tuple(!open.empty() && coversATop(frame, {open.front()}), tops,
                               coveredArea(frame, open));
    };
    QRect best = candidates.front();
    auto least = cost(best);
    for (const QRect& frame : candidates) {
        const auto c = cost(frame);
        if (c < least) {
            least = c;
            best = frame;
        }
    }
    return best;
}

PlistValue storedFrame(QPoint position, QSize size, qreal devicePixelRatio)
{
    const qreal ratio = devicePixelRatio > 0 ? devicePixelRatio : 1.0;
    PlistValue dict = PlistValue::makeDict(4);
    dict.insert(kX, PlistValue(qint64(std::lround(position.x() * ratio))));
    dict.insert(kY, PlistValue(qint64(std::lround(position.y() * ratio))));
    dict.insert(kWidth, PlistValue(qint64(size.width())));
    dict.insert(kHeight, PlistValue(qint64(size.height())));
    return dict;
}

std::optional<QRect> frameFromStore(const PlistValue& stored, qreal devicePixelRatio)
{
    if (!stored.isDict())
        return std::nullopt;
    for (const QString& key : {kX, kY, kWidth, kHeight}) {
        if (!stored.value(key).isInteger())
            return std::nullopt;
    }
    const qint64 width = stored.value(kWidth).toInteger();
    const qint64 height = stored.value(kHeight).toInteger();
    constexpr qint64 kLimit = 1 << 20;
    const qint64 x = stored.value(kX).toInteger();
    const qint64 y = stored.value(kY).toInteger();
    if (width <= 0 || height <= 0 || width > kLimit || height > kLimit || std::abs(x) > kLimit ||
        std::abs(y) > kLimit)
        return std::nullopt;
    const qreal ratio = devicePixelRatio > 0 ? devicePixelRatio : 1.0;
    return QRect(int(std::lround(qreal(x) / ratio)), int(std::lround(qreal(y) / ratio)), int(width),
                 int(height));
}

void keepOnScreen(QWidget* window)
{
    if (!window || !window->isVisible() || !window->screen())
        return;
    const QRect frame = window->frameGeometry();
    const QRect inside = clampToScreen(frame, window->screen()->availableGeometry());
    if (inside == frame)
        return;
    window->setGeometry(QRect(window->geometry().topLeft() + (inside.topLeft() - frame.topLeft()),
                              window->size() - (frame.size() - inside.size())));
}

} // namespace corvane
