#pragma once

#include "actions/editors/EmulationActionEditor.h"
#include "views/editors/TVKActionEditorView.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QSlider;
class QSpinBox;

class TVKEmulationActionEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    TVKEmulationActionEditorView(TVKActionEditorHost& host,
                                 corvane::EmulationActionEditor::Kind kind,
                                 QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::EmulationActionEditor& logic() { return m_logic; }
    QCheckBox* emulateBox() const { return m_emulate; }
    QComboBox* groupPopUp() const { return m_group; }
    QComboBox* controlPopUp() const { return m_control; }
    QSpinBox* numberField() const { return m_number; }
    QSlider* speedSlider() const { return m_speed; }
    QLabel* modeLabel() const { return m_modeLabel; }

private:
    void changed(int senderTag);
    void updateData();

    corvane::EmulationActionEditor m_logic;
    bool m_redrawing = false;
    corvane::EmulationActionEditor::GroupMenu m_shownGroupMenu =
        corvane::EmulationActionEditor::GroupMenu::Unchanged;
    int m_shownControlMenu = -2;
    QLabel* m_modeLabel = nullptr;
    QCheckBox* m_emulate = nullptr;
    QComboBox* m_group = nullptr;
    QWidget* m_nameRow = nullptr;
    QComboBox* m_control = nullptr;
    QWidget* m_numberRow = nullptr;
    QSpinBox* m_number = nullptr;
    QWidget* m_speedRow = nullptr;
    QSlider* m_speed = nullptr;
};
