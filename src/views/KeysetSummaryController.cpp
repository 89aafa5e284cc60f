#include "views/KeysetSummaryController.h"

#include "actions/ActionDescription.h"
#include "actions/TVKAction.h"
#include "app/TVKController.h"
#include "core/Notifications.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "surface/TVK_Constant_Server.h"
#include "views/TVKBundle.h"
#include "views/TVKNextFrame.h"

#include <QAbstractScrollArea>
#include <QColumnView>
#include <QEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QSplitter>
#include <QStyle>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace note = corvane::note;

namespace {

KeysetSummaryController* g_summary = nullptr;

// An index's place: its column (level) and the rows chosen to its left.
struct Path
{
    int level = 0;
    int keyset = 0;
    int layer = 0;
    int group = 0;
};

quintptr pack(const Path& p)
{
    return (quintptr(p.level) << 40) | (quintptr(p.keyset & 0xffffff) << 16) |
           (quintptr(p.layer & 0xff) << 8) | quintptr(p.group & 0xff);
}

Path unpack(quintptr id)
{
    return {int(id >> 40), int((id >> 16) & 0xffffff), int((id >> 8) & 0xff), int(id & 0xff)};
}

const QColor kColorSets[] = {Qt::black, QColor(0xd0, 0x10, 0x10), QColor(0x10, 0x90, 0x20),
                             QColor(0x10, 0x40, 0xd0)};

} // namespace

// --- The model ---------------------------------------------------------------------------------

KeysetSummaryModel::KeysetSummaryModel(TVKModelData& modelData, const QImage& genericIcon,
                                       QObject* parent)
    : QAbstractItemModel(parent), m_modelData(modelData),
      m_genericIcon(QPixmap::fromImage(genericIcon))
{
    // The group icons of layer 0 of the keyset selected now; they are not made again.
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    const TVKKeyset* keyset = modelData.selectedKeyset();
    const TVKLayer* layer = keyset ? keyset->layerAtIndex(0) : nullptr;
    for (int group = 0; layer && constants && group < layer->numGroups(); ++group) {
        const QString name = constants->groupIconNameForGroup(group);
        QIcon icon;
        for (const qreal ratio : {1.0, 2.0}) {
            const QPixmap pixmap =
                TVKBundle::mainBundle().sheet(QStringLiteral("icons/") + name, ratio);
            if (!pixmap.isNull())
                icon.addPixmap(pixmap);
        }
        m_groupIcons.push_back(icon);
    }
}

const TVKKeyset* KeysetSummaryModel::keysetOrNone(int keyset) const
{
    return keyset >= 0 && keyset < m_modelData.numberOfKeysets() ? m_modelData.keysetAtIndex(keyset)
                                                                 : nullptr;
}

int KeysetSummaryModel::calcNumberOfRowsInColumn(int column, int keyset, int layer, int group) const
{
    switch (column) {
    case KeysetColumn:
        return m_modelData.numberOfKeysets();
    case LayerColumn:
        return 4;
    case GroupColumn: {
        const TVKKeyset* selected = keysetOrNone(m_modelData.selectedKeysetIndex());
        const TVKLayer* first = selected ? selected->layerAtIndex(0) : nullptr;
        return first ? first->numGroups() : 0;
    }
    case ControlColumn: {
        const TVKKeyset* k = keysetOrNone(qMax(0, keyset));
        const TVKLayer* l = k ? k->layerAtIndex(qMax(0, layer)) : nullptr;
        if (!l || qMax(0, group) >= int(l->groups().size()))
            return 0;
        return int(l->groups()[size_t(qMax(0, group))].size());
    }
    default:
        return 0;
    }
}

int CorvaneKeysetSummaryModel::calcNumberOfRowsInColumn(int column, int keyset, int layer,
                                                        int group) const
{
    const auto* model = dynamic_cast<const CorvaneModelData*>(&m_modelData);
    if (column == ControlColumn && model && model->standaloneTLW() && group >= 16 && group <= 23 &&
        group != 19 && group != 22)
        return 8;
    return KeysetSummaryModel::calcNumberOfRowsInColumn(column, keyset, layer, group);
}

