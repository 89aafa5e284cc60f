#pragma once

#include "actions/editors/BuiltInActionEditor.h"
#include "actions/editors/EmulationActionEditor.h"
#include "actions/editors/KeySequenceEditor.h"
#include "actions/editors/MIDIActionEditor.h"
#include "actions/editors/MouseActionEditor.h"
#include "actions/editors/SpecialActionEditor.h"
#include "core/FourCharCode.h"
#include "core/NotificationCenter.h"

#include <QFrame>
#include <QWidget>
#include <memory>
#include <vector>

class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QSlider;
class QSpinBox;
class QTreeWidget;
class QTreeWidgetItem;
class TVKActionContainer;
class TVKControl;

// What an action editor needs of the inspector that hosts it: the private copy it edits, the
// one call that hands an edit on, the control shown, and the pointer queries of mouse captures.
class TVKActionEditorHost
{
public:
    virtual ~TVKActionEditorHost() = default;
    virtual TVKActionContainer& editedAction() = 0;
    virtual void actionParameterChanged() = 0;
    virtual void changeUserName(const QString& name) = 0;
    virtual TVKControl* shownControl() const = 0;
    virtual const corvane::PointerEnvironment& pointerEnvironment() const = 0;
    // Why the last query of what lies under the pointer could not be answered; empty when it
    // was, or when nothing has been asked.
    virtual QString pointerQueryProblem() const = 0;
    // Whether this widget's editor view is the one on screen; hidden editors skip refreshes and
    // are brought up to date when they are shown.
    virtual bool isShownEditor(const QWidget* editor) const = 0;
};

// One tab of an editor view: the editor of one kind of action. It shows the held action again
// whenever the inspector shows another one ("TVKNewActionSelected").
class TVKActionEditorView : public QWidget
{
    Q_OBJECT
public:
    TVKActionEditorView(TVKActionEditorHost& host, corvane::FourCharCode tabID,
                        QWidget* parent = nullptr);

    corvane::FourCharCode tabID() const { return m_tabID; }
    // Shows the container's action (any action: one of another kind clears the editor).
    virtual void updateForNewAction() = 0;

protected:
    TVKActionEditorHost& m_host;

private:
    corvane::FourCharCode m_tabID;
    corvane::NotificationCenter::Observation m_newActionObservation;
};

// The focusable box that records one keystroke: any key at all, Tab, Escape and Return and the
// keys that are shortcuts elsewhere included. A click, or Return or Space while it has the focus,
// arms it; the next key pressed is the keystroke, and the box disarms so that the keyboard can
// leave it again.
class TVKKeystrokeEntryView : public QFrame
{
    Q_OBJECT
public:
    explicit TVKKeystrokeEntryView(QWidget* parent = nullptr);
    void setText(const QString& text);
    QString text() const { return m_text; }
    bool armed() const { return m_armed; }
    void setArmed(bool armed);
    void setLocked(bool locked) { m_locked = locked; }
    QSize sizeHint() const override;

Q_SIGNALS:
    void keystrokeEntered(const QString& label, quint32 keyCode, quint64 modifiers);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QString m_text;
    bool m_armed = false;
    bool m_locked = false;
};

// Modifier check boxes with the editors' cell tags (2 Shift, 4 Control, 8 Option, 16 Command).
class TVKModifierBoxes : public QWidget
{
    Q_OBJECT
public:
    explicit TVKModifierBoxes(QWidget* parent = nullptr);
    unsigned tickedTags() const;
    void setTickedTags(unsigned tags);
    QCheckBox* box(unsigned tag) const;

Q_SIGNALS:
    void clicked();

private:
    std::vector<std::pair<unsigned, QCheckBox*>> m_boxes;
};

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
    void redraw();

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
    void redraw();

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
    void redraw();

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
    void redraw();

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

// The built-in commands of the keyset's application that suit the control, grouped as the
// catalogue groups them, with a search over the command names.
class TVKBuiltInActionEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    TVKBuiltInActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                               QWidget* parent = nullptr);
    void updateForNewAction() override;

    corvane::BuiltInActionEditor& logic() { return m_logic; }
    QTreeWidget* browser() const { return m_browser; }
    QLineEdit* searchField() const { return m_search; }
    QLabel* titleLabel() const { return m_title; }
    // Chooses the command at the rows of the unfiltered list, as a double click does.
    void chooseCommand(int groupRow, int commandRow);

private:
    void reload();
    void filter(const QString& text);
    void itemActivated(QTreeWidgetItem* item);
    void showHeldAction();

    corvane::BuiltInActionEditor m_logic;
    QLabel* m_title = nullptr;
    QLineEdit* m_search = nullptr;
    QTreeWidget* m_browser = nullptr;
};

class TVKSpecialActionEditorView : public TVKActionEditorView
{
    Q_OBJECT
public:
    TVKSpecialActionEditorView(TVKActionEditorHost& host, qint32 actionType,
                               QWidget* parent = nullptr);
    void updateForNewAction() override;
    QButtonGroup* modeGroup() const { return m_modes; }

private:
    corvane::SpecialActionEditor m_logic;
    QButtonGroup* m_modes = nullptr;
};
