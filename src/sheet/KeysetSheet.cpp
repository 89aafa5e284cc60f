#include "sheet/KeysetSheet.h"

#include "actions/ActionDescription.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "sheet/SheetSurface.h"
#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QHash>
#include <QLocale>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <set>

namespace corvane {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("KeysetSheet", text);
}

qint64 placeKey(bool display, int group, int index)
{
    return (qint64(display) << 40) | (qint64(group) << 20) | qint64(index);
}

QString displayGroupName(int group)
{
    switch (group) {
    case 0:
        return tr("LCD");
    case 1:
        return tr("Timecode");
    case 2:
        return tr("TLW Button Displays");
    case 3:
        return tr("CorvaneNV Display Lines");
    case 4:
        return tr("CorvaneNV LCD Button Displays");
    default:
        return tr("Displays %1").arg(group);
    }
}

// The sizes the sheet is drawn in, in the device's pixels.
struct Metrics
{
    explicit Metrics(const QPagedPaintDevice& device)
        : dpi(qreal(device.logicalDpiY())),
          page(device.pageLayout().paintRectPixels(device.logicalDpiY()))
    {
        title.setPointSizeF(13);
        title.setBold(true);
        caption.setPointSizeF(8);
        caption.setBold(true);
        label.setPointSizeF(6);
        table.setPointSizeF(7.5);
        head = table;
        head.setBold(true);
        footer.setPointSizeF(7);
    }
    qreal pt(qreal points) const { return points * dpi / 72.0; }

    qreal dpi;
    QRect page;
    QFont title;
    QFont caption;
    QFont label;
    QFont table;
    QFont head;
    QFont footer;
};

// Which banked keys of the NV one of its pictures shows.
struct NVView
{
    int bank = -1;      // LCD bank, -1 for none
    int function = -1;  // function key, -1 for none
    int parameter = -1; // parameter of that function key, -1 for none

    bool shows(const SheetPlace& place) const
    {
        switch (place.bankKind) {
        case SheetBank::None:
            return true;
        case SheetBank::LCDBank:
            return place.bank == bank;
        case SheetBank::Function:
            return function >= 0 && place.bank == function;
        case SheetBank::FunctionAndParameter:
            return function >= 0 && parameter >= 0 && place.bank == function * 5 + parameter;
        }
        return false;
    }
};

constexpr int kNVLCDButtonGroup = 24;
constexpr int kNVBankButtonGroup = 25;
constexpr int kNVFunctionButtonGroup = 26;
constexpr int kNVParameterGroup = 27;
constexpr int kNVActionGroup = 28;
constexpr int kNVButtonDisplayGroup = 4;

// The pictures of the NV a layer needs so that every assigned banked key is on one: each shows
// one LCD bank and one function key with one of its parameters.
std::vector<NVView> nvViews(const std::vector<SheetRow>& rows)
{
    std::set<int> banks;
    std::set<int> functions;
    std::set<std::pair<int, int>> parameters;
    for (const SheetRow& row : rows) {
        if (row.display ? row.group == kNVButtonDisplayGroup : row.group == kNVLCDButtonGroup)
            banks.insert(row.index / 24);
        else if (!row.display && row.group == kNVParameterGroup)
            functions.insert(row.index / 5);
        else if (!row.display && row.group == kNVActionGroup)
            parameters.insert({row.index / 20, row.index / 4 % 5});
    }
    std::vector<std::pair<int, int>> functionViews;
    for (const auto& [function, parameter] : parameters)
        functions.insert(function);
    for (int function : functions) {
        bool any = false;
        for (const auto& [f, parameter] : parameters) {
            if (f == function) {
                functionViews.push_back({f, parameter});
                any = true;
            }
        }
        if (!any)
            functionViews.push_back({function, -1});
    }
    const size_t count = std::max<size_t>({banks.size(), functionViews.size(), 1});
    std::vector<NVView> views(count);
    auto bank = banks.begin();
    for (size_t i = 0; i < count; ++i) {
        if (bank != banks.end())
            views[i].bank = *bank++;
        if (i < functionViews.size()) {
            views[i].function = functionViews[i].first;
            views[i].parameter = functionViews[i].second;
        }
    }
    return views;
}

