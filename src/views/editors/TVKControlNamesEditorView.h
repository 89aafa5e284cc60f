#pragma once

#include "actions/editors/ControlNamesEditor.h"
#include "views/editors/TVKActionEditorView.h"

class QCheckBox;
class QComboBox;

// The names of the controls that share a display (encoders or buttons, or the NV's functions
// and parameters).
class TVKControlNamesEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    // actionType: the encoder-name, button-name or NV button-name display action.
    TVKControlNamesEditorView(TVKActionEditorHost& host, qint32 actionType,
                              QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::ControlNamesEditor& logic() { return m_logic; }
    QCheckBox* showNamesBox() const { return m_show; }
    QComboBox* modePopUp() const { return m_mode; }

private:
    void updateData();

    corvane::ControlNamesEditor m_logic;
    QCheckBox* m_show = nullptr;
    QComboBox* m_mode = nullptr;
};
