#pragma once

#include "actions/TVKAction.h"

// Makes a surface control play one control of the emulated console: which group, which control
// in it, and how the control is named in texts.
class TVKEmulationAction : public TVKAction
{
public:
    TVKEmulationAction() = default;
    explicit TVKEmulationAction(TVKControl* control) : TVKAction(control) {}
    TVKEmulationAction(TVKControl* control, int emulatedGroupIndex, int emulatedControlIndex,
                       bool namedControl, bool onlyControlInGroup);
    TVKEmulationAction(const corvane::PlistValue& archive, TVKControl* control);

    int emulatedGroup() const { return m_emulatedGroup; }
    void setEmulatedGroup(int group) { m_emulatedGroup = group; }
    int emulatedControl() const { return m_emulatedControl; }
    void setEmulatedControl(int control) { m_emulatedControl = control; }
    bool displayControlAsName() const { return m_displayControlAsName; }
    void setDisplayControlAsName(bool named) { m_displayControlAsName = named; }
    bool onlyControlInGroup() const { return m_onlyControlInGroup; }
    void setOnlyControlInGroup(bool only) { m_onlyControlInGroup = only; }

    corvane::FourCharCode editorTabID() const override;
    void writeTo(corvane::PlistValue& dict) const override;

protected:
    TVKEmulationAction(const TVKEmulationAction&) = default;
    // "Emulation- group" or "Emulation- group: n" for numbered groups.
    QString numberedDescriptor(const QString& groupName) const;

private:
    int m_emulatedGroup = 0;
    int m_emulatedControl = 0;
    bool m_displayControlAsName = false;
    bool m_onlyControlInGroup = false;
};

class TVKButtonEmulationAction : public TVKEmulationAction
{
public:
    static constexpr qint32 kActionType = 262;
    using TVKEmulationAction::TVKEmulationAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKButtonEmulationAction(const TVKButtonEmulationAction&) = default;
};

class TVKEncoderEmulationAction : public TVKEmulationAction
{
public:
    static constexpr qint32 kActionType = 518;
    using TVKEmulationAction::TVKEmulationAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKEncoderEmulationAction(const TVKEncoderEmulationAction&) = default;
};

// Faders emulate the console's encoder groups and describe themselves the same way.
class TVKFaderEmulationAction : public TVKEmulationAction
{
public:
    static constexpr qint32 kActionType = 1542;
    using TVKEmulationAction::TVKEmulationAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKFaderEmulationAction(const TVKFaderEmulationAction&) = default;
};

// The layer's default jog emulation has speed 0 until edited; a file that never stored a speed
// reads back as 1.
class TVKJogEmulationAction : public TVKEmulationAction
{
public:
    static constexpr qint32 kActionType = 1286;
    using TVKEmulationAction::TVKEmulationAction;
    TVKJogEmulationAction(TVKControl* control, unsigned jogSpeed);
    TVKJogEmulationAction(const corvane::PlistValue& archive, TVKControl* control);

    unsigned jogSpeed() const { return m_jogSpeed; }
    void setJogSpeed(unsigned speed) { m_jogSpeed = speed; }

    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override;
    qint32 actionType() const override { return kActionType; }
    void writeTo(corvane::PlistValue& dict) const override;

private:
    TVKJogEmulationAction(const TVKJogEmulationAction&) = default;
    unsigned m_jogSpeed = 0;
};