QString nvCaption(const SheetUnit& unit, const NVView& view)
{
    QStringList parts;
    if (view.bank >= 0)
        parts << tr("LCD bank %1").arg(std::max(view.bank, 0) + 1);
    if (view.function >= 0)
        parts << tr("F%1").arg(view.function + 1);
    if (view.parameter >= 0)
        parts << tr("Parameter %1").arg(view.parameter + 1);
    if (parts.isEmpty())
        return unit.title;
    return tr("%1 — %2").arg(unit.title, parts.join(QStringLiteral(" · ")));
}

// Labels never overlap: where two would, each gives up the half of the space between their
// controls that lies towards the other, across the direction in which they stand further apart.
// Rectangles only shrink, so settling one pair never unsettles another.
void separate(std::vector<SheetLabel>& labels, const std::vector<QPointF>& anchors, qreal gap)
{
    for (size_t i = 0; i < labels.size(); ++i) {
        for (size_t j = i + 1; j < labels.size(); ++j) {
            QRectF& a = labels[i].rect;
            QRectF& b = labels[j].rect;
            if (!a.intersects(b))
                continue;
            const QPointF pa = anchors[i];
            const QPointF pb = anchors[j];
            const qreal dx = pb.x() - pa.x();
            const qreal dy = pb.y() - pa.y();
            if (std::abs(dx) >= std::abs(dy) && dx != 0) {
                const qreal middle = (pa.x() + pb.x()) / 2;
                QRectF& left = dx > 0 ? a : b;
                QRectF& right = dx > 0 ? b : a;
                left.setRight(std::min(left.right(), middle - gap / 2));
                right.setLeft(std::max(right.left(), middle + gap / 2));
            } else if (dy != 0) {
                const qreal middle = (pa.y() + pb.y()) / 2;
                QRectF& upper = dy > 0 ? a : b;
                QRectF& lower = dy > 0 ? b : a;
                upper.setBottom(std::min(upper.bottom(), middle - gap / 2));
                lower.setTop(std::max(lower.top(), middle + gap / 2));
            } else {
                // The same spot (never so in the layouts): the later one goes below.
                b.moveTop(a.bottom() + gap);
            }
        }
    }
}

SheetPicture placePicture(const Metrics& m, const QFontMetricsF& labelMetrics, int unitIndex,
                          const SheetUnit& unit, QRectF rect, const NVView& view,
                          const std::vector<SheetRow>& rows, const QHash<qint64, int>& rowOf)
{
    SheetPicture picture;
    picture.unit = unitIndex;
    picture.rect = rect;
    const qreal scale = rect.width() / unit.size.width();
    const auto onPage = [&](const QRectF& frame) {
        return QRectF(rect.topLeft() + frame.topLeft() * scale, frame.size() * scale);
    };
    std::vector<QPointF> anchors;
    const qreal height = labelMetrics.height() + m.pt(1.5);
    const qreal widest = m.pt(64);
    for (const SheetPlace& place : unit.places) {
        if (!view.shows(place))
            continue;
        const auto found = rowOf.constFind(placeKey(place.display, place.group, place.index));
        if (found == rowOf.constEnd())
            continue;
        const SheetRow& row = rows[size_t(*found)];
        const QRectF frame = onPage(place.frame);
        const QPointF anchor = rect.topLeft() + place.anchor * scale;
        QRectF box;
        if (place.display) {
            box = frame.adjusted(m.pt(1), 0, -m.pt(1), 0);
            box.setHeight(std::min(box.height(), height));
            box.moveCenter(frame.center());
        } else {
            const qreal width = std::min(labelMetrics.horizontalAdvance(row.label) + m.pt(4),
                                         std::max(frame.width(), widest));
            box = QRectF(0, 0, width, height);
            box.moveCenter(anchor);
        }
        // Inside the picture.
        if (box.left() < rect.left())
            box.moveLeft(rect.left());
        if (box.right() > rect.right())
            box.moveRight(rect.right());
        picture.labels.push_back({box, row.label, *found});
        anchors.push_back(anchor);
    }
    separate(picture.labels, anchors, m.pt(0.75));

    // The NV's selector keys whose bank this picture shows.
    if (unit.name == u"CorvaneNV") {
        for (const SheetPlace& place : unit.places) {
            if (place.display)
                continue;
            const bool marked =
                (place.group == kNVBankButtonGroup && place.index == view.bank) ||
                (place.group == kNVFunctionButtonGroup && place.index == view.function) ||
                (place.group == kNVParameterGroup && view.parameter >= 0 &&
                 place.index == view.function * 5 + view.parameter && view.shows(place));
            if (marked)
                picture.marked.push_back(onPage(place.frame));
        }
    }
    return picture;
}

