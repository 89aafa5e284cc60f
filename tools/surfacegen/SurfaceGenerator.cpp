#include "SurfaceGenerator.h"

#include "SurfaceArt.h"
#include "SurfaceLayout.h"
#include "core/PlistCodec.h"
#include "surface/Corvane_Constant_Server.h"

#include <QDir>
#include <QPainter>
#include <QtMath>

using corvane::PlistCodec;
using corvane::PlistValue;

namespace surfacegen {

namespace {

constexpr qreal kScales[] = {1, 2};

struct RingSet
{
    RingLight light;
    const char16_t* suffix;
};

// By colour index: the plain set, then green, blue, red and white.
constexpr RingSet kRingSets[] = {{RingLight::Plain, u""},
                                 {RingLight::Green, u"_Green"},
                                 {RingLight::Blue, u"_Blue"},
                                 {RingLight::Red, u"_Red"},
                                 {RingLight::White, u"_White"}};

PlistValue intArray(std::initializer_list<int> values)
{
    PlistValue array = PlistValue::makeArray();
    for (int v : values)
        array.append(PlistValue(v));
    return array;
}

PlistValue rectValue(const QRect& r)
{
    return intArray({r.x(), r.y(), r.width(), r.height()});
}

PlistValue op(const QString& name, std::initializer_list<std::pair<const char16_t*, double>> args)
{
    PlistValue dict = PlistValue::makeDict();
    dict.insert(QStringLiteral("Operation"), PlistValue(name));
    for (const auto& [key, value] : args) {
        // Coordinates are whole numbers; radii and angles may not be.
        if (value == std::floor(value))
            dict.insert(QString::fromUtf16(key), PlistValue(qint64(value)));
        else
            dict.insert(QString::fromUtf16(key), PlistValue(value));
    }
    return dict;
}

// The point at an angle on a circle, angles counter-clockwise from three o'clock as drawn.
QPoint onCircle(const QPointF& centre, qreal radius, qreal degrees)
{
    const qreal a = qDegreesToRadians(degrees);
    return QPointF(centre.x() + radius * qCos(a), centre.y() - radius * qSin(a)).toPoint();
}

PlistValue rectOutline(const QRectF& r)
{
    const QRect i = r.toRect();
    PlistValue path = PlistValue::makeArray();
    path.append(op(QStringLiteral("MoveTo"), {{u"X", i.left()}, {u"Y", i.top()}}));
    path.append(op(QStringLiteral("LineTo"), {{u"X", i.left() + i.width()}, {u"Y", i.top()}}));
    path.append(
        op(QStringLiteral("LineTo"), {{u"X", i.left() + i.width()}, {u"Y", i.top() + i.height()}}));
    path.append(op(QStringLiteral("LineTo"), {{u"X", i.left()}, {u"Y", i.top() + i.height()}}));
    return path;
}

PlistValue ovalOutline(const QRectF& r)
{
    const QRect i = r.toRect();
    PlistValue path = PlistValue::makeArray();
    path.append(op(
        QStringLiteral("Oval"),
        {{u"Left", i.left()}, {u"Top", i.top()}, {u"Width", i.width()}, {u"Height", i.height()}}));
    return path;
}

PlistValue arc(const QString& name, const QPointF& c, qreal radius, qreal from, qreal to)
{
    return op(name, {{u"CenterX", qRound(c.x())},
                     {u"CenterY", qRound(c.y())},
                     {u"Radius", radius},
                     {u"StartAngle", from},
                     {u"EndAngle", to}});
}

PlistValue ringOutline(const QPointF& c, qreal outer, qreal inner)
{
    PlistValue path = PlistValue::makeArray();
    const QPoint o = onCircle(c, outer, 0);
    path.append(op(QStringLiteral("MoveTo"), {{u"X", o.x()}, {u"Y", o.y()}}));
    path.append(arc(QStringLiteral("Arc"), c, outer, 0, 360));
    const QPoint i = onCircle(c, inner, 0);
    path.append(op(QStringLiteral("MoveTo"), {{u"X", i.x()}, {u"Y", i.y()}}));
    path.append(arc(QStringLiteral("ClockwiseArc"), c, inner, 360, 0));
    return path;
}

PlistValue wedgeOutline(const QPointF& c, qreal outer, qreal inner, qreal from, qreal to)
{
    PlistValue path = PlistValue::makeArray();
    const QPoint start = onCircle(c, outer, from);
    path.append(op(QStringLiteral("MoveTo"), {{u"X", start.x()}, {u"Y", start.y()}}));
    path.append(arc(QStringLiteral("Arc"), c, outer, from, to));
    const QPoint in = onCircle(c, inner, to);
    path.append(op(QStringLiteral("LineTo"), {{u"X", in.x()}, {u"Y", in.y()}}));
    path.append(arc(QStringLiteral("ClockwiseArc"), c, inner, to, from));
    return path;
}

// The hit outline of a control, in its button's coordinates.
PlistValue outline(const Control& control, const QPoint& origin)
{
    const QRectF r = control.rect.translated(-origin);
    const QString& s = control.shape;
    if (s == QStringLiteral("ring") || s == QStringLiteral("tbring"))
        return ringOutline(r.center(), r.width() / 2, control.inner.width() / 2);
    if (s.startsWith(QStringLiteral("dpad-"))) {
        const qreal outer = r.width() / 2 - 1;
        const qreal inner = outer * 0.36;
        if (s == QStringLiteral("dpad-center"))
            return ovalOutline(QRectF(r.center().x() - inner + 3, r.center().y() - inner + 3,
                                      2 * inner - 6, 2 * inner - 6));
        qreal mid = 90;
        if (s == QStringLiteral("dpad-right"))
            mid = 0;
        else if (s == QStringLiteral("dpad-down"))
            mid = 270;
        else if (s == QStringLiteral("dpad-left"))
            mid = 180;
        return wedgeOutline(r.center(), outer, inner, mid - 43, mid + 43);
    }
    if (s == QStringLiteral("round") || s == QStringLiteral("ball") || s == QStringLiteral("jog") ||
        s == QStringLiteral("encoder"))
        return ovalOutline(r);
    return rectOutline(r);
}

// Where a control's lit picture lies, with room for its shadow.
QRect litRect(const Control& control)
{
    return control.rect.adjusted(-2, -2, 2, 3).toAlignedRect();
}

struct Writer
{
    QDir out;
    QString error;

