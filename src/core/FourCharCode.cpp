#include "core/FourCharCode.h"

namespace corvane {

QString stringFromFourCharCode(FourCharCode code)
{
    // No code at all is the empty text, as the desktop's own conversion gives it: four NUL
    // characters could not be written into an XML property list.
    if (code == 0)
        return QLatin1String("");
    QString text(4, QChar());
    for (int i = 0; i < 4; ++i)
        text[i] = QChar(char16_t((code >> (24 - 8 * i)) & 0xFFu));
    return text;
}

FourCharCode fourCharCodeFromString(const QString& text)
{
    if (text.isEmpty())
        return 0;
    FourCharCode code = 0;
    for (int i = 0; i < 4; ++i) {
        // Characters beyond Latin-1 cannot be one byte of a code; keep their low byte.
        const char16_t ch = i < text.size() ? text.at(i).unicode() : u' ';
        code = (code << 8) | FourCharCode(ch & 0xFFu);
    }
    return code;
}

} // namespace corvane
