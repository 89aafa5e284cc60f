#pragma once

#include "actions/editors/MouseActionEditor.h"
#include "views/editors/TVKActionEditorView.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class TVKModifierBoxes;

class TVKMouseActionEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    TVKMouseActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                             QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::MouseActionEditor& logic() { return m_logic; }
    QComboBox* operationPopUp() const { return m_operation; }
    QComboBox* locationPopUp() const { return m_location; }
    QCheckBox* partialNameBox() const { return m_partial; }
    QLineEdit* windowNameField() const { return m_windowName; }
    TVKModifierBoxes* modifierBoxes() const { return m_modifiers; }
    QPushButton* captureButton() const { return m_capture; }
    QLabel* captureText() const { return m_captureText; }
    QLabel* platformNote() const { return m_platformNote; }

private:
    void updateData();

    corvane::MouseActionEditor m_logic;
    bool m_redrawing = false;
    QComboBox* m_operation = nullptr;
    QComboBox* m_location = nullptr;
    QCheckBox* m_partial = nullptr;
    QLineEdit* m_windowName = nullptr;
    TVKModifierBoxes* m_modifiers = nullptr;
    QPushButton* m_capture = nullptr;
    QProgressBar* m_progress = nullptr;
    QLabel* m_captureText = nullptr;
    QLabel* m_platformNote = nullptr;
};
