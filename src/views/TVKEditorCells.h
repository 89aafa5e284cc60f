#pragma once

#include "model/EmulationMode.h"

#include <QString>

class QButtonGroup;
class QComboBox;
class QLabel;
class QSpinBox;
class QWidget;

// Small pieces every inspector editor builds with.
namespace TVKEditorCells {

// A wrapped line of explanation in the placeholder colour.
QLabel* hintLabel(const QString& text, QWidget* parent);

// Checks the cell whose id is the tag, without telling anybody; with no such cell none is left
// checked.
void selectCell(QButtonGroup* matrix, int tag);

// Sets a combo box's current item by its data without telling anybody.
void selectItemWithData(QComboBox* box, int data);

// A number field with its stepper. Typed digits are one edit, made when the user presses Return
// or leaves the field; the arrows step at once.
QSpinBox* spinBox(int minimum, int maximum, QWidget* parent);

// What an emulation editor says of the keyset's emulation mode (0 to 3), and where it is set.
QString emulationModeNote(corvane::EmulationMode mode);

} // namespace TVKEditorCells
