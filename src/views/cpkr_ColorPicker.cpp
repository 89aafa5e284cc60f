#include "views/cpkr_ColorPicker.h"

#include "surface/TVK_6BitColorUtilities.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QSlider>
#include <QVBoxLayout>

namespace {

QColor screenColor(const corvane::RgbColor& c)
{
    return QColor::fromRgbF(float(c.red), float(c.green), float(c.blue), float(c.alpha));
}

QColor paletteColor(int position)
{
    return screenColor(TVK_6BitColorUtilities::sharedUtilities().nsColorAtIndex(position));
}

} // namespace

QColor cpkr_colorFromSixBitColor(int sixBitColor)
{
    return screenColor(TVK_6BitColorUtilities::colorFromSixBitColor(quint8(sixBitColor & 0x3f)));
}

cpkr_ColorPickerView::cpkr_ColorPickerView(QWidget* parent) : QWidget(parent)
{
    setFixedSize(kColumns * kCell + 1, kRows * kCell + 1);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Colour palette"));
}

void cpkr_ColorPickerView::selectCell(int row, int column)
{
    m_row = qBound(0, row, kRows - 1);
    m_column = qBound(0, column, kColumns - 1);
    update();
}

void cpkr_ColorPickerView::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    for (int position = 0; position < kRows * kColumns; ++position) {
        const QRect cell((position % kColumns) * kCell, (position / kColumns) * kCell, kCell,
                         kCell);
        p.fillRect(cell, paletteColor(position));
    }
    p.setPen(QPen(palette().color(QPalette::Mid), 1));
    p.setBrush(Qt::NoBrush);
    p.drawRect(QRect(0, 0, kColumns * kCell, kRows * kCell));
    // The chosen cell: a light and a dark frame, readable on every colour.
    const QRect chosen(m_column * kCell, m_row * kCell, kCell, kCell);
    p.setPen(QPen(Qt::black, 1));
    p.drawRect(chosen.adjusted(0, 0, 0, 0));
    p.setPen(QPen(Qt::white, 1));
    p.drawRect(chosen.adjusted(1, 1, -1, -1));
    if (hasFocus()) {
        p.setPen(QPen(palette().color(QPalette::Highlight), 1, Qt::DotLine));
        p.drawRect(chosen.adjusted(-1, -1, 1, 1));
    }
}

void cpkr_ColorPickerView::mousePressEvent(QMouseEvent* event)
{
    const QPoint at = event->position().toPoint();
    if (at.x() < 0 || at.y() < 0 || at.x() >= kColumns * kCell || at.y() >= kRows * kCell)
        return;
    selectCell(at.y() / kCell, at.x() / kCell);
    Q_EMIT cellChosen();
}

void cpkr_ColorPickerView::keyPressEvent(QKeyEvent* event)
{
    int row = m_row;
    int column = m_column;
    switch (event->key()) {
    case Qt::Key_Left:
        --column;
        break;
    case Qt::Key_Right:
        ++column;
        break;
    case Qt::Key_Up:
        --row;
        break;
    case Qt::Key_Down:
        ++row;
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    if (row < 0 || row >= kRows || column < 0 || column >= kColumns)
        return;
    selectCell(row, column);
    Q_EMIT cellChosen();
}

cpkr_SwatchView::cpkr_SwatchView(QWidget* parent) : QWidget(parent)
{
    setFixedSize(32, 32);
}

void cpkr_SwatchView::setColor(const QColor& color)
{
    m_color = color;
    update();
}

void cpkr_SwatchView::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), m_color);
    p.setPen(palette().color(QPalette::Mid));
    p.drawRect(rect().adjusted(0, 0, -1, -1));
}

cpkr_ColorPickerController::cpkr_ColorPickerController(QWidget* parent)
    : QWidget(parent), m_colorUtilities(TVK_6BitColorUtilities::sharedUtilities())
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* column = new QVBoxLayout;
    m_view = new cpkr_ColorPickerView(this);
    m_slider = new QSlider(Qt::Horizontal, this);
    m_slider->setRange(0, TVK_6BitColorUtilities::kPaletteSize - 1);
    m_slider->setTracking(true);
    m_slider->setAccessibleName(tr("Colour"));
    column->addWidget(m_view);
    column->addWidget(m_slider);
    m_swatch = new cpkr_SwatchView(this);
    layout->addLayout(column);
    layout->addWidget(m_swatch, 0, Qt::AlignTop);
    connect(m_view, &cpkr_ColorPickerView::cellChosen, this,
            &cpkr_ColorPickerController::handleColorPickerMatrix);
    connect(m_slider, &QSlider::valueChanged, this, &cpkr_ColorPickerController::handleSlider);
    showIndex(0);
}

void cpkr_ColorPickerController::showIndex(int index)
{
    m_colorIndex = index;
    m_color = screenColor(m_colorUtilities.nsColorAtIndex(index));
    m_swatch->setColor(m_color);
}

void cpkr_ColorPickerController::handleColorPickerMatrix()
{
    showIndex(m_view->selectedRow() * cpkr_ColorPickerView::kColumns + m_view->selectedColumn());
    m_sixBitColor = m_colorUtilities.sixBitColorAtIndex(m_colorIndex);
    {
        const QSignalBlocker quiet(m_slider);
        m_slider->setValue(m_colorIndex);
    }
    if (m_delegate)
        m_delegate(*this, m_sixBitColor);
}

void cpkr_ColorPickerController::handleSlider()
{
    showIndex(m_slider->value());
    m_sixBitColor = m_colorUtilities.sixBitColorAtIndex(m_colorIndex);
    m_view->selectCell(m_colorIndex / cpkr_ColorPickerView::kColumns,
                       m_colorIndex % cpkr_ColorPickerView::kColumns);
    if (m_delegate)
        m_delegate(*this, m_sixBitColor);
}

void cpkr_ColorPickerController::updateColor(quint8 sixBitColor)
{
    m_sixBitColor = sixBitColor;
    const int index = m_colorUtilities.indexFor6BitColor(sixBitColor);
    m_view->selectCell(index / cpkr_ColorPickerView::kColumns,
                       index % cpkr_ColorPickerView::kColumns);
    {
        const QSignalBlocker quiet(m_slider);
        m_slider->setValue(index);
    }
    showIndex(index);
}
