#include "views/TVKDisplayView.h"

#include "actions/CorvaneLCDButtonDisplayIconAction.h"
#include "actions/TVKDisplayAction.h"
#include "app/TVKController.h"
#include "core/Notifications.h"
#include "model/TVKControl.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"
#include "views/ControlToolTips.h"
#include "views/CorvaneNVLayout.h"
#include "views/TVKPictureKeys.h"
#include "views/editors/CorvaneROMIcons.h"

#include <QFontDatabase>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>

namespace note = corvane::note;

TVKDisplayView::TVKDisplayView(int group, Kind kind, int characters, std::vector<Cell> cells,
                               QWidget* parent)
    : QWidget(parent), m_group(group), m_kind(kind), m_characters(characters),
      m_cells(std::move(cells))
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_TranslucentBackground);
    TVKPictureKeys::install(this);
    corvane::NotificationCenter& center = corvane::NotificationCenter::defaultCenter();
    center.observeEach<note::SelectionChange, note::DisplaySelectionChange,
                       note::RemoteSelectionChange, note::RemoteDisplaySelectionChange,
                       note::SelectedLayerChange, note::SelectedKeysetChange, note::UpdateKSum,
                       note::InspUpdate, note::DisplayUserNameChange>(m_observations, nullptr,
                                                                      [this] { update(); });
}

void TVKDisplayView::setBank(int bank)
{
    m_bank = bank;
    update();
}

bool TVKDisplayView::dataDisplay(const Cell& cell, int& group, int& index) const
{
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    if (!constants || !constants->onscreenDisplayGroup(m_group, cell.display, group, index))
        return false;
    return true;
}

bool TVKDisplayView::shownDisplay(const Cell& cell, int& group, int& index) const
{
    if (!dataDisplay(cell, group, index))
        return false;
    // The button displays of the NV follow the bank its window shows.
    if (group == corvane::nv::kButtonDisplayGroup)
        index += m_bank * corvane::nv::kButtonsPerBank;
    return true;
}

bool TVKDisplayView::modelDisplayAt(QPoint point, int& group, int& index) const
{
    for (const Cell& cell : m_cells) {
        if (cell.frame.contains(point))
            return shownDisplay(cell, group, index);
    }
    return false;
}

TVKControl* TVKDisplayView::displayForCell(const Cell& cell) const
{
    const TVKController* controller = TVKController::c();
    const TVKModelData* model = TVKModelData::defaultModelData();
    int group = 0;
    int index = 0;
    if (!controller || !model || !shownDisplay(cell, group, index))
        return nullptr;
    return model->displayForKeyset(int(controller->selectedKeyset()),
                                   int(controller->selectedLayer()), group, index);
}

bool TVKDisplayView::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<const QHelpEvent*>(event);
    const std::optional<corvane::PictureScope> scope = corvane::applicationScope();
    corvane::showControlToolTip(*this, *help,
                                scope ? corvane::displayAt(*this, help->pos(), *scope) : nullptr);
    return true;
}

QString TVKDisplayView::textForCell(const Cell& cell) const
{
    TVKControl* display = displayForCell(cell);
    return display ? corvane::displaySampleText(display->action()) : QString();
}

QString TVKDisplayView::nameForCell(const Cell& cell) const
{
    const TVKControl* display = displayForCell(cell);
    if (!display)
        return QString();
    return display->userName().isEmpty() ? display->name() : display->userName();
}

bool TVKDisplayView::cellIsSelected(const Cell& cell) const
{
    const TVKController* controller = TVKController::c();
    if (!controller || !controller->displaySelected())
        return false;
    int group = 0;
    int index = 0;
    if (!dataDisplay(cell, group, index))
        return false;
    qint64 selectedDisplay = 0;
    qint64 selectedGroup = 0;
    controller->selectedDisplay(selectedDisplay, selectedGroup);
    return selectedGroup == group && selectedDisplay == index;
}

