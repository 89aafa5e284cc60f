#include "actions/TVKDisplayTextAction.h"

#include "actions/ActionText.h"
#include "core/StoredKeys.h"

namespace key = corvane::key;

using corvane::PlistValue;

TVKDisplayTextAction::TVKDisplayTextAction(TVKControl* control, const QString& text)
    : TVKLCDDisplayAction(control), m_text(text)
{}

TVKDisplayTextAction::TVKDisplayTextAction(const PlistValue& archive, TVKControl* control)
    : TVKLCDDisplayAction(archive, control)
{
    const PlistValue& text = archive.value(key::DisplayTxt);
    if (text.isString())
        m_text = text.toString();
}

QString TVKDisplayTextAction::actionDescriptor() const
{
    return QStringLiteral("Custom Text") + QStringLiteral(" \"") + corvane::objectText(m_text) +
           QLatin1Char('"');
}

corvane::FourCharCode TVKDisplayTextAction::editorTabID() const
{
    return corvane::fourCC("TEXT");
}

void TVKDisplayTextAction::writeTo(PlistValue& dict) const
{
    TVKLCDDisplayAction::writeTo(dict);
    if (!m_text.isNull())
        dict.insert(key::DisplayTxt, PlistValue(m_text));
}

std::unique_ptr<TVKAction> TVKLCDDisplayTextAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKLCDDisplayTextAction(*this));
}

std::unique_ptr<TVKAction> TVKLCDButtonDisplayTextAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKLCDButtonDisplayTextAction(*this));
}

CorvaneHiResLCDButtonDisplayTextAction::CorvaneHiResLCDButtonDisplayTextAction(
    TVKControl* control, unsigned lineCount, const QString& line1, const QString& line2,
    const QString& line3, const QString& line4)
    : TVKDisplayTextAction(control, joinLines(lineCount, {line1, line2, line3, line4})),
      m_lineCount(lineCount), m_charsPerLine(charsPerLineForLineCount(lineCount))
{}

CorvaneHiResLCDButtonDisplayTextAction::CorvaneHiResLCDButtonDisplayTextAction(
    const PlistValue& archive, TVKControl* control)
    : TVKDisplayTextAction(archive, control)
{
    m_lineCount = unsigned(archive.value(key::DisplayLnCt).toUnsigned() & 0xFFFFFFFFu);
    m_charsPerLine = unsigned(archive.value(key::DisplayChPrLn).toUnsigned() & 0xFFFFFFFFu);
}

unsigned CorvaneHiResLCDButtonDisplayTextAction::charsPerLineForLineCount(unsigned lineCount)
{
    switch (lineCount) {
    case 2:
        return 7;
    case 3:
        return 8;
    case 4:
        return 10;
    default:
        return 0;
    }
}

QString CorvaneHiResLCDButtonDisplayTextAction::joinLines(unsigned lineCount,
                                                          const QStringList& lines)
{
    const unsigned count = qMin(lineCount, kMaxLines);
    const qsizetype width = qsizetype(charsPerLineForLineCount(lineCount));
    QString text;
    for (unsigned i = 0; i < count; ++i) {
        if (i > 0)
            text += QLatin1Char('\n');
        if (qsizetype(i) < lines.size())
            text += lines.at(i).left(width);
    }
    return text;
}

std::unique_ptr<TVKAction> CorvaneHiResLCDButtonDisplayTextAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new CorvaneHiResLCDButtonDisplayTextAction(*this));
}

void CorvaneHiResLCDButtonDisplayTextAction::writeTo(PlistValue& dict) const
{
    TVKDisplayTextAction::writeTo(dict);
    dict.insert(key::DisplayLnCt, PlistValue(quint64(m_lineCount)));
    dict.insert(key::DisplayChPrLn, PlistValue(quint64(m_charsPerLine)));
}
