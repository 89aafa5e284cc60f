#pragma once

#include "actions/TVKAction.h"
#include "core/PlistValue.h"

#include <QString>
#include <memory>

class TVKModelData;
class TVKKeyset;
class TVKLayer;

namespace corvane {

// Control type codes. The layers' factory uses them both for new controls and for archived ones,
// so they are part of every stored configuration.
namespace ControlType {
inline constexpr int Button = 0;
inline constexpr int Encoder = 1;
inline constexpr int FourWay = 2;
inline constexpr int Shuttle = 3;
inline constexpr int Jog = 4;
inline constexpr int LCDDisplay = 5;
inline constexpr int TimecodeDisplay = 6;
inline constexpr int Fader = 7;
inline constexpr int Joystick = 8;
inline constexpr int MultiColorButton = 9;
inline constexpr int LCDButtonDisplay = 10;
// The NV display lines: the same class as LCDDisplay, kept as a code of its own.
inline constexpr int NVLCDDisplay = 11;

// Whether a type code makes a display (its action is a display action).
constexpr bool isDisplayType(int type)
{
    return type == LCDDisplay || type == TimecodeDisplay || type == LCDButtonDisplay ||
           type == NVLCDDisplay;
}
} // namespace ControlType

// A control's default kind of action, as chosen by "Set All Controls to %@".
namespace ActionMode {
inline constexpr int Developer = 0;
inline constexpr int NativeMIDI = 1;
inline constexpr int Emulation = 2;
inline constexpr int RawEthernet = 3;
} // namespace ActionMode

} // namespace corvane

// One physical element of the surface in one layer of one keyset. The control owns its action;
// its links to the model data, keyset and layer are non-owning. There is no QObject per control:
// a large configuration holds a few hundred thousand of them.
class TVKControl
{
public:
    // initWithType:name:owner:keyset:layer:groupID:andIndex:
    TVKControl(int type, const QString& name, TVKModelData* owner, TVKKeyset* keyset,
               TVKLayer* layer, int groupID, int index);
    // initWithArchive:owner:keyset:layer:groupID:andIndex:. The type is the archived one, not the
    // one the layer's table would give. The archived action is restored while the control is
    // still being built, so an action's archive constructor may keep the control pointer but must
    // not ask the control for anything its subclass adds.
    TVKControl(const corvane::PlistValue& archive, TVKModelData* owner, TVKKeyset* keyset,
               TVKLayer* layer, int groupID, int index);
    virtual ~TVKControl();

    TVKControl(const TVKControl&) = delete;
    TVKControl& operator=(const TVKControl&) = delete;

    // "TVKName", "TVKUName", "TVKType", "TVKAction" (only with an action), then subclass keys.
    virtual void writeTo(corvane::PlistValue& dict) const;

    // What the surface windows print on the control: the user name when there is one.
    virtual QString displayableName() const;

    // Replaces the action by a fresh standard action for the mode (0..3).
    virtual void setActionMode(int mode);
    virtual qint32 actionModeToActionType(int mode) const;
    virtual int actionModeToActionSubType(int mode) const;

    // Copies the user name, the action unless it is an emulation, and the subclass settings.
    // False, copying nothing, when the two controls have different type codes.
    virtual bool copyFromWithoutEmulation(const TVKControl& source);

    virtual bool isDisplay() const { return false; }

    bool latched() const { return m_latched; }
    void setLatched(bool latched) { m_latched = latched; }
    const QString& name() const { return m_name; }
    void setName(const QString& name) { m_name = name; }
    const QString& userName() const { return m_userName; }
    void setUserName(const QString& userName) { m_userName = userName; }
    // The control type code (tvkControlType).
    int type() const { return m_type; }
    int tvkControlType() const { return m_type; }
    void setTvkControlType(int type) { m_type = type; }
    TVKModelData* owner() const { return m_owner; }
    void setOwner(TVKModelData* owner) { m_owner = owner; }
    TVKKeyset* keyset() const { return m_keyset; }
    void setKeyset(TVKKeyset* keyset) { m_keyset = keyset; }
    TVKLayer* layer() const { return m_layer; }
    void setLayer(TVKLayer* layer) { m_layer = layer; }
    int groupID() const { return m_groupID; }
    void setGroupID(int groupID) { m_groupID = groupID; }
    int index() const { return m_controlIndex; }
    int controlIndex() const { return m_controlIndex; }
    void setControlIndex(int index) { m_controlIndex = index; }

    TVKAction* action() const { return m_action.get(); }
    // Stores a copy of the action (none clears it). The copy always points back at this control:
    // actions are copied between layers and keysets, and a copy still pointing at its source's
    // control would be left dangling once that control's keyset is replaced.
    void setAction(const TVKAction* action);
    // Takes a freshly made action as it is, without a copy (factories, undo); re-pointed as above.
    void adoptAction(std::unique_ptr<TVKAction> action);
    // Hands the action out and leaves the control without one.
    std::unique_ptr<TVKAction> takeAction();

protected:
    // The action part of copyFromWithoutEmulation; display controls have their own rule.
    virtual void copyActionWithoutEmulation(const TVKControl& source);
    // Subclass settings copied by copyFromWithoutEmulation (the source has the same type code).
    virtual void copySettingsFrom(const TVKControl& source);

private:
    QString m_name;
    QString m_userName;
    TVKModelData* m_owner = nullptr;
    TVKKeyset* m_keyset = nullptr;
    TVKLayer* m_layer = nullptr;
    std::unique_ptr<TVKAction> m_action;
    int m_type = 0;
    int m_groupID = 0;
    int m_controlIndex = 0;
    bool m_latched = false;
};

