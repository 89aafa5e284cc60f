#include "views/AssignmentLabelLayout.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>
#include <limits>

namespace corvane {

namespace {

// Room around a plate that no other plate takes, so that two labels never touch.
constexpr qreal kSpacing = 1;
// How far a label right or left of a control may reach.
constexpr qreal kSideWidth = 120;
// How much wider than its control a label below or above a control without neighbours may be.
constexpr qreal kLoneExtra = 80;

// From this size on, a control's label goes on it when it shows as much there as beside it.
constexpr qreal kLargeControl = 40;

const QString kEllipsis = QStringLiteral("…");

// The characters of the text a label shows; a shortened label counts less than the whole text.
qsizetype shown(const QString& drawn, const QString& full)
{
    if (drawn.isEmpty())
        return -1;
    return drawn == full ? full.size() + 1 : drawn.size() - 1;
}

} // namespace

AssignmentLabelLayout::AssignmentLabelLayout(const QFont& font, const QRectF& bounds,
                                             std::vector<QRectF> keepClear)
    : m_font(font), m_bounds(bounds), m_keepClear(std::move(keepClear)),
      m_height(std::ceil(QFontMetricsF(font).height()) + 2 * 1)
{}

QString AssignmentLabelLayout::fitted(const QString& text, qreal width) const
{
    const QFontMetricsF metrics(m_font);
    const QString drawn = metrics.elidedText(text, Qt::ElideRight, width - 2 * kPadding);
    // An ellipsis alone tells nothing.
    if (drawn.isEmpty() || drawn == kEllipsis)
        return QString();
    return drawn;
}

qreal AssignmentLabelLayout::besideWidth(const std::vector<LabelSpot>& spots, int spot) const
{
    const QRectF box = spots[size_t(spot)].outline.boundingRect();
    qreal left = std::numeric_limits<qreal>::max();
    qreal right = left;
    for (size_t i = 0; i < spots.size(); ++i) {
        if (int(i) == spot)
            continue;
        const QRectF other = spots[i].outline.boundingRect();
        if (other.bottom() <= box.top() || other.top() >= box.bottom())
            continue;
        if (other.left() >= box.right())
            right = std::min(right, other.left() - box.right());
        else if (other.right() <= box.left())
            left = std::min(left, box.left() - other.right());
    }
    const qreal room = std::min(left, right);
    if (room == std::numeric_limits<qreal>::max())
        return box.width() + kLoneExtra;
    return box.width() + std::max<qreal>(0, room - 2 * kSpacing);
}

qreal AssignmentLabelLayout::widthWithin(const QPainterPath& outline, const QPointF& centre) const
{
    const auto plate = [&](qreal w) {
        return QRectF(centre.x() - w / 2, centre.y() - m_height / 2, w, m_height);
    };
    if (!outline.contains(plate(2)))
        return 0;
    qreal inside = 2;
    qreal outside = outline.boundingRect().width();
    if (outline.contains(plate(outside)))
        return outside;
    while (outside - inside > 1) {
        const qreal mid = (inside + outside) / 2;
        (outline.contains(plate(mid)) ? inside : outside) = mid;
    }
    return std::floor(inside);
}

bool AssignmentLabelLayout::isFree(const QRectF& rect, const std::vector<LabelSpot>& spots,
                                   int spot, const std::vector<PlacedLabel>& placed,
                                   bool onOwn) const
{
    if (!m_bounds.contains(rect))
        return false;
    for (const QRectF& clear : m_keepClear) {
        if (clear.intersects(rect))
            return false;
    }
    const QRectF spaced = rect.adjusted(-kSpacing, -kSpacing, kSpacing, kSpacing);
    for (const PlacedLabel& label : placed) {
        if (label.rect.intersects(spaced))
            return false;
    }
    for (size_t i = 0; i < spots.size(); ++i) {
        if (int(i) == spot && onOwn)
            continue;
        const QPainterPath& outline = spots[i].outline;
        if (outline.boundingRect().intersects(rect) && outline.intersects(rect))
            return false;
    }
    return true;
}

AssignmentLabelLayout::Candidate
AssignmentLabelLayout::place(const std::vector<LabelSpot>& spots, int spot,
                             const std::vector<PlacedLabel>& placed, bool besideOnly,
                             bool anywhere) const
{
    const LabelSpot& target = spots[size_t(spot)];
    const QString& text = target.text;
    const QRectF box = target.outline.boundingRect();
    const QFontMetricsF metrics(m_font);
    const auto plateWidth = [&](const QString& drawn) {
        return std::ceil(metrics.horizontalAdvance(drawn)) + 2 * kPadding;
    };
    const qreal full = plateWidth(text);

    Candidate best{QRectF(), QString(), Where::Below};
    const auto consider = [&](Where where, qreal room, const auto& rectFor) {
        const QString drawn = fitted(text, std::min(full, room));
        if (drawn.isEmpty() || shown(drawn, text) <= shown(best.text, text))
            return;
        QRectF rect = rectFor(plateWidth(drawn));
        // On whole pixels, so that the plate's edges and the text are sharp at 1x.
        rect.moveTo(std::round(rect.x()), std::round(rect.y()));
        if (isFree(rect, spots, spot, placed, where == Where::On))
            best = {rect, drawn, where};
    };
    const auto centredAt = [&](qreal top) {
        return [&, top](qreal w) { return QRectF(box.center().x() - w / 2, top, w, m_height); };
    };

    const auto onControl = [&] {
        if (besideOnly)
            return;
        const qreal within = widthWithin(target.outline, box.center());
        if (within > 0)
            consider(Where::On, within, centredAt(box.center().y() - m_height / 2));
    };
    // A large control (an LCD key, a trackball) carries its label as a key of a stream deck
    // does; a small one beside it, unless there is more room on it.
    const bool large = box.width() >= kLargeControl && box.height() >= kLargeControl;
    if (large)
        onControl();
    const qreal beside = besideWidth(spots, spot);
    for (const Where where : {Where::Below, Where::Above}) {
        const qreal top = where == Where::Below ? box.bottom() + kGap : box.top() - kGap - m_height;
        consider(where, beside, centredAt(top));
        // Crowded at its full width: as wide as the control.
        if (beside > box.width())
            consider(where, box.width(), centredAt(top));
    }
    if (!large)
        onControl();
    if (anywhere) {
        const qreal top = box.center().y() - m_height / 2;
        consider(Where::Right, kSideWidth,
                 [&](qreal w) { return QRectF(box.right() + kGap, top, w, m_height); });
        consider(Where::Left, kSideWidth,
                 [&](qreal w) { return QRectF(box.left() - kGap - w, top, w, m_height); });
    }
    return best;
}

std::vector<PlacedLabel> AssignmentLabelLayout::layout(const std::vector<LabelSpot>& spots) const
{
    std::vector<PlacedLabel> placed;
    std::vector<bool> done(spots.size(), false);
    // First every label by its own control, then, for those that found no room there, beside
    // it wherever there is room.
    for (const bool anywhere : {false, true}) {
        for (size_t i = 0; i < spots.size(); ++i) {
            if (done[i] || spots[i].text.isEmpty())
                continue;
            const Candidate found = place(spots, int(i), placed, false, anywhere);
            if (found.text.isEmpty())
                continue;
            placed.push_back({int(i), found.rect, found.text, found.where == Where::On});
            done[i] = true;
        }
    }
    std::sort(placed.begin(), placed.end(),
              [](const PlacedLabel& a, const PlacedLabel& b) { return a.spot < b.spot; });
    return placed;
}

void AssignmentLabelLayout::keepOutlineClear(std::vector<PlacedLabel>& labels,
                                             const std::vector<LabelSpot>& spots, int spot) const
{
    const auto at = std::find_if(labels.begin(), labels.end(),
                                 [spot](const PlacedLabel& l) { return l.spot == spot; });
    if (at == labels.end() || !spots[size_t(spot)].outline.intersects(at->rect))
        return;
    const auto index = at - labels.begin();
    labels.erase(at);
    const Candidate found = place(spots, spot, labels, true, true);
    if (!found.text.isEmpty())
        labels.insert(labels.begin() + index, {spot, found.rect, found.text, false});
}

} // namespace corvane
