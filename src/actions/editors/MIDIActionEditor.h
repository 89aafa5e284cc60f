#pragma once

#include "actions/TVKMIDIAction.h"
#include "actions/editors/EditorLogic.h"

class TVKActionContainer;

namespace corvane {

// The MIDI editor's decisions: mode radios, a command pop-up whose item tags are status bytes,
// channel and two data values (each a field and stepper pair with a follows-value box). For the
// 4-way editor every step works on the current axis.
class MIDIActionEditor : public EditorLogic
{
public:
    enum Tag
    {
        ModeRadios = 0,
        CommandPopUp = 1,
        ChannelField = 2,
        ChannelStepper = 3,
        Data1Field = 4,
        Data1Stepper = 5,
        Data1FollowsValue = 6,
        Data2Field = 7,
        Data2Stepper = 8,
        Data2FollowsValue = 9,
        AxisRadios = 10
    };

    MIDIActionEditor(TVKActionContainer& container, qint32 actionType);

    // What the controls show; the widget sets the value of the control the user touched, then
    // calls controlChanged() with its sender tag.
    struct Controls
    {
        int modeCell = 0;
        int commandTag = 0x80;
        int channelField = 1;
        int channelStepper = 1;
        int data1Field = 0;
        int data1Stepper = 0;
        bool data1FollowsValue = false;
        int data2Field = 0;
        int data2Stepper = 0;
        bool data2FollowsValue = false;
        int axisCell = 0;

        bool customGroupVisible = false;
        bool channelGroupVisible = true;
        bool data2GroupVisible = true;
        bool data1Enabled = true;
        bool data2Enabled = true;
    };
    Controls& controls() { return m_controls; }
    const Controls& controls() const { return m_controls; }

    // Acts on a control change; the resulting action (or none) is put into the container.
    void controlChanged(int senderTag);
    void updateForNewAction();
    // The 4-way editor starts on the horizontal axis each time its view is loaded.
    void viewLoaded()
    {
        const StateChange change(*this);
        m_currentAxis = 0;
    }

    int currentAxis() const { return m_currentAxis; }
    bool isFourWay() const { return m_actionType == TVK4WayMIDIAction::kActionType; }

    // The message the controls compose (one to three bytes).
    TVKMIDIAction::Message composeMessage(unsigned& size) const;

private:
    TVKMIDIAction* editedAction() const;
    std::unique_ptr<TVKAction> nativeAction();
    std::unique_ptr<TVKAction> rebuildCustomMessage();
    void showCustomControls(const TVKMIDIAction::Message& message, unsigned size);
    void fillCustomControls(const TVKMIDIAction::Message& message, unsigned size);

    TVKActionContainer& m_container;
    qint32 m_actionType;
    Controls m_controls;
    int m_currentAxis = 0;
};

} // namespace corvane
