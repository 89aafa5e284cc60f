#include "actions/editors/HiResTextEditor.h"

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

bool HiResTextEditor::setLineCount(unsigned lineCount)
{
    const StateChange change(*this);
    m_lineCount = qMin(lineCount, CorvaneHiResLCDButtonDisplayTextAction::kMaxLines);
    m_label = lineLengthLabel(m_lineCount);
    return apply();
}

bool HiResTextEditor::setLine(int index, const QString& text)
{
    const StateChange change(*this);
    if (index < 0 || index >= m_lines.size())
        return false;
    m_lines[index] = text;
    return apply();
}

bool HiResTextEditor::apply()
{
    auto made = std::make_unique<CorvaneHiResLCDButtonDisplayTextAction>(
        nullptr, m_lineCount, m_lines[0], m_lines[1], m_lines[2], m_lines[3]);
    if (m_container.actionType() == CorvaneHiResLCDButtonDisplayTextAction::kActionType) {
        const auto* held =
            static_cast<const CorvaneHiResLCDButtonDisplayTextAction*>(m_container.action());
        if (held->lineCount() == made->lineCount() && held->storedText() == made->storedText())
            return false;
    }
    m_container.setAction(std::move(made));
    return true;
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
