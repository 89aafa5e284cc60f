#include "views/editors/TVKEmulationActionEditorView.h"

#include "views/TVKEditorCells.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScopedValueRollback>
#include <QSlider>
#include <QSpinBox>

using corvane::EmulationActionEditor;
using TVKEditorCells::selectItemWithData;
using TVKEditorCells::spinBox;

TVKEmulationActionEditorView::TVKEmulationActionEditorView(TVKActionEditorHost& host,
                                                           EmulationActionEditor::Kind kind,
                                                           QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("EMUL"), parent), m_logic(host.editedAction(), kind)
{
    auto* form = new QFormLayout(this);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_modeLabel = new QLabel(this);
    form->addRow(m_modeLabel);
    m_emulate = new QCheckBox(tr("&Emulate a console control"), this);
    form->addRow(QString(), m_emulate);
    m_group = new QComboBox(this);
    form->addRow(tr("&Group:"), m_group);

    m_nameRow = new QWidget(this);
    auto* nameLayout = new QHBoxLayout(m_nameRow);
    nameLayout->setContentsMargins(0, 0, 0, 0);
    m_control = new QComboBox(m_nameRow);
    nameLayout->addWidget(m_control, 1);
    form->addRow(tr("C&ontrol:"), m_nameRow);

    m_numberRow = new QWidget(this);
    auto* numberLayout = new QHBoxLayout(m_numberRow);
    numberLayout->setContentsMargins(0, 0, 0, 0);
    m_number = spinBox(1, 9, m_numberRow);
    numberLayout->addWidget(m_number);
    numberLayout->addStretch();
    form->addRow(tr("&Number:"), m_numberRow);

    m_speedRow = new QWidget(this);
    auto* speedLayout = new QHBoxLayout(m_speedRow);
    speedLayout->setContentsMargins(0, 0, 0, 0);
    m_speed = new QSlider(Qt::Horizontal, m_speedRow);
    m_speed->setRange(1, 10);
    m_speed->setAccessibleName(tr("Jog speed"));
    speedLayout->addWidget(m_speed);
    form->addRow(tr("Jog &speed:"), m_speedRow);

    m_logic.setStateChangedHandler([this] { updateData(); });
    connect(m_emulate, &QCheckBox::clicked, this, [this](bool checked) {
        m_logic.controls().emulateChecked = checked;
        changed(EmulationActionEditor::EmulateBox);
    });
    connect(m_group, &QComboBox::activated, this, [this] {
        m_logic.controls().selectedGroup = m_group->currentData().toInt();
        changed(EmulationActionEditor::GroupPopUp);
    });
    connect(m_control, &QComboBox::activated, this, [this] {
        m_logic.controls().selectedControlTag = m_control->currentData().toInt();
        changed(EmulationActionEditor::ControlPopUp);
    });
    connect(m_number, &QSpinBox::valueChanged, this, [this](int value) {
        m_logic.controls().numberField = value;
        changed(EmulationActionEditor::NumberField);
    });
    connect(m_speed, &QSlider::valueChanged, this, [this](int value) {
        if (m_speed->isSliderDown())
            return;
        m_logic.controls().speedSlider = value;
        changed(EmulationActionEditor::SpeedSlider);
    });
    connect(m_speed, &QSlider::sliderReleased, this, [this] {
        m_logic.controls().speedSlider = m_speed->value();
        changed(EmulationActionEditor::SpeedSlider);
    });
    m_logic.updateForNewAction();
}

void TVKEmulationActionEditorView::changed(int senderTag)
{
    if (m_redrawing)
        return;
    m_logic.controlChanged(senderTag);
    edited();
}

void TVKEmulationActionEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKEmulationActionEditorView::updateData()
{
    const QScopedValueRollback<bool> guard(m_redrawing, true);
    const EmulationActionEditor::Controls& c = m_logic.controls();
    if (c.groupMenu != EmulationActionEditor::GroupMenu::Unchanged &&
        c.groupMenu != m_shownGroupMenu) {
        m_group->clear();
        for (const auto& [tag, title] : m_logic.groupMenu(c.groupMenu))
            m_group->addItem(title, tag);
        m_shownGroupMenu = c.groupMenu;
    }
    if (c.controlMenuGroup != m_shownControlMenu) {
        m_control->clear();
        for (const auto& [tag, title] : m_logic.controlMenuForGroup(c.controlMenuGroup))
            m_control->addItem(title, tag);
        m_shownControlMenu = c.controlMenuGroup;
    }
    m_modeLabel->setText(
        TVKEditorCells::emulationModeNote(EmulationActionEditor::selectedKeysetEmulationMode()));

    m_emulate->setChecked(c.emulateChecked);
    selectItemWithData(m_group, c.selectedGroup);
    selectItemWithData(m_control, c.selectedControlTag);
    m_number->setMaximum(qMax(1, m_logic.numberLimit()));
    m_number->setValue(qMax(1, c.numberField));
    m_speed->setValue(c.speedSlider);
    auto* form = static_cast<QFormLayout*>(layout());
    form->setRowVisible(m_nameRow, c.nameContainerVisible);
    form->setRowVisible(m_numberRow, c.numberContainerVisible);
    form->setRowVisible(m_speedRow, c.modeCContainerVisible);
    m_group->setEnabled(m_group->count() > 0);
}
