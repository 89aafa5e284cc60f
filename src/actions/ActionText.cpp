#include "actions/ActionText.h"

#include <cstdio>

namespace corvane {

QString hexByte(unsigned value)
{
    char buffer[16];
    const int n = std::snprintf(buffer, sizeof buffer, "%.2x", value);
    return QString::fromLatin1(buffer, n);
}

QString roundedNumber(double value)
{
    char buffer[512];
    const int n = std::snprintf(buffer, sizeof buffer, "%.0f", value);
    if (n < 0)
        return QString();
    return QString::fromLatin1(buffer, qMin(n, int(sizeof buffer) - 1));
}

} // namespace corvane

namespace corvane {

QString fillFormat(const QString& format, const QStringList& texts, const QList<double>& numbers)
{
    QString result;
    qsizetype nextText = 0;
    qsizetype nextNumber = 0;
    for (qsizetype i = 0; i < format.size(); ++i) {
        const QChar c = format.at(i);
        if (c != QLatin1Char('%') || i + 1 >= format.size()) {
            result += c;
            continue;
        }
        const QStringView rest = QStringView(format).mid(i + 1);
        if (rest.startsWith(u'%')) {
            result += QLatin1Char('%');
            i += 1;
        } else if (rest.startsWith(u'@')) {
            result += objectText(nextText < texts.size() ? texts.at(nextText) : QString());
            ++nextText;
            i += 1;
        } else if (rest.startsWith(u".0f")) {
            result += roundedNumber(nextNumber < numbers.size() ? numbers.at(nextNumber) : 0.0);
            ++nextNumber;
            i += 3;
        } else if (rest.startsWith(u"ld")) {
            result +=
                QString::number(qint64(nextNumber < numbers.size() ? numbers.at(nextNumber) : 0.0));
            ++nextNumber;
            i += 2;
        } else {
            result += c;
        }
    }
    return result;
}

} // namespace corvane