struct Columns
{
    qreal x[5];
    qreal pad;
};

Columns columnsFor(const Metrics& m)
{
    const qreal w = m.page.width();
    return {{0, w * 0.17, w * 0.34, w * 0.52, w}, m.pt(2)};
}

qreal textHeight(const QFontMetricsF& metrics, qreal width, const QString& text)
{
    if (text.isEmpty() || (metrics.horizontalAdvance(text) <= width && !text.contains(u'\n')))
        return metrics.height();
    return metrics
        .boundingRect(QRectF(0, 0, width, 1e6), Qt::TextWordWrap | Qt::TextWrapAnywhere, text)
        .height();
}

qreal rowHeight(const Metrics& m, const QFontMetricsF& metrics, const Columns& c,
                const SheetRow& row)
{
    const QString cells[4] = {row.groupName, row.controlName, row.userName, row.description};
    qreal height = 0;
    for (int i = 0; i < 4; ++i)
        height = std::max(height, textHeight(metrics, c.x[i + 1] - c.x[i] - 2 * c.pad, cells[i]));
    return height + m.pt(2.5);
}

} // namespace

KeysetSheet::KeysetSheet(const TVKKeyset& keyset) : m_name(keyset.name())
{
    const TVK_Constant_Server& constants = surfaceConstants();
    std::array<QHash<qint64, int>, 4> rowOf;
    for (size_t l = 0; l < m_rows.size(); ++l) {
        const TVKLayer* layer = keyset.layerAtIndex(int(l));
        if (!layer)
            continue;
        for (const bool display : {false, true}) {
            const auto& groups = display ? layer->displayGroups() : layer->groups();
            for (size_t g = 0; g < groups.size(); ++g) {
                const QString groupName =
                    display ? displayGroupName(int(g))
                            : constants.dataModelGroupNameForGroup(int(g)).trimmed();
                // Only the controls the surface has: the TLW2's encoder groups are built larger
                // than the unit.
                const size_t count = std::min(
                    groups[g].size(),
                    size_t(std::max(0, display ? constants.numberOfDisplaysInGroup(int(g))
                                               : constants.numberOfControlsInGroup(int(g)))));
                for (size_t i = 0; i < count; ++i) {
                    const TVKControl* control = groups[g][i].get();
                    if (!control)
                        continue;
                    const QString label = assignmentLabel(*control);
                    if (label.isEmpty())
                        continue;
                    SheetRow row;
                    row.display = display;
                    row.group = int(g);
                    row.index = int(i);
                    row.groupName = groupName;
                    row.controlName = control->name();
                    row.userName = control->userName().trimmed();
                    row.description = isAssigned(control->action())
                                          ? describeAction(*control->action(), Detail::Full)
                                      : display ? tr("No Function Assigned")
                                                : tr("No Action Assigned");
                    row.label = label;
                    rowOf[l].insert(placeKey(display, int(g), int(i)), int(m_rows[l].size()));
                    m_rows[l].push_back(std::move(row));
                }
            }
        }
    }

    // The units in use.
    const std::vector<SheetUnit>& units = sheetUnits();
    std::vector<std::set<qint64>> drawn(units.size());
    for (size_t u = 0; u < units.size(); ++u) {
        for (const SheetPlace& place : units[u].places) {
            const qint64 key = placeKey(place.display, place.group, place.index);
            for (size_t l = 0; l < m_rows.size(); ++l) {
                if (rowOf[l].contains(key))
                    drawn[u].insert(key);
            }
        }
    }
    std::set<qint64> covered;
    for (size_t u = 0; u < units.size(); ++u) {
        if (drawn[u].empty())
            continue;
        bool outdone = false;
        for (size_t v = 0; v < units.size() && u != 0; ++v) {
            outdone = outdone || (v != u && drawn[v].size() > drawn[u].size() &&
                                  std::includes(drawn[v].begin(), drawn[v].end(), drawn[u].begin(),
                                                drawn[u].end()));
        }
        const bool adds = std::any_of(drawn[u].begin(), drawn[u].end(),
                                      [&](qint64 key) { return !covered.count(key); });
        if (outdone || !adds)
            continue;
        m_units.push_back(int(u));
        covered.insert(drawn[u].begin(), drawn[u].end());
    }
    m_rowOf = std::move(rowOf);
}

