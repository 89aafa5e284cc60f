#include "SurfaceLayout.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace surfacegen {

namespace {

QRectF rectFrom(const QJsonValue& value)
{
    const QJsonArray a = value.toArray();
    return QRectF(a.at(0).toDouble(), a.at(1).toDouble(), a.at(2).toDouble(), a.at(3).toDouble());
}

QPointF pointFrom(const QJsonValue& value)
{
    const QJsonArray a = value.toArray();
    return QPointF(a.at(0).toDouble(), a.at(1).toDouble());
}

QRectF centred(const QPointF& centre, const QJsonValue& size)
{
    const QPointF s = pointFrom(size);
    return QRectF(centre.x() - s.x() / 2, centre.y() - s.y() / 2, s.x(), s.y());
}

bool readControls(const QJsonArray& list, QVector<Control>& controls, QString& error)
{
    for (const QJsonValue& entry : list) {
        const QJsonObject o = entry.toObject();
        Control base;
        base.c = o.value(u"c").toInt(-1);
        base.shape = o.value(u"shape").toString();
        if (base.c < 0 || base.shape.isEmpty()) {
            error = QStringLiteral("a control needs \"c\" and \"shape\"");
            return false;
        }
        if (o.contains(u"rect"))
            base.rect = rectFrom(o.value(u"rect"));
        else
            base.rect = centred(pointFrom(o.value(u"center")), o.value(u"size"));
        if (o.contains(u"inner"))
            base.inner = centred(base.rect.center(), o.value(u"inner"));
        base.label = o.value(u"label").toString();
        const int repeat = o.value(u"repeat").toInt(1);
        const QPointF step = pointFrom(o.value(u"step"));
        const QJsonArray labels = o.value(u"labels").toArray();
        for (int i = 0; i < repeat; ++i) {
            Control control = base;
            control.c = base.c + i;
            control.rect.translate(step * i);
            if (!control.inner.isNull())
                control.inner.translate(step * i);
            if (i < labels.size())
                control.label = labels.at(i).toString();
            controls.push_back(control);
        }
    }
    return true;
}

} // namespace

QRect Button::frame() const
{
    QRectF united;
    for (const Control& control : controls)
        united = united.isNull() ? control.rect : united.united(control.rect);
    return united.adjusted(-4, -4, 4, 5).toAlignedRect();
}

const Control* Button::control(int c) const
{
    for (const Control& control : controls) {
        if (control.c == c)
            return &control;
    }
    return nullptr;
}

bool readLayout(const QString& path, Layout& layout, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
        return false;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (document.isNull()) {
        error = parseError.errorString();
        return false;
    }
    const QJsonObject root = document.object();
    layout.name = root.value(u"name").toString();
    layout.midnightName = root.value(u"midnightName").toString();
    layout.title = root.value(u"title").toString();
    const QPointF size = pointFrom(root.value(u"size"));
    layout.size = QSize(int(size.x()), int(size.y()));
    if (layout.name.isEmpty() || layout.midnightName.isEmpty() || layout.size.isEmpty()) {
        error = QStringLiteral("a layout needs \"name\", \"midnightName\" and \"size\"");
        return false;
    }
    for (const QJsonValue& well : root.value(u"wells").toArray())
        layout.wells.push_back(rectFrom(well));
    for (const QJsonValue& divider : root.value(u"dividers").toArray()) {
        const QRectF r = rectFrom(divider);
        layout.dividers.push_back(QLineF(r.x(), r.y(), r.width(), r.height()));
    }
    for (const QJsonValue& label : root.value(u"labels").toArray()) {
        const QJsonObject o = label.toObject();
        layout.labels.push_back({o.value(u"text").toString(),
                                 QPointF(o.value(u"x").toDouble(), o.value(u"y").toDouble())});
    }
    for (const QJsonValue& display : root.value(u"displays").toArray()) {
        const QJsonObject o = display.toObject();
        DisplayGroup group;
        group.group = o.value(u"group").toInt();
        group.kind = o.value(u"kind").toString();
        group.chars = o.value(u"chars").toInt();
        for (const QJsonValue& cell : o.value(u"cells").toArray()) {
            const QJsonObject c = cell.toObject();
            group.cells.push_back({c.value(u"display").toInt(), rectFrom(c.value(u"rect"))});
        }
        layout.displays.push_back(group);
    }
    for (const QJsonValue& entry : root.value(u"buttons").toArray()) {
        const QJsonObject o = entry.toObject();
        Button button;
        button.key = o.value(u"key").toString();
        button.cls = o.value(u"class").toString();
        button.tag = o.value(u"tag").toInt(-1);
        button.bank = o.value(u"bank").toInt(0);
        for (const QJsonValue& at : o.value(u"instances").toArray())
            button.instances.push_back(pointFrom(at));
        if (button.key.isEmpty() || (button.tag < 0 && button.instances.isEmpty())) {
            error = QStringLiteral("a button needs \"key\" and \"tag\"");
            return false;
        }
        if (!readControls(o.value(u"controls").toArray(), button.controls, error))
            return false;
        if (button.controls.isEmpty()) {
            error = QStringLiteral("button %1 has no controls").arg(button.key);
            return false;
        }
        layout.buttons.push_back(button);
    }
    return true;
}

} // namespace surfacegen
