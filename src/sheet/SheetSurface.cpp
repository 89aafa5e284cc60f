#include "sheet/SheetSurface.h"

#include "core/PlistCodec.h"
#include "core/PlistValue.h"
#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"

#include <QCoreApplication>
#include <QFile>

namespace corvane {

namespace {

// The NV's banked keys: how many controls one bank of them holds, and on-screen groups.
constexpr int kNVLCDButtons = 40;
constexpr int kNVParameters = 44;
constexpr int kNVActions = 45;
constexpr int kNVButtonsPerBank = 24;
constexpr int kNVBanks = 10;
constexpr int kNVFunctionKeys = 8;
constexpr int kNVParametersPerFunction = 5;
constexpr int kNVActionsPerParameter = 4;
constexpr int kNVFirstButtonDisplays = 7;
constexpr int kNVLastButtonDisplays = 10;

QRectF rectFrom(const PlistValue& value)
{
    if (!value.isArray() || value.size() < 4)
        return QRectF();
    return QRectF(qreal(value.at(0).toInteger()), qreal(value.at(1).toInteger()),
                  qreal(value.at(2).toInteger()), qreal(value.at(3).toInteger()));
}

QPointF pointFrom(const PlistValue& value, QPointF fallback)
{
    if (!value.isArray() || value.size() < 2)
        return fallback;
    return QPointF(qreal(value.at(0).toInteger()), qreal(value.at(1).toInteger()));
}

PlistValue readResource(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return PlistValue();
    PlistReadResult read = PlistCodec::read(file.readAll());
    return read.ok ? read.value : PlistValue();
}

// Grey, and lightened so that the panel reads as a drawing under black text and uses little
// toner: the darkest part of the panel prints as a middle grey.
QImage printableGrey(const QImage& panel)
{
    QImage grey = panel.convertToFormat(QImage::Format_Grayscale8);
    uchar lookup[256];
    for (int v = 0; v < 256; ++v)
        lookup[v] = uchar(255 - (255 - v) * 45 / 100);
    for (int y = 0; y < grey.height(); ++y) {
        uchar* line = grey.scanLine(y);
        for (int x = 0; x < grey.width(); ++x)
            line[x] = lookup[line[x]];
    }
    return grey;
}

// The banked keys of the NV: every bank of them is a place of its own, at the same spot.
void addButtonPlaces(SheetUnit& unit, const PlistValue& entry)
{
    const TVK_Constant_Server& constants = surfaceConstants();
    int tag = int(entry.value(u"Tag").toInteger(-1));
    if (entry.value(u"Class").toString() == u"ring")
        tag = constants.onscreenTrackballGroupIDForTrackball(
            int(entry.value(u"TrackballNumber").toInteger()));
    if (tag < 0)
        return;
    const QRectF button = rectFrom(entry.value(u"Frame"));
    SheetBank kind = SheetBank::None;
    int banks = 1;
    int bankSize = 0;
    if (tag == kNVLCDButtons) {
        kind = SheetBank::LCDBank;
        banks = kNVBanks;
        bankSize = kNVButtonsPerBank;
    } else if (tag == kNVParameters) {
        kind = SheetBank::Function;
        banks = kNVFunctionKeys;
        bankSize = kNVParametersPerFunction;
    } else if (tag == kNVActions) {
        kind = SheetBank::FunctionAndParameter;
        banks = kNVFunctionKeys * kNVParametersPerFunction;
        bankSize = kNVActionsPerParameter;
    }
    const PlistValue& controls = entry.value(u"Controls");
    for (qsizetype i = 0; i < controls.size(); ++i) {
        const PlistValue& control = controls.at(i);
        const int onscreen = int(control.value(u"Control").toInteger());
        int group = -1;
        int index = -1;
        if (!constants.onscreenGroup(tag, onscreen, group, index) || group < 0)
            continue;
        const QRectF frame = rectFrom(control.value(u"Frame")).translated(button.topLeft());
        const QPointF anchor =
            pointFrom(control.value(u"Point"), frame.center() - button.topLeft()) +
            button.topLeft();
        for (int bank = 0; bank < banks; ++bank) {
            unit.places.push_back(
                {false, group, index + bank * bankSize, frame, anchor, kind, bank});
        }
    }
}

void addDisplayPlaces(SheetUnit& unit, const PlistValue& entry)
{
    const TVK_Constant_Server& constants = surfaceConstants();
    const int onscreenGroup = int(entry.value(u"Group").toInteger(-1));
    const bool banked =
        onscreenGroup >= kNVFirstButtonDisplays && onscreenGroup <= kNVLastButtonDisplays;
    const PlistValue& cells = entry.value(u"Cells");
    for (qsizetype i = 0; i < cells.size(); ++i) {
        const PlistValue& cell = cells.at(i);
        int group = -1;
        int index = -1;
        if (!constants.onscreenDisplayGroup(onscreenGroup, int(cell.value(u"Display").toInteger()),
                                            group, index) ||
            group < 0)
            continue;
        const QRectF frame = rectFrom(cell.value(u"Frame"));
        for (int bank = 0; bank < (banked ? kNVBanks : 1); ++bank) {
            unit.places.push_back({true, group, index + bank * kNVButtonsPerBank, frame,
                                   frame.center(), banked ? SheetBank::LCDBank : SheetBank::None,
                                   bank});
        }
    }
}

std::vector<SheetUnit> readUnits()
{
    const PlistValue surfaces = readResource(QStringLiteral(":/sheet/Surfaces.plist"));
    const struct
    {
        const char* name;
        const char* title;
    } order[] = {{"CorvaneRS", QT_TRANSLATE_NOOP("KeysetSheet", "Corvane RS")},
                 {"Expander", QT_TRANSLATE_NOOP("KeysetSheet", "Corvane TL")},
                 {"CorvaneTLW", QT_TRANSLATE_NOOP("KeysetSheet", "Corvane TLW")},
                 {"CorvaneTLW2", QT_TRANSLATE_NOOP("KeysetSheet", "Corvane TLW2")},
                 {"CorvaneNV", QT_TRANSLATE_NOOP("KeysetSheet", "Corvane NV")},
                 {"CorvaneDZ", QT_TRANSLATE_NOOP("KeysetSheet", "Corvane DZ")}};
    std::vector<SheetUnit> units;
    for (const auto& [name, title] : order) {
        const PlistValue& table = surfaces.value(QString::fromLatin1(name));
        if (!table.isDict())
            continue;
        SheetUnit unit;
        unit.name = QString::fromLatin1(name);
        unit.title = QCoreApplication::translate("KeysetSheet", title);
        const PlistValue& size = table.value(u"Size");
        unit.size = QSizeF(qreal(size.at(0).toInteger()), qreal(size.at(1).toInteger()));
        unit.picture = printableGrey(
            QImage(QStringLiteral(":/sheet/%1.png").arg(table.value(u"Picture").toString())));
        const PlistValue& buttons = table.value(u"Buttons");
        for (qsizetype i = 0; i < buttons.size(); ++i)
            addButtonPlaces(unit, buttons.at(i));
        const PlistValue& displays = table.value(u"Displays");
        for (qsizetype i = 0; i < displays.size(); ++i)
            addDisplayPlaces(unit, displays.at(i));
        units.push_back(std::move(unit));
    }
    return units;
}

} // namespace

const SheetPlace* SheetUnit::place(bool display, int group, int index) const
{
    for (const SheetPlace& candidate : places) {
        if (candidate.display == display && candidate.group == group && candidate.index == index)
            return &candidate;
    }
    return nullptr;
}

const std::vector<SheetUnit>& sheetUnits()
{
    static const std::vector<SheetUnit> units = readUnits();
    return units;
}

} // namespace corvane
