#include "actions/editors/KeySequenceEditor.h"

#include "actions/TVKActionContainer.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/editors/EditorActions.h"
#include "core/Log.h"
#include "core/Notifications.h"

namespace corvane {

namespace {

constexpr unsigned kModifierTagMask = 2 | 4 | 8 | 16;

unsigned tagsFromModifiers(quint64 modifiers)
{
    return unsigned((modifiers >> 16) & kModifierTagMask);
}

} // namespace

KeySequenceEditor::KeySequenceEditor(TVKActionContainer& container, qint32 actionType)
    : m_container(container), m_actionType(actionType)
{
    m_lockObservation = NotificationCenter::defaultCenter().observe<corvane::note::LockStateChange>(
        nullptr, [this](const corvane::note::LockStateChange& lock) {
            const StateChange change(*this);
            m_locked = lock.locked;
        });
}

void KeySequenceEditor::setParameterChangedHandler(std::function<void()> handler)
{
    m_parameterChanged = std::move(handler);
}

void KeySequenceEditor::setControls(bool repeatChecked, int speedValue)
{
    const StateChange change(*this);
    m_repeatChecked = repeatChecked;
    m_speedValue = speedValue;
}

int KeySequenceEditor::numberOfDirections() const
{
    switch (m_actionType) {
    case TVKButtonKeySequenceAction::kActionType:
        return 1;
    case TVK4WayKeySequenceAction::kActionType:
        return 4;
    case TVKEncoderKeySequenceAction::kActionType:
    case TVKJogKeySequenceAction::kActionType:
        return 2;
    case TVKShuttleKeySequenceAction::kActionType:
        return 3;
    default:
        log(QStringLiteral(
            "TVKMultipleKeySequenceActionEditorView subclasses must override numberOfDirections"));
        return 0;
    }
}

TVKKeySequenceAction* KeySequenceEditor::editedAction() const
{
    if (m_container.actionType() != m_actionType)
        return nullptr;
    return static_cast<TVKKeySequenceAction*>(m_container.action());
}

TVKKeystrokeList* KeySequenceEditor::editedList() const
{
    TVKKeySequenceAction* action = editedAction();
    if (!action)
        return nullptr;
    if (auto* button = dynamic_cast<TVKButtonKeySequenceAction*>(action))
        return &button->sequence();
    if (auto* multiple = dynamic_cast<TVKMultipleKeySequenceAction*>(action))
        return multiple->sequenceForDirection(m_currentAxis);
    log(QStringLiteral(
        "TVKKeySequenceActionEditorView subclasses must override getKeystrokeArrayForSequence"));
    return nullptr;
}

TVKKeySequenceAction* KeySequenceEditor::currentAction()
{
    if (TVKKeySequenceAction* action = editedAction())
        return action;
    std::unique_ptr<TVKKeySequenceAction> action = makeKeySequenceActionOfType(m_actionType);
    if (!action)
        return nullptr;
    TVKKeySequenceAction* raw = action.get();
    m_container.setAction(std::move(action));
    m_currentStep = 0;
    return raw;
}

void KeySequenceEditor::actionParameterChanged()
{
    if (m_parameterChanged)
        m_parameterChanged();
}

void KeySequenceEditor::keystrokeEntry(const QString& label, quint32 keyCode, quint64 modifiers)
{
    const StateChange change(*this);
    if (m_locked)
        return;
    TVKKeySequenceAction* action = currentAction();
    TVKKeystrokeList* list = action ? editedList() : nullptr;
    if (!list)
        return;
    m_entryText = label;
    if (m_currentStep < TVKKeySequenceAction::countForSequence(*list))
        TVKKeySequenceAction::setKeystroke(label, keyCode, modifiers, m_currentStep, *list);
    else
        TVKKeySequenceAction::addKeystroke(label, keyCode, modifiers, *list);
    m_modifierBoxTags = tagsFromModifiers(modifiers);
    action->setDelay(float(m_speedValue));
    action->setRepeat(m_repeatChecked);
    refreshNavigation();
    actionParameterChanged();
}

void KeySequenceEditor::modifierBoxesClicked(unsigned tickedTags)
{
    const StateChange change(*this);
    m_modifierBoxTags = tickedTags & kModifierTagMask;
    const quint64 word = quint64(m_modifierBoxTags) << 16;
    TVKKeySequenceAction* action = currentAction();
    TVKKeystrokeList* list = action ? editedList() : nullptr;
    if (!list)
        return;
    if (m_currentStep < TVKKeySequenceAction::countForSequence(*list)) {
        (*list)[size_t(m_currentStep)].setModifierFlags(word);
    } else {
        TVKKeySequenceAction::addKeystroke(QLatin1String(""), 0, word, *list);
    }
    refreshNavigation();
    actionParameterChanged();
}

void KeySequenceEditor::optionChanged(int senderTag, bool repeatChecked, int speedValue)
{
    const StateChange change(*this);
    if (senderTag != RepeatBox && senderTag != SpeedSlider)
        return;
    m_repeatChecked = repeatChecked;
    m_speedValue = speedValue;
    TVKKeySequenceAction* action = currentAction();
    if (!action)
        return;
    action->setRepeat(repeatChecked);
    action->setDelay(float(speedValue));
    actionParameterChanged();
}

void KeySequenceEditor::navigate(int senderTag)
{
    const StateChange change(*this);
    TVKKeystrokeList* list = editedList();
    if (!list || list->empty())
        return;
    const int count = int(list->size());
    switch (senderTag) {
    case Previous:
        if (m_currentStep > 0)
            --m_currentStep;
        break;
    case Next:
        // Reaches the empty slot after the last keystroke, where the next capture appends.
        if (m_currentStep < count)
            ++m_currentStep;
        break;
    case Delete:
        if (m_currentStep < count) {
            TVKKeySequenceAction::removeKeystrokeAtIndex(m_currentStep, *list);
            if (m_currentStep >= int(list->size()))
                m_currentStep = qMax(int(list->size()) - 1, 0);
            actionParameterChanged();
        }
        break;
    default:
        return;
    }
    if (m_currentStep >= int(list->size())) {
        m_entryText.clear();
        m_modifierBoxTags = 0;
    } else {
        showKeystroke(&(*list)[size_t(m_currentStep)]);
    }
    refreshNavigation();
}

void KeySequenceEditor::updateForNewAction()
{
    const StateChange change(*this);
    TVKKeySequenceAction* action = editedAction();
    if (!action) {
        clearDisplay();
        return;
    }
    m_currentStep = 0;
    TVKKeystrokeList* list = editedList();
    if (!list || list->empty()) {
        clearDisplay();
        return;
    }
    showKeystroke(&list->front());
    m_repeatChecked = action->repeat();
    m_speedValue = int(action->delay());
    refreshNavigation();
}

void KeySequenceEditor::chooseDirection(int senderTag, int cellTag)
{
    const StateChange change(*this);
    if (senderTag != DirectionMatrix)
        return;
    m_currentAxis = qBound(0, cellTag, qMax(numberOfDirections() - 1, 0));
    updateForNewAction();
}

void KeySequenceEditor::showKeystroke(const TVKKeystrokeElement* element)
{
    m_entryText = element->character();
    m_modifierBoxTags = tagsFromModifiers(element->modifierFlags());
}

void KeySequenceEditor::clearDisplay()
{
    m_entryText.clear();
    m_modifierBoxTags = 0;
    m_repeatChecked = false;
    m_previousEnabled = false;
    m_nextEnabled = false;
    m_deleteEnabled = false;
}

void KeySequenceEditor::refreshNavigation()
{
    const TVKKeystrokeList* list = editedList();
    if (!list || list->empty()) {
        m_previousEnabled = m_nextEnabled = m_deleteEnabled = false;
        return;
    }
    m_previousEnabled = m_currentStep > 0;
    m_nextEnabled = m_deleteEnabled = m_currentStep < int(list->size());
}

} // namespace corvane
