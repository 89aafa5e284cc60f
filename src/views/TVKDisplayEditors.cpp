#include "views/TVKDisplayEditors.h"

#include "actions/CorvaneButtonDisplayMidiEmulationAction.h"
#include "actions/CorvaneLCDButtonDisplayIconAction.h"
#include "actions/TVKActionContainer.h"
#include "actions/TVKDisplayAction.h"
#include "actions/TVKDisplayControlNameAction.h"
#include "actions/TVKDisplayEmulationAction.h"
#include "actions/TVKDisplayTextAction.h"
#include "model/TVKControl.h"
#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"
#include "views/TVKEditorCells.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QToolButton>
#include <QVBoxLayout>

using TVKEditorCells::hintLabel;
using TVKEditorCells::selectCell;

namespace {

constexpr int kFallbackDisplayWidth = 40;

} // namespace

// CorvaneROMIcons

QString CorvaneROMIcons::name(int icon)
{
    static const char* const names[kCount] = {QT_TRANSLATE_NOOP("CorvaneROMIcons", "Play"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Stop"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Record"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Pause"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Rewind"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Fast Forward"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Previous"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Next"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Loop"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Arrow Up"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Arrow Down"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Arrow Left"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Arrow Right"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Plus"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Minus"),
                                              QT_TRANSLATE_NOOP("CorvaneROMIcons", "Marker")};
    if (icon < 0 || icon >= kCount)
        return QCoreApplication::translate("CorvaneROMIcons", "Icon %1").arg(icon);
    return QCoreApplication::translate("CorvaneROMIcons", names[icon]);
}

void CorvaneROMIcons::paint(QPainter& painter, const QRectF& rect, int icon, const QColor& ink)
{
    const double s = qMin(rect.width(), rect.height()) * 0.7;
    const QPointF c = rect.center();
    const QRectF box(c.x() - s / 2, c.y() - s / 2, s, s);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    auto triangle = [&](QPointF a, QPointF b, QPointF d) {
        QPainterPath path;
        path.moveTo(a);
        path.lineTo(b);
        path.lineTo(d);
        path.closeSubpath();
        painter.drawPath(path);
    };
    const double l = box.left(), r = box.right(), t = box.top(), b = box.bottom();
    const double mx = c.x(), my = c.y();
    switch (icon) {
    case 0:
        triangle({l + s * 0.15, t}, {r, my}, {l + s * 0.15, b});
        break;
    case 1:
        painter.drawRect(box.adjusted(s * 0.08, s * 0.08, -s * 0.08, -s * 0.08));
        break;
    case 2:
        painter.drawEllipse(box.adjusted(s * 0.05, s * 0.05, -s * 0.05, -s * 0.05));
        break;
    case 3:
        painter.drawRect(QRectF(l + s * 0.1, t, s * 0.28, s));
        painter.drawRect(QRectF(r - s * 0.38, t, s * 0.28, s));
        break;
    case 4:
        triangle({mx, t + s * 0.1}, {mx, b - s * 0.1}, {l, my});
        triangle({r, t + s * 0.1}, {r, b - s * 0.1}, {mx, my});
        break;
    case 5:
        triangle({l, t + s * 0.1}, {l, b - s * 0.1}, {mx, my});
        triangle({mx, t + s * 0.1}, {mx, b - s * 0.1}, {r, my});
        break;
    case 6:
        painter.drawRect(QRectF(l, t + s * 0.1, s * 0.14, s * 0.8));
        triangle({r, t + s * 0.1}, {r, b - s * 0.1}, {l + s * 0.14, my});
        break;
    case 7:
        painter.drawRect(QRectF(r - s * 0.14, t + s * 0.1, s * 0.14, s * 0.8));
        triangle({l, t + s * 0.1}, {l, b - s * 0.1}, {r - s * 0.14, my});
        break;
    case 8: {
        QPen pen(ink, s * 0.13, Qt::SolidLine, Qt::FlatCap);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.drawArc(box.adjusted(s * 0.1, s * 0.1, -s * 0.1, -s * 0.1), 30 * 16, 300 * 16);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        triangle({r - s * 0.02, t + s * 0.12}, {r - s * 0.02, my - s * 0.08},
                 {mx + s * 0.18, t + s * 0.2});
        break;
    }
    case 9:
        triangle({mx, t}, {r, b}, {l, b});
        break;
    case 10:
        triangle({l, t}, {r, t}, {mx, b});
        break;
    case 11:
        triangle({l, my}, {r, t}, {r, b});
        break;
    case 12:
        triangle({l, t}, {r, my}, {l, b});
        break;
    case 13:
        painter.drawRect(QRectF(l, my - s * 0.1, s, s * 0.2));
        painter.drawRect(QRectF(mx - s * 0.1, t, s * 0.2, s));
        break;
    case 14:
        painter.drawRect(QRectF(l, my - s * 0.1, s, s * 0.2));
        break;
    default: {
        QPainterPath flag;
        flag.moveTo(l + s * 0.2, b);
        flag.lineTo(l + s * 0.2, t);
        flag.lineTo(r, t + s * 0.22);
        flag.lineTo(l + s * 0.32, t + s * 0.44);
        flag.lineTo(l + s * 0.32, b);
        flag.closeSubpath();
        painter.drawPath(flag);
        break;
    }
    }
    painter.restore();
}