void TVKDisplayView::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    for (size_t i = 0; i < m_cells.size(); ++i) {
        const Cell& cell = m_cells[i];
        const QRectF r = QRectF(cell.frame).adjusted(0.5, 0.5, -0.5, -0.5);
        QString text = textForCell(cell);
        QColor ink;
        switch (m_kind) {
        case Kind::Timecode:
            ink = QColor(0xff, 0x5a, 0x2e);
            font.setBold(true);
            font.setPixelSize(int(r.height() * 0.72));
            break;
        case Kind::LcdButton:
            ink = QColor(0xdc, 0xf4, 0xff);
            font.setPixelSize(int(qMin(r.height() * 0.62, r.width() / 7.5)));
            break;
        case Kind::Lcd:
            ink = QColor(0x9c, 0xf2, 0xd4);
            font.setPixelSize(int(qMin(r.height() * 0.7, r.width() / qMax(1, m_characters) * 1.6)));
            break;
        }
        if (m_characters > 0 && text.size() > m_characters)
            text.truncate(m_characters);
        // A display with nothing to show names itself, faintly, so that it reads as a place
        // that can be chosen.
        const TVKControl* shown = displayForCell(cell);
        const auto* icon =
            shown ? dynamic_cast<const CorvaneLCDButtonDisplayIconAction*>(shown->action())
                  : nullptr;
        const bool placeholder = text.isEmpty() && !icon;
        if (placeholder) {
            // The factory names of the small button screens do not fit them: their number does.
            const TVKControl* display = displayForCell(cell);
            text = m_kind == Kind::LcdButton && display && display->userName().isEmpty()
                       ? QString::number(cell.display + 1)
                       : nameForCell(cell);
        }
        const QRectF textRect = r.adjusted(6, 0, -6, 0);
        const int align =
            m_kind == Kind::Lcd ? int(Qt::AlignLeft | Qt::AlignVCenter) : int(Qt::AlignCenter);
        if (icon) {
            CorvaneROMIcons::paint(p, r.adjusted(2, 2, -2, -2), icon->romIcon(), ink);
        } else if (placeholder) {
            QFont small = font;
            small.setBold(false);
            small.setPixelSize(qMax(8, int(qMin(r.height() * 0.5, 11.0))));
            p.setFont(small);
            ink.setAlpha(120);
            p.setPen(ink);
            p.drawText(textRect, align,
                       QFontMetrics(small).elidedText(text, Qt::ElideRight, int(textRect.width())));
        } else {
            p.setFont(font);
            // A dim glow behind the characters, as on a backlit display.
            QColor glow = ink;
            glow.setAlpha(60);
            p.setPen(glow);
            p.drawText(textRect.translated(0, 0.6), align, text);
            p.setPen(ink);
            p.drawText(textRect, align, text);
        }
        if (cellIsSelected(cell)) {
            p.setPen(QPen(QColor(0xff, 0xc0, 0x4a), 2));
            p.setBrush(Qt::NoBrush);
            p.drawRoundedRect(r.adjusted(1, 1, -1, -1), 3, 3);
        }
        if (hasFocus() && i == m_focusCell) {
            p.setPen(QPen(palette().color(QPalette::Highlight), 1.5, Qt::DashLine));
            p.setBrush(Qt::NoBrush);
            p.drawRoundedRect(r.adjusted(2.5, 2.5, -2.5, -2.5), 2, 2);
        }
    }
}

void TVKDisplayView::selectCell(size_t index)
{
    if (index >= m_cells.size())
        return;
    m_focusCell = index;
    if (TVKController* controller = TVKController::c())
        controller->handleTVKDisplay(m_group, m_cells[index].display);
    update();
}

void TVKDisplayView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    for (size_t i = 0; i < m_cells.size(); ++i) {
        if (m_cells[i].frame.contains(event->position().toPoint())) {
            selectCell(i);
            return;
        }
    }
}

void TVKDisplayView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
        m_focusCell = m_focusCell == 0 ? m_cells.size() - 1 : m_focusCell - 1;
        update();
        return;
    case Qt::Key_Right:
    case Qt::Key_Down:
        m_focusCell = (m_focusCell + 1) % qMax<size_t>(1, m_cells.size());
        update();
        return;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        selectCell(m_focusCell);
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void TVKDisplayView::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

void TVKDisplayView::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    update();
}
