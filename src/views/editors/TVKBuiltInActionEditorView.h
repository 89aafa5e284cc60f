#pragma once

#include "actions/editors/BuiltInActionEditor.h"
#include "views/editors/TVKActionEditorView.h"

class QLabel;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

// The built-in commands of the keyset's application that suit the control, grouped as the
// catalogue groups them, with a search over the command names.
class TVKBuiltInActionEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    TVKBuiltInActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                               QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::BuiltInActionEditor& logic() { return m_logic; }
    QTreeWidget* browser() const { return m_browser; }
    QLineEdit* searchField() const { return m_search; }
    QLabel* titleLabel() const { return m_title; }
    // Shown while the held command is not one of the application's.
    QLabel* unavailableLabel() const { return m_unavailable; }
    // Chooses the command at the rows of the unfiltered list, as a double click does.
    void chooseCommand(int groupRow, int commandRow);

private:
    void updateData();
    void filter(const QString& text);
    void itemActivated(QTreeWidgetItem* item);
    void showHeldAction();
    void showAvailability();

    corvane::BuiltInActionEditor m_logic;
    QLabel* m_title = nullptr;
    QLabel* m_unavailable = nullptr;
    QLineEdit* m_search = nullptr;
    QTreeWidget* m_browser = nullptr;
};
