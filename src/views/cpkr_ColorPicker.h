#pragma once

#include <QColor>
#include <QWidget>
#include <functional>

class QSlider;
class TVK_6BitColorUtilities;

// The screen colour of a six-bit colour as the surface's lit keys show it.
QColor cpkr_colorFromSixBitColor(int sixBitColor);

// The palette of the 64 surface colours, 16 across and 4 down, brightest reds on the top row.
// The grid over it is the picker's matrix: a click or the arrow keys choose a cell.
class cpkr_ColorPickerView : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kColumns = 16;
    static constexpr int kRows = 4;
    static constexpr int kCell = 14;

    explicit cpkr_ColorPickerView(QWidget* parent = nullptr);
    void selectCell(int row, int column);
    int selectedRow() const { return m_row; }
    int selectedColumn() const { return m_column; }

Q_SIGNALS:
    // The user chose a cell.
    void cellChosen();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    int m_row = 0;
    int m_column = 0;
};

// Fills itself with one colour.
class cpkr_SwatchView : public QWidget
{
    Q_OBJECT
public:
    explicit cpkr_SwatchView(QWidget* parent = nullptr);
    void setColor(const QColor& color);
    QColor color() const { return m_color; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color;
};

// The six-bit colour picker: palette grid, slider over the same 64 entries and a swatch. Every
// choice by the user goes to the delegate; a colour set from outside does not.
class cpkr_ColorPickerController : public QWidget
{
    Q_OBJECT
public:
    using Delegate = std::function<void(cpkr_ColorPickerController& picker, quint8 sixBitColor)>;

    explicit cpkr_ColorPickerController(QWidget* parent = nullptr);

    void setDelegate(Delegate delegate) { m_delegate = std::move(delegate); }
    void handleColorPickerMatrix();
    void handleSlider();
    void updateColor(quint8 sixBitColor);

    QColor color() const { return m_color; }
    int colorIndex() const { return m_colorIndex; }
    quint8 sixBitColor() const { return m_sixBitColor; }
    cpkr_ColorPickerView* colorPickerView() const { return m_view; }
    cpkr_SwatchView* swatchView() const { return m_swatch; }
    QSlider* slider() const { return m_slider; }

private:
    void showIndex(int index);

    const TVK_6BitColorUtilities& m_colorUtilities;
    Delegate m_delegate;
    QColor m_color;
    int m_colorIndex = 0;
    quint8 m_sixBitColor = 0;
    cpkr_ColorPickerView* m_view = nullptr;
    cpkr_SwatchView* m_swatch = nullptr;
    QSlider* m_slider = nullptr;
};