TVKControl* KeysetSummaryModel::controlForRow(int keyset, int layer, int group, int row) const
{
    const TVKKeyset* k = keysetOrNone(keyset);
    const TVKLayer* l = k ? k->layerAtIndex(layer) : nullptr;
    if (!l || group < 0 || group >= int(l->groups().size()))
        return nullptr;
    const TVKControlGroup& controls = l->groups()[size_t(group)];
    return row >= 0 && row < int(controls.size()) ? controls[size_t(row)].get() : nullptr;
}

std::vector<std::pair<QString, int>> KeysetSummaryModel::descriptorPieces(const TVKControl& control)
{
    std::vector<std::pair<QString, int>> pieces{{control.name(), 0}};
    if (!control.userName().isEmpty()) {
        pieces.emplace_back(QStringLiteral(" ("), 0);
        pieces.emplace_back(control.userName(), 1);
        pieces.emplace_back(QStringLiteral("): "), 0);
    } else {
        pieces.emplace_back(QStringLiteral(": "), 0);
    }
    pieces.emplace_back(control.action() ? control.action()->actionDescriptor()
                                         : QStringLiteral("No Action Assigned"),
                        2);
    return pieces;
}

int KeysetSummaryModel::colorSetFor(const TVKControl& control)
{
    const auto* coloured = dynamic_cast<const TVK4WayControl*>(&control);
    if (control.tvkControlType() != corvane::ControlType::FourWay || !coloured)
        return 0;
    switch (coloured->onColor()) {
    case 3:
        return 1; // red
    case 2:
        return 3; // blue
    case 1:
        return 2; // green
    default:
        return 0;
    }
}

void KeysetSummaryModel::refresh()
{
    beginResetModel();
    endResetModel();
}

QModelIndex KeysetSummaryModel::index(int row, int column, const QModelIndex& parent) const
{
    if (column != 0 || row < 0 || row >= rowCount(parent))
        return {};
    Path path;
    if (parent.isValid()) {
        path = unpack(parent.internalId());
        switch (path.level) {
        case KeysetColumn:
            path.keyset = parent.row();
            break;
        case LayerColumn:
            path.layer = parent.row();
            break;
        case GroupColumn:
            path.group = parent.row();
            break;
        default:
            return {};
        }
        ++path.level;
    }
    return createIndex(row, 0, pack(path));
}

QModelIndex KeysetSummaryModel::parent(const QModelIndex& child) const
{
    if (!child.isValid())
        return {};
    const Path path = unpack(child.internalId());
    switch (path.level) {
    case LayerColumn:
        return createIndex(path.keyset, 0, pack({KeysetColumn, 0, 0, 0}));
    case GroupColumn:
        return createIndex(path.layer, 0, pack({LayerColumn, path.keyset, 0, 0}));
    case ControlColumn:
        return createIndex(path.group, 0, pack({GroupColumn, path.keyset, path.layer, 0}));
    default:
        return {};
    }
}

int KeysetSummaryModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return calcNumberOfRowsInColumn(KeysetColumn, 0, 0, 0);
    Path path = unpack(parent.internalId());
    switch (path.level) {
    case KeysetColumn:
        return calcNumberOfRowsInColumn(LayerColumn, parent.row(), 0, 0);
    case LayerColumn:
        return calcNumberOfRowsInColumn(GroupColumn, path.keyset, parent.row(), 0);
    case GroupColumn:
        return calcNumberOfRowsInColumn(ControlColumn, path.keyset, path.layer, parent.row());
    default:
        return 0;
    }
}

int KeysetSummaryModel::columnCount(const QModelIndex&) const
{
    return 1;
}

Qt::ItemFlags KeysetSummaryModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.isValid() && unpack(index.internalId()).level == ControlColumn)
        flags |= Qt::ItemNeverHasChildren;
    return flags;
}

