#pragma once

#include <QScrollArea>

// A unit's picture scrolls where the screen is smaller than the unit; the window still asks for
// the whole picture, and gets it wherever the screen has room. The expander windows and the
// simulated service's virtual surface hold their units in one of these.
class SurfaceScrollArea : public QScrollArea
{
public:
    explicit SurfaceScrollArea(QWidget* parent = nullptr);
    QSize sizeHint() const override;
};
