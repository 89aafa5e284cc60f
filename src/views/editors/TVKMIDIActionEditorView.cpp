#include "views/editors/TVKMIDIActionEditorView.h"

#include "actions/TVKMIDIAction.h"
#include "views/TVKEditorCells.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QSpinBox>
#include <QVBoxLayout>

using corvane::MIDIActionEditor;
using TVKEditorCells::hintLabel;
using TVKEditorCells::selectCell;
using TVKEditorCells::selectItemWithData;
using TVKEditorCells::spinBox;

TVKMIDIActionEditorView::TVKMIDIActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                                                 QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("MIDI"), parent),
      m_logic(host.editedAction(), actionType)
{
    auto* outer = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    outer->addLayout(form);

    auto* modes = new QWidget(this);
    auto* modeRow = new QHBoxLayout(modes);
    modeRow->setContentsMargins(0, 0, 0, 0);
    m_mode = new QButtonGroup(this);
    const std::pair<int, QString> modeCells[] = {
        {0, tr("&None")}, {1, tr("N&ative")}, {2, tr("C&ustom message")}};
    for (const auto& [tag, title] : modeCells) {
        auto* radio = new QRadioButton(title, modes);
        modeRow->addWidget(radio);
        m_mode->addButton(radio, tag);
    }
    modeRow->addStretch();
    form->addRow(tr("MIDI:"), modes);
    form->addRow(QString(),
                 hintLabel(tr("Native sends the surface's own message for this control; a custom "
                              "message is composed below."),
                           this));

    if (m_logic.isFourWay()) {
        auto* axes = new QWidget(this);
        auto* axisRow = new QHBoxLayout(axes);
        axisRow->setContentsMargins(0, 0, 0, 0);
        m_axis = new QButtonGroup(this);
        auto* horizontal = new QRadioButton(tr("&Horizontal"), axes);
        auto* vertical = new QRadioButton(tr("&Vertical"), axes);
        axisRow->addWidget(horizontal);
        axisRow->addWidget(vertical);
        axisRow->addStretch();
        m_axis->addButton(horizontal, 0);
        m_axis->addButton(vertical, 1);
        form->addRow(tr("Axis:"), axes);
        m_logic.viewLoaded();
        connect(m_axis, &QButtonGroup::idClicked, this, [this](int cell) {
            m_logic.controls().axisCell = cell;
            changed(MIDIActionEditor::AxisRadios);
        });
    }

    m_custom = new QWidget(this);
    auto* custom = new QFormLayout(m_custom);
    custom->setContentsMargins(0, 0, 0, 0);
    m_command = new QComboBox(m_custom);
    const std::pair<int, QString> commands[] = {
        {0x80, tr("Note Off")},       {0x90, tr("Note On")},        {0xA0, tr("Poly Pressure")},
        {0xB0, tr("Control Change")}, {0xC0, tr("Program Change")}, {0xD0, tr("Channel Pressure")},
        {0xE0, tr("Pitch Bend")},     {0xF6, tr("Tune Request")},   {0xF8, tr("Timing Clock")},
        {0xFA, tr("Start")},          {0xFB, tr("Continue")},       {0xFC, tr("Stop")},
        {0xFE, tr("Active Sensing")}, {0xFF, tr("System Reset")}};
    for (const auto& [tag, title] : commands) {
        if (tag == 0xF6)
            m_command->insertSeparator(m_command->count());
        m_command->addItem(title, tag);
    }
    custom->addRow(tr("&Command:"), m_command);

    m_channelRow = new QWidget(m_custom);
    auto* channelRow = new QHBoxLayout(m_channelRow);
    channelRow->setContentsMargins(0, 0, 0, 0);
    m_channel = spinBox(1, 16, m_channelRow);
    channelRow->addWidget(m_channel);
    channelRow->addStretch();
    custom->addRow(tr("C&hannel:"), m_channelRow);

    auto dataRow = [this](QWidget*& row, QSpinBox*& field, QCheckBox*& follows) {
        row = new QWidget(m_custom);
        auto* layout = new QHBoxLayout(row);
        layout->setContentsMargins(0, 0, 0, 0);
        field = spinBox(0, 127, row);
        follows = new QCheckBox(tr("Follows control value"), row);
        layout->addWidget(field);
        layout->addWidget(follows);
        layout->addStretch();
    };
    QWidget* data1Row = nullptr;
    dataRow(data1Row, m_data1, m_data1Follows);
    custom->addRow(tr("Data &1:"), data1Row);
    dataRow(m_data2Row, m_data2, m_data2Follows);
    custom->addRow(tr("Data &2:"), m_data2Row);
    m_message = new QLabel(m_custom);
    m_message->setTextInteractionFlags(Qt::TextSelectableByMouse);
    custom->addRow(tr("Sends:"), m_message);
    outer->addWidget(m_custom);
    outer->addStretch();

    m_logic.setStateChangedHandler([this] { updateData(); });
    connect(m_mode, &QButtonGroup::idClicked, this, [this](int cell) {
        m_logic.controls().modeCell = cell;
        changed(MIDIActionEditor::ModeRadios);
    });
    connect(m_command, &QComboBox::activated, this, [this] {
        m_logic.controls().commandTag = m_command->currentData().toInt();
        changed(MIDIActionEditor::CommandPopUp);
    });
    connect(m_channel, &QSpinBox::valueChanged, this, [this](int value) {
        m_logic.controls().channelField = value;
        changed(MIDIActionEditor::ChannelField);
    });
    connect(m_data1, &QSpinBox::valueChanged, this, [this](int value) {
        m_logic.controls().data1Field = value;
        changed(MIDIActionEditor::Data1Field);
    });
    connect(m_data2, &QSpinBox::valueChanged, this, [this](int value) {
        m_logic.controls().data2Field = value;
        changed(MIDIActionEditor::Data2Field);
    });
    connect(m_data1Follows, &QCheckBox::clicked, this, [this](bool checked) {
        m_logic.controls().data1FollowsValue = checked;
        changed(MIDIActionEditor::Data1FollowsValue);
    });
    connect(m_data2Follows, &QCheckBox::clicked, this, [this](bool checked) {
        m_logic.controls().data2FollowsValue = checked;
        changed(MIDIActionEditor::Data2FollowsValue);
    });
    updateData();
}

