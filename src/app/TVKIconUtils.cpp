#include "app/TVKIconUtils.h"

#include <QBuffer>
#include <QFileInfo>
#include <QIcon>
#include <QImage>
#include <QPixmap>

TVKIconUtils& TVKIconUtils::defaultIconUtils()
{
    static TVKIconUtils utils;
    return utils;
}

QByteArray TVKIconUtils::iconForBundle(const corvane::DesktopApplication& application, int width,
                                       int height) const
{
    if (application.iconName.isEmpty())
        return {};
    // "Icon" is a theme name, or a path to the picture itself.
    const QIcon icon = QFileInfo(application.iconName).isAbsolute()
                           ? QIcon(application.iconName)
                           : QIcon::fromTheme(application.iconName);
    if (icon.isNull())
        return {};
    const QImage image = icon.pixmap(QSize(width, height)).toImage();
    if (image.isNull())
        return {};
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.scaled(width, height, Qt::KeepAspectRatio, Qt::SmoothTransformation).save(&buffer, "PNG");
    return png;
}
