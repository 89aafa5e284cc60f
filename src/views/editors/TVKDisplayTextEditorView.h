#pragma once

#include "actions/editors/DisplayTextEditor.h"
#include "views/editors/TVKActionEditorView.h"

class QLabel;
class QLineEdit;

// Custom text on a character display: one line, as long as the display is wide.
class TVKDisplayTextEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    explicit TVKDisplayTextEditorView(TVKActionEditorHost& host, QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::DisplayTextEditor& logic() { return m_logic; }
    QLineEdit* textField() const { return m_text; }

private:
    void updateData();

    corvane::DisplayTextEditor m_logic;
    QLineEdit* m_text = nullptr;
    QLabel* m_limit = nullptr;
};