// TVKDisplayPreview

TVKDisplayPreview::TVKDisplayPreview(Look look, QWidget* parent) : QWidget(parent), m_look(look)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(tr("Display preview"));
}

QSize TVKDisplayPreview::sizeHint() const
{
    const int line = fontMetrics().height();
    return {200, m_look == Look::LcdButton ? line * 5 : line * 2 + 8};
}

void TVKDisplayPreview::showAction(TVKAction* action)
{
    m_icon = -1;
    m_text.clear();
    if (auto* icon = dynamic_cast<CorvaneLCDButtonDisplayIconAction*>(action))
        m_icon = icon->romIcon();
    else if (action)
        m_text = corvane::displaySampleText(action);
    setAccessibleDescription(m_icon >= 0 ? CorvaneROMIcons::name(m_icon) : m_text);
    update();
}

void TVKDisplayPreview::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF glass = QRectF(rect()).adjusted(1, 1, -1, -1);
    if (m_look == Look::LcdButton) {
        const double side = glass.height();
        glass = QRectF(glass.left(), glass.top(), side * 1.3, side);
    }
    // The glass of the surface's displays: dark with backlit amber characters, in every theme.
    const QColor bezel(0x1a, 0x1b, 0x1e);
    const QColor ink =
        m_look == Look::Timecode ? QColor(0xff, 0x5a, 0x36) : QColor(0xff, 0xc2, 0x57);
    painter.setPen(QPen(QColor(0x55, 0x58, 0x5e), 1));
    painter.setBrush(bezel);
    painter.drawRoundedRect(glass, 4, 4);
    const QRectF inner = glass.adjusted(8, 4, -8, -4);
    if (m_icon >= 0) {
        CorvaneROMIcons::paint(painter, inner, m_icon, ink);
        return;
    }
    QFont font(QStringLiteral("DejaVu Sans Mono"));
    font.setStyleHint(QFont::Monospace);
    font.setPointSizeF(this->font().pointSizeF() * (m_look == Look::Timecode ? 1.4 : 1.0));
    font.setBold(m_look == Look::Timecode);
    painter.setFont(font);
    painter.setPen(ink);
    if (m_text.isEmpty()) {
        painter.setPen(QColor(0x6a, 0x6c, 0x70));
        painter.drawText(inner, Qt::AlignCenter, tr("(blank)"));
        return;
    }
    const int flags =
        m_look == Look::LcdButton ? Qt::AlignCenter : Qt::AlignVCenter | Qt::AlignLeft;
    painter.drawText(inner, flags, m_text);
}

// TVKDisplayTextEditorView

TVKDisplayTextEditorView::TVKDisplayTextEditorView(TVKActionEditorHost& host, QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("TEXT"), parent)
{
    auto* form = new QFormLayout(this);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    m_text = new QLineEdit(this);
    m_text->setPlaceholderText(tr("Text to show"));
    form->addRow(tr("&Text:"), m_text);
    m_limit = hintLabel(QString(), this);
    form->addRow(QString(), m_limit);
    form->addRow(QString(), hintLabel(tr("Leave the text empty to show nothing."), this));
    connect(m_text, &QLineEdit::editingFinished, this, &TVKDisplayTextEditorView::apply);
}

