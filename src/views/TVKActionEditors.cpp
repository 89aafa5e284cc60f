#include "views/TVKActionEditors.h"

#include "actions/TVKActionContainer.h"
#include "actions/TVKMIDIAction.h"
#include "actions/editors/KeyEventTranslator.h"
#include "core/Notifications.h"
#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"
#include "views/TVKEditorCells.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QSlider>
#include <QSpinBox>
#include <QStyleOptionFrame>
#include <QStyledItemDelegate>
#include <QTreeWidget>
#include <QVBoxLayout>

using corvane::EmulationActionEditor;
using corvane::KeySequenceEditor;
using corvane::MIDIActionEditor;
using TVKEditorCells::hintLabel;
using TVKEditorCells::selectCell;

namespace {

// Item data of the built-in browser: the rows of the logic's command list.
constexpr int kGroupRowRole = Qt::UserRole;
constexpr int kCommandRowRole = Qt::UserRole + 1;

QSpinBox* spinBox(int minimum, int maximum, QWidget* parent)
{
    auto* box = new QSpinBox(parent);
    box->setRange(minimum, maximum);
    box->setAccelerated(true);
    return box;
}

// Sets a combo box's current item by its data without telling anybody.
void selectItemWithData(QComboBox* box, int data)
{
    const QSignalBlocker block(box);
    const int index = box->findData(data);
    box->setCurrentIndex(index);
}

// The separator groups of the catalogue, drawn as a rule rather than a row of underscores.
class SeparatorDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override
    {
        if (!index.data(kGroupRowRole).isValid() || index.flags() & Qt::ItemIsEnabled ||
            index.parent().isValid()) {
            QStyledItemDelegate::paint(painter, option, index);
            return;
        }
        painter->save();
        painter->setPen(option.palette.color(QPalette::Mid));
        const int y = option.rect.center().y();
        painter->drawLine(option.rect.left() + 4, y, option.rect.right() - 4, y);
        painter->restore();
    }
};

} // namespace

// TVKActionEditorView

TVKActionEditorView::TVKActionEditorView(TVKActionEditorHost& host, corvane::FourCharCode tabID,
                                         QWidget* parent)
    : QWidget(parent), m_host(host), m_tabID(tabID)
{
    m_newActionObservation =
        corvane::NotificationCenter::defaultCenter().observe<corvane::note::NewActionSelected>(
            nullptr, [this](const corvane::note::NewActionSelected&) {
                if (m_host.isShownEditor(this))
                    updateForNewAction();
            });
}

// TVKKeystrokeEntryView

TVKKeystrokeEntryView::TVKKeystrokeEntryView(QWidget* parent) : QFrame(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setAccessibleName(tr("Keystroke"));
    setToolTip(tr("Click, or press Return, then press the key to record"));
    setMinimumHeight(fontMetrics().height() * 2);
}

QSize TVKKeystrokeEntryView::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(QLatin1Char('M')) * 16, fontMetrics().height() * 2};
}

void TVKKeystrokeEntryView::setText(const QString& text)
{
    m_text = text;
    update();
}

void TVKKeystrokeEntryView::setArmed(bool armed)
{
    m_armed = armed && !m_locked;
    update();
}

bool TVKKeystrokeEntryView::event(QEvent* event)
{
    // An armed box takes every key before the shortcuts and the focus chain see it.
    if (event->type() == QEvent::ShortcutOverride && m_armed) {
        event->accept();
        return true;
    }
    if (event->type() != QEvent::KeyPress)
        return QFrame::event(event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (m_locked || key->isAutoRepeat())
        return QFrame::event(event);
    if (!m_armed) {
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter ||
            key->key() == Qt::Key_Space) {
            setArmed(true);
            return true;
        }
        return QFrame::event(event);
    }
    const corvane::KeyEventData data{key->nativeScanCode(), key->key(), key->modifiers(),
                                     key->text()};
    const auto stroke = corvane::KeyEventTranslator::keystrokeForEvent(data);
    if (!stroke)
        return true; // a modifier alone: wait for the key it modifies
    setArmed(false);
    setText(stroke->label);
    Q_EMIT keystrokeEntered(stroke->label, stroke->keyCode, stroke->modifiers);
    return true;
}