class TVKButtonControl : public TVKControl
{
public:
    TVKButtonControl(int type, const QString& name, TVKModelData* owner, TVKKeyset* keyset,
                     TVKLayer* layer, int groupID, int index);
    TVKButtonControl(const corvane::PlistValue& archive, TVKModelData* owner, TVKKeyset* keyset,
                     TVKLayer* layer, int groupID, int index);

    void writeTo(corvane::PlistValue& dict) const override;
    qint32 actionModeToActionType(int mode) const override;

protected:
    void copySettingsFrom(const TVKControl& source) override;
};

class TVKEncoderControl : public TVKControl
{
public:
    using TVKControl::TVKControl;

    QString displayableName() const override;
    qint32 actionModeToActionType(int mode) const override;
};

// The trackballs.
class TVK4WayControl : public TVKControl
{
public:
    TVK4WayControl(int type, const QString& name, TVKModelData* owner, TVKKeyset* keyset,
                   TVKLayer* layer, int groupID, int index);
    TVK4WayControl(const corvane::PlistValue& archive, TVKModelData* owner, TVKKeyset* keyset,
                   TVKLayer* layer, int groupID, int index);

    void writeTo(corvane::PlistValue& dict) const override;
    qint32 actionModeToActionType(int mode) const override;

    int onColor() const { return m_onColor; }
    void setOnColor(int color) { m_onColor = color; }
    int brightness() const { return m_brightness; }
    void setBrightness(int brightness) { m_brightness = brightness; }

protected:
    void copySettingsFrom(const TVKControl& source) override;

private:
    int m_onColor = 0;
    int m_brightness = 10;
};

class TVKShuttleControl : public TVKControl
{
public:
    using TVKControl::TVKControl;

    qint32 actionModeToActionType(int mode) const override;
};

class TVKJogControl : public TVKControl
{
public:
    TVKJogControl(int type, const QString& name, TVKModelData* owner, TVKKeyset* keyset,
                  TVKLayer* layer, int groupID, int index);
    TVKJogControl(const corvane::PlistValue& archive, TVKModelData* owner, TVKKeyset* keyset,
                  TVKLayer* layer, int groupID, int index);

    void writeTo(corvane::PlistValue& dict) const override;
    qint32 actionModeToActionType(int mode) const override;

    int sensitivity() const { return m_sensitivity; }
    void setSensitivity(int sensitivity) { m_sensitivity = sensitivity; }

private:
    int m_sensitivity = 64;
};

class TVKFaderControl : public TVKControl
{
public:
    using TVKControl::TVKControl;

    QString displayableName() const override;
    // Borrows the encoder's developer and MIDI types but has an emulation type of its own.
    qint32 actionModeToActionType(int mode) const override;
};

class TVKJoystickControl : public TVKControl
{
public:
    TVKJoystickControl(int type, const QString& name, TVKModelData* owner, TVKKeyset* keyset,
                       TVKLayer* layer, int groupID, int index);
    TVKJoystickControl(const corvane::PlistValue& archive, TVKModelData* owner, TVKKeyset* keyset,
                       TVKLayer* layer, int groupID, int index);

    void writeTo(corvane::PlistValue& dict) const override;
    qint32 actionModeToActionType(int mode) const override;

    int joystickSensitivity() const { return m_joystickSensitivity; }
    void setJoystickSensitivity(int sensitivity) { m_joystickSensitivity = sensitivity; }

private:
    int m_joystickSensitivity = 2;
};

// A lit button with an on and an off colour (six-bit colours); NV LCD buttons may belong to one
// of the layer's NV button groups.
class TVKMultiColorButtonControl : public TVKButtonControl
{
public:
    TVKMultiColorButtonControl(int type, const QString& name, TVKModelData* owner,
                               TVKKeyset* keyset, TVKLayer* layer, int groupID, int index);
    TVKMultiColorButtonControl(const corvane::PlistValue& archive, TVKModelData* owner,
                               TVKKeyset* keyset, TVKLayer* layer, int groupID, int index);

    void writeTo(corvane::PlistValue& dict) const override;

    // User name, action, latch and both colours; the NV group membership stays.
    void copyMultiColorButton(const TVKMultiColorButtonControl& button);

    int onColor() const { return m_onColor; }
    void setOnColor(int color) { m_onColor = color; }
    int offColor() const { return m_offColor; }
    void setOffColor(int color) { m_offColor = color; }
    int memberOfGroup() const { return m_memberOfGroup; }
    void setMemberOfGroup(int group) { m_memberOfGroup = group; }

protected:
    void copySettingsFrom(const TVKControl& source) override;

private:
    int m_onColor = 7;
    int m_offColor = 7;
    int m_memberOfGroup = -1;
};

// LCD button of the partner surface variant: adds a selection flag (not archived) and a group.
class TVKFrameletLCDButtonControl : public TVKMultiColorButtonControl
{
public:
    TVKFrameletLCDButtonControl(int type, const QString& name, TVKModelData* owner,
                                TVKKeyset* keyset, TVKLayer* layer, int groupID, int index);
    TVKFrameletLCDButtonControl(const corvane::PlistValue& archive, TVKModelData* owner,
                                TVKKeyset* keyset, TVKLayer* layer, int groupID, int index);

    void writeTo(corvane::PlistValue& dict) const override;

    bool isSelected() const { return m_isSelected; }
    void setIsSelected(bool selected) { m_isSelected = selected; }
    void toggleIsSelected() { m_isSelected = !m_isSelected; }
    int buttonGroup() const { return m_buttonGroup; }
    void setButtonGroup(int group) { m_buttonGroup = group; }

protected:
    void copySettingsFrom(const TVKControl& source) override;

private:
    int m_buttonGroup = 0;
    bool m_isSelected = false;
};