QVariant KeysetSummaryModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Path path = unpack(index.internalId());
    const int row = index.row();
    switch (path.level) {
    case KeysetColumn: {
        const TVKKeyset* keyset = keysetOrNone(row);
        if (!keyset)
            return {};
        // A name cut off at the column's edge reads whole in its tool tip.
        if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
            return keyset->name();
        if (role == Qt::DecorationRole) {
            const QImage icon = QImage::fromData(keyset->icon());
            return icon.isNull() ? m_genericIcon : QIcon(QPixmap::fromImage(icon));
        }
        return {};
    }
    case LayerColumn:
        return role == Qt::DisplayRole ? QVariant(QStringLiteral("Layer %1").arg(row + 1))
                                       : QVariant();
    case GroupColumn: {
        const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
        if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
            return constants ? constants->dataModelGroupNameForGroup(row) : QString();
        if (role == Qt::DecorationRole && row < int(m_groupIcons.size()))
            return m_groupIcons[size_t(row)];
        return {};
    }
    case ControlColumn: {
        const TVKControl* control = controlForRow(path.keyset, path.layer, path.group, row);
        if (!control)
            return {};
        if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
            QString text;
            for (const auto& piece : descriptorPieces(*control))
                text += piece.first;
            return text;
        }
        if (role == kPiecesRole) {
            QVariantList pieces;
            for (const auto& [text, style] : descriptorPieces(*control))
                pieces << QVariant(QVariantList{text, style});
            return pieces;
        }
        if (role == kColorSetRole)
            return colorSetFor(*control);
        return {};
    }
    default:
        return {};
    }
}

// --- The cell ----------------------------------------------------------------------------------

namespace {

QFont pieceFont(const QFont& base, int style)
{
    QFont font = base;
    font.setBold(style == 1);
    font.setItalic(style == 2);
    return font;
}

} // namespace

int KeysetGroupColumnBrowserCell::descriptorWidth(const QFont& font, const QModelIndex& index)
{
    int width = 0;
    for (const QVariant& piece : index.data(KeysetSummaryModel::kPiecesRole).toList()) {
        const QVariantList pair = piece.toList();
        width += QFontMetrics(pieceFont(font, pair.value(1).toInt()))
                     .horizontalAdvance(pair.value(0).toString());
    }
    return width;
}