void TVKKeystrokeEntryView::mousePressEvent(QMouseEvent* event)
{
    setFocus(Qt::MouseFocusReason);
    setArmed(true);
    QFrame::mousePressEvent(event);
}

void TVKKeystrokeEntryView::focusOutEvent(QFocusEvent* event)
{
    setArmed(false);
    QFrame::focusOutEvent(event);
}

void TVKKeystrokeEntryView::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    QPainter painter(this);
    const QRect inner = contentsRect().adjusted(6, 0, -6, 0);
    if (hasFocus()) {
        QPen pen(palette().color(QPalette::Highlight), m_armed ? 2 : 1);
        painter.setPen(pen);
        painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
    if (m_armed) {
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawText(inner, Qt::AlignVCenter | Qt::AlignLeft, tr("Press a key…"));
        return;
    }
    const QString shown = m_text.trimmed();
    QFont font = painter.font();
    if (shown.isEmpty()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(inner, Qt::AlignVCenter | Qt::AlignLeft,
                         isEnabled() ? tr("Click to record a key") : QString());
        return;
    }
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    painter.setFont(font);
    painter.setPen(palette().color(isEnabled() ? QPalette::Text : QPalette::PlaceholderText));
    painter.drawText(inner, Qt::AlignVCenter | Qt::AlignLeft, m_text);
}

// TVKModifierBoxes

TVKModifierBoxes::TVKModifierBoxes(QWidget* parent) : QWidget(parent)
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    const std::pair<unsigned, QString> boxes[] = {{KeySequenceEditor::ShiftBox, tr("Shift")},
                                                  {KeySequenceEditor::ControlBox, tr("Ctrl")},
                                                  {KeySequenceEditor::OptionBox, tr("Alt")},
                                                  {KeySequenceEditor::CommandBox, tr("Super")}};
    for (const auto& [tag, title] : boxes) {
        auto* box = new QCheckBox(title, this);
        row->addWidget(box);
        m_boxes.emplace_back(tag, box);
        connect(box, &QCheckBox::clicked, this, &TVKModifierBoxes::clicked);
    }
    row->addStretch();
}

unsigned TVKModifierBoxes::tickedTags() const
{
    unsigned tags = 0;
    for (const auto& [tag, box] : m_boxes)
        if (box->isChecked())
            tags |= tag;
    return tags;
}

void TVKModifierBoxes::setTickedTags(unsigned tags)
{
    for (const auto& [tag, box] : m_boxes) {
        const QSignalBlocker block(box);
        box->setChecked(tags & tag);
    }
}

QCheckBox* TVKModifierBoxes::box(unsigned tag) const
{
    for (const auto& [boxTag, box] : m_boxes)
        if (boxTag == tag)
            return box;
    return nullptr;
}

// TVKKeySequenceActionEditorView

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
    m_logic.setStateChangedHandler([this] { redraw(); });
    m_logic.setParameterChangedHandler([this] {
        if (m_host.isShownEditor(this))
            m_host.actionParameterChanged();
    });

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
    redraw();
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

void TVKKeySequenceActionEditorView::redraw()
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

// TVKMIDIActionEditorView

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

    m_logic.setStateChangedHandler([this] { redraw(); });
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
    redraw();
}

void TVKMIDIActionEditorView::changed(int senderTag)
{
    if (m_redrawing)
        return;
    m_logic.controlChanged(senderTag);
    // Changing the axis only shows the other axis; everything else is an edit.
    if (senderTag != MIDIActionEditor::AxisRadios && m_host.isShownEditor(this))
        m_host.actionParameterChanged();
}

void TVKMIDIActionEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKMIDIActionEditorView::redraw()
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
    QStringList bytes;
    for (unsigned i = 0; i < size; ++i)
        bytes << (i > 0 && message[i] == 0xF1
                      ? tr("value")
                      : QStringLiteral("%1").arg(message[i], 2, 16, QLatin1Char('0')).toUpper());
    m_message->setText(bytes.join(QLatin1Char(' ')));
}