QPageLayout KeysetSheet::pageLayout(SheetPaper paper)
{
    return QPageLayout(QPageSize(paper == SheetPaper::Letter ? QPageSize::Letter : QPageSize::A4),
                       QPageLayout::Landscape, QMarginsF(12, 12, 12, 12), QPageLayout::Millimeter);
}

SheetPaper KeysetSheet::localPaper()
{
    return QLocale::system().measurementSystem() == QLocale::ImperialUSSystem ? SheetPaper::Letter
                                                                              : SheetPaper::A4;
}

std::vector<SheetPage> KeysetSheet::layout(const QPagedPaintDevice& device) const
{
    const Metrics m(device);
    const QFontMetricsF titleMetrics(m.title, &device);
    const QFontMetricsF captionMetrics(m.caption, &device);
    const QFontMetricsF labelMetrics(m.label, &device);
    const QFontMetricsF tableMetrics(m.table, &device);
    const QFontMetricsF headMetrics(m.head, &device);
    const Columns columns = columnsFor(m);
    const qreal width = m.page.width();
    const qreal bottom = m.page.height() - QFontMetricsF(m.footer, &device).height() - m.pt(4);
    const qreal top = titleMetrics.height() + m.pt(8);
    const qreal captionHeight = captionMetrics.height() + m.pt(2);
    const qreal headHeight = headMetrics.height() + m.pt(3);
    const std::vector<SheetUnit>& units = sheetUnits();

    std::vector<SheetPage> pages;
    const auto startPage = [&pages](int layer) {
        pages.emplace_back();
        pages.back().layer = layer;
    };
    for (int layer = 0; layer < 4; ++layer) {
        const std::vector<SheetRow>& rows = m_rows[size_t(layer)];
        startPage(layer);
        // The units at one scale, as they stand beside each other, side by side where they
        // fit; the NV, when a layer needs it more than once, four to a page.
        qreal scale = 0;
        for (int u : m_units) {
            const QSizeF size = units[size_t(u)].size;
            const qreal fit =
                std::min(width / size.width(), (bottom - top - captionHeight) / size.height());
            scale = scale > 0 ? std::min(scale, fit) : fit;
        }
        const qreal gap = m.pt(8);
        qreal y = top;
        qreal x = 0;
        qreal bandHeight = 0;
        for (int u : m_units) {
            const SheetUnit& unit = units[size_t(u)];
            const bool nv = unit.name == u"CorvaneNV";
            const std::vector<NVView> views = nv ? nvViews(rows) : std::vector<NVView>(1);
            const qreal unitScale =
                views.size() > 1
                    ? std::min({scale, (width - gap) / 2 / unit.size.width(),
                                (bottom - top - 2 * captionHeight - gap) / 2 / unit.size.height()})
                    : scale;
            const QSizeF size = unit.size * unitScale;
            for (const NVView& view : views) {
                if (x > 0 && x + size.width() > width + 0.5) {
                    y += bandHeight + gap;
                    x = 0;
                    bandHeight = 0;
                }
                if (y + captionHeight + size.height() > bottom && y > top) {
                    startPage(layer);
                    y = top;
                    x = 0;
                    bandHeight = 0;
                }
                SheetPicture picture = placePicture(m, labelMetrics, u, unit,
                                                    QRectF(QPointF(x, y + captionHeight), size),
                                                    view, rows, m_rowOf[size_t(layer)]);
                picture.caption = nv ? nvCaption(unit, view) : unit.title;
                pages.back().pictures.push_back(std::move(picture));
                x += size.width() + gap;
                bandHeight = std::max(bandHeight, captionHeight + size.height());
            }
        }
        if (bandHeight > 0)
            y += bandHeight + gap;
        // The table, continued over as many pages as it needs.
        int next = 0;
        const auto heightOf = [&](int r) {
            return rowHeight(m, tableMetrics, columns, rows[size_t(r)]);
        };
        if (!rows.empty() && y + headHeight + heightOf(0) > bottom && y > top) {
            startPage(layer);
            y = top;
        }
        while (next < int(rows.size())) {
            SheetPage& page = pages.back();
            page.tableHeader = true;
            page.tableTop = y;
            page.firstRow = next;
            y += headHeight;
            while (next < int(rows.size())) {
                const qreal h = heightOf(next);
                if (y + h > bottom && page.rowCount > 0)
                    break;
                page.rowHeights.push_back(h);
                y += h;
                ++next;
                ++page.rowCount;
            }
            if (next < int(rows.size())) {
                startPage(layer);
                y = top;
            }
        }
        if (rows.empty())
            pages.back().tableTop = y;
    }
    return pages;
}

