#pragma once

#include <QString>
#include <ostream>

// Readable failure messages for Qt texts.
QT_BEGIN_NAMESPACE
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}
QT_END_NAMESPACE