// TVKMouseActionEditorView

TVKMouseActionEditorView::TVKMouseActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                                                   QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("MOUS"), parent),
      m_logic(host.editedAction(), actionType, host.pointerEnvironment())
{
    auto* form = new QFormLayout(this);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    const TVK_Constant_Server& constants = corvane::surfaceConstants();

    m_operation = new QComboBox(this);
    m_operation->addItem(tr("None"), 0);
    for (int operation = 1; operation <= 9; ++operation)
        m_operation->addItem(constants.mouseActionString(operation), operation);
    form->addRow(tr("&Operation:"), m_operation);

    m_location = new QComboBox(this);
    const QString locations[] = {tr("Leave the pointer where it is"),
                                 tr("From the top left of a window"),
                                 tr("From the top right of a window"),
                                 tr("From the top, across a share of a window's width"),
                                 tr("From the bottom left of a window"),
                                 tr("From the bottom right of a window"),
                                 tr("From the bottom, across a share of a window's width"),
                                 tr("At a point of the screen")};
    for (int type = 0; type < 8; ++type)
        m_location->addItem(locations[type], type);
    form->addRow(tr("&Position first:"), m_location);

    m_captureText = new QLabel(this);
    m_captureText->setWordWrap(true);
    m_captureText->setMinimumHeight(m_captureText->fontMetrics().height() * 3);
    m_captureText->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    form->addRow(QString(), m_captureText);

    auto* captureRow = new QWidget(this);
    auto* captureLayout = new QHBoxLayout(captureRow);
    captureLayout->setContentsMargins(0, 0, 0, 0);
    m_capture = new QPushButton(tr("&Capture"), captureRow);
    m_progress = new QProgressBar(captureRow);
    m_progress->setRange(0, 0);
    m_progress->setTextVisible(false);
    m_progress->setMaximumWidth(120);
    captureLayout->addWidget(m_capture);
    captureLayout->addWidget(m_progress);
    captureLayout->addStretch();
    form->addRow(QString(), captureRow);
    m_platformNote = new QLabel(this);
    m_platformNote->setWordWrap(true);
    form->addRow(QString(), m_platformNote);

    m_partial = new QCheckBox(tr("Match the window by part of its &title"), this);
    form->addRow(QString(), m_partial);
    m_windowName = new QLineEdit(this);
    form->addRow(tr("&Window title:"), m_windowName);
    m_modifiers = new TVKModifierBoxes(this);
    form->addRow(tr("Hold:"), m_modifiers);

    m_logic.setStateChangedHandler([this] { redraw(); });
    m_logic.setParameterChangedHandler([this] {
        if (m_host.isShownEditor(this))
            m_host.actionParameterChanged();
    });
    auto edited = [this](auto&& operation) {
        return [this, operation] {
            if (m_redrawing)
                return;
            operation();
            if (m_host.isShownEditor(this))
                m_host.actionParameterChanged();
        };
    };
    connect(m_operation, &QComboBox::activated, this,
            edited([this] { m_logic.selectOperation(m_operation->currentData().toInt()); }));
    connect(m_location, &QComboBox::activated, this,
            edited([this] { m_logic.selectLocationType(m_location->currentData().toInt()); }));
    connect(m_partial, &QCheckBox::clicked, this,
            edited([this] { m_logic.setUsePartialWindowName(m_partial->isChecked()); }));
    connect(m_windowName, &QLineEdit::editingFinished, this, edited([this] {
                if (m_windowName->text() != m_logic.windowNameText())
                    m_logic.setWindowName(m_windowName->text());
            }));
    connect(m_modifiers, &TVKModifierBoxes::clicked, this,
            edited([this] { m_logic.setModifierBoxes(m_modifiers->tickedTags()); }));
    connect(m_capture, &QPushButton::clicked, this, [this] { m_logic.startCapture(); });
    redraw();
}

void TVKMouseActionEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKMouseActionEditorView::redraw()
{
    const QScopedValueRollback<bool> guard(m_redrawing, true);
    selectItemWithData(m_operation, m_logic.operationTag());
    selectItemWithData(m_location, m_logic.locationTag());
    m_partial->setChecked(m_logic.partialNameChecked());
    if (!m_windowName->hasFocus() || m_windowName->text() != m_logic.windowNameText())
        m_windowName->setText(m_logic.windowNameText());
    m_modifiers->setTickedTags(m_logic.modifierBoxTags());
    m_location->setEnabled(m_logic.locationPopUpEnabled());
    m_modifiers->setEnabled(m_logic.modifierBoxesEnabled());
    m_partial->setEnabled(m_logic.partialNameBoxEnabled());
    m_windowName->setEnabled(m_logic.windowNameFieldEnabled());
    m_captureText->setText(m_logic.captureText());
    m_capture->setVisible(m_logic.captureButtonVisible());
    m_progress->setVisible(m_logic.progressRunning());
    // Rows with nothing to say take no room.
    auto* form = static_cast<QFormLayout*>(layout());
    form->setRowVisible(m_captureText, !m_logic.captureText().isEmpty());
    form->setRowVisible(m_capture->parentWidget(),
                        m_logic.captureButtonVisible() || m_logic.progressRunning());
    // A refused capture says why when the desktop could not be asked at all.
    const QString problem = m_host.pointerQueryProblem();
    m_platformNote->setText(problem);
    form->setRowVisible(m_platformNote,
                        !problem.isEmpty() && m_logic.captureButtonVisible() &&
                            m_logic.captureText().startsWith(QLatin1String("Please place")));
}

// TVKEmulationActionEditorView

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

    m_logic.setStateChangedHandler([this] { redraw(); });
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
    if (m_host.isShownEditor(this))
        m_host.actionParameterChanged();
}

void TVKEmulationActionEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKEmulationActionEditorView::redraw()
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
    const int mode = EmulationActionEditor::selectedKeysetEmulationMode();
    static const QString modeNames[] = {QString(), tr("A"), tr("B"), tr("C")};
    m_modeLabel->setText(
        mode <= 0 || mode > 3
            ? tr("This keyset does not emulate a console.")
            : tr("This keyset emulates a console in mode %1.").arg(modeNames[mode]));

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

// TVKBuiltInActionEditorView

TVKBuiltInActionEditorView::TVKBuiltInActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                                                       QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("BILT"), parent),
      m_logic(host.editedAction(), actionType)
{
    auto* column = new QVBoxLayout(this);
    m_title = new QLabel(this);
    m_title->setWordWrap(true);
    column->addWidget(m_title);
    m_search = new QLineEdit(this);
    m_search->setPlaceholderText(tr("Search commands"));
    m_search->setClearButtonEnabled(true);
    m_search->setAccessibleName(tr("Search commands"));
    column->addWidget(m_search);
    m_browser = new QTreeWidget(this);
    m_browser->setHeaderHidden(true);
    m_browser->setRootIsDecorated(true);
    m_browser->setUniformRowHeights(true);
    m_browser->setItemDelegate(new SeparatorDelegate(m_browser));
    m_browser->setAccessibleName(tr("Built-in commands"));
    column->addWidget(m_browser, 1);
    column->addWidget(
        hintLabel(tr("Double-click a command, or press Return on it, to assign it."), this));

    m_logic.setStateChangedHandler([this] { reload(); });
    connect(m_search, &QLineEdit::textChanged, this, &TVKBuiltInActionEditorView::filter);
    connect(m_browser, &QTreeWidget::itemActivated, this,
            &TVKBuiltInActionEditorView::itemActivated);
    reload();
}

void TVKBuiltInActionEditorView::reload()
{
    m_title->setText(m_logic.title());
    m_browser->clear();
    const auto& groups = m_logic.groups();
    for (int row = 0; row < int(groups.size()); ++row) {
        const corvane::BuiltInCommandGroup& group = groups[size_t(row)];
        auto* item = new QTreeWidgetItem(m_browser);
        item->setData(0, kGroupRowRole, row);
        if (group.isSeparator()) {
            item->setFlags(Qt::NoItemFlags);
            continue;
        }
        item->setText(0, group.name);
        for (int command = 0; command < int(group.commands.size()); ++command) {
            auto* leaf = new QTreeWidgetItem(item);
            leaf->setText(0, group.commands[size_t(command)].name);
            leaf->setData(0, kGroupRowRole, row);
            leaf->setData(0, kCommandRowRole, command);
        }
    }
    filter(m_search->text());
    showHeldAction();
}

