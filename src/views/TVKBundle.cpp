#include "views/TVKBundle.h"

#include "core/Log.h"
#include "core/PlistCodec.h"
#include "views/TVKMultiStateButton.h"

#include <QFile>
#include <QPainter>

using corvane::PlistCodec;
using corvane::PlistValue;

namespace {

PlistValue readResource(const QString& path)
{
    // Resources live in the program, not on disk: read through QFile.
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const corvane::PlistReadResult read = PlistCodec::read(bytes);
    if (!read.ok)
        corvane::log(QStringLiteral("cannot read %1: %2").arg(path, read.error.toString()));
    return read.ok ? read.value : PlistValue::makeDict();
}

int scaleFor(qreal devicePixelRatio)
{
    return devicePixelRatio > 1.25 ? 2 : 1;
}

} // namespace

QRect TVKBundle::rectFrom(const PlistValue& value)
{
    return QRect(int(value.at(0).toInteger()), int(value.at(1).toInteger()),
                 int(value.at(2).toInteger()), int(value.at(3).toInteger()));
}

TVKBundle& TVKBundle::mainBundle()
{
    static TVKBundle bundle;
    return bundle;
}

TVKBundle::TVKBundle()
    : m_info(readResource(QStringLiteral(":/surface/Info.plist"))),
      m_images(readResource(QStringLiteral(":/surface/Images.plist"))),
      m_surfaces(readResource(QStringLiteral(":/surface/Surfaces.plist")))
{}

const PlistValue& TVKBundle::objectForInfoDictionaryKey(const QString& key) const
{
    return m_info.value(key);
}

const PlistValue& TVKBundle::surface(const QString& unit) const
{
    return m_surfaces.value(unit);
}

bool TVKBundle::hasImageNamed(const QString& name) const
{
    return m_images.contains(name);
}

QImage TVKBundle::sheetImage(const QString& name, int scale)
{
    const QString key = QStringLiteral("%1@%2").arg(name).arg(scale);
    auto found = m_sheets.constFind(key);
    if (found != m_sheets.constEnd())
        return *found;
    const QString path = scale == 1 ? QStringLiteral(":/surface/%1.png").arg(name)
                                    : QStringLiteral(":/surface/%1@2x.png").arg(name);
    QImage image(path);
    // The reader takes "@2x" in a name as a device pixel ratio; the sheets are cut in pixels.
    image.setDevicePixelRatio(1);
    m_sheets.insert(key, image);
    return image;
}

QPixmap TVKBundle::sheet(const QString& name, qreal devicePixelRatio)
{
    const int scale = scaleFor(devicePixelRatio);
    QPixmap pixmap = QPixmap::fromImage(sheetImage(name, scale));
    pixmap.setDevicePixelRatio(scale);
    return pixmap;
}

QPixmap TVKBundle::imageNamed(const QString& name, qreal devicePixelRatio)
{
    const int scale = scaleFor(devicePixelRatio);
    const QString key = QStringLiteral("%1@%2").arg(name).arg(scale);
    auto found = m_composed.constFind(key);
    if (found != m_composed.constEnd())
        return *found;

    const PlistValue& entry = m_images.value(name);
    if (!entry.isDict())
        return QPixmap();
    const QString sheetName = entry.value(u"Sheet").toString();
    const QRect frame = rectFrom(entry.value(u"Frame"));
    const QImage base = sheetImage(sheetName, scale);
    QImage composed = base.copy(QRect(frame.topLeft() * scale, frame.size() * scale));
    if (entry.contains(u"Lit")) {
        const QRect lit = rectFrom(entry.value(u"Lit"));
        const QImage litSheet = sheetImage(sheetName + QStringLiteral("_Lit"), scale);
        QPainter painter(&composed);
        if (entry.contains(u"LitClip")) {
            // Lit within the control's own outline only (given on the sheet).
            painter.setRenderHint(QPainter::Antialiasing);
            painter.scale(scale, scale);
            painter.translate(-frame.topLeft());
            painter.setClipPath(
                TVKMultiStateButton::outlineFromOperations(entry.value(u"LitClip")));
            painter.resetTransform();
        }
        painter.drawImage((lit.topLeft() - frame.topLeft()) * scale, litSheet,
                          QRect(lit.topLeft() * scale, lit.size() * scale));
    }
    QPixmap pixmap = QPixmap::fromImage(composed);
    pixmap.setDevicePixelRatio(scale);
    m_composed.insert(key, pixmap);
    return pixmap;
}
