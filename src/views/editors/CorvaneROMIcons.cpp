#include "views/editors/CorvaneROMIcons.h"

#include <QColor>
#include <QCoreApplication>
#include <QPainter>
#include <QPainterPath>

QString CorvaneROMIcons::name(int icon)
{
    static const char* const names[kCount] = {QT_TRANSLATE_NOOP("CorvaneROMIcons", "Play"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Stop"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Record"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Pause"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Rewind"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Fast Forward"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Previous"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Next"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Loop"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Arrow Up"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Arrow Down"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Arrow Left"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Arrow Right"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Plus"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Minus"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Marker")};
    if (icon < 0 || icon >= kCount)
        return QCoreApplication::translate("CorvaneROMIcons", "Icon %1").arg(icon);
    return QCoreApplication::translate("CorvaneROMIcons", names[icon]);
}

void CorvaneROMIcons::paint(QPainter& painter, const QRectF& rect, int icon, const QColor& ink)
{
    const double s = qMin(rect.width(), rect.height()) * 0.7;
    const QPointF c = rect.center();
    const QRectF box(c.x() - s / 2, c.y() - s / 2, s, s);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    auto triangle = [&](QPointF a, QPointF b, QPointF d) {
        QPainterPath path;
        path.moveTo(a);
        path.lineTo(b);
        path.lineTo(d);
        path.closeSubpath();
        painter.drawPath(path);
    };
    const double l = box.left(), r = box.right(), t = box.top(), b = box.bottom();
    const double mx = c.x(), my = c.y();
    switch (icon) {
    case 0:
        triangle({l + s * 0.15, t}, {r, my}, {l + s * 0.15, b});
        break;
    case 1:
        painter.drawRect(box.adjusted(s * 0.08, s * 0.08, -s * 0.08, -s * 0.08));
        break;
    case 2:
        painter.drawEllipse(box.adjusted(s * 0.05, s * 0.05, -s * 0.05, -s * 0.05));
        break;
    case 3:
        painter.drawRect(QRectF(l + s * 0.1, t, s * 0.28, s));
        painter.drawRect(QRectF(r - s * 0.38, t, s * 0.28, s));
        break;
    case 4:
        triangle({mx, t + s * 0.1}, {mx, b - s * 0.1}, {l, my});
        triangle({r, t + s * 0.1}, {r, b - s * 0.1}, {mx, my});
        break;
    case 5:
        triangle({l, t + s * 0.1}, {l, b - s * 0.1}, {mx, my});
        triangle({mx, t + s * 0.1}, {mx, b - s * 0.1}, {r, my});
        break;
    case 6:
        painter.drawRect(QRectF(l, t + s * 0.1, s * 0.14, s * 0.8));
        triangle({r, t + s * 0.1}, {r, b - s * 0.1}, {l + s * 0.14, my});
        break;
    case 7:
        painter.drawRect(QRectF(r - s * 0.14, t + s * 0.1, s * 0.14, s * 0.8));
        triangle({l, t + s * 0.1}, {l, b - s * 0.1}, {r - s * 0.14, my});
        break;
    case 8: {
        QPen pen(ink, s * 0.13, Qt::SolidLine, Qt::FlatCap);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.drawArc(box.adjusted(s * 0.1, s * 0.1, -s * 0.1, -s * 0.1), 30 * 16, 300 * 16);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        triangle({r - s * 0.02, t + s * 0.12}, {r - s * 0.02, my - s * 0.08},
                 {mx + s * 0.18, t + s * 0.2});
        break;
    }
    case 9:
        triangle({mx, t}, {r, b}, {l, b});
        break;
    case 10:
        triangle({l, t}, {r, t}, {mx, b});
        break;
    case 11:
        triangle({l, my}, {r, t}, {r, b});
        break;
    case 12:
        triangle({l, t}, {r, my}, {l, b});
        break;
    case 13:
        painter.drawRect(QRectF(l, my - s * 0.1, s, s * 0.2));
        painter.drawRect(QRectF(mx - s * 0.1, t, s * 0.2, s));
        break;
    case 14:
        painter.drawRect(QRectF(l, my - s * 0.1, s, s * 0.2));
        break;
    default: {
        QPainterPath flag;
        flag.moveTo(l + s * 0.2, b);
        flag.lineTo(l + s * 0.2, t);
        flag.lineTo(r, t + s * 0.22);
        flag.lineTo(l + s * 0.32, t + s * 0.44);
        flag.lineTo(l + s * 0.32, b);
        flag.closeSubpath();
        painter.drawPath(flag);
        break;
    }
    }
    painter.restore();
}