void KeysetGroupColumnBrowserCell::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                         const QModelIndex& index) const
{
    const QVariantList pieces = index.data(KeysetSummaryModel::kPiecesRole).toList();
    if (pieces.isEmpty()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.text.clear();
    option.widget->style()->drawControl(QStyle::CE_ItemViewItem, &background, painter,
                                        option.widget);
    const bool selected = option.state & QStyle::State_Selected;
    const int set = index.data(KeysetSummaryModel::kColorSetRole).toInt();
    QColor ink = set == 0 ? option.palette.color(QPalette::Text) : kColorSets[set];
    if (selected)
        ink = option.palette.color(QPalette::HighlightedText);
    painter->save();
    painter->setPen(ink);
    QRect r = option.rect.adjusted(6, 0, -4, 0);
    for (const QVariant& piece : pieces) {
        const QVariantList pair = piece.toList();
        const QFont font = pieceFont(option.font, pair.value(1).toInt());
        painter->setFont(font);
        const QString text = pair.value(0).toString();
        // Long lines are cut at the edge, as the summary always did.
        const QString shown = QFontMetrics(font).elidedText(text, Qt::ElideRight, r.width());
        painter->drawText(r, Qt::AlignVCenter | Qt::AlignLeft, shown);
        r.setLeft(r.left() + QFontMetrics(font).horizontalAdvance(shown));
        if (r.width() <= 0)
            break;
    }
    painter->restore();
}

QSize KeysetGroupColumnBrowserCell::sizeHint(const QStyleOptionViewItem& option,
                                             const QModelIndex& index) const
{
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(36);
    return size;
}

// --- The window --------------------------------------------------------------------------------

KeysetSummaryController::KeysetSummaryController(TVKModelData& modelData, TVKController& owner,
                                                 std::unique_ptr<KeysetSummaryModel> model)
    : m_modelData(modelData), m_owner(owner), m_model(std::move(model))
{
    g_summary = this;
    setObjectName(QStringLiteral("TVKKeySumPos"));
    setWindowTitle(tr("Keyset Summary"));
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(8, 8, 8, 8);

    auto* header = new QWidget(central);
    auto* titles = new QHBoxLayout(header);
    titles->setContentsMargins(6, 0, 0, 0);
    titles->setSpacing(0);
    for (int column = 0; column < numberOfColumns(); ++column) {
        auto* title = new QLabel(columnTitle(column), header);
        QFont bold = title->font();
        bold.setBold(true);
        title->setFont(bold);
        if (column < numberOfColumns() - 1)
            title->setFixedWidth(columnWidth(column));
        titles->addWidget(title);
    }
    layout->addWidget(header);

    auto* splitter = new QSplitter(Qt::Vertical, central);
    m_browser = new QColumnView(splitter);
    m_browser->setModel(m_model.get());
    m_browser->setItemDelegate(new KeysetGroupColumnBrowserCell(m_browser));
    m_browser->setResizeGripsVisible(false);
    m_browser->setIconSize(QSize(32, 32));
    m_browser->setAccessibleName(tr("Keysets, layers, groups and controls"));
    // A chosen control needs no preview column: the control column is the last one seen.
    auto* preview = new QWidget;
    preview->setFixedWidth(0);
    m_browser->setPreviewWidget(preview);
    for (QWidget* holder = preview->parentWidget(); holder && holder != m_browser;
         holder = holder->parentWidget()) {
        if (auto* area = qobject_cast<QAbstractScrollArea*>(holder)) {
            area->setMinimumWidth(0);
            area->setFrameShape(QFrame::NoFrame);
            area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
            area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        }
    }
    m_browser->installEventFilter(this);
    connect(m_browser->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                if (!m_following)
                    handleBrowserClick(current);
            });

    auto* findBox = new QWidget(splitter);
    auto* findLayout = new QVBoxLayout(findBox);
    findLayout->setContentsMargins(0, 6, 0, 0);
    m_search = new QLineEdit(findBox);
    m_search->setPlaceholderText(
        tr("Find a control in every keyset by name, user name, action or keys (Ctrl+F)"));
    m_search->setClearButtonEnabled(true);
    findLayout->addWidget(m_search);
    m_results = new QTreeWidget(findBox);
    m_results->setColumnCount(6);
    m_results->setHeaderLabels(
        {tr("Keyset"), tr("Layer"), tr("Group"), tr("Control"), tr("Action"), tr("Description")});
    m_results->setRootIsDecorated(false);
    m_results->setUniformRowHeights(true);
    m_results->header()->setStretchLastSection(true);
    findLayout->addWidget(m_results, 1);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    layout->addWidget(splitter, 1);
    setCentralWidget(central);

    auto* findShortcut = new QAction(this);
    findShortcut->setShortcut(QKeySequence::Find);
    connect(findShortcut, &QAction::triggered, m_search, [this] {
        m_search->setFocus();
        m_search->selectAll();
    });
    addAction(findShortcut);
    m_searchDelay = new QTimer(this);
    m_searchDelay->setSingleShot(true);
    m_searchDelay->setInterval(120);
    connect(m_search, &QLineEdit::textChanged, m_searchDelay, qOverload<>(&QTimer::start));
    connect(m_searchDelay, &QTimer::timeout, this, &KeysetSummaryController::showMatches);
    connect(m_results, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
        chooseMatch({item->data(0, Qt::UserRole).toInt(), item->data(1, Qt::UserRole).toInt(),
                     item->data(2, Qt::UserRole).toInt(), item->data(3, Qt::UserRole).toInt()});
    });

    corvane::NotificationCenter& center = corvane::NotificationCenter::defaultCenter();
    // Going to the selection reads the columns again: done once per frame, after the touch has
    // been answered.
    m_followNextFrame = new TVKNextFrame(this, [this] { followSelection(); });
    center.observeEach<note::SelectionChange, note::RemoteSelectionChange>(
        m_observations, nullptr, [this] { m_followNextFrame->request(); });
    center.observeEach<note::ControlPropertyChange, note::ShowUserNameChange, note::UpdateKSum,
                       note::KeysetCountChange>(m_observations, nullptr,
                                                [this] { revalidateColumns(); });
    resize(1000, 640);
    setBrowserPathFromData();
}

KeysetSummaryController::~KeysetSummaryController()
{
    if (g_summary == this)
        g_summary = nullptr;
}

KeysetSummaryController* KeysetSummaryController::c()
{
    return g_summary;
}