void TVKDisplayTextEditorView::apply()
{
    TVKActionContainer& container = m_host.editedAction();
    const QString text = m_text->text();
    auto* held = container.actionType() == TVKLCDDisplayTextAction::kActionType
                     ? static_cast<TVKLCDDisplayTextAction*>(container.action())
                     : nullptr;
    if (held && held->storedText() == text)
        return;
    if (text.isEmpty() && !held)
        return;
    if (text.isEmpty())
        container.setAction(nullptr);
    else if (held)
        held->setText(text);
    else
        container.setAction(std::make_unique<TVKLCDDisplayTextAction>(m_host.shownControl(), text));
    if (m_host.isShownEditor(this))
        m_host.actionParameterChanged();
}

void TVKDisplayTextEditorView::updateForNewAction()
{
    const TVKControl* control = m_host.shownControl();
    int width =
        control ? corvane::surfaceConstants().widthOfDisplay(control->index(), control->groupID())
                : 0;
    if (width <= 0)
        width = kFallbackDisplayWidth;
    m_text->setMaxLength(width);
    m_limit->setText(tr("Up to %1 characters.").arg(width));
    const TVKActionContainer& container = m_host.editedAction();
    const QSignalBlocker block(m_text);
    m_text->setText(container.actionType() == TVKLCDDisplayTextAction::kActionType
                        ? static_cast<TVKLCDDisplayTextAction*>(container.action())->storedText()
                        : QString());
}

// TVKHiResTextEditorView

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
            if (m_redrawing || m_lines[line]->text() == m_logic.lines().value(line))
                return;
            m_logic.setLine(line, m_lines[line]->text());
            if (m_host.isShownEditor(this))
                m_host.actionParameterChanged();
        });
    }
    m_label = hintLabel(QString(), this);
    form->addRow(QString(), m_label);

    m_logic.setStateChangedHandler([this] { redraw(); });
    connect(m_lineCount, &QButtonGroup::idClicked, this, [this](int count) {
        m_logic.setLineCount(unsigned(count));
        if (m_host.isShownEditor(this))
            m_host.actionParameterChanged();
    });
    redraw();
}

void TVKHiResTextEditorView::updateForNewAction()
{
    m_logic.updateForNewAction();
}

void TVKHiResTextEditorView::redraw()
{
    const QScopedValueRollback<bool> guard(m_redrawing, true);
    selectCell(m_lineCount, int(m_logic.lineCount()));
    const int perLine =
        int(CorvaneHiResLCDButtonDisplayTextAction::charsPerLineForLineCount(m_logic.lineCount()));
    for (int line = 0; line < 4; ++line) {
        m_lines[line]->setEnabled(line < int(m_logic.lineCount()));
        m_lines[line]->setMaxLength(perLine > 0 ? perLine : 32767);
        m_lines[line]->setText(m_logic.lines().value(line));
    }
    m_label->setText(m_logic.label());
}

// TVKControlNamesEditorView

TVKControlNamesEditorView::TVKControlNamesEditorView(TVKActionEditorHost& host, qint32 actionType,
                                                     QWidget* parent)
    : TVKActionEditorView(host,
                          actionType == TVKLCDDisplayButtonNameAction::kActionType
                              ? corvane::fourCC("BNAM")
                              : corvane::fourCC("ENAM"),
                          parent),
      m_actionType(actionType)
{
    auto* form = new QFormLayout(this);
    QString title;
    switch (actionType) {
    case TVKLCDDisplayButtonNameAction::kActionType:
        title = tr("&Show the names of the buttons under this display");
        break;
    case TVKFrameletCorvaneNVLCDDisplayButtonNameAction::kActionType:
        title = tr("&Show the names of the LCD buttons beside this display");
        break;
    default:
        title = tr("&Show the names of the encoders under this display");
        break;
    }
    m_show = new QCheckBox(title, this);
    form->addRow(m_show);
    if (actionType == TVKFrameletCorvaneNVLCDDisplayButtonNameAction::kActionType) {
        m_mode = new QComboBox(this);
        m_mode->addItem(tr("Their names"), 0);
        m_mode->addItem(tr("Function and parameter numbers"), 1);
        form->addRow(tr("&Label with:"), m_mode);
        connect(m_mode, &QComboBox::activated, this, &TVKControlNamesEditorView::apply);
    }
    form->addRow(
        hintLabel(tr("A user name given to a control is shown in place of its own."), this));
    connect(m_show, &QCheckBox::clicked, this, &TVKControlNamesEditorView::apply);
}

