#pragma once

#include "core/NotificationCenter.h"
#include "model/TVKSelection.h"

#include <QAbstractItemModel>
#include <QIcon>
#include <QMainWindow>
#include <QStyledItemDelegate>
#include <vector>

class QColumnView;
class QLineEdit;
class QTimer;
class TVKNextFrame;
class QTreeWidget;
class QTreeWidgetItem;
class TVKControl;
class TVKController;
class TVKKeyset;
class TVKModelData;

// The four browser columns over the live model: keysets, their four layers, the groups, and the
// controls of the chosen group. Rows are read from the model each time; nothing is copied.
class KeysetSummaryModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Column
    {
        KeysetColumn,
        LayerColumn,
        GroupColumn,
        ControlColumn
    };
    // The control descriptor in pieces: (text, 0 regular / 1 bold / 2 oblique).
    static constexpr int kPiecesRole = Qt::UserRole + 1;
    // The descriptor's colour set: 0 black, 1 red, 2 green, 3 blue.
    static constexpr int kColorSetRole = Qt::UserRole + 2;

    KeysetSummaryModel(TVKModelData& modelData, const QImage& genericIcon,
                       QObject* parent = nullptr);

    // The row count of a column, the rows chosen in the columns to its left given.
    virtual int calcNumberOfRowsInColumn(int column, int keyset, int layer, int group) const;
    TVKControl* controlForRow(int keyset, int layer, int group, int row) const;
    // The control's one-line description: name, (user name), action.
    static std::vector<std::pair<QString, int>> descriptorPieces(const TVKControl& control);
    static int colorSetFor(const TVKControl& control);
    // The model changed under the rows: read them again.
    void refresh();

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

protected:
    // The keyset a row or path names; none for one that a deletion took away before the rows
    // were read again (the browser still holds paths into it while the selection moves on).
    const TVKKeyset* keysetOrNone(int keyset) const;

    TVKModelData& m_modelData;

private:
    QIcon m_genericIcon;
    std::vector<QIcon> m_groupIcons; // made once, from the keyset selected at the start
};

// The surface family's count: with the TLW used alone, its channel groups list eight controls.
class CorvaneKeysetSummaryModel : public KeysetSummaryModel
{
    Q_OBJECT
public:
    using KeysetSummaryModel::KeysetSummaryModel;
    int calcNumberOfRowsInColumn(int column, int keyset, int layer, int group) const override;
};

// Draws the control column's descriptor: the name regular, the user name bold, the action
// oblique, all in the control's colour where it has one; rows 36 points high for the icons.
class KeysetGroupColumnBrowserCell : public QStyledItemDelegate
{
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    // The width the descriptor takes.
    static int descriptorWidth(const QFont& font, const QModelIndex& index);
};

// The keyset summary window: the four-column browser, following the application's selection and
// moving it when the user chooses a row; and a search over every keyset, layer, group and
// control for a name, user name or action.
class KeysetSummaryController : public QMainWindow
{
    Q_OBJECT
public:
    KeysetSummaryController(TVKModelData& modelData, TVKController& owner,
                            std::unique_ptr<KeysetSummaryModel> model);
    ~KeysetSummaryController() override;

    static KeysetSummaryController* c();
    static int numberOfColumns() { return 4; }
    static QString columnTitle(int column);
    static int columnWidth(int column);

    void setBrowserPathFromData();
    // The selection notices: the browser goes to the selection when it moved.
    void followSelection();
    // The rows changed (a control property, the keyset list): read them again, keeping the
    // path the user stands on as far as it still exists.
    void revalidateColumns();
    void handleBrowserClick(const QModelIndex& index);
    void adjustColumnsToWindowWidth();
    int calcControlDescColumnWidth() const;

    // Search: the matches of a text, at most `limit`, in keyset, layer, group, control order.
    struct Match
    {
        int keyset;
        int layer;
        int group;
        int control;
    };
    std::vector<Match> find(const QString& text, size_t limit = 500) const;
    void chooseMatch(const Match& match);

    QColumnView* keysetBrowser() const { return m_browser; }
    KeysetSummaryModel& model() const { return *m_model; }
    QLineEdit* searchField() const { return m_search; }
    QTreeWidget* results() const { return m_results; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showMatches();
    QModelIndex indexFor(int keyset, int layer, int group, int control) const;

    TVKModelData& m_modelData;
    TVKController& m_owner;
    std::unique_ptr<KeysetSummaryModel> m_model;
    QColumnView* m_browser = nullptr;
    QLineEdit* m_search = nullptr;
    QTreeWidget* m_results = nullptr;
    QTimer* m_searchDelay = nullptr;
    TVKNextFrame* m_followNextFrame = nullptr;
    bool m_following = false;
    // The selection the browser last went to.
    TVKSelection m_followed;
    std::vector<corvane::NotificationCenter::Observation> m_observations;
};

// The surface family's summary.
class CorvaneKeysetSummaryController : public KeysetSummaryController
{
    Q_OBJECT
public:
    CorvaneKeysetSummaryController(TVKModelData& modelData, TVKController& owner);
};
