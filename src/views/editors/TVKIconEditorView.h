#pragma once

#include "actions/editors/DisplayIconEditor.h"
#include "views/editors/TVKActionEditorView.h"

class QButtonGroup;

// One of the LCD button's ROM icons.
class TVKIconEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    explicit TVKIconEditorView(TVKActionEditorHost& host, QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::DisplayIconEditor& logic() { return m_logic; }
    QButtonGroup* iconGroup() const { return m_icons; }

private:
    void updateData();

    corvane::DisplayIconEditor m_logic;
    QButtonGroup* m_icons = nullptr;
};