void TVKControlNamesEditorView::apply()
{
    TVKActionContainer& container = m_host.editedAction();
    TVKControl* control = m_host.shownControl();
    if (!m_show->isChecked()) {
        container.setAction(nullptr);
    } else if (m_actionType == TVKLCDDisplayButtonNameAction::kActionType) {
        container.setAction(std::make_unique<TVKLCDDisplayButtonNameAction>(control));
    } else if (m_actionType == TVKFrameletCorvaneNVLCDDisplayButtonNameAction::kActionType) {
        auto action = std::make_unique<TVKFrameletCorvaneNVLCDDisplayButtonNameAction>(control);
        action->setLcdDisplayMode(unsigned(m_mode->currentData().toInt()));
        container.setAction(std::move(action));
    } else {
        container.setAction(std::make_unique<TVKLCDDisplayEncoderNameAction>(control));
    }
    if (m_mode)
        m_mode->setEnabled(m_show->isChecked());
    if (m_host.isShownEditor(this))
        m_host.actionParameterChanged();
}

void TVKControlNamesEditorView::updateForNewAction()
{
    const TVKActionContainer& container = m_host.editedAction();
    const bool held = container.actionType() == m_actionType;
    const QSignalBlocker block(m_show);
    m_show->setChecked(held);
    if (m_mode) {
        const QSignalBlocker blockMode(m_mode);
        const auto* names =
            held ? static_cast<TVKFrameletCorvaneNVLCDDisplayButtonNameAction*>(container.action())
                 : nullptr;
        m_mode->setCurrentIndex(m_mode->findData(names ? int(names->lcdDisplayMode()) : 0));
        m_mode->setEnabled(held);
    }
}

// TVKDisplayEmulationEditorView

TVKDisplayEmulationEditorView::TVKDisplayEmulationEditorView(TVKActionEditorHost& host,
                                                             qint32 actionType, QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("EMUL"), parent), m_actionType(actionType)
{
    auto* form = new QFormLayout(this);
    m_mode = new QLabel(this);
    m_mode->setWordWrap(true);
    form->addRow(m_mode);
    if (actionType == TVKTimecodeDisplayEmulationAction::kActionType) {
        m_timecode = new QCheckBox(tr("&Show the console's timecode"), this);
        form->addRow(m_timecode);
        connect(m_timecode, &QCheckBox::clicked, this, &TVKDisplayEmulationEditorView::apply);
    } else {
        m_source = new QComboBox(this);
        m_source->addItem(tr("Nothing"), -1);
        m_source->addItem(tr("Console display line 1"), 0);
        m_source->addItem(tr("Console display line 2"), 1);
        m_source->addItem(tr("Pot values"), 2);
        form->addRow(tr("&Show:"), m_source);
        connect(m_source, &QComboBox::activated, this, &TVKDisplayEmulationEditorView::apply);
    }
}

void TVKDisplayEmulationEditorView::apply()
{
    TVKActionContainer& container = m_host.editedAction();
    TVKControl* control = m_host.shownControl();
    if (m_timecode) {
        if (m_timecode->isChecked())
            container.setAction(std::make_unique<TVKTimecodeDisplayEmulationAction>(control));
        else
            container.setAction(nullptr);
    } else {
        const int source = m_source->currentData().toInt();
        if (source < 0)
            container.setAction(nullptr);
        else if (container.actionType() == TVKLCDDisplayEmulationAction::kActionType)
            static_cast<TVKLCDDisplayEmulationAction*>(container.action())
                ->setDisplaySource(source);
        else
            container.setAction(std::make_unique<TVKLCDDisplayEmulationAction>(control, source));
    }
    if (m_host.isShownEditor(this))
        m_host.actionParameterChanged();
}

void TVKDisplayEmulationEditorView::updateForNewAction()
{
    const int mode = corvane::EmulationActionEditor::selectedKeysetEmulationMode();
    m_mode->setText(mode == 0 ? tr("This keyset does not emulate a console.")
                              : tr("What the emulated console sends for this display:"));
    const TVKActionContainer& container = m_host.editedAction();
    const bool held = container.actionType() == m_actionType;
    if (m_timecode) {
        const QSignalBlocker block(m_timecode);
        m_timecode->setChecked(held);
        return;
    }
    const QSignalBlocker block(m_source);
    const int source =
        held ? static_cast<TVKLCDDisplayEmulationAction*>(container.action())->displaySource() : -1;
    m_source->setCurrentIndex(qMax(0, m_source->findData(source)));
}

// TVKIconEditorView

