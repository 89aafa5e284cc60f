#include "SurfaceArt.h"

#include <QConicalGradient>
#include <QFont>
#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QtMath>

namespace surfacegen {

namespace {

struct Palette
{
    QColor panelTop, panelBottom, brushLight, brushDark, edge;
    QColor wellTop, wellBottom, wellShade, wellLight;
    QColor silk;
    QColor keyTop, keyBottom, keyEdge, keyText;
    QColor knobTop, knobBottom, knobCap;
    QColor metalA, metalB;
};

Palette palette(Finish finish)
{
    if (finish == Finish::Silver) {
        return {QColor(0xdc, 0xdf, 0xe3), QColor(0xb4, 0xb9, 0xbf), QColor(255, 255, 255, 22),
                QColor(0, 0, 0, 10),      QColor(0x7d, 0x83, 0x8a), QColor(0xa9, 0xae, 0xb4),
                QColor(0xc3, 0xc7, 0xcc), QColor(0, 0, 0, 70),      QColor(255, 255, 255, 150),
                QColor(0x2c, 0x30, 0x36), QColor(0x4b, 0x4f, 0x56), QColor(0x35, 0x38, 0x3e),
                QColor(0x1c, 0x1e, 0x22), QColor(0xee, 0xef, 0xf1), QColor(0x5a, 0x5e, 0x64),
                QColor(0x1f, 0x21, 0x24), QColor(0xc9, 0xcc, 0xd0), QColor(0xe9, 0xeb, 0xee),
                QColor(0x9a, 0x9f, 0xa6)};
    }
    return {QColor(0x32, 0x35, 0x3b), QColor(0x1d, 0x1f, 0x23), QColor(255, 255, 255, 9),
            QColor(0, 0, 0, 16),      QColor(0x0c, 0x0d, 0x0f), QColor(0x14, 0x15, 0x18),
            QColor(0x1c, 0x1e, 0x21), QColor(0, 0, 0, 140),     QColor(255, 255, 255, 28),
            QColor(0xa7, 0xad, 0xb5), QColor(0x3e, 0x42, 0x49), QColor(0x2a, 0x2d, 0x32),
            QColor(0x0e, 0x0f, 0x11), QColor(0xd8, 0xdb, 0xdf), QColor(0x4a, 0x4d, 0x53),
            QColor(0x14, 0x15, 0x17), QColor(0x5c, 0x60, 0x67), QColor(0x55, 0x59, 0x60),
            QColor(0x2b, 0x2e, 0x33)};
}

// The backlight of a selected control.
const QColor kLitBright(0xff, 0xd0, 0x6a);
const QColor kLitDeep(0xf0, 0x9a, 0x12);
const QColor kLitText(0x3a, 0x22, 0x00);
const QColor kLedOff(0x4a, 0x4c, 0x50);

QFont silkFont(qreal pixelSize)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(qMax(1, qRound(pixelSize)));
    font.setBold(true);
    font.setLetterSpacing(QFont::AbsoluteSpacing, pixelSize * 0.08);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

void drawCentredText(QPainter& p, const QRectF& rect, const QString& text, const QColor& color,
                     qreal pixelSize)
{
    QFont font = silkFont(pixelSize);
    // Shrink long legends until they fit the key.
    while (QFontMetricsF(font).horizontalAdvance(text) > rect.width() - 4 && pixelSize > 5) {
        pixelSize -= 0.5;
        font = silkFont(pixelSize);
    }
    p.setFont(font);
    p.setPen(color);
    p.drawText(rect, Qt::AlignCenter, text);
}

// Transport and arrow legends are drawn, not typeset, so they are exact at every size.
bool drawGlyph(QPainter& p, const QRectF& rect, const QString& label, const QColor& color)
{
    const QPointF c = rect.center();
    const qreal s = qMin(rect.width(), rect.height()) * 0.22;
    QPainterPath path;
    auto triangle = [&](qreal cx, bool right) {
        const qreal d = right ? s : -s;
        path.moveTo(cx - d, c.y() - s);
        path.lineTo(cx + d, c.y());
        path.lineTo(cx - d, c.y() + s);
        path.closeSubpath();
    };
    if (label == QStringLiteral("◀◀")) {
        triangle(c.x() - s * 0.9, false);
        triangle(c.x() + s * 0.9, false);
    } else if (label == QStringLiteral("▶▶")) {
        triangle(c.x() - s * 0.9, true);
        triangle(c.x() + s * 0.9, true);
    } else if (label == QStringLiteral("▶")) {
        triangle(c.x() + s * 0.15, true);
    } else if (label == QStringLiteral("◀")) {
        triangle(c.x() - s * 0.15, false);
    } else if (label == QStringLiteral("■")) {
        path.addRect(QRectF(c.x() - s * 0.85, c.y() - s * 0.85, s * 1.7, s * 1.7));
    } else if (label == QStringLiteral("●")) {
        path.addEllipse(c, s, s);
    } else {
        return false;
    }
    p.setPen(Qt::NoPen);
    p.setBrush(color);
    p.drawPath(path);
    return true;
}

void drawLegend(QPainter& p, const QRectF& rect, const QString& label, const QColor& color)
{
    if (label.isEmpty() || drawGlyph(p, rect, label, color))
        return;
    drawCentredText(p, rect, label, color, qMin(10.5, rect.height() * 0.45));
}

void drawShadow(QPainter& p, const QPainterPath& shape)
{
    p.save();
    p.setPen(Qt::NoPen);
    p.translate(0, 1.6);
    p.setBrush(QColor(0, 0, 0, 70));
    p.drawPath(shape);
    p.translate(0, -0.8);
    p.setBrush(QColor(0, 0, 0, 50));
    p.drawPath(shape);
    p.restore();
}

void drawKeyBody(QPainter& p, const QPainterPath& shape, const QRectF& rect, const Palette& pal,
                 bool lit)
{
    drawShadow(p, shape);
    QLinearGradient body(rect.topLeft(), rect.bottomLeft());
    if (lit) {
        body.setColorAt(0, kLitBright);
        body.setColorAt(1, kLitDeep);
    } else {
        body.setColorAt(0, pal.keyTop);
        body.setColorAt(1, pal.keyBottom);
    }
    p.setPen(QPen(lit ? QColor(0xa8, 0x62, 0x00) : pal.keyEdge, 1));
    p.setBrush(body);
    p.drawPath(shape);
    // The moulded top catches the light along its upper edge.
    p.save();
    p.setClipPath(shape);
    p.setPen(QPen(QColor(255, 255, 255, lit ? 120 : 38), 1));
    p.setBrush(Qt::NoBrush);
    p.drawPath(shape.translated(0, 1));
    if (lit) {
        QRadialGradient glow(rect.center(), qMax(rect.width(), rect.height()) * 0.6);
        glow.setColorAt(0, QColor(255, 250, 220, 120));
        glow.setColorAt(1, QColor(255, 250, 220, 0));
        p.setPen(Qt::NoPen);
        p.setBrush(glow);
        p.drawPath(shape);
    }
    p.restore();
}

QPainterPath roundedRect(const QRectF& r, qreal radius)
{
    QPainterPath path;
    path.addRoundedRect(r, radius, radius);
    return path;
}

void paintKey(QPainter& p, const Control& c, const Palette& pal, bool lit, qreal radius)
{
    const QRectF r = c.rect.adjusted(0.5, 0.5, -0.5, -0.5);
    drawKeyBody(p, roundedRect(r, radius), r, pal, lit);
    drawLegend(p, r, c.label, lit ? kLitText : pal.keyText);
}

void paintRound(QPainter& p, const Control& c, const Palette& pal, bool lit)
{
    const QRectF r = c.rect.adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath shape;
    shape.addEllipse(r);
    drawKeyBody(p, shape, r, pal, lit);
    drawLegend(p, r, c.label, lit ? kLitText : pal.keyText);
}

// A lighted square: a key with its lamp across the top.
void paintSquare(QPainter& p, const Control& c, const Palette& pal, bool lit)
{
    const QRectF r = c.rect.adjusted(0.5, 0.5, -0.5, -0.5);
    drawKeyBody(p, roundedRect(r, 3), r, pal, false);
    const QRectF lamp(r.left() + 4, r.top() + 3, r.width() - 8, 4);
    p.setPen(Qt::NoPen);
    p.setBrush(lit ? kLitBright : kLedOff);
    p.drawRoundedRect(lamp, 1.5, 1.5);
    if (lit) {
        p.setBrush(QColor(255, 220, 140, 90));
        p.drawRoundedRect(lamp.adjusted(-2, -1.5, 2, 1.5), 3, 3);
    }
    drawLegend(p, r.adjusted(0, 6, 0, 0), c.label, lit ? kLitBright : pal.keyText);
}

void paintEncoder(QPainter& p, const Control& c, const Palette& pal, bool lit)
{
    const QPointF centre = c.rect.center();
    const qreal outer = c.rect.width() / 2;
    // The LED collar: fifteen segments over 270 degrees, as on the hardware.
    const int leds = 15;
    for (int i = 0; i < leds; ++i) {
        const qreal angle = qDegreesToRadians(225.0 - 270.0 * i / (leds - 1));
        const QPointF at(centre.x() + (outer - 3) * qCos(angle),
                         centre.y() - (outer - 3) * qSin(angle));
        p.setPen(Qt::NoPen);
        p.setBrush(lit ? kLitBright : kLedOff);
        p.drawEllipse(at, 1.7, 1.7);
    }
    const qreal knob = outer * 0.74;
    QPainterPath body;
    body.addEllipse(centre, knob, knob);
    drawShadow(p, body);
    QRadialGradient g(centre - QPointF(knob * 0.3, knob * 0.4), knob * 1.4);
    g.setColorAt(0, pal.knobTop);
    g.setColorAt(1, pal.knobBottom);
    p.setPen(QPen(QColor(0, 0, 0, 160), 1));
    p.setBrush(g);
    p.drawPath(body);
    // Knurling round the skirt.
    p.setPen(QPen(QColor(255, 255, 255, 26), 1));
    for (int i = 0; i < 36; ++i) {
        const qreal a = qDegreesToRadians(10.0 * i);
        p.drawLine(QPointF(centre.x() + knob * 0.78 * qCos(a), centre.y() - knob * 0.78 * qSin(a)),
                   QPointF(centre.x() + knob * 0.97 * qCos(a), centre.y() - knob * 0.97 * qSin(a)));
    }
    const qreal cap = knob * 0.66;
    QLinearGradient capGradient(centre - QPointF(0, cap), centre + QPointF(0, cap));
    capGradient.setColorAt(0, pal.metalA);
    capGradient.setColorAt(1, pal.metalB);
    p.setPen(QPen(lit ? kLitDeep : QColor(0, 0, 0, 110), lit ? 1.6 : 1));
    p.setBrush(capGradient);
    p.drawEllipse(centre, cap, cap);
    p.setPen(QPen(lit ? kLitBright : QColor(0xf4, 0xf4, 0xf4), 2, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(centre - QPointF(0, cap * 0.3), centre - QPointF(0, knob * 0.95));
}

void paintBall(QPainter& p, const Control& c, bool lit)
{
    const QPointF centre = c.rect.center();
    const qreal r = c.rect.width() / 2;
    QRadialGradient g(centre - QPointF(r * 0.35, r * 0.4), r * 1.3);
    if (lit) {
        g.setColorAt(0, QColor(0xff, 0xe2, 0x9c));
        g.setColorAt(0.45, QColor(0xd0, 0x84, 0x10));
        g.setColorAt(1, QColor(0x4a, 0x2a, 0x00));
    } else {
        g.setColorAt(0, QColor(0x6f, 0x76, 0x82));
        g.setColorAt(0.5, QColor(0x22, 0x25, 0x2b));
        g.setColorAt(1, QColor(0x06, 0x07, 0x08));
    }
    p.setPen(QPen(QColor(0, 0, 0, 180), 1));
    p.setBrush(g);
    p.drawEllipse(centre, r - 0.5, r - 0.5);
    // The specular highlight of a polished ball.
    QRadialGradient spot(centre - QPointF(r * 0.38, r * 0.42), r * 0.35);
    spot.setColorAt(0, QColor(255, 255, 255, 170));
    spot.setColorAt(1, QColor(255, 255, 255, 0));
    p.setPen(Qt::NoPen);
    p.setBrush(spot);
    p.drawEllipse(centre - QPointF(r * 0.38, r * 0.42), r * 0.35, r * 0.35);
}

QPainterPath annulus(const QPointF& centre, qreal outer, qreal inner)
{
    QPainterPath path;
    path.addEllipse(centre, outer, outer);
    path.addEllipse(centre, inner, inner);
    return path;
}

void paintRing(QPainter& p, const Control& c, const Palette& pal, bool lit, RingLight light,
               bool lightPipe)
{
    const QPointF centre = c.rect.center();
    const qreal outer = c.rect.width() / 2 - 0.5;
    const qreal inner = c.inner.width() / 2;
    const QPainterPath shape = annulus(centre, outer, inner);
    drawShadow(p, shape);
    // Machined metal: a conical sweep gives the turned look.
    QConicalGradient metal(centre, 35);
    for (int i = 0; i <= 8; ++i)
        metal.setColorAt(i / 8.0, i % 2 ? pal.metalA : pal.metalB);
    p.setPen(QPen(QColor(0, 0, 0, 150), 1));
    p.setBrush(metal);
    p.drawPath(shape);
    // Grip ridges across the ring.
    p.save();
    p.setClipPath(shape);
    p.setPen(QPen(QColor(0, 0, 0, 55), 1.2));
    const int ridges = int(outer * 0.55);
    for (int i = 0; i < ridges; ++i) {
        const qreal a = 2 * M_PI * i / ridges;
        p.drawLine(QPointF(centre.x() + (inner + 5) * qCos(a), centre.y() - (inner + 5) * qSin(a)),
                   QPointF(centre.x() + (outer - 3) * qCos(a), centre.y() - (outer - 3) * qSin(a)));
    }
    p.restore();
    if (lightPipe) {
        const QColor lamp = light == RingLight::Plain ? kLedOff : ringLightColor(light);
        p.setPen(QPen(lamp, 3));
        p.setBrush(Qt::NoBrush);
        p.drawEllipse(centre, inner + 2.5, inner + 2.5);
        if (light != RingLight::Plain) {
            QColor halo = lamp;
            halo.setAlpha(70);
            p.setPen(QPen(halo, 7));
            p.drawEllipse(centre, inner + 4, inner + 4);
        }
    }
    if (lit) {
        p.setPen(QPen(kLitBright, 3));
        p.setBrush(Qt::NoBrush);
        p.drawEllipse(centre, outer - 2, outer - 2);
        QColor glow = kLitDeep;
        glow.setAlpha(90);
        p.setPen(QPen(glow, 6));
        p.drawEllipse(centre, outer - 5, outer - 5);
    }
}

void paintJog(QPainter& p, const Control& c, const Palette& pal, bool lit)
{
    const QPointF centre = c.rect.center();
    const qreal r = c.rect.width() / 2 - 0.5;
    QPainterPath shape;
    shape.addEllipse(centre, r, r);
    drawShadow(p, shape);
    QRadialGradient g(centre - QPointF(r * 0.25, r * 0.3), r * 1.3);
    g.setColorAt(0, pal.knobTop);
    g.setColorAt(1, pal.knobBottom);
    p.setPen(QPen(lit ? kLitDeep : QColor(0, 0, 0, 170), lit ? 2.5 : 1));
    p.setBrush(g);
    p.drawPath(shape);
    // Concentric turning marks and the finger dimple.
    p.setBrush(Qt::NoBrush);
    for (int i = 1; i <= 5; ++i) {
        p.setPen(QPen(QColor(255, 255, 255, 10 + i * 3), 1));
        p.drawEllipse(centre, r * (0.25 + 0.13 * i), r * (0.25 + 0.13 * i));
    }
    const QPointF dimple = centre + QPointF(r * 0.42, -r * 0.42);
    QRadialGradient d(dimple + QPointF(2, 3), r * 0.16);
    d.setColorAt(0, QColor(0, 0, 0, 150));
    d.setColorAt(1, QColor(255, 255, 255, 30));
    p.setPen(QPen(QColor(0, 0, 0, 90), 1));
    p.setBrush(d);
    p.drawEllipse(dimple, r * 0.15, r * 0.15);
    if (lit) {
        p.setPen(QPen(kLitBright, 3));
        p.setBrush(Qt::NoBrush);
        p.drawEllipse(centre, r - 2.5, r - 2.5);
    }
}

QPainterPath wedge(const QPointF& centre, qreal outer, qreal inner, qreal from, qreal to)
{
    QPainterPath path;
    const QRectF o(centre.x() - outer, centre.y() - outer, 2 * outer, 2 * outer);
    const QRectF i(centre.x() - inner, centre.y() - inner, 2 * inner, 2 * inner);
    path.arcMoveTo(o, from);
    path.arcTo(o, from, to - from);
    path.arcTo(i, to, from - to);
    path.closeSubpath();
    return path;
}

void paintDpad(QPainter& p, const Control& c, const Palette& pal, bool lit)
{
    const QPointF centre = c.rect.center();
    const qreal outer = c.rect.width() / 2 - 1;
    const qreal inner = outer * 0.36;
    if (c.shape == QStringLiteral("dpad-center")) {
        const QRectF r(centre.x() - inner + 3, centre.y() - inner + 3, 2 * inner - 6,
                       2 * inner - 6);
        QPainterPath shape;
        shape.addEllipse(r);
        drawKeyBody(p, shape, r, pal, lit);
        return;
    }
    qreal mid = 90;
    if (c.shape == QStringLiteral("dpad-right"))
        mid = 0;
    else if (c.shape == QStringLiteral("dpad-down"))
        mid = 270;
    else if (c.shape == QStringLiteral("dpad-left"))
        mid = 180;
    const QPainterPath shape = wedge(centre, outer, inner, mid - 43, mid + 43);
    drawKeyBody(p, shape, shape.boundingRect(), pal, lit);
    // The arrow, pointing outwards.
    const qreal a = qDegreesToRadians(mid);
    const QPointF dir(qCos(a), -qSin(a));
    const QPointF side(-dir.y(), dir.x());
    const QPointF tip = centre + dir * (outer * 0.82);
    const QPointF base = centre + dir * (outer * 0.62);
    QPainterPath arrow;
    arrow.moveTo(tip);
    arrow.lineTo(base + side * (outer * 0.11));
    arrow.lineTo(base - side * (outer * 0.11));
    arrow.closeSubpath();
    p.setPen(Qt::NoPen);
    p.setBrush(lit ? kLitText : pal.keyText);
    p.drawPath(arrow);
}

void paintFader(QPainter& p, const Control& c, const Palette& pal, bool lit)
{
    const QRectF r = c.rect;
    const qreal cx = r.center().x();
    // Scale marks either side of the slot.
    p.setPen(QPen(pal.silk, 1));
    for (int i = 0; i <= 10; ++i) {
        const qreal y = r.top() + 18 + (r.height() - 36) * i / 10.0;
        const qreal len = i % 5 == 0 ? 5 : 3;
        p.drawLine(QPointF(r.left() + 1, y), QPointF(r.left() + 1 + len, y));
        p.drawLine(QPointF(r.right() - 1, y), QPointF(r.right() - 1 - len, y));
    }
    const QRectF slot(cx - 2.5, r.top() + 8, 5, r.height() - 16);
    p.setPen(QPen(QColor(255, 255, 255, 40), 1));
    p.setBrush(QColor(0x08, 0x08, 0x09));
    p.drawRoundedRect(slot, 2.5, 2.5);
    // The cap rests at unity gain, three quarters up.
    const QRectF cap(cx - 11.5, r.top() + (r.height() - 36) * 0.25, 23, 34);
    QPainterPath shape = roundedRect(cap, 3);
    drawShadow(p, shape);
    QLinearGradient g(cap.topLeft(), cap.bottomLeft());
    if (lit) {
        g.setColorAt(0, kLitBright);
        g.setColorAt(1, kLitDeep);
    } else {
        g.setColorAt(0, pal.metalA);
        g.setColorAt(0.48, pal.metalB);
        g.setColorAt(0.52, pal.knobBottom);
        g.setColorAt(1, pal.metalB);
    }
    p.setPen(QPen(QColor(0, 0, 0, 150), 1));
    p.setBrush(g);
    p.drawPath(shape);
    p.setPen(QPen(lit ? kLitText : QColor(0xf2, 0xf2, 0xf2), 1.5));
    p.drawLine(QPointF(cap.left() + 3, cap.center().y()),
               QPointF(cap.right() - 3, cap.center().y()));
}

void paintTouch(QPainter& p, const Control& c, const Palette& pal, bool lit)
{
    const QRectF r = c.rect.adjusted(0.5, 0.5, -0.5, -0.5);
    p.setPen(QPen(pal.keyEdge, 1));
    p.setBrush(lit ? kLitBright : pal.keyBottom);
    p.drawRoundedRect(r, r.height() / 2, r.height() / 2);
    p.setPen(Qt::NoPen);
    p.setBrush(lit ? QColor(255, 255, 255, 200) : kLedOff);
    p.drawEllipse(r.center(), 2, 2);
}

// An LCD key: a clear key over a small colour screen; the screen's colour is the control's own
// and is painted by the window over this picture.
void paintLcdKey(QPainter& p, const Control& c, const Palette& pal, bool lit)
{
    const QRectF r = c.rect.adjusted(0.5, 0.5, -0.5, -0.5);
    drawKeyBody(p, roundedRect(r, 5), r, pal, false);
    const QRectF glass = r.adjusted(4, 4, -4, -4);
    QLinearGradient g(glass.topLeft(), glass.bottomLeft());
    g.setColorAt(0, QColor(0x1a, 0x1d, 0x22));
    g.setColorAt(1, QColor(0x0c, 0x0d, 0x10));
    p.setPen(QPen(QColor(0, 0, 0, 200), 1));
    p.setBrush(g);
    p.drawRoundedRect(glass, 3, 3);
    if (lit) {
        p.setPen(QPen(kLitBright, 2.5));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(r.adjusted(1.5, 1.5, -1.5, -1.5), 4, 4);
    }
}

void paintScrew(QPainter& p, const QPointF& at, const Palette& pal)
{
    QRadialGradient g(at - QPointF(1.5, 1.5), 6);
    g.setColorAt(0, pal.metalA);
    g.setColorAt(1, pal.metalB);
    p.setPen(QPen(QColor(0, 0, 0, 120), 1));
    p.setBrush(g);
    p.drawEllipse(at, 4.5, 4.5);
    p.setPen(QPen(QColor(0, 0, 0, 140), 1.2));
    p.drawLine(at + QPointF(-2.6, -1.2), at + QPointF(2.6, 1.2));
}

void paintWell(QPainter& p, const QRectF& r, const Palette& pal)
{
    QLinearGradient g(r.topLeft(), r.bottomLeft());
    g.setColorAt(0, pal.wellTop);
    g.setColorAt(1, pal.wellBottom);
    p.setPen(Qt::NoPen);
    p.setBrush(g);
    p.drawRoundedRect(r, 7, 7);
    // Recessed: shade under the upper lip, light on the lower one.
    p.save();
    p.setClipPath(roundedRect(r, 7));
    QLinearGradient lip(r.topLeft(), r.topLeft() + QPointF(0, 6));
    lip.setColorAt(0, pal.wellShade);
    lip.setColorAt(1, QColor(0, 0, 0, 0));
    p.setBrush(lip);
    p.drawRect(QRectF(r.left(), r.top(), r.width(), 6));
    p.restore();
    p.setPen(QPen(pal.wellLight, 1));
    p.setBrush(Qt::NoBrush);
    p.drawLine(QPointF(r.left() + 7, r.bottom() + 0.5), QPointF(r.right() - 7, r.bottom() + 0.5));
}

void paintDisplayGlass(QPainter& p, const DisplayGroup& group)
{
    QRectF united;
    for (const DisplayCell& cell : group.cells)
        united = united.isNull() ? cell.rect : united.united(cell.rect);
    if (group.kind == QStringLiteral("lcdbutton")) {
        for (const DisplayCell& cell : group.cells) {
            p.setPen(QPen(QColor(0, 0, 0, 220), 1));
            p.setBrush(QColor(0x0a, 0x10, 0x0e));
            p.drawRoundedRect(cell.rect.adjusted(-1, -1, 1, 1), 3, 3);
        }
        return;
    }
    const QRectF bezel = united.adjusted(-5, -4, 5, 4);
    p.setPen(QPen(QColor(0, 0, 0, 220), 1));
    p.setBrush(QColor(0x08, 0x09, 0x0a));
    p.drawRoundedRect(bezel, 5, 5);
    QLinearGradient glass(united.topLeft(), united.bottomLeft());
    if (group.kind == QStringLiteral("timecode")) {
        glass.setColorAt(0, QColor(0x16, 0x08, 0x06));
        glass.setColorAt(1, QColor(0x0b, 0x04, 0x03));
    } else {
        glass.setColorAt(0, QColor(0x0f, 0x1c, 0x19));
        glass.setColorAt(1, QColor(0x08, 0x11, 0x0f));
    }
    p.setPen(Qt::NoPen);
    p.setBrush(glass);
    p.drawRoundedRect(united.adjusted(-1, -1, 1, 1), 3, 3);
    // A faint reflection across the upper half of the glass.
    QLinearGradient sheen(united.topLeft(), united.bottomLeft());
    sheen.setColorAt(0, QColor(255, 255, 255, 18));
    sheen.setColorAt(0.5, QColor(255, 255, 255, 0));
    p.setBrush(sheen);
    p.drawRoundedRect(united.adjusted(-1, -1, 1, 1), 3, 3);
}

} // namespace

QColor ringLightColor(RingLight light)
{
    switch (light) {
    case RingLight::Green:
        return QColor(0x36, 0xe0, 0x7a);
    case RingLight::Blue:
        return QColor(0x3a, 0x8d, 0xff);
    case RingLight::Red:
        return QColor(0xff, 0x3b, 0x3b);
    case RingLight::White:
        return QColor(0xf4, 0xf6, 0xfa);
    case RingLight::Plain:
        break;
    }
    return kLedOff;
}

void paintControl(QPainter& p, const Control& c, Finish finish, bool lit, RingLight ringLight)
{
    const Palette pal = palette(finish);
    p.setRenderHint(QPainter::Antialiasing);
    const QString& s = c.shape;
    if (s == QStringLiteral("key"))
        paintKey(p, c, pal, lit, 3.5);
    else if (s == QStringLiteral("round"))
        paintRound(p, c, pal, lit);
    else if (s == QStringLiteral("square"))
        paintSquare(p, c, pal, lit);
    else if (s == QStringLiteral("encoder"))
        paintEncoder(p, c, pal, lit);
    else if (s == QStringLiteral("ball"))
        paintBall(p, c, lit);
    else if (s == QStringLiteral("ring") || s == QStringLiteral("tbring"))
        paintRing(p, c, pal, lit, ringLight, s == QStringLiteral("tbring"));
    else if (s == QStringLiteral("jog"))
        paintJog(p, c, pal, lit);
    else if (s.startsWith(QStringLiteral("dpad-")))
        paintDpad(p, c, pal, lit);
    else if (s == QStringLiteral("fader"))
        paintFader(p, c, pal, lit);
    else if (s == QStringLiteral("touch"))
        paintTouch(p, c, pal, lit);
    else if (s == QStringLiteral("lcdkey"))
        paintLcdKey(p, c, pal, lit);
}

void paintPanel(QPainter& p, const Layout& layout, Finish finish)
{
    const Palette pal = palette(finish);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF body(0.5, 0.5, layout.size.width() - 1, layout.size.height() - 1);
    QLinearGradient g(body.topLeft(), body.bottomLeft());
    g.setColorAt(0, pal.panelTop);
    g.setColorAt(1, pal.panelBottom);
    p.setPen(QPen(pal.edge, 1));
    p.setBrush(g);
    p.drawRoundedRect(body, 12, 12);
    // Brushed finish: fine lines along the grain, the same on every row so the picture stays
    // small on disk.
    p.save();
    p.setClipPath(roundedRect(body, 12));
    quint32 seed = 0x2545F491u;
    for (int y = 2; y < layout.size.height(); y += 2) {
        seed = seed * 1664525u + 1013904223u;
        const bool light = (seed >> 28) & 1;
        p.setPen(QPen(light ? pal.brushLight : pal.brushDark, 1));
        p.drawLine(QPointF(0, y + 0.5), QPointF(layout.size.width(), y + 0.5));
    }
    p.restore();
    // Bevelled edge.
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(255, 255, 255, finish == Finish::Silver ? 150 : 30), 1));
    p.drawRoundedRect(body.adjusted(1, 1, -1, -1), 11, 11);
    for (const QRectF& well : layout.wells)
        paintWell(p, well, pal);
    for (const QLineF& line : layout.dividers) {
        p.setPen(QPen(QColor(0, 0, 0, 60), 1));
        p.drawLine(line.translated(0, 0.5));
        p.setPen(QPen(QColor(255, 255, 255, finish == Finish::Silver ? 120 : 20), 1));
        p.drawLine(line.translated(0, 1.5));
    }
    const qreal w = layout.size.width();
    const qreal h = layout.size.height();
    for (const QPointF& at :
         {QPointF(12, 12), QPointF(w - 12, 12), QPointF(12, h - 12), QPointF(w - 12, h - 12)})
        paintScrew(p, at, pal);
    // Maker's mark and model.
    QFont brand = silkFont(11);
    brand.setLetterSpacing(QFont::AbsoluteSpacing, 3);
    p.setFont(brand);
    p.setPen(pal.silk);
    p.drawText(QPointF(30, 22), QStringLiteral("CORVANE"));
    const qreal brandWidth = QFontMetricsF(brand).horizontalAdvance(QStringLiteral("CORVANE "));
    p.setPen(kLitDeep);
    p.drawText(QPointF(30 + brandWidth, 22), layout.title);
    p.setFont(silkFont(8));
    p.setPen(pal.silk);
    for (const Label& label : layout.labels) {
        const qreal width = QFontMetricsF(p.font()).horizontalAdvance(label.text);
        p.drawText(QPointF(label.at.x() - width / 2, label.at.y()), label.text);
    }
    for (const DisplayGroup& group : layout.displays)
        paintDisplayGlass(p, group);
    for (const Button& button : layout.buttons) {
        if (button.instances.isEmpty()) {
            for (const Control& control : button.controls)
                paintControl(p, control, finish, false);
            continue;
        }
        for (const QPointF& at : button.instances) {
            for (Control control : button.controls) {
                control.rect.translate(at);
                control.inner.translate(at);
                paintControl(p, control, finish, false);
            }
        }
    }
}

QImage renderImage(QSize logicalSize, qreal dpr, const std::function<void(QPainter&)>& paint)
{
    QImage image(logicalSize * dpr, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter p(&image);
        p.scale(dpr, dpr);
        paint(p);
    }
    image.setDevicePixelRatio(1);
    return image.convertToFormat(QImage::Format_ARGB32);
}

} // namespace surfacegen
