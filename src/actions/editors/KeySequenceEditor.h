#pragma once

#include "actions/TVKKeystrokeElement.h"
#include "actions/editors/EditorLogic.h"
#include "core/NotificationCenter.h"

#include <QString>
#include <functional>

class TVKActionContainer;
class TVKKeySequenceAction;

namespace corvane {

// The key sequence editor's decisions, for one list (a button) or one direction's list. It holds
// what the editor's controls show; the widget maps its controls onto these calls and redraws
// from the state.
class KeySequenceEditor : public EditorLogic
{
public:
    // Sender tags of the editor's controls.
    enum Tag
    {
        RepeatBox = 2,
        SpeedSlider = 3,
        Previous = 4,
        Next = 5,
        Delete = 6,
        DirectionMatrix = 7
    };
    // Modifier box cell tags; a ticked box contributes its tag shifted left by 16.
    enum ModifierTag : unsigned
    {
        ShiftBox = 2,
        ControlBox = 4,
        OptionBox = 8,
        CommandBox = 16
    };

    KeySequenceEditor(TVKActionContainer& container, qint32 actionType);

    // Called whenever the action gained or changed a parameter (the inspector's
    // actionParameterChanged).
    void setParameterChangedHandler(std::function<void()> handler);

    // Whether the keyset is locked ("TVKLockStateChange"): the entry box then ignores keys.
    bool locked() const { return m_locked; }

    // A key captured by the entry box: overwrite the keystroke at the current step, or append
    // when the step is past the last keystroke.
    void keystrokeEntry(const QString& label, quint32 keyCode, quint64 modifiers);
    // A click on the modifier boxes; tickedTags is the OR of the ticked cells' tags.
    void modifierBoxesClicked(unsigned tickedTags);
    // The repeat box or the speed slider changed (other tags are ignored).
    void optionChanged(int senderTag, bool repeatChecked, int speedValue);
    void navigate(int senderTag);
    void updateForNewAction();
    // Per-direction editors: a click on the direction matrix.
    void chooseDirection(int senderTag, int cellTag);

    int currentStep() const { return m_currentStep; }
    int currentAxis() const { return m_currentAxis; }
    int numberOfDirections() const;
    const QString& entryText() const { return m_entryText; }
    unsigned modifierBoxTags() const { return m_modifierBoxTags; }
    bool repeatChecked() const { return m_repeatChecked; }
    int speedValue() const { return m_speedValue; }
    bool previousEnabled() const { return m_previousEnabled; }
    bool nextEnabled() const { return m_nextEnabled; }
    bool deleteEnabled() const { return m_deleteEnabled; }
    // The widget's slider and box values before any action is shown.
    void setControls(bool repeatChecked, int speedValue);

private:
    TVKKeySequenceAction* editedAction() const;
    // The list being edited, only when the container holds an action of this editor's type.
    TVKKeystrokeList* editedList() const;
    // The edited action, made and put into the container when there is none of this type.
    TVKKeySequenceAction* currentAction();
    void showKeystroke(const TVKKeystrokeElement* element);
    void clearDisplay();
    void refreshNavigation();
    void actionParameterChanged();

    TVKActionContainer& m_container;
    qint32 m_actionType;
    std::function<void()> m_parameterChanged;
    int m_currentStep = 0;
    int m_currentAxis = 0;
    QString m_entryText = QStringLiteral(" ");
    unsigned m_modifierBoxTags = 0;
    bool m_repeatChecked = false;
    int m_speedValue = 50;
    bool m_previousEnabled = false;
    bool m_nextEnabled = false;
    bool m_deleteEnabled = false;
    bool m_locked = false;
    NotificationCenter::Observation m_lockObservation;
};

} // namespace corvane
