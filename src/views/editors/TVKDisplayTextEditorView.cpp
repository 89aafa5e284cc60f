#include "views/editors/TVKDisplayTextEditorView.h"

#include "views/TVKEditorCells.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

TVKDisplayTextEditorView::TVKDisplayTextEditorView(TVKActionEditorHost& host, QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("TEXT"), parent), m_logic(host.editedAction())
{
    auto* form = new QFormLayout(this);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_text = new QLineEdit(this);
    m_text->setPlaceholderText(tr("Text to show"));
    form->addRow(tr("&Text:"), m_text);
    m_limit = TVKEditorCells::hintLabel(QString(), this);
    form->addRow(QString(), m_limit);
    form->addRow(QString(),
                 TVKEditorCells::hintLabel(tr("Leave the text empty to show nothing."), this));

    m_logic.setStateChangedHandler([this] { updateData(); });
    connect(m_text, &QLineEdit::editingFinished, this, [this] {
        if (m_logic.setText(m_text->text(), m_host.shownControl()))
            edited();
    });
    updateData();
}

void TVKDisplayTextEditorView::updateForNewAction()
{
    m_logic.updateForNewAction(m_host.shownControl());
}

void TVKDisplayTextEditorView::updateData()
{
    m_text->setMaxLength(m_logic.width());
    m_limit->setText(tr("Up to %1 characters.").arg(m_logic.width()));
    if (m_text->text() != m_logic.text()) {
        const QSignalBlocker block(m_text);
        m_text->setText(m_logic.text());
    }
}