void TVKMIDIActionEditorView::changed(int senderTag)
{
    if (m_redrawing)
        return;
    m_logic.controlChanged(senderTag);
    // Changing the axis only shows the other axis; everything else is an edit.
    if (senderTag != MIDIActionEditor::AxisRadios)
        edited();
}

void TVKMIDIActionEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKMIDIActionEditorView::updateData()
{
    const QScopedValueRollback<bool> guard(m_redrawing, true);
    const MIDIActionEditor::Controls& c = m_logic.controls();
    selectCell(m_mode, c.modeCell);
    if (m_axis)
        selectCell(m_axis, m_logic.currentAxis());
    selectItemWithData(m_command, c.commandTag);
    m_channel->setValue(c.channelField);
    m_data1->setValue(c.data1Field);
    m_data2->setValue(c.data2Field);
    m_data1Follows->setChecked(c.data1FollowsValue);
    m_data2Follows->setChecked(c.data2FollowsValue);
    m_custom->setVisible(c.customGroupVisible);
    m_channelRow->setVisible(c.channelGroupVisible);
    if (auto* form = qobject_cast<QFormLayout*>(m_custom->layout())) {
        form->setRowVisible(m_channelRow, c.channelGroupVisible);
        form->setRowVisible(m_data2Row, c.data2GroupVisible);
        if (QWidget* data1Row = m_data1->parentWidget())
            form->setRowVisible(data1Row, c.channelGroupVisible);
    }
    m_data1->setEnabled(c.data1Enabled);
    m_data2->setEnabled(c.data2Enabled);
    unsigned size = 0;
    const TVKMIDIAction::Message message = m_logic.composeMessage(size);
    // Bytes written as the action's description writes them: two lower-case hex digits.
    QStringList bytes;
    for (unsigned i = 0; i < size; ++i)
        bytes << (i > 0 && message[i] == 0xF1
                      ? tr("value")
                      : QStringLiteral("%1").arg(message[i], 2, 16, QLatin1Char('0')));
    m_message->setText(bytes.join(QLatin1Char(' ')));
}
