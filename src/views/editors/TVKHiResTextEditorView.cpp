#include "views/editors/TVKHiResTextEditorView.h"

#include "actions/TVKDisplayTextAction.h"
#include "views/TVKEditorCells.h"

#include <QButtonGroup>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScopedValueRollback>

TVKHiResTextEditorView::TVKHiResTextEditorView(TVKActionEditorHost& host, QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("TEXT"), parent), m_logic(host.editedAction())
{
    auto* form = new QFormLayout(this);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    auto* counts = new QWidget(this);
    auto* countRow = new QHBoxLayout(counts);
    countRow->setContentsMargins(0, 0, 0, 0);
    m_lineCount = new QButtonGroup(this);
    const QString titles[] = {tr("None"), tr("1"), tr("2"), tr("3"), tr("4")};
    for (int count = 0; count < 5; ++count) {
        auto* radio = new QRadioButton(titles[count], counts);
        countRow->addWidget(radio);
        m_lineCount->addButton(radio, count);
    }
    countRow->addStretch();
    form->addRow(tr("Lines:"), counts);
    for (int line = 0; line < 4; ++line) {
        m_lines[line] = new QLineEdit(this);
        form->addRow(tr("Line &%1:").arg(line + 1), m_lines[line]);
        connect(m_lines[line], &QLineEdit::editingFinished, this, [this, line] {
            if (!m_redrawing && m_logic.setLine(line, m_lines[line]->text()))
                edited();
        });
    }
    m_label = TVKEditorCells::hintLabel(QString(), this);
    form->addRow(QString(), m_label);

    m_logic.setStateChangedHandler([this] { updateData(); });
    connect(m_lineCount, &QButtonGroup::idClicked, this, [this](int count) {
        if (m_logic.setLineCount(unsigned(count)))
            edited();
    });
    updateData();
}

void TVKHiResTextEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKHiResTextEditorView::updateData()
{
    const QScopedValueRollback<bool> guard(m_redrawing, true);
    TVKEditorCells::selectCell(m_lineCount, int(m_logic.lineCount()));
    const int perLine =
        int(CorvaneHiResLCDButtonDisplayTextAction::charsPerLineForLineCount(m_logic.lineCount()));
    for (int line = 0; line < 4; ++line) {
        m_lines[line]->setEnabled(line < int(m_logic.lineCount()));
        m_lines[line]->setMaxLength(perLine > 0 ? perLine : 32767);
        m_lines[line]->setText(m_logic.lines().value(line));
    }
    m_label->setText(m_logic.label());
}