void TVKBuiltInActionEditorView::filter(const QString& text)
{
    const QString needle = text.trimmed();
    for (int row = 0; row < m_browser->topLevelItemCount(); ++row) {
        QTreeWidgetItem* group = m_browser->topLevelItem(row);
        if (needle.isEmpty()) {
            group->setHidden(false);
            for (int i = 0; i < group->childCount(); ++i)
                group->child(i)->setHidden(false);
            group->setExpanded(true);
            continue;
        }
        const bool groupMatches = group->text(0).contains(needle, Qt::CaseInsensitive);
        int shown = 0;
        for (int i = 0; i < group->childCount(); ++i) {
            QTreeWidgetItem* command = group->child(i);
            const bool match =
                groupMatches || command->text(0).contains(needle, Qt::CaseInsensitive);
            command->setHidden(!match);
            shown += match;
        }
        group->setHidden(shown == 0);
        group->setExpanded(shown > 0);
    }
}

void TVKBuiltInActionEditorView::itemActivated(QTreeWidgetItem* item)
{
    if (!item || !item->data(0, kCommandRowRole).isValid())
        return;
    chooseCommand(item->data(0, kGroupRowRole).toInt(), item->data(0, kCommandRowRole).toInt());
}

void TVKBuiltInActionEditorView::chooseCommand(int groupRow, int commandRow)
{
    const corvane::BuiltInActionEditor::Choice choice = m_logic.chooseCommand(groupRow, commandRow);
    if (!choice.chosen || !m_host.isShownEditor(this))
        return;
    m_host.actionParameterChanged();
    m_host.changeUserName(choice.userName);
}

void TVKBuiltInActionEditorView::updateForNewAction()
{
    showHeldAction();
}

void TVKBuiltInActionEditorView::showHeldAction()
{
    const QString path = m_logic.browserPath();
    if (path.isNull())
        return;
    const QStringList parts = path.split(corvane::BuiltInActionEditor::pathSeparator());
    if (parts.size() < 3)
        return;
    for (int row = 0; row < m_browser->topLevelItemCount(); ++row) {
        QTreeWidgetItem* group = m_browser->topLevelItem(row);
        if (group->text(0) != parts[1])
            continue;
        for (int i = 0; i < group->childCount(); ++i) {
            if (group->child(i)->text(0) == parts[2]) {
                group->setExpanded(true);
                m_browser->setCurrentItem(group->child(i));
                m_browser->scrollToItem(group->child(i));
                return;
            }
        }
    }
}

// TVKSpecialActionEditorView

TVKSpecialActionEditorView::TVKSpecialActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                                                       QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("SPEC"), parent),
      m_logic(host.editedAction(), actionType)
{
    auto* column = new QVBoxLayout(this);
    column->addWidget(new QLabel(tr("Surface function:"), this));
    m_modes = new QButtonGroup(this);
    const TVK_Constant_Server& constants = corvane::surfaceConstants();
    auto* none = new QRadioButton(tr("None"), this);
    column->addWidget(none);
    m_modes->addButton(none, 0);
    // Mode 3 is reserved by the surface and offered nowhere.
    for (int mode : {1, 2, 4, 5, 6, 7, 8, 9, 10}) {
        auto* radio = new QRadioButton(constants.specialModeDescriptor(mode), this);
        column->addWidget(radio);
        m_modes->addButton(radio, mode);
    }
    column->addStretch();
    connect(m_modes, &QButtonGroup::idClicked, this, [this](int mode) {
        m_logic.click(0, mode);
        if (m_host.isShownEditor(this))
            m_host.actionParameterChanged();
    });
    updateForNewAction();
}

void TVKSpecialActionEditorView::updateForNewAction()
{
    selectCell(m_modes, m_logic.selectedCellTag());
}
