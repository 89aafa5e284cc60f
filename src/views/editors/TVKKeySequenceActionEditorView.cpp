#include "views/editors/TVKKeySequenceActionEditorView.h"

#include "views/TVKEditorCells.h"
#include "views/editors/TVKKeystrokeEntryView.h"
#include "views/editors/TVKModifierBoxes.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>

using corvane::KeySequenceEditor;
using TVKEditorCells::hintLabel;
using TVKEditorCells::selectCell;

TVKKeySequenceActionEditorView::TVKKeySequenceActionEditorView(TVKActionEditorHost& host,
                                                               qint32 actionType,
                                                               const QStringList& directions,
                                                               QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("KEYS"), parent),
      m_logic(host.editedAction(), actionType)
{
    auto* form = new QFormLayout(this);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);

    if (!directions.isEmpty()) {
        auto* row = new QWidget(this);
        auto* layout = new QHBoxLayout(row);
        layout->setContentsMargins(0, 0, 0, 0);
        m_directions = new QButtonGroup(this);
        for (int cell = 0; cell < directions.size(); ++cell) {
            auto* radio = new QRadioButton(directions[cell], row);
            layout->addWidget(radio);
            m_directions->addButton(radio, cell);
        }
        layout->addStretch();
        m_directions->button(0)->setChecked(true);
        form->addRow(tr("Direction:"), row);
        connect(m_directions, &QButtonGroup::idClicked, this, [this](int cell) {
            m_logic.chooseDirection(KeySequenceEditor::DirectionMatrix, cell);
        });
    }

    m_entry = new TVKKeystrokeEntryView(this);
    form->addRow(tr("&Keystroke:"), m_entry);
    if (auto* label = qobject_cast<QLabel*>(form->labelForField(m_entry)))
        label->setBuddy(m_entry);

    m_modifiers = new TVKModifierBoxes(this);
    form->addRow(tr("Modifiers:"), m_modifiers);

    auto* steps = new QWidget(this);
    auto* stepRow = new QHBoxLayout(steps);
    stepRow->setContentsMargins(0, 0, 0, 0);
    m_previous = new QPushButton(tr("&Previous"), steps);
    m_next = new QPushButton(tr("&Next"), steps);
    m_delete = new QPushButton(tr("&Delete Step"), steps);
    stepRow->addWidget(m_previous);
    stepRow->addWidget(m_next);
    stepRow->addWidget(m_delete);
    stepRow->addStretch();
    form->addRow(tr("Steps:"), steps);

    m_repeat = new QCheckBox(tr("&Repeat while held"), this);
    form->addRow(QString(), m_repeat);
    m_speed = new QSlider(Qt::Horizontal, this);
    m_speed->setRange(1, 100);
    m_speed->setValue(50);
    m_speed->setAccessibleName(tr("Speed"));
    form->addRow(tr("&Speed:"), m_speed);
    form->addRow(QString(), hintLabel(tr("Each step is one keystroke; Next moves past the last "
                                         "step to add another."),
                                      this));

    m_logic.setControls(m_repeat->isChecked(), m_speed->value());
    m_logic.setStateChangedHandler([this] { updateData(); });
    m_logic.setParameterChangedHandler([this] { edited(); });

    connect(m_entry, &TVKKeystrokeEntryView::keystrokeEntered, this,
            [this](const QString& label, quint32 keyCode, quint64 modifiers) {
                m_logic.keystrokeEntry(label, keyCode, modifiers);
            });
    connect(m_modifiers, &TVKModifierBoxes::clicked, this,
            [this] { m_logic.modifierBoxesClicked(m_modifiers->tickedTags()); });
    connect(m_repeat, &QCheckBox::clicked, this, [this] {
        m_logic.optionChanged(KeySequenceEditor::RepeatBox, m_repeat->isChecked(),
                              m_speed->value());
    });
    // The speed is taken when the user lets go, so that a drag is one edit.
    connect(m_speed, &QSlider::sliderReleased, this, [this] {
        m_logic.optionChanged(KeySequenceEditor::SpeedSlider, m_repeat->isChecked(),
                              m_speed->value());
    });
    connect(m_speed, &QSlider::actionTriggered, this, [this](int action) {
        if (action != QAbstractSlider::SliderMove)
            QMetaObject::invokeMethod(
                this,
                [this] {
                    m_logic.optionChanged(KeySequenceEditor::SpeedSlider, m_repeat->isChecked(),
                                          m_speed->value());
                },
                Qt::QueuedConnection);
    });
    connect(m_previous, &QPushButton::clicked, this,
            [this] { m_logic.navigate(KeySequenceEditor::Previous); });
    connect(m_next, &QPushButton::clicked, this,
            [this] { m_logic.navigate(KeySequenceEditor::Next); });
    connect(m_delete, &QPushButton::clicked, this,
            [this] { m_logic.navigate(KeySequenceEditor::Delete); });
    updateData();
}

QPushButton* TVKKeySequenceActionEditorView::button(int tag) const
{
    switch (tag) {
    case KeySequenceEditor::Previous:
        return m_previous;
    case KeySequenceEditor::Next:
        return m_next;
    case KeySequenceEditor::Delete:
        return m_delete;
    default:
        return nullptr;
    }
}

void TVKKeySequenceActionEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKKeySequenceActionEditorView::updateData()
{
    m_entry->setText(m_logic.entryText());
    m_entry->setLocked(m_logic.locked());
    m_modifiers->setTickedTags(m_logic.modifierBoxTags());
    {
        const QSignalBlocker blockRepeat(m_repeat);
        const QSignalBlocker blockSpeed(m_speed);
        m_repeat->setChecked(m_logic.repeatChecked());
        m_speed->setValue(m_logic.speedValue());
    }
    m_previous->setEnabled(m_logic.previousEnabled());
    m_next->setEnabled(m_logic.nextEnabled());
    m_delete->setEnabled(m_logic.deleteEnabled());
    if (m_directions)
        selectCell(m_directions, m_logic.currentAxis());
}
