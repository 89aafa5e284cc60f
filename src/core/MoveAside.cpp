#include "core/MoveAside.h"

#include <QFile>
#include <QFileInfo>

namespace corvane {

QString moveFileAside(const QString& path, QString* errorMessage, const QDateTime& when,
                      const QString& why)
{
    const QString stamp = when.toString(QStringLiteral("yyyyMMdd-hhmmss"));
    const auto taken = [](const QString& name) {
        // A dangling link is a name taken too.
        return QFileInfo::exists(name) || QFileInfo(name).isSymLink();
    };
    const QString base = QStringLiteral("%1.%2-%3").arg(path, why, stamp);
    QString aside = base;
    for (int n = 2; taken(aside); ++n)
        aside = QStringLiteral("%1-%2").arg(base).arg(n);
    QFile file(path);
    if (!file.rename(aside)) {
        if (errorMessage)
            *errorMessage =
                QStringLiteral("%1 cannot be moved aside: %2").arg(path, file.errorString());
        return QString();
    }
    return aside;
}

} // namespace corvane
