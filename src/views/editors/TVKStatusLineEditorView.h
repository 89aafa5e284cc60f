#pragma once

#include "actions/editors/StatusLineEditor.h"
#include "views/editors/TVKActionEditorView.h"

class QButtonGroup;

// The status line of an LCD button: native MIDI, or the emulation mode.
class TVKStatusLineEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    explicit TVKStatusLineEditorView(TVKActionEditorHost& host, QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::StatusLineEditor& logic() { return m_logic; }
    QButtonGroup* modeGroup() const { return m_modes; }

private:
    void updateData();

    corvane::StatusLineEditor m_logic;
    QButtonGroup* m_modes = nullptr;
};
