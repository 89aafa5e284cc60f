#pragma once

#include "actions/editors/HiResTextEditor.h"
#include "views/editors/TVKActionEditorView.h"

class QButtonGroup;
class QLabel;
class QLineEdit;

// Custom text on an LCD button: up to four lines, the line count fixing their length.
class TVKHiResTextEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    explicit TVKHiResTextEditorView(TVKActionEditorHost& host, QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::HiResTextEditor& logic() { return m_logic; }
    QButtonGroup* lineCountGroup() const { return m_lineCount; }
    QLineEdit* lineField(int index) const { return m_lines[index]; }
    QLabel* limitLabel() const { return m_label; }

private:
    void updateData();

    corvane::HiResTextEditor m_logic;
    bool m_redrawing = false;
    QButtonGroup* m_lineCount = nullptr;
    QLineEdit* m_lines[4] = {};
    QLabel* m_label = nullptr;
};
