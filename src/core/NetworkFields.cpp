#include "core/NetworkFields.h"

#include <QList>

namespace corvane {

namespace {

// The value of a run of ASCII digits, at most maxDigits long; none for anything else. Other
// scripts' digits are refused: the service reads the text as ASCII.
std::optional<quint32> digitsValue(QStringView text, qsizetype maxDigits)
{
    if (text.isEmpty() || text.size() > maxDigits)
        return std::nullopt;
    quint32 value = 0;
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return std::nullopt;
        value = value * 10 + quint32(c.unicode() - u'0');
    }
    return value;
}

} // namespace

std::optional<int> addressPartValue(QStringView text)
{
    const std::optional<quint32> value = digitsValue(text, 3);
    if (!value || *value > 255)
        return std::nullopt;
    return int(*value);
}

std::optional<quint16> portValue(QStringView text)
{
    const std::optional<quint32> value = digitsValue(text, 5);
    if (!value || *value < 1 || *value > 65535)
        return std::nullopt;
    return quint16(*value);
}

std::optional<std::array<QString, 4>> addressParts(QStringView text)
{
    const QList<QStringView> parts = text.trimmed().split(u'.');
    if (parts.size() != 4)
        return std::nullopt;
    std::array<QString, 4> out;
    for (size_t i = 0; i < 4; ++i) {
        if (!addressPartValue(parts[qsizetype(i)]))
            return std::nullopt;
        out[i] = parts[qsizetype(i)].toString();
    }
    return out;
}

} // namespace corvane
