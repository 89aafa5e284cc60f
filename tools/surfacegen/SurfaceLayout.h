#pragma once

#include <QJsonObject>
#include <QLineF>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <QVector>

// One unit's layout as read from its source in resources/layout: where every control and display
// sits, what shape it has and which picture button it belongs to. The pictures, the hit outlines
// and the windows' placement tables are all derived from this, so they cannot drift apart.
namespace surfacegen {

struct Control
{
    int c = 0; // on-screen control number (the picture's state comes from its rank in the group)
    QString shape; // key, round, square, encoder, ball, ring, jog, fader, touch, lcdkey, dpad-*
    QRectF rect;   // in unit coordinates (relative to the instance for shared buttons)
    QRectF inner;  // the hole of a ring
    QString label;
};

struct Button
{
    QString key;  // its description's key in the information dictionary
    QString cls;  // empty for a plain picture; ring, jog, lcdbutton
    int tag = -1; // on-screen group (rings compute theirs)
    int bank = 0; // controls per bank for the NV's banked groups; 0 when not banked
    QVector<Control> controls;
    QVector<QPointF> instances; // shared buttons (the trackball rings): one frame per instance

    // The union of the controls' drawing, with room for their shadows; whole pixels.
    QRect frame() const;
    const Control* control(int c) const;
};

struct DisplayCell
{
    int display = 0;
    QRectF rect;
};

struct DisplayGroup
{
    int group = 0;
    QString kind; // lcd, lcdbutton, timecode
    int chars = 0;
    QVector<DisplayCell> cells;
};

struct Label
{
    QString text;
    QPointF at; // centre of the baseline
};

struct Layout
{
    QString name;         // the silver picture's name
    QString midnightName; // the midnight picture's name
    QString title;        // printed on the unit
    QSize size;
    QVector<QRectF> wells;
    QVector<QLineF> dividers;
    QVector<Label> labels;
    QVector<DisplayGroup> displays;
    QVector<Button> buttons;
};

// Reads a layout source; false with the reason when it is not one.
bool readLayout(const QString& path, Layout& layout, QString& error);

} // namespace surfacegen