int KeysetSheet::paint(QPagedPaintDevice& device) const
{
    const std::vector<SheetPage> pages = layout(device);
    QPainter painter;
    if (!painter.begin(&device))
        return 0;
    const Metrics m(device);
    const QFontMetricsF titleMetrics(m.title, &device);
    const QFontMetricsF labelMetrics(m.label, &device);
    const QFontMetricsF tableMetrics(m.table, &device);
    const QFontMetricsF headMetrics(m.head, &device);
    const QFontMetricsF footerMetrics(m.footer, &device);
    const Columns columns = columnsFor(m);
    const qreal width = m.page.width();
    const QPen hairline(Qt::black, m.pt(0.3));
    const QPen rule(Qt::black, m.pt(0.8));
    const std::vector<SheetUnit>& units = sheetUnits();
    const int flags = Qt::TextWordWrap | Qt::TextWrapAnywhere;

    for (size_t p = 0; p < pages.size(); ++p) {
        const SheetPage& page = pages[p];
        const std::vector<SheetRow>& rows = m_rows[size_t(page.layer)];
        if (p > 0)
            device.newPage();
        painter.setPen(Qt::black);
        painter.setFont(m.title);
        painter.drawText(QRectF(0, 0, width, titleMetrics.height()), Qt::AlignLeft | Qt::AlignTop,
                         tr("%1 — Layer %2").arg(m_name).arg(page.layer + 1));
        painter.setPen(rule);
        painter.drawLine(QPointF(0, titleMetrics.height() + m.pt(3)),
                         QPointF(width, titleMetrics.height() + m.pt(3)));
        painter.setFont(m.footer);
        painter.setPen(Qt::black);
        painter.drawText(
            QRectF(0, m.page.height() - footerMetrics.height(), width, footerMetrics.height()),
            Qt::AlignRight | Qt::AlignBottom, tr("Page %1 of %2").arg(p + 1).arg(pages.size()));

        for (const SheetPicture& picture : page.pictures) {
            const SheetUnit& unit = units[size_t(picture.unit)];
            painter.setFont(m.caption);
            painter.setPen(Qt::black);
            const qreal captionHeight = QFontMetricsF(m.caption, &device).height();
            painter.drawText(QRectF(picture.rect.left(),
                                    picture.rect.top() - captionHeight - m.pt(2),
                                    picture.rect.width(), captionHeight),
                             Qt::AlignLeft | Qt::AlignBottom, picture.caption);
            painter.drawImage(picture.rect, unit.picture);
            painter.setPen(hairline);
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(picture.rect);
            painter.setPen(QPen(Qt::black, m.pt(1.4)));
            for (const QRectF& key : picture.marked)
                painter.drawRect(key.adjusted(-m.pt(1), -m.pt(1), m.pt(1), m.pt(1)));
            for (const SheetLabel& label : picture.labels) {
                painter.setPen(hairline);
                painter.setBrush(Qt::white);
                painter.drawRect(label.rect);
                QFont font = m.label;
                qreal textHeight = labelMetrics.height();
                if (label.rect.height() < textHeight) {
                    // A label squeezed between two others keeps to its box in a smaller size.
                    font.setPointSizeF(std::max(2.5, 6 * label.rect.height() / textHeight));
                }
                const QFontMetricsF metrics(font, &device);
                painter.setFont(font);
                painter.setPen(Qt::black);
                const QRectF inner = label.rect.adjusted(m.pt(1), 0, -m.pt(1), 0);
                painter.drawText(inner, Qt::AlignCenter,
                                 metrics.elidedText(label.text, Qt::ElideRight, inner.width()));
            }
        }
        painter.setBrush(Qt::NoBrush);

        if (page.tableHeader) {
            qreal y = page.tableTop;
            const QString heads[4] = {tr("Group"), tr("Control"), tr("Name"), tr("Action")};
            painter.setFont(m.head);
            painter.setPen(Qt::black);
            const qreal headHeight = headMetrics.height() + m.pt(3);
            for (int c = 0; c < 4; ++c) {
                painter.drawText(QRectF(columns.x[c] + columns.pad, y,
                                        columns.x[c + 1] - columns.x[c] - 2 * columns.pad,
                                        headHeight),
                                 Qt::AlignLeft | Qt::AlignVCenter, heads[c]);
            }
            y += headHeight;
            painter.setPen(rule);
            painter.drawLine(QPointF(0, y), QPointF(width, y));
            painter.setFont(m.table);
            for (int r = page.firstRow; r < page.firstRow + page.rowCount; ++r) {
                const SheetRow& row = rows[size_t(r)];
                const qreal h = page.rowHeights[size_t(r - page.firstRow)];
                const QString cells[4] = {row.groupName, row.controlName, row.userName,
                                          row.description};
                painter.setPen(Qt::black);
                // A row of one line each is drawn as it is; only taller ones are wrapped.
                const bool wraps = h > tableMetrics.height() + m.pt(3);
                for (int c = 0; c < 4; ++c) {
                    painter.drawText(QRectF(columns.x[c] + columns.pad, y + m.pt(1.25),
                                            columns.x[c + 1] - columns.x[c] - 2 * columns.pad, h),
                                     Qt::AlignLeft | Qt::AlignTop | (wraps ? flags : 0), cells[c]);
                }
                y += h;
                painter.setPen(hairline);
                painter.drawLine(QPointF(0, y), QPointF(width, y));
            }
        } else if (rows.empty() && (p + 1 == pages.size() || pages[p + 1].layer != page.layer)) {
            painter.setFont(m.table);
            painter.setPen(Qt::black);
            painter.drawText(QRectF(0, page.tableTop, width, tableMetrics.height() * 2),
                             Qt::AlignLeft | Qt::AlignTop,
                             tr("No control of this layer is assigned."));
        }
    }
    painter.end();
    return int(pages.size());
}

bool KeysetSheet::writePdf(const QString& path, SheetPaper paper, QString* error) const
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    int pages = 0;
    {
        QPdfWriter writer(&file);
        writer.setPageLayout(pageLayout(paper));
        writer.setTitle(tr("%1 — Keyset Sheet").arg(m_name));
        writer.setCreator(QStringLiteral("Corvane"));
        pages = paint(writer);
    }
    if (pages == 0) {
        file.cancelWriting();
        if (error)
            *error = tr("the pages could not be drawn");
        return false;
    }
    if (!file.commit()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
}

} // namespace corvane
