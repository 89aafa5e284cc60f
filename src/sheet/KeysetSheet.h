#pragma once

#include <QHash>
#include <QPageLayout>
#include <QRectF>
#include <QString>
#include <array>
#include <vector>

class QPagedPaintDevice;
class TVKKeyset;

namespace corvane {

enum class SheetPaper
{
    A4,
    Letter
};

// One assigned control (or display) of a layer, as the sheet's table lists it.
struct SheetRow
{
    bool display = false;
    int group = 0; // model-data group, or display group
    int index = 0;
    QString groupName;
    QString controlName;
    QString userName;
    QString description; // the full description of its action
    QString label;       // what the pictures show for it
};

struct SheetLabel
{
    QRectF rect; // on the page, in device pixels
    QString text;
    int row = -1; // the row of the layer's table it stands for
};

// A unit's picture on a page, with the labels of the controls it draws.
struct SheetPicture
{
    int unit = 0; // index into sheetUnits()
    QString caption;
    QRectF rect; // on the page, in device pixels
    std::vector<SheetLabel> labels;
    std::vector<QRectF> marked; // the NV selector keys whose bank the picture shows
};

struct SheetPage
{
    int layer = 0; // 0..3
    std::vector<SheetPicture> pictures;
    int firstRow = 0; // rows of the layer's table on this page
    int rowCount = 0;
    std::vector<qreal> rowHeights; // of those rows
    qreal tableTop = 0;
    bool tableHeader = false;
};

// The printable sheet of one keyset: for every layer, the pictures of the units the keyset uses
// with the label of every assigned control on them, and a table of those controls with their
// full descriptions. Made from the keyset as it is now; it paints on any paged device (a PDF
// writer, a printer, a print preview) in that device's own page size and orientation.
class KeysetSheet
{
public:
    explicit KeysetSheet(const TVKKeyset& keyset);

    const QString& keysetName() const { return m_name; }
    // The assigned controls of a layer (0..3), groups in order, then the display groups.
    const std::vector<SheetRow>& rows(int layer) const { return m_rows.at(size_t(layer)); }
    // The units (indices into sheetUnits()) the keyset uses: those that draw an assigned control
    // of any layer, the RS always when it has one; an expander that draws only what another one
    // in use draws as well is left out (the TLW beside the TLW2).
    const std::vector<int>& units() const { return m_units; }

    // The pages as they fall on the device's page.
    std::vector<SheetPage> layout(const QPagedPaintDevice& device) const;
    // Paints every page on the device; the number of pages, 0 when it could not be painted on.
    int paint(QPagedPaintDevice& device) const;

    // A4 or Letter, landscape, with the margins the sheet is laid out for.
    static QPageLayout pageLayout(SheetPaper paper);
    // The paper of the user's locale: Letter where US measures are used, else A4.
    static SheetPaper localPaper();
    // Writes the sheet as a PDF file, replacing the file only when the whole of it is written.
    bool writePdf(const QString& path, SheetPaper paper, QString* error = nullptr) const;

private:
    QString m_name;
    std::array<std::vector<SheetRow>, 4> m_rows;
    std::vector<int> m_units;
    // Where each assigned control stands in its layer's table.
    std::array<QHash<qint64, int>, 4> m_rowOf;
};

} // namespace corvane
