#pragma once

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <vector>

namespace corvane {

// Which of the NV's selectors decides whether a banked key is the one shown: the LCD bank, the
// function key, or the function key and parameter together.
enum class SheetBank
{
    None,
    LCDBank,
    Function,
    FunctionAndParameter
};

// One control (or display) of the model as a unit's picture draws it.
struct SheetPlace
{
    bool display = false;
    int group = 0;  // model-data group, or model-data display group
    int index = 0;  // the control's (display's) index in that group
    QRectF frame;   // on the unit's picture, in the picture's own pixels
    QPointF anchor; // where a label of it is centred
    SheetBank bankKind = SheetBank::None;
    int bank = 0; // the value of the selector that shows it
};

// A unit of the surface as the sheet prints it: its panel in grey, light enough for black
// labels to stand out, and every control it draws.
struct SheetUnit
{
    QString name;  // the layout's name: "CorvaneRS", "Expander" …
    QString title; // what the user calls it: "Corvane RS", "Corvane TL" …
    QSizeF size;
    QImage picture;
    std::vector<SheetPlace> places;

    const SheetPlace* place(bool display, int group, int index) const;
};

// Every unit in the order the sheet prints them: the RS first, then the expanders. Read once
// from the pictures and placement table drawn from the units' layouts.
const std::vector<SheetUnit>& sheetUnits();

} // namespace corvane
