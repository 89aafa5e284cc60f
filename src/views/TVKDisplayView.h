#pragma once

#include "core/NotificationCenter.h"

#include <QRect>
#include <QString>
#include <QWidget>
#include <vector>

class TVKControl;

// The displays of one on-screen display group, drawn as the surface would show them: each cell
// shows its display action's sample text in the selected layer. A click (or Space on the
// focused cell) selects that display for editing.
class TVKDisplayView : public QWidget
{
    Q_OBJECT
public:
    struct Cell
    {
        int display; // the cell's tag: the display's index
        QRect frame; // in the view
    };
    enum class Kind
    {
        Lcd,       // a line of a character display
        LcdButton, // the small screen over an LCD button
        Timecode
    };

    TVKDisplayView(int group, Kind kind, int characters, std::vector<Cell> cells,
                   QWidget* parent = nullptr);

    int tag() const { return m_group; }
    const std::vector<Cell>& cells() const { return m_cells; }
    // The text a cell shows now.
    QString textForCell(const Cell& cell) const;
    // The display's own name (the user's, else the factory one).
    QString nameForCell(const Cell& cell) const;
    // Whether the cell is the display being edited.
    bool cellIsSelected(const Cell& cell) const;
    // The NV's LCD-button displays show one bank of 24 at a time.
    void setBank(int bank);
    // The model-data display group and index of the cell at a point (of the bank shown); false
    // off every cell.
    bool modelDisplayAt(QPoint point, int& group, int& index) const;

protected:
    // Tooltips name the display under the pointer and what it shows.
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void selectCell(size_t index);
    // The display control a cell shows in the selected keyset and layer; none without a model.
    TVKControl* displayForCell(const Cell& cell) const;
    // Model-data display group and index of a cell.
    bool dataDisplay(const Cell& cell, int& group, int& index) const;
    // The same, of the display the cell shows now: the NV's in the bank shown.
    bool shownDisplay(const Cell& cell, int& group, int& index) const;

    int m_group;
    Kind m_kind;
    int m_characters;
    int m_bank = 0;
    std::vector<Cell> m_cells;
    size_t m_focusCell = 0;
    std::vector<corvane::NotificationCenter::Observation> m_observations;
};
