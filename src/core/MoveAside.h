#pragma once

#include <QDateTime>
#include <QString>

namespace corvane {

// Moves a file that cannot be used to "<path>.<why>-<yyyyMMdd-hhmmss>" beside it ("unreadable"
// unless the caller says otherwise, e.g. "damaged"), so that a fresh one can be written without
// losing what the user had. A name already taken (a second
// damaged file within the same second) gets "-2", "-3", … after the stamp; nothing is ever
// replaced. Returns the new name, or a null text when the file could not be moved (errorMessage
// says why). The time of the stamp is the caller's to give.
QString moveFileAside(const QString& path, QString* errorMessage = nullptr,
                      const QDateTime& when = QDateTime::currentDateTime(),
                      const QString& why = QStringLiteral("unreadable"));

} // namespace corvane
