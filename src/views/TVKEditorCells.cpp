#include "views/TVKEditorCells.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QLabel>

QLabel* TVKEditorCells::hintLabel(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

void TVKEditorCells::selectCell(QButtonGroup* matrix, int tag)
{
    if (!matrix)
        return;
    const QSignalBlocker block(matrix);
    if (QAbstractButton* old = matrix->checkedButton()) {
        // An exclusive group keeps one cell checked; let go of it to clear.
        matrix->setExclusive(false);
        old->setChecked(false);
        matrix->setExclusive(true);
    }
    if (QAbstractButton* cell = matrix->button(tag))
        cell->setChecked(true);
}
