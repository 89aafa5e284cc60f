#pragma once

#include <QFont>
#include <QPainterPath>
#include <QRectF>
#include <QString>
#include <vector>

// Where the labels of a picture's controls go. Works on the picture's geometry only (QtGui, no
// widget), so that anything that draws a picture of the surface (a window, a printed page) lays
// its labels out the same way.
//
// Each label is a plate beside or on its control: below it, above it, on it, right or left of it,
// whichever shows most of the text. A label never leaves the picture, never overlaps another
// label, another control or a kept-clear area (the displays), and is shortened with an ellipsis
// to the room it has; a label with no room for even one character is left out.
namespace corvane {

struct LabelSpot
{
    QPainterPath outline; // the control, in picture coordinates
    QString text;         // what the label says in full; empty: no label, only room taken
};

struct PlacedLabel
{
    int spot = -1; // index of the spot it labels
    QRectF rect;   // the plate, in picture coordinates
    QString text;  // as drawn: the spot's text, shortened with "…" when it did not fit
    bool onControl = false;
};

class AssignmentLabelLayout
{
public:
    // The font gives the labels' size; bounds is the picture; keepClear are areas no label covers.
    AssignmentLabelLayout(const QFont& font, const QRectF& bounds,
                          std::vector<QRectF> keepClear = {});

    // A label for every spot with text that has room, in the order of the spots.
    std::vector<PlacedLabel> layout(const std::vector<LabelSpot>& spots) const;

    // Moves the label of one spot off that spot's own outline (it is lit, and its light stays
    // in view); left out when it has no room elsewhere. The other labels stay where they are.
    void keepOutlineClear(std::vector<PlacedLabel>& labels, const std::vector<LabelSpot>& spots,
                          int spot) const;

    const QFont& font() const { return m_font; }
    // The plate's margin around the text.
    static constexpr qreal kPadding = 2;
    // The gap between a control and a label beside it.
    static constexpr qreal kGap = 2;

private:
    enum class Where
    {
        Below,
        Above,
        On,
        Right,
        Left
    };
    struct Candidate
    {
        QRectF rect;
        QString text;
        Where where;
    };

    // The label of one spot at its best free place, or none (an empty text).
    Candidate place(const std::vector<LabelSpot>& spots, int spot,
                    const std::vector<PlacedLabel>& placed, bool besideOnly, bool anywhere) const;
    bool isFree(const QRectF& rect, const std::vector<LabelSpot>& spots, int spot,
                const std::vector<PlacedLabel>& placed, bool onOwn) const;
    // How wide a label below or above a spot may be: the control and half the room to its
    // nearest neighbours on each side.
    qreal besideWidth(const std::vector<LabelSpot>& spots, int spot) const;
    // The widest plate centred on the control that lies within its outline.
    qreal widthWithin(const QPainterPath& outline, const QPointF& centre) const;
    QString fitted(const QString& text, qreal width) const;

    QFont m_font;
    QRectF m_bounds;
    std::vector<QRectF> m_keepClear;
    qreal m_height;
};

} // namespace corvane
