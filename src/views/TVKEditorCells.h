#pragma once

#include <QString>

class QButtonGroup;
class QLabel;
class QWidget;

// Small pieces every inspector editor builds with.
namespace TVKEditorCells {

// A wrapped line of explanation in the placeholder colour.
QLabel* hintLabel(const QString& text, QWidget* parent);

// Checks the cell whose id is the tag, without telling anybody; with no such cell none is left
// checked.
void selectCell(QButtonGroup* matrix, int tag);

} // namespace TVKEditorCells