    bool writeImage(const QString& name, QSize size, const std::function<void(QPainter&)>& paint)
    {
        for (const qreal scale : kScales) {
            const QString file =
                scale == 1 ? name + QStringLiteral(".png") : name + QStringLiteral("@2x.png");
            const QImage image = renderImage(size, scale, paint);
            if (!image.save(out.filePath(file), "PNG", 9)) {
                error = QStringLiteral("cannot write %1").arg(out.filePath(file));
                return false;
            }
        }
        return true;
    }

    bool writePlist(const QString& name, const PlistValue& value)
    {
        QString reason;
        if (!PlistCodec::writeFile(out.filePath(name), value, corvane::PlistFormat::Xml, &reason)) {
            error = reason;
            return false;
        }
        return true;
    }
};

// A lit control whose rectangle takes in another control of its button (a cursor switch's arm,
// a ring round its ball) is lit only within its own outline.
PlistValue imageEntry(const QString& sheet, const QRect& frame, const Control* lit,
                      const QVector<Control>& neighbours)
{
    PlistValue entry = PlistValue::makeDict();
    entry.insert(QStringLiteral("Sheet"), PlistValue(sheet));
    entry.insert(QStringLiteral("Frame"), rectValue(frame));
    if (!lit)
        return entry;
    entry.insert(QStringLiteral("Lit"), rectValue(litRect(*lit)));
    for (const Control& other : neighbours) {
        if (other.rect != lit->rect || other.shape != lit->shape) {
            if (QRectF(litRect(*lit)).intersects(other.rect)) {
                entry.insert(QStringLiteral("LitClip"), outline(*lit, QPoint(0, 0)));
                break;
            }
        }
    }
    return entry;
}

// Both finishes of one picture name: the silver one as named, the midnight one with "_Mid".
void addImage(PlistValue& images, const QString& name, const QString& silverSheet,
              const QString& midnightSheet, const QRect& frame, const Control* lit,
              const QVector<Control>& neighbours)
{
    images.insert(name, imageEntry(silverSheet, frame, lit, neighbours));
    images.insert(name + QStringLiteral("_Mid"), imageEntry(midnightSheet, frame, lit, neighbours));
}

// The controls of a picture by state: state k shows the k-th control that its on-screen group
// draws (the first bank's, for the NV's banked pictures); state 0 shows none. Every control of
// the group needs its place in the layout, and the layout places nothing else.
using States = QVector<const Control*>;

const Corvane_Constant_Server& constants()
{
    static const Corvane_Constant_Server server;
    return server;
}

bool statesOf(const Button& button, int tag, States& states, QString& error)
{
    QList<int> drawn = constants().onscreenControlsInGroup(tag);
    if (button.bank > 0)
        drawn = drawn.mid(0, button.bank);
    states = States{nullptr};
    for (const int c : drawn) {
        const Control* control = button.control(c);
        if (!control) {
            error = QStringLiteral("%1: control %2 of group %3 has no place in the layout")
                        .arg(button.key)
                        .arg(c)
                        .arg(tag);
            return false;
        }
        states.append(control);
    }
    for (const Control& control : button.controls) {
        if (!drawn.contains(control.c)) {
            error = QStringLiteral("%1: group %2 has no control %3")
                        .arg(button.key)
                        .arg(tag)
                        .arg(control.c);
            return false;
        }
    }
    return true;
}

PlistValue pathList(const States& states, const QPoint& origin)
{
    PlistValue paths = PlistValue::makeArray();
    paths.append(PlistValue::makeArray()); // state 0 has no hit area
    for (qsizetype k = 1; k < states.size(); ++k)
        paths.append(outline(*states[k], origin));
    return paths;
}

// A point on the control where a finger (or the pointer) reaches it: the middle of a ring's band
// and of a cursor switch's arm, the centre of anything else.
QPoint touchPoint(const Control& control, const QPoint& origin)
{
    const QRectF r = control.rect.translated(-origin);
    const QString& s = control.shape;
    if (s == QStringLiteral("ring") || s == QStringLiteral("tbring"))
        return QPointF(r.center().x(), r.top() + (r.height() - control.inner.height()) / 4)
            .toPoint();
    if (s.startsWith(QStringLiteral("dpad-")) && s != QStringLiteral("dpad-center")) {
        const qreal outer = r.width() / 2 - 1;
        const qreal mid = s == QStringLiteral("dpad-right")  ? 0
                          : s == QStringLiteral("dpad-down") ? 270
                          : s == QStringLiteral("dpad-left") ? 180
                                                             : 90;
        return onCircle(r.center(), outer * (1 + 0.36) / 2, mid);
    }
    return r.center().toPoint();
}

// Where each control lies in its picture, by its on-screen number.
PlistValue controlFrames(const Button& button, const QPoint& origin)
{
    PlistValue controls = PlistValue::makeArray();
    for (const Control& control : button.controls) {
        PlistValue c = PlistValue::makeDict();
        c.insert(QStringLiteral("Control"), PlistValue(control.c));
        c.insert(QStringLiteral("Frame"), rectValue(control.rect.translated(-origin).toRect()));
        const QPoint at = touchPoint(control, origin);
        c.insert(QStringLiteral("Point"), intArray({at.x(), at.y()}));
        controls.append(c);
    }
    return controls;
}

bool generateRings(Writer& w, const Button& ring, const States& states, PlistValue& info,
                   PlistValue& images)
{
    const QRect frame = ring.frame();
    const QRect sheetFrame(QPoint(0, 0), frame.size());
    PlistValue lists = PlistValue::makeArray();
    for (const RingSet& set : kRingSets) {
        const QString sheet = QStringLiteral("TrackballRing") + QString::fromUtf16(set.suffix);
        PlistValue names = PlistValue::makeArray();
        // The ring's sheet is its frame alone.
        QVector<Control> shiftedControls = ring.controls;
        for (Control& each : shiftedControls) {
            each.rect.translate(-frame.topLeft());
            each.inner.translate(-frame.topLeft());
        }
        for (qsizetype k = 0; k < states.size(); ++k) {
            const QString name = sheet + QStringLiteral("_%1").arg(k);
            const Control* lit = states[k];
            Control shifted;
            if (lit) {
                shifted = *lit;
                shifted.rect.translate(-frame.topLeft());
                shifted.inner.translate(-frame.topLeft());
            }
            addImage(images, name, sheet, sheet + QStringLiteral("_Midnight"), sheetFrame,
                     lit ? &shifted : nullptr, shiftedControls);
            names.append(PlistValue(name));
        }
        lists.append(names);
        for (const Finish finish : {Finish::Silver, Finish::Midnight}) {
            const QString base =
                sheet + (finish == Finish::Midnight ? QStringLiteral("_Midnight") : QString());
            for (const bool lit : {false, true}) {
                const bool ok = w.writeImage(
                    lit ? base + QStringLiteral("_Lit") : base, frame.size(), [&](QPainter& p) {
                        p.translate(-frame.topLeft());
                        for (const Control& control : ring.controls)
                            paintControl(p, control, finish, lit, set.light);
                    });
                if (!ok)
                    return false;
            }
        }
    }
    PlistValue description = PlistValue::makeDict();
    description.insert(QStringLiteral("ImageList"), lists);
    description.insert(QStringLiteral("PathList"), pathList(states, frame.topLeft()));
    info.insert(ring.key, description);
    return true;
}

bool generateUnit(Writer& w, const Layout& layout, PlistValue& info, PlistValue& images,
                  PlistValue& surfaces)
{
    PlistValue buttons = PlistValue::makeArray();
    for (const Button& button : layout.buttons) {
        if (button.cls == QStringLiteral("ring")) {
            States states;
            for (int n = 0; n < button.instances.size(); ++n) {
                // Every ring draws the same controls of its own trackball.
                if (!statesOf(button, constants().onscreenTrackballGroupIDForTrackball(n), states,
                              w.error))
                    return false;
                const QRect frame = button.frame().translated(button.instances[n].toPoint());
                PlistValue entry = PlistValue::makeDict();
                entry.insert(QStringLiteral("InfoKey"), PlistValue(button.key));
                entry.insert(QStringLiteral("Class"), PlistValue(button.cls));
                entry.insert(QStringLiteral("Frame"), rectValue(frame));
                entry.insert(QStringLiteral("TrackballNumber"), PlistValue(n));
                entry.insert(QStringLiteral("Controls"),
                             controlFrames(button, button.frame().topLeft()));
                buttons.append(entry);
            }
            if (!info.contains(button.key) && !generateRings(w, button, states, info, images))
                return false;
            continue;
        }
        const QRect frame = button.frame();
        States states;
        if (!statesOf(button, button.tag, states, w.error))
            return false;
        PlistValue names = PlistValue::makeArray();
        for (qsizetype k = 0; k < states.size(); ++k) {
            const QString name = button.key + QStringLiteral("_%1").arg(k);
            addImage(images, name, layout.name, layout.midnightName, frame, states[k],
                     button.controls);
            names.append(PlistValue(name));
        }
        PlistValue description = PlistValue::makeDict();
        description.insert(QStringLiteral("ImageList"), names);
        description.insert(QStringLiteral("PathList"), pathList(states, frame.topLeft()));
        description.insert(QStringLiteral("ControlTag"), PlistValue(button.tag));
        info.insert(button.key, description);

        PlistValue entry = PlistValue::makeDict();
        entry.insert(QStringLiteral("InfoKey"), PlistValue(button.key));
        entry.insert(QStringLiteral("Class"), PlistValue(button.cls));
        entry.insert(QStringLiteral("Frame"), rectValue(frame));
        entry.insert(QStringLiteral("Tag"), PlistValue(button.tag));
        if (button.bank > 0)
            entry.insert(QStringLiteral("Bank"), PlistValue(button.bank));
        // Where each control lies in the button: the windows draw the LCD buttons' colours there.
        entry.insert(QStringLiteral("Controls"), controlFrames(button, frame.topLeft()));
        buttons.append(entry);
    }

    PlistValue displays = PlistValue::makeArray();
    for (const DisplayGroup& group : layout.displays) {
        PlistValue entry = PlistValue::makeDict();
        entry.insert(QStringLiteral("Group"), PlistValue(group.group));
        entry.insert(QStringLiteral("Kind"), PlistValue(group.kind));
        entry.insert(QStringLiteral("Characters"), PlistValue(group.chars));
        PlistValue cells = PlistValue::makeArray();
        for (const DisplayCell& cell : group.cells) {
            PlistValue c = PlistValue::makeDict();
            c.insert(QStringLiteral("Display"), PlistValue(cell.display));
            c.insert(QStringLiteral("Frame"), rectValue(cell.rect.toRect()));
            cells.append(c);
        }
        entry.insert(QStringLiteral("Cells"), cells);
        displays.append(entry);
    }

    PlistValue unit = PlistValue::makeDict();
    unit.insert(QStringLiteral("Size"), intArray({layout.size.width(), layout.size.height()}));
    unit.insert(QStringLiteral("Picture"), PlistValue(layout.name));
    unit.insert(QStringLiteral("MidnightPicture"), PlistValue(layout.midnightName));
    unit.insert(QStringLiteral("Buttons"), buttons);
    unit.insert(QStringLiteral("Displays"), displays);
    surfaces.insert(layout.name, unit);

    for (const Finish finish : {Finish::Silver, Finish::Midnight}) {
        const QString sheet = finish == Finish::Silver ? layout.name : layout.midnightName;
        if (!w.writeImage(sheet, layout.size, [&](QPainter& p) { paintPanel(p, layout, finish); }))
            return false;
        const bool ok = w.writeImage(sheet + QStringLiteral("_Lit"), layout.size, [&](QPainter& p) {
            for (const Button& button : layout.buttons) {
                if (button.cls == QStringLiteral("ring"))
                    continue;
                for (const Control& control : button.controls)
                    paintControl(p, control, finish, true);
            }
        });
        if (!ok)
            return false;
    }
    return true;
}

// The summary's group icons: one control of each kind, on a neutral tile.
bool generateIcons(Writer& w)
{
    struct Icon
    {
        const char16_t* name;
        const char16_t* shape;
        const char16_t* label;
    };
    const Icon icons[] = {{u"cvn_btn", u"round", u""},
                          {u"xport", u"key", u"▶"},
                          {u"encoder", u"encoder", u""},
                          {u"tlw2_encoder", u"encoder", u""},
                          {u"rect_btn", u"key", u""},
                          {u"tball", u"ball", u""},
                          {u"tb_ring", u"tbring", u""},
                          {u"vstick", u"dpad", u""},
                          {u"mini_fader_touch", u"touch", u""},
                          {u"minifdr", u"fader", u""},
                          {u"corvane_mini_reset", u"round", u""},
                          {u"tlw_mini_lcd", u"lcdkey", u""},
                          {u"corvanelightedsquare", u"square", u""},
                          {u"keypad", u"keypad", u""}};
    const QSize size(32, 32);
    for (const Icon& icon : icons) {
        const QString shape = QString::fromUtf16(icon.shape);
        const bool ok = w.writeImage(
            QStringLiteral("icons/") + QString::fromUtf16(icon.name), size, [&](QPainter& p) {
                Control c;
                c.shape = shape;
                c.label = QString::fromUtf16(icon.label);
                c.rect = QRectF(5, 5, 22, 22);
                if (shape == QStringLiteral("key") || shape == QStringLiteral("square") ||
                    shape == QStringLiteral("lcdkey"))
                    c.rect = QRectF(4, 7, 24, 18);
                else if (shape == QStringLiteral("touch"))
                    c.rect = QRectF(5, 12, 22, 8);
                else if (shape == QStringLiteral("fader"))
                    c.rect = QRectF(6, 0, 20, 32);
                else if (shape == QStringLiteral("tbring"))
                    c.rect = QRectF(2, 2, 28, 28), c.inner = QRectF(8, 8, 16, 16);
                else if (shape == QStringLiteral("encoder"))
                    c.rect = QRectF(2, 2, 28, 28);
                if (shape == QStringLiteral("dpad")) {
                    for (const char16_t* part :
                         {u"dpad-up", u"dpad-right", u"dpad-down", u"dpad-left", u"dpad-center"}) {
                        c.shape = QString::fromUtf16(part);
                        c.rect = QRectF(1, 1, 30, 30);
                        paintControl(p, c, Finish::Midnight, false);
                    }
                    return;
                }
                if (shape == QStringLiteral("keypad")) {
                    c.shape = QStringLiteral("key");
                    for (int row = 0; row < 3; ++row) {
                        for (int col = 0; col < 3; ++col) {
                            c.rect = QRectF(2 + col * 10, 2 + row * 10, 8, 8);
                            paintControl(p, c, Finish::Midnight, false);
                        }
                    }
                    return;
                }
                paintControl(p, c, Finish::Midnight, false,
                             shape == QStringLiteral("tbring") ? RingLight::Blue
                                                               : RingLight::Plain);
            });
        if (!ok)
            return false;
    }
    // The connection indicator, one picture per state: the surface's link lamp lit green
    // (connected), an amber ring (the service runs but has no surface), or the unit greyed and
    // struck through (no service answers). A light rim keeps the dark unit readable on a dark
    // desktop, a dark one on a light desktop.
    enum class Link
    {
        Connected,
        NoSurface,
        NoService
    };
    const QSize indicator(24, 24);
    for (const Link link : {Link::Connected, Link::NoSurface, Link::NoService}) {
        const QString name = link == Link::Connected ? QStringLiteral("corvane_connect_icon_on")
                             : link == Link::NoSurface
                                 ? QStringLiteral("corvane_connect_icon_off")
                                 : QStringLiteral("corvane_connect_icon_none");
        const bool ok = w.writeImage(name, indicator, [&](QPainter& p) {
            p.setRenderHint(QPainter::Antialiasing);
            const QRectF unit(2.5, 6.5, 19, 11);
            if (link == Link::NoService)
                p.setOpacity(0.55);
            p.setPen(QPen(QColor(255, 255, 255, 120), 1));
            p.setBrush(Qt::NoBrush);
            p.drawRoundedRect(unit.adjusted(-1, -1, 1, 1), 3.5, 3.5);
            QLinearGradient body(0, unit.top(), 0, unit.bottom());
            body.setColorAt(0, QColor(0x4b, 0x4f, 0x56));
            body.setColorAt(1, QColor(0x2c, 0x2f, 0x34));
            p.setPen(QPen(QColor(0x16, 0x17, 0x1a), 1));
            p.setBrush(body);
            p.drawRoundedRect(unit, 2.5, 2.5);
            p.setPen(Qt::NoPen);
            p.setBrush(QColor(0x12, 0x14, 0x16));
            p.drawRoundedRect(QRectF(5, 10, 8, 4), 1, 1);
            const QPointF lamp(17, 12);
            switch (link) {
            case Link::Connected:
                p.setBrush(QColor(0x36, 0xe0, 0x7a, 90));
                p.drawEllipse(lamp, 4.5, 4.5);
                p.setBrush(QColor(0x36, 0xe0, 0x7a));
                p.drawEllipse(lamp, 2.6, 2.6);
                break;
            case Link::NoSurface:
                p.setBrush(Qt::NoBrush);
                p.setPen(QPen(QColor(0xf2, 0xa6, 0x1c), 1.8));
                p.drawEllipse(lamp, 2.4, 2.4);
                break;
            case Link::NoService:
                p.setBrush(QColor(0x12, 0x14, 0x16));
                p.drawEllipse(lamp, 2.4, 2.4);
                p.setOpacity(1);
                p.setPen(QPen(QColor(255, 255, 255, 150), 4, Qt::SolidLine, Qt::RoundCap));
                p.drawLine(QPointF(3.5, 20.5), QPointF(20.5, 3.5));
                p.setPen(QPen(QColor(0xd8, 0x2c, 0x2c), 2.2, Qt::SolidLine, Qt::RoundCap));
                p.drawLine(QPointF(3.5, 20.5), QPointF(20.5, 3.5));
                break;
            }
        });
        if (!ok)
            return false;
    }
    return true;
}

} // namespace

bool generate(const Options& options, QString& error)
{
    Writer w{QDir(options.outputDir), {}};
    if (!w.out.mkpath(QStringLiteral("icons"))) {
        error = QStringLiteral("cannot make %1").arg(w.out.filePath(QStringLiteral("icons")));
        return false;
    }
    PlistValue info = PlistValue::makeDict();
    PlistValue images = PlistValue::makeDict();
    PlistValue surfaces = PlistValue::makeDict();
    for (const QString& path : options.layouts) {
        Layout layout;
        if (!readLayout(path, layout, error)) {
            error = QStringLiteral("%1: %2").arg(path, error);
            return false;
        }
        if (!generateUnit(w, layout, info, images, surfaces)) {
            error = w.error;
            return false;
        }
    }
    if (!generateIcons(w) || !w.writePlist(QStringLiteral("Info.plist"), info) ||
        !w.writePlist(QStringLiteral("Images.plist"), images) ||
        !w.writePlist(QStringLiteral("Surfaces.plist"), surfaces)) {
        error = w.error;
        return false;
    }
    return true;
}

} // namespace surfacegen
