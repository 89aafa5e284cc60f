#include "views/TVKEditorCells.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QSpinBox>

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

void TVKEditorCells::selectItemWithData(QComboBox* box, int data)
{
    const QSignalBlocker block(box);
    box->setCurrentIndex(box->findData(data));
}

QSpinBox* TVKEditorCells::spinBox(int minimum, int maximum, QWidget* parent)
{
    auto* box = new QSpinBox(parent);
    box->setRange(minimum, maximum);
    box->setAccelerated(true);
    box->setKeyboardTracking(false);
    return box;
}

QString TVKEditorCells::emulationModeNote(corvane::EmulationMode mode)
{
    const char* letter =
        mode == corvane::EmulationMode::A   ? QT_TRANSLATE_NOOP("TVKEditorCells", "A")
        : mode == corvane::EmulationMode::B ? QT_TRANSLATE_NOOP("TVKEditorCells", "B")
        : mode == corvane::EmulationMode::C ? QT_TRANSLATE_NOOP("TVKEditorCells", "C")
                                            : nullptr;
    if (!letter)
        return QCoreApplication::translate(
            "TVKEditorCells", "This keyset does not emulate a console. Choose Emulation Mode A, "
                              "B or C for the keyset in the Surface menu.");
    return QCoreApplication::translate("TVKEditorCells",
                                       "This keyset emulates a console in mode %1.")
        .arg(QCoreApplication::translate("TVKEditorCells", letter));
}
