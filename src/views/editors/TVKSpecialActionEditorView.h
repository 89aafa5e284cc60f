#pragma once

#include "actions/editors/SpecialActionEditor.h"
#include "views/editors/TVKActionEditorView.h"

class QButtonGroup;

class TVKSpecialActionEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    TVKSpecialActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                               QWidget* parent = nullptr);
    void updateForNewAction() override;
    QButtonGroup* modeGroup() const { return m_modes; }

private:
    void updateData();

    corvane::SpecialActionEditor m_logic;
    QButtonGroup* m_modes = nullptr;
};