QString KeysetSummaryController::columnTitle(int column)
{
    static const QString titles[] = {QStringLiteral("Keyset"), QStringLiteral("Layer"),
                                     QStringLiteral("Group"), QStringLiteral("Control")};
    return column >= 0 && column < 4 ? titles[column] : QString();
}

int KeysetSummaryController::columnWidth(int column)
{
    static const int widths[] = {200, 126, 150, 300};
    return column >= 0 && column < 4 ? widths[column] : 0;
}

QModelIndex KeysetSummaryController::indexFor(int keyset, int layer, int group, int control) const
{
    const QModelIndex k = m_model->index(keyset, 0);
    const QModelIndex l = m_model->index(layer, 0, k);
    const QModelIndex g = m_model->index(group, 0, l);
    const QModelIndex c = m_model->index(control, 0, g);
    return c.isValid() ? c : (g.isValid() ? g : (l.isValid() ? l : k));
}

void KeysetSummaryController::followSelection()
{
    // An edit announces its control again; only a selection that moved takes the user's path.
    if (m_modelData.selection() == m_followed)
        return;
    setBrowserPathFromData();
}

void KeysetSummaryController::setBrowserPathFromData()
{
    m_followed = m_modelData.selection();
    const TVKControl* selected = m_modelData.selectedControl();
    const QModelIndex target =
        indexFor(m_modelData.selectedKeysetIndex(), m_modelData.selectedLayerIndex(),
                 m_modelData.selectedGroupIndex(), selected ? selected->index() : 0);
    m_following = true;
    m_browser->setCurrentIndex(target);
    m_following = false;
    adjustColumnsToWindowWidth();
}

void KeysetSummaryController::revalidateColumns()
{
    // The user's path, from the keyset column rightwards, outlives the rows being read again.
    std::vector<int> rows;
    for (QModelIndex i = m_browser->currentIndex(); i.isValid(); i = i.parent())
        rows.insert(rows.begin(), i.row());
    m_model->refresh();
    QModelIndex restored;
    for (const int row : rows) {
        const int count = m_model->rowCount(restored);
        if (count == 0)
            break;
        restored = m_model->index(std::min(row, count - 1), 0, restored);
    }
    if (!restored.isValid()) {
        setBrowserPathFromData();
        return;
    }
    m_following = true;
    m_browser->setCurrentIndex(restored);
    m_following = false;
    adjustColumnsToWindowWidth();
}

void KeysetSummaryController::handleBrowserClick(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    switch (unpack(index.internalId()).level) {
    case KeysetSummaryModel::KeysetColumn:
        m_owner.keysetChangedInSummaryWindow(index.row());
        break;
    case KeysetSummaryModel::LayerColumn:
        m_owner.layerChangedInSummaryWindow(index.row());
        break;
    case KeysetSummaryModel::GroupColumn:
        break;
    case KeysetSummaryModel::ControlColumn:
        m_owner.selectionChangedInSummaryWindowToGroup(index.parent().row(), index.row());
        return;
    }
    adjustColumnsToWindowWidth();
}

int KeysetSummaryController::calcControlDescColumnWidth() const
{
    const QModelIndex current = m_browser->currentIndex();
    const QModelIndex group =
        unpack(current.internalId()).level == KeysetSummaryModel::ControlColumn ? current.parent()
                                                                                : QModelIndex();
    int widest = 0;
    for (int row = 0; group.isValid() && row < m_model->rowCount(group); ++row)
        widest = qMax(widest, KeysetGroupColumnBrowserCell::descriptorWidth(
                                  m_browser->font(), m_model->index(row, 0, group)));
    return 24 + widest;
}

void KeysetSummaryController::adjustColumnsToWindowWidth()
{
    QList<int> widths;
    int sum = 6;
    for (int column = 0; column < numberOfColumns() - 1; ++column) {
        widths << columnWidth(column);
        sum += columnWidth(column);
    }
    // The control column takes the rest of the window, less the frame and the scroll bar.
    const int rest =
        m_browser->width() - sum - m_browser->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    widths << qMax(calcControlDescColumnWidth(), rest) << 0;
    m_browser->setColumnWidths(widths);
}

