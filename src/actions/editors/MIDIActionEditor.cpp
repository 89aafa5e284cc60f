#include "actions/editors/MIDIActionEditor.h"

#include "actions/TVKActionContainer.h"
#include "actions/editors/EditorActions.h"

namespace corvane {

namespace {

constexpr quint8 kPlaceholder = TVKMIDIAction::kValuePlaceholder;

} // namespace

MIDIActionEditor::MIDIActionEditor(TVKActionContainer& container, qint32 actionType)
    : m_container(container), m_actionType(actionType)
{}

TVKMIDIAction* MIDIActionEditor::editedAction() const
{
    if (m_container.actionType() != m_actionType)
        return nullptr;
    return static_cast<TVKMIDIAction*>(m_container.action());
}

void MIDIActionEditor::controlChanged(int senderTag)
{
    const StateChange change(*this);
    Controls& c = m_controls;
    switch (senderTag) {
    case ModeRadios:
        if (c.modeCell == 0) {
            c.customGroupVisible = false;
            m_container.setAction(nullptr);
        } else if (c.modeCell == 1) {
            m_container.setAction(nativeAction());
        } else {
            m_container.setAction(rebuildCustomMessage());
        }
        return;
    // The steppers hold MIDI channels 1 to 16 and 7-bit data values; a typed value outside
    // them is pulled in, so no data byte can turn into the value placeholder.
    case ChannelField:
        c.channelField = c.channelStepper = qBound(1, c.channelField, 16);
        break;
    case ChannelStepper:
        c.channelField = c.channelStepper = qBound(1, c.channelStepper, 16);
        break;
    case Data1Field:
        c.data1Field = c.data1Stepper = qBound(0, c.data1Field, 127);
        break;
    case Data1Stepper:
        c.data1Field = c.data1Stepper = qBound(0, c.data1Stepper, 127);
        break;
    case Data2Field:
        c.data2Field = c.data2Stepper = qBound(0, c.data2Field, 127);
        break;
    case Data2Stepper:
        c.data2Field = c.data2Stepper = qBound(0, c.data2Stepper, 127);
        break;
    case CommandPopUp:
    case Data1FollowsValue:
    case Data2FollowsValue:
        break;
    case AxisRadios:
        if (isFourWay()) {
            m_currentAxis = c.axisCell >= 2 ? 1 : c.axisCell;
            if (editedAction())
                updateForNewAction();
        }
        return;
    default:
        return;
    }
    m_container.setAction(rebuildCustomMessage());
}

std::unique_ptr<TVKAction> MIDIActionEditor::nativeAction()
{
    m_controls.customGroupVisible = false;
    std::unique_ptr<TVKAction> action = m_container.takeAction();
    if (action && action->actionType() == m_actionType) {
        auto* midi = static_cast<TVKMIDIAction*>(action.get());
        midi->setMidiMode(TVKMIDIAction::Native);
        midi->setMidiMessage(nullptr, 0);
        if (auto* fourWay = dynamic_cast<TVK4WayMIDIAction*>(midi))
            fourWay->setMidiMessage(nullptr, 0, 1);
        return action;
    }
    return makeMIDIActionOfType(m_actionType, TVKMIDIAction::Native, nullptr, 0);
}

TVKMIDIAction::Message MIDIActionEditor::composeMessage(unsigned& size) const
{
    const Controls& c = m_controls;
    TVKMIDIAction::Message message{};
    if (c.commandTag > 0xF2) {
        // A one-byte system message.
        message[0] = quint8(c.commandTag);
        size = 1;
        return message;
    }
    const int channel = c.channelStepper > 0 ? c.channelStepper - 1 : 0;
    message[0] = quint8(c.commandTag | channel);
    message[1] = c.data1FollowsValue ? kPlaceholder : quint8(c.data1Stepper);
    // Program change and channel pressure carry one data byte.
    const int command = c.commandTag & 0xF0;
    if (command == 0xC0 || command == 0xD0) {
        size = 2;
        return message;
    }
    message[2] = c.data2FollowsValue ? kPlaceholder : quint8(c.data2Stepper);
    size = 3;
    return message;
}

std::unique_ptr<TVKAction> MIDIActionEditor::rebuildCustomMessage()
{
    unsigned size = 0;
    const TVKMIDIAction::Message message = composeMessage(size);
    std::unique_ptr<TVKAction> action = m_container.takeAction();
    if (action && action->actionType() == m_actionType) {
        auto* midi = static_cast<TVKMIDIAction*>(action.get());
        midi->setMidiMode(TVKMIDIAction::Custom);
        if (auto* fourWay = dynamic_cast<TVK4WayMIDIAction*>(midi))
            fourWay->setMidiMessage(message.data(), size, m_currentAxis);
        else
            midi->setMidiMessage(message.data(), size);
    } else if (isFourWay()) {
        auto fourWay = std::make_unique<TVK4WayMIDIAction>();
        fourWay->setMidiMode(TVKMIDIAction::Custom);
        fourWay->setMidiMessage(message.data(), size, m_currentAxis);
        action = std::move(fourWay);
    } else {
        action = makeMIDIActionOfType(m_actionType, TVKMIDIAction::Custom, message.data(), size);
    }
    showCustomControls(message, size);
    return action;
}

void MIDIActionEditor::showCustomControls(const TVKMIDIAction::Message& message, unsigned size)
{
    Controls& c = m_controls;
    if (size >= 2)
        c.data1Enabled = message[1] != kPlaceholder;
    if (size == 3)
        c.data2Enabled = message[2] != kPlaceholder;
    c.data2GroupVisible = size == 3;
    c.channelGroupVisible = size != 1;
    c.customGroupVisible = true;
}

void MIDIActionEditor::fillCustomControls(const TVKMIDIAction::Message& message, unsigned size)
{
    Controls& c = m_controls;
    auto setData = [](int& field, int& stepper, bool& follows, quint8 byte) {
        follows = byte == kPlaceholder;
        if (!follows)
            field = stepper = byte;
    };
    if (size == 3)
        setData(c.data2Field, c.data2Stepper, c.data2FollowsValue, message[2]);
    if (size == 2 || size == 3) {
        c.commandTag = message[0] & 0xF0;
        c.channelField = c.channelStepper = (message[0] & 0x0F) + 1;
        setData(c.data1Field, c.data1Stepper, c.data1FollowsValue, message[1]);
    } else if (size == 1) {
        c.commandTag = message[0];
    } else {
        c.commandTag = 0x80;
        // The channel stepper cannot go below 1, so the channel shows 1.
        c.channelField = c.channelStepper = 1;
        c.data1Field = c.data1Stepper = 0;
        c.data2Field = c.data2Stepper = 0;
        c.data1FollowsValue = c.data2FollowsValue = false;
    }
}

void MIDIActionEditor::updateForNewAction()
{
    const StateChange change(*this);
    Controls& c = m_controls;
    const TVKMIDIAction* action = editedAction();
    if (!action) {
        c.modeCell = 0;
        c.customGroupVisible = false;
        return;
    }
    c.modeCell = int(action->midiMode());
    if (action->midiMode() != TVKMIDIAction::Custom) {
        c.customGroupVisible = false;
        return;
    }
    TVKMIDIAction::Message message{};
    unsigned size = 4;
    if (const auto* fourWay = dynamic_cast<const TVK4WayMIDIAction*>(action))
        fourWay->getMidiMessage(message.data(), size, m_currentAxis);
    else
        action->getMidiMessage(message.data(), size);
    showCustomControls(message, size);
    fillCustomControls(message, size);
}

} // namespace corvane
