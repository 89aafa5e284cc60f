#pragma once

#include "actions/editors/DisplayEmulationEditor.h"
#include "views/editors/TVKActionEditorView.h"

class QCheckBox;
class QComboBox;
class QLabel;

// What the emulated console sends for the display: a line or the pot values of a character
// display, or the timecode.
class TVKDisplayEmulationEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    TVKDisplayEmulationEditorView(TVKActionEditorHost& host, qint32 actionType,
                                  QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::DisplayEmulationEditor& logic() { return m_logic; }
    QLabel* modeLabel() const { return m_mode; }
    QComboBox* sourcePopUp() const { return m_source; }
    QCheckBox* timecodeBox() const { return m_timecode; }

private:
    void updateData();

    corvane::DisplayEmulationEditor m_logic;
    QLabel* m_mode = nullptr;
    QComboBox* m_source = nullptr;
    QCheckBox* m_timecode = nullptr;
};
