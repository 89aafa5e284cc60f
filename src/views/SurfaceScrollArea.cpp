#include "views/SurfaceScrollArea.h"

#include <QScreen>
#include <QStyle>

SurfaceScrollArea::SurfaceScrollArea(QWidget* parent) : QScrollArea(parent)
{
    setObjectName(QStringLiteral("SurfaceScroll"));
    setFrameShape(QFrame::NoFrame);
    setAlignment(Qt::AlignCenter);
    setWidgetResizable(false);
}

QSize SurfaceScrollArea::sizeHint() const
{
    const QWidget* contents = widget();
    if (!contents)
        return QScrollArea::sizeHint();
    const int frame = 2 * frameWidth();
    // A picture without a layout has no size hint of its own: its fixed size is what it needs.
    const QSize needed = contents->sizeHint().isValid()
                             ? contents->sizeHint().expandedTo(contents->minimumSizeHint())
                             : contents->size();
    QSize hint = needed + QSize(frame, frame);
    // A screen that cannot hold the unit across shows a scroll bar below it: the window asks for
    // its height too, so that no second bar is needed down the side (and the same the other way
    // round).
    if (const QScreen* shown = screen()) {
        const QSize room = shown->availableGeometry().size();
        const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
        const QSize whole = hint;
        if (whole.width() > room.width())
            hint.rheight() += bar;
        if (whole.height() > room.height())
            hint.rwidth() += bar;
    }
    return hint;
}