TVKIconEditorView::TVKIconEditorView(TVKActionEditorHost& host, QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("ICON"), parent)
{
    auto* column = new QVBoxLayout(this);
    column->addWidget(new QLabel(tr("Icon held by the button:"), this));
    auto* grid = new QGridLayout;
    grid->setSpacing(4);
    m_icons = new QButtonGroup(this);
    const int side = fontMetrics().height() * 2 + 6;
    for (int icon = 0; icon < CorvaneROMIcons::kCount; ++icon) {
        auto* button = new QToolButton(this);
        button->setCheckable(true);
        button->setFixedSize(side, side);
        button->setToolTip(CorvaneROMIcons::name(icon));
        button->setAccessibleName(CorvaneROMIcons::name(icon));
        const qreal dpr = devicePixelRatioF();
        QPixmap picture(QSize(side - 10, side - 10) * dpr);
        picture.setDevicePixelRatio(dpr);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        CorvaneROMIcons::paint(painter, QRectF(0, 0, side - 10, side - 10), icon,
                               palette().color(QPalette::ButtonText));
        painter.end();
        button->setIcon(QIcon(picture));
        button->setIconSize(QSize(side - 10, side - 10));
        grid->addWidget(button, icon / 8, icon % 8);
        m_icons->addButton(button, icon);
    }
    column->addLayout(grid);
    auto* clear = new QPushButton(tr("&No Icon"), this);
    column->addWidget(clear, 0, Qt::AlignLeft);
    column->addStretch();
    connect(m_icons, &QButtonGroup::idClicked, this, [this](int icon) {
        TVKActionContainer& container = m_host.editedAction();
        if (container.actionType() == CorvaneLCDButtonDisplayIconAction::kActionType)
            static_cast<CorvaneLCDButtonDisplayIconAction*>(container.action())->setRomIcon(icon);
        else
            container.setAction(
                std::make_unique<CorvaneLCDButtonDisplayIconAction>(m_host.shownControl(), icon));
        if (m_host.isShownEditor(this))
            m_host.actionParameterChanged();
    });
    connect(clear, &QPushButton::clicked, this, [this] {
        if (m_host.editedAction().actionType() != CorvaneLCDButtonDisplayIconAction::kActionType)
            return;
        m_host.editedAction().setAction(nullptr);
        selectCell(m_icons, -1);
        if (m_host.isShownEditor(this))
            m_host.actionParameterChanged();
    });
}

void TVKIconEditorView::updateForNewAction()
{
    const TVKActionContainer& container = m_host.editedAction();
    selectCell(m_icons,
               container.actionType() == CorvaneLCDButtonDisplayIconAction::kActionType
                   ? static_cast<CorvaneLCDButtonDisplayIconAction*>(container.action())->romIcon()
                   : -1);
}

// TVKStatusLineEditorView

TVKStatusLineEditorView::TVKStatusLineEditorView(TVKActionEditorHost& host, QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("MDEM"), parent)
{
    auto* column = new QVBoxLayout(this);
    column->addWidget(new QLabel(tr("Show on the button:"), this));
    m_modes = new QButtonGroup(this);
    const std::pair<int, QString> modes[] = {
        {0, tr("&Nothing")}, {1, tr("Native MIDI status")}, {2, tr("&Emulation mode")}};
    for (const auto& [mode, title] : modes) {
        auto* radio = new QRadioButton(title, this);
        column->addWidget(radio);
        m_modes->addButton(radio, mode);
    }
    column->addStretch();
    connect(m_modes, &QButtonGroup::idClicked, this, [this](int mode) {
        TVKActionContainer& container = m_host.editedAction();
        if (mode == 0)
            container.setAction(nullptr);
        else if (container.actionType() == CorvaneButtonDisplayMidiEmulationAction::kActionType)
            static_cast<CorvaneButtonDisplayMidiEmulationAction*>(container.action())
                ->setMode(unsigned(mode));
        else
            container.setAction(std::make_unique<CorvaneButtonDisplayMidiEmulationAction>(
                m_host.shownControl(), unsigned(mode)));
        if (m_host.isShownEditor(this))
            m_host.actionParameterChanged();
    });
}

void TVKStatusLineEditorView::updateForNewAction()
{
    const TVKActionContainer& container = m_host.editedAction();
    selectCell(
        m_modes,
        container.actionType() == CorvaneButtonDisplayMidiEmulationAction::kActionType
            ? int(static_cast<CorvaneButtonDisplayMidiEmulationAction*>(container.action())->mode())
            : 0);
}
