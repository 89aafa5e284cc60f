#pragma once

#include "actions/editors/EditorLogic.h"
#include "core/NotificationCenter.h"
#include "model/EmulationMode.h"

#include <QList>
#include <QString>
#include <utility>
#include <vector>

class TVKActionContainer;

namespace corvane {

// The emulation editor's decisions for buttons, encoders and the jog wheel: group menus by the
// keyset's emulation mode, setting up for a group, number limits and the new-action rule.
class EmulationActionEditor : public EditorLogic
{
public:
    enum Kind
    {
        Button,
        Encoder,
        Jog,
        // The fader plays the encoder's groups but keeps an emulation class of its own.
        Fader
    };
    enum Tag
    {
        EmulateBox = 0,
        GroupPopUp = 1,
        ControlPopUp = 2,
        NumberField = 3,
        NumberStepper = 4,
        SpeedSlider = 5
    };
    enum class GroupMenu
    {
        Unchanged,
        ModeAB,
        ModeC
    };
    struct GroupInfo
    {
        int numberOfControls = 0;
        bool named = false;
    };
    // One pop-up item: its tag and title.
    using MenuItem = std::pair<int, QString>;

    EmulationActionEditor(TVKActionContainer& container, Kind kind);

    qint32 actionType() const;
    // The group table entry (number of controls, named); a group outside the table has none.
    GroupInfo infoForGroup(int group) const;
    // The group pop-up's items for an emulation mode, and the control pop-up's items of a group.
    QList<MenuItem> groupMenu(GroupMenu menu) const;
    QList<MenuItem> controlMenuForGroup(int group) const;

    // The widget sets the touched control's value here, then calls controlChanged().
    struct Controls
    {
        bool emulateChecked = false;
        int selectedGroup = 0;
        int selectedControlTag = 0;
        int numberField = 0;
        int numberStepper = 0;
        int speedSlider = 1;

        GroupMenu groupMenu = GroupMenu::Unchanged;
        int controlMenuGroup = -1; // whose control menu the control pop-up shows
        bool nameContainerVisible = false;
        bool numberContainerVisible = false;
        bool modeCContainerVisible = false; // jog: the speed slider
    };
    Controls& controls() { return m_controls; }
    const Controls& controls() const { return m_controls; }

    void controlChanged(int senderTag);
    void updateForNewAction();

    // The largest number the field and stepper accept for the selected group.
    int numberLimit() const;

    // The emulation mode of the keyset being edited; 0 without one.
    static EmulationMode selectedKeysetEmulationMode();

private:
    void setUpForGroup(int group);
    void makeNewAction();

    TVKActionContainer& m_container;
    Kind m_kind;
    Controls m_controls;
    NotificationCenter::Observation m_emulationChangeObservation;
    NotificationCenter::Observation m_lockObservation;
};

} // namespace corvane
