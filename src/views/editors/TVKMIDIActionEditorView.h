#pragma once

#include "actions/editors/MIDIActionEditor.h"
#include "views/editors/TVKActionEditorView.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QSpinBox;

class TVKMIDIActionEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    TVKMIDIActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                            QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::MIDIActionEditor& logic() { return m_logic; }
    QButtonGroup* modeGroup() const { return m_mode; }
    QButtonGroup* axisGroup() const { return m_axis; }
    QComboBox* commandPopUp() const { return m_command; }
    QSpinBox* channel() const { return m_channel; }
    QSpinBox* data1() const { return m_data1; }
    QSpinBox* data2() const { return m_data2; }
    QCheckBox* data1FollowsValue() const { return m_data1Follows; }
    QCheckBox* data2FollowsValue() const { return m_data2Follows; }
    QLabel* messageLabel() const { return m_message; }

private:
    void changed(int senderTag);
    void updateData();

    corvane::MIDIActionEditor m_logic;
    bool m_redrawing = false;
    QButtonGroup* m_mode = nullptr;
    QButtonGroup* m_axis = nullptr;
    QWidget* m_custom = nullptr;
    QComboBox* m_command = nullptr;
    QWidget* m_channelRow = nullptr;
    QSpinBox* m_channel = nullptr;
    QSpinBox* m_data1 = nullptr;
    QCheckBox* m_data1Follows = nullptr;
    QWidget* m_data2Row = nullptr;
    QSpinBox* m_data2 = nullptr;
    QCheckBox* m_data2Follows = nullptr;
    QLabel* m_message = nullptr;
};
