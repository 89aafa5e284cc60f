#pragma once

#include "core/NotificationCenter.h"
#include "views/AssignmentLabelLayout.h"

#include <QWidget>
#include <vector>

class CorvaneSurfaceView;
class TVKMultiStateButton;

// What each control of a unit's picture does, written on the picture: a small plate beside or on
// every control that has a user name or an action (see AssignmentLabelLayout for where). Lies
// over the whole picture and lets every click through to the controls below.
//
// The labels are worked out when next drawn after something they show changed (an edit, an undo,
// another layer or keyset, another bank), so a notice costs no more than a flag. The lit control
// keeps its light in view: its label moves beside it, or is left out, while it is lit.
class CorvaneAssignmentLabels : public QWidget
{
    Q_OBJECT
public:
    // One control of the picture.
    struct Spot
    {
        TVKMultiStateButton* picture;
        qint64 state;   // the picture's state that lights it
        qint64 tag;     // on-screen group
        qint64 control; // on-screen control
        int group;      // model-data group
        int index;      // model-data control index
    };

    explicit CorvaneAssignmentLabels(CorvaneSurfaceView& surface);

    // The labels as drawn now, in the surface's coordinates; label.spot indexes spots().
    const std::vector<corvane::PlacedLabel>& labels();
    const std::vector<Spot>& spots();
    // The spot the picture shows lit, or -1.
    int litSpot() const;

    // What the picture shows changed (its controls, or what they do): worked out afresh.
    void invalidate();

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void rebuild();
    void followSelection();
    QRect around(int spot) const;

    CorvaneSurfaceView& m_surface;
    std::vector<Spot> m_spots;
    std::vector<corvane::LabelSpot> m_geometry;
    std::vector<QRectF> m_keepClear;
    std::vector<corvane::PlacedLabel> m_base;
    std::vector<corvane::PlacedLabel> m_shown;
    int m_shownLit = -1;
    bool m_valid = false;
    bool m_shownValid = false;
    std::vector<corvane::NotificationCenter::Observation> m_observations;
};
