#pragma once

#include "core/PlistValue.h"

#include <QHash>
#include <QPixmap>
#include <QString>

// The application's own resources, as the windows see them: the information dictionary that
// holds the picture buttons' descriptions, the surface pictures by name, and the placement of
// every picture button and display on each unit.
//
// A picture name stands for one state of one picture button: the unit's unlit panel cut to the
// button's frame, with the lit drawing of one control laid over it. The pictures are composed
// when first drawn, at the device pixel ratio of the screen they are drawn on, and kept.
class TVKBundle
{
public:
    static TVKBundle& mainBundle();

    // The information dictionary's entry under a key; null when absent.
    const corvane::PlistValue& objectForInfoDictionaryKey(const QString& key) const;
    // The placement table of a unit (its picture's silver name); null when absent.
    const corvane::PlistValue& surface(const QString& unit) const;
    bool hasImageNamed(const QString& name) const;
    // The named picture at the device pixel ratio (1 or 2; others take the nearer); a null
    // pixmap when there is no such picture.
    QPixmap imageNamed(const QString& name, qreal devicePixelRatio);
    // A rectangle as the generated tables write it: [x, y, width, height].
    static QRect rectFrom(const corvane::PlistValue& value);
    // A whole panel picture or icon file ("CorvaneRS_Midnight", "icons/encoder").
    QPixmap sheet(const QString& name, qreal devicePixelRatio);

private:
    TVKBundle();
    QImage sheetImage(const QString& name, int scale);

    corvane::PlistValue m_info;
    corvane::PlistValue m_images;
    corvane::PlistValue m_surfaces;
    QHash<QString, QImage> m_sheets;    // "name@scale"
    QHash<QString, QPixmap> m_composed; // "name@scale"
};
