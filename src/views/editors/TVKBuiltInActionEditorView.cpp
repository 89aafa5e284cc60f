#include "views/editors/TVKBuiltInActionEditorView.h"

#include "views/TVKEditorCells.h"

#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTreeWidget>
#include <QVBoxLayout>

using TVKEditorCells::hintLabel;

namespace {

// Item data of the built-in browser: the rows of the logic's command list.
constexpr int kGroupRowRole = Qt::UserRole;
constexpr int kCommandRowRole = Qt::UserRole + 1;

// The separator groups of the catalogue, drawn as a rule rather than a row of underscores.
class SeparatorDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override
    {
        if (!index.data(kGroupRowRole).isValid() || index.flags() & Qt::ItemIsEnabled ||
            index.parent().isValid()) {
            QStyledItemDelegate::paint(painter, option, index);
            return;
        }
        painter->save();
        painter->setPen(option.palette.color(QPalette::Mid));
        const int y = option.rect.center().y();
        painter->drawLine(option.rect.left() + 4, y, option.rect.right() - 4, y);
        painter->restore();
    }
};

} // namespace

TVKBuiltInActionEditorView::TVKBuiltInActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                                                       QWidget* parent)
    : TVKActionEditorView(host, corvane::fourCC("BILT"), parent),
      m_logic(host.editedAction(), actionType)
{
    auto* column = new QVBoxLayout(this);
    m_title = new QLabel(this);
    m_title->setWordWrap(true);
    column->addWidget(m_title);
    m_unavailable = new QLabel(this);
    m_unavailable->setWordWrap(true);
    m_unavailable->setFrameShape(QFrame::StyledPanel);
    m_unavailable->setMargin(6);
    m_unavailable->setAccessibleName(tr("Command not available"));
    m_unavailable->hide();
    column->addWidget(m_unavailable);
    m_search = new QLineEdit(this);
    m_search->setPlaceholderText(tr("Search commands"));
    m_search->setClearButtonEnabled(true);
    m_search->setAccessibleName(tr("Search commands"));
    column->addWidget(m_search);
    m_browser = new QTreeWidget(this);
    m_browser->setHeaderHidden(true);
    m_browser->setRootIsDecorated(true);
    m_browser->setUniformRowHeights(true);
    m_browser->setItemDelegate(new SeparatorDelegate(m_browser));
    m_browser->setAccessibleName(tr("Built-in commands"));
    column->addWidget(m_browser, 1);
    column->addWidget(
        hintLabel(tr("Double-click a command, or press Return on it, to assign it."), this));

    m_logic.setStateChangedHandler([this] { updateData(); });
    connect(m_search, &QLineEdit::textChanged, this, &TVKBuiltInActionEditorView::filter);
    connect(m_browser, &QTreeWidget::itemActivated, this,
            &TVKBuiltInActionEditorView::itemActivated);
    updateData();
}

void TVKBuiltInActionEditorView::updateData()
{
    m_title->setText(m_logic.title());
    m_browser->clear();
    const auto& groups = m_logic.groups();
    for (int row = 0; row < int(groups.size()); ++row) {
        const corvane::BuiltInCommandGroup& group = groups[size_t(row)];
        auto* item = new QTreeWidgetItem(m_browser);
        item->setData(0, kGroupRowRole, row);
        if (group.isSeparator()) {
            item->setFlags(Qt::NoItemFlags);
            continue;
        }
        item->setText(0, group.name);
        for (int command = 0; command < int(group.commands.size()); ++command) {
            auto* leaf = new QTreeWidgetItem(item);
            leaf->setText(0, group.commands[size_t(command)].name);
            leaf->setData(0, kGroupRowRole, row);
            leaf->setData(0, kCommandRowRole, command);
        }
    }
    filter(m_search->text());
    showHeldAction();
}

void TVKBuiltInActionEditorView::filter(const QString& text)
{
    const QString needle = text.trimmed();
    for (int row = 0; row < m_browser->topLevelItemCount(); ++row) {
        QTreeWidgetItem* group = m_browser->topLevelItem(row);
        if (needle.isEmpty()) {
            group->setHidden(false);
            for (int i = 0; i < group->childCount(); ++i)
                group->child(i)->setHidden(false);
            group->setExpanded(true);
            continue;
        }
        const bool groupMatches = group->text(0).contains(needle, Qt::CaseInsensitive);
        int shown = 0;
        for (int i = 0; i < group->childCount(); ++i) {
            QTreeWidgetItem* command = group->child(i);
            const bool match =
                groupMatches || command->text(0).contains(needle, Qt::CaseInsensitive);
            command->setHidden(!match);
            shown += match;
        }
        group->setHidden(shown == 0);
        group->setExpanded(shown > 0);
    }
}

void TVKBuiltInActionEditorView::itemActivated(QTreeWidgetItem* item)
{
    if (!item || !item->data(0, kCommandRowRole).isValid())
        return;
    chooseCommand(item->data(0, kGroupRowRole).toInt(), item->data(0, kCommandRowRole).toInt());
}

void TVKBuiltInActionEditorView::chooseCommand(int groupRow, int commandRow)
{
    const corvane::BuiltInActionEditor::Choice choice = m_logic.chooseCommand(groupRow, commandRow);
    if (choice.chosen && m_host.isShownEditor(this))
        m_host.actionParameterChangedNaming(choice.userName);
}

void TVKBuiltInActionEditorView::updateForNewAction()
{
    showHeldAction();
}

void TVKBuiltInActionEditorView::showAvailability()
{
    const QString notice = m_logic.unavailableNotice();
    m_unavailable->setText(notice);
    m_unavailable->setVisible(!notice.isEmpty());
}

void TVKBuiltInActionEditorView::showHeldAction()
{
    showAvailability();
    const QString path = m_logic.browserPath();
    if (path.isNull())
        return;
    const QStringList parts = path.split(corvane::BuiltInActionEditor::pathSeparator());
    if (parts.size() < 3)
        return;
    for (int row = 0; row < m_browser->topLevelItemCount(); ++row) {
        QTreeWidgetItem* group = m_browser->topLevelItem(row);
        if (group->text(0) != parts[1])
            continue;
        for (int i = 0; i < group->childCount(); ++i) {
            if (group->child(i)->text(0) == parts[2]) {
                group->setExpanded(true);
                m_browser->setCurrentItem(group->child(i));
                m_browser->scrollToItem(group->child(i));
                return;
            }
        }
    }
}
