#pragma once

#include "actions/editors/KeySequenceEditor.h"
#include "views/editors/TVKActionEditorView.h"

#include <QStringList>

class QButtonGroup;
class QCheckBox;
class QLabel;
class QPushButton;
class QSlider;
class TVKKeystrokeEntryView;
class TVKModifierBoxes;

class TVKKeySequenceActionEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    // directions: 0 for a button's single list, else the titles of the directions in cell order.
    TVKKeySequenceActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                                   const QStringList& directions, QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::KeySequenceEditor& logic() { return m_logic; }
    TVKKeystrokeEntryView* entryView() const { return m_entry; }
    TVKModifierBoxes* modifierBoxes() const { return m_modifiers; }
    QCheckBox* repeatBox() const { return m_repeat; }
    QSlider* speedSlider() const { return m_speed; }
    QPushButton* button(int tag) const;
    QButtonGroup* directionGroup() const { return m_directions; }

private:
    void updateData();

    corvane::KeySequenceEditor m_logic;
    TVKKeystrokeEntryView* m_entry = nullptr;
    TVKModifierBoxes* m_modifiers = nullptr;
    QCheckBox* m_repeat = nullptr;
    QSlider* m_speed = nullptr;
    QPushButton* m_previous = nullptr;
    QPushButton* m_next = nullptr;
    QPushButton* m_delete = nullptr;
    QLabel* m_step = nullptr;
    QButtonGroup* m_directions = nullptr;
};
