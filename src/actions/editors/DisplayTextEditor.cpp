#include "actions/editors/DisplayTextEditor.h"

#include "actions/ActionText.h"
#include "actions/TVKActionContainer.h"
#include "actions/TVKDisplayTextAction.h"

namespace corvane {

HiResTextEditor::HiResTextEditor(TVKActionContainer& container) : m_container(container) {}

QString HiResTextEditor::lineLengthLabel(unsigned lineCount)
{
    if (lineCount == 0)
        return QLatin1String("");
    return fillFormat(
        QStringLiteral("Up to %ld characters per line allowed"), {},
        {double(CorvaneHiResLCDButtonDisplayTextAction::charsPerLineForLineCount(lineCount))});
}

void HiResTextEditor::setLineCount(unsigned lineCount)
{
    const StateChange change(*this);
    m_lineCount = qMin(lineCount, CorvaneHiResLCDButtonDisplayTextAction::kMaxLines);
    m_label = lineLengthLabel(m_lineCount);
    apply();
}

void HiResTextEditor::setLine(int index, const QString& text)
{
    const StateChange change(*this);
    if (index < 0 || index >= m_lines.size())
        return;
    m_lines[index] = text;
    apply();
}

void HiResTextEditor::apply()
{
    m_container.setAction(std::make_unique<CorvaneHiResLCDButtonDisplayTextAction>(
        nullptr, m_lineCount, m_lines[0], m_lines[1], m_lines[2], m_lines[3]));
}

void HiResTextEditor::updateForNewAction()
{
    const StateChange change(*this);
    m_lines = {QString(), QString(), QString(), QString()};
    if (m_container.actionType() != CorvaneHiResLCDButtonDisplayTextAction::kActionType) {
        m_lineCount = 0;
        m_label = lineLengthLabel(0);
        return;
    }
    auto* action = static_cast<CorvaneHiResLCDButtonDisplayTextAction*>(m_container.action());
    m_lineCount = action->lineCount();
    m_label = lineLengthLabel(m_lineCount);
    const QStringList stored = action->storedText().split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < stored.size() && i < m_lines.size(); ++i)
        m_lines[i] = stored.at(i);
}

} // namespace corvane