bool KeysetSummaryController::eventFilter(QObject* watched, QEvent* event)
{
    // The browser's own size, once the layout has given it.
    if (watched == m_browser && event->type() == QEvent::Resize)
        adjustColumnsToWindowWidth();
    return QMainWindow::eventFilter(watched, event);
}

std::vector<KeysetSummaryController::Match> KeysetSummaryController::find(const QString& text,
                                                                          size_t limit) const
{
    std::vector<Match> matches;
    const QString wanted = text.trimmed();
    if (wanted.isEmpty())
        return matches;
    // What the action does is searched in the desktop's words, without regard to case or to
    // the order the modifiers are typed in: "shift+ctrl+s" finds Ctrl+Shift+S, and only it.
    const QString wantedKeys = corvane::searchableText(wanted);
    const auto does = [&wantedKeys](const TVKAction* action) {
        return corvane::isAssigned(action) &&
               corvane::searchFinds(
                   corvane::searchableText(corvane::describeAction(*action, corvane::Detail::Full)),
                   wantedKeys);
    };
    for (int k = 0; k < m_modelData.numberOfKeysets(); ++k) {
        const TVKKeyset* keyset = m_modelData.keysetAtIndex(k);
        for (int l = 0; keyset && l < 4; ++l) {
            const TVKLayer* layer = keyset->layerAtIndex(l);
            for (int g = 0; layer && g < int(layer->groups().size()); ++g) {
                const TVKControlGroup& controls = layer->groups()[size_t(g)];
                for (int c = 0; c < int(controls.size()); ++c) {
                    const TVKControl& control = *controls[size_t(c)];
                    const bool found =
                        control.name().contains(wanted, Qt::CaseInsensitive) ||
                        control.userName().contains(wanted, Qt::CaseInsensitive) ||
                        (control.action() && control.action()->actionDescriptor().contains(
                                                 wanted, Qt::CaseInsensitive)) ||
                        does(control.action());
                    if (!found)
                        continue;
                    matches.push_back({k, l, g, c});
                    if (matches.size() >= limit)
                        return matches;
                }
            }
        }
    }
    return matches;
}

void KeysetSummaryController::showMatches()
{
    m_results->clear();
    const TVK_Constant_Server* constants = TVK_Constant_Server::defaultConstantServer();
    QList<QTreeWidgetItem*> items;
    for (const Match& match : find(m_search->text())) {
        const TVKControl* control =
            m_model->controlForRow(match.keyset, match.layer, match.group, match.control);
        if (!control)
            continue;
        auto* item = new QTreeWidgetItem;
        item->setText(0, m_modelData.keysetAtIndex(match.keyset)->name());
        item->setText(1, QStringLiteral("Layer %1").arg(match.layer + 1));
        item->setText(2,
                      constants ? constants->dataModelGroupNameForGroup(match.group) : QString());
        item->setText(3, control->userName().isEmpty()
                             ? control->name()
                             : QStringLiteral("%1 (%2)").arg(control->name(), control->userName()));
        item->setText(4, control->action() ? control->action()->actionDescriptor()
                                           : QStringLiteral("No Action Assigned"));
        if (corvane::isAssigned(control->action()))
            item->setText(5, corvane::describeAction(*control->action(), corvane::Detail::Full));
        item->setData(0, Qt::UserRole, match.keyset);
        item->setData(1, Qt::UserRole, match.layer);
        item->setData(2, Qt::UserRole, match.group);
        item->setData(3, Qt::UserRole, match.control);
        items << item;
    }
    m_results->addTopLevelItems(items);
    for (int column = 0; column < 5; ++column)
        m_results->resizeColumnToContents(column);
}

void KeysetSummaryController::chooseMatch(const Match& match)
{
    m_owner.keysetChangedInSummaryWindow(match.keyset);
    m_owner.layerChangedInSummaryWindow(match.layer);
    m_owner.selectionChangedInSummaryWindowToGroup(match.group, match.control);
}

CorvaneKeysetSummaryController::CorvaneKeysetSummaryController(TVKModelData& modelData,
                                                               TVKController& owner)
    : KeysetSummaryController(
          modelData, owner,
          std::make_unique<CorvaneKeysetSummaryModel>(modelData, owner.genericAppIcon()))
{}
