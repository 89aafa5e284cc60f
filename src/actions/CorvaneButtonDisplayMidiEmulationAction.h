#pragma once

#include "actions/TVKDisplayAction.h"

// A status line on an LCD button telling whether its control sends native MIDI or emulates.
class CorvaneButtonDisplayMidiEmulationAction : public TVKDisplayAction
{
public:
    static constexpr qint32 kActionType = 0x10070a;
    enum Mode : unsigned
    {
        NativeMIDI = 1,
        Emulation = 2
    };

    CorvaneButtonDisplayMidiEmulationAction() = default;
    explicit CorvaneButtonDisplayMidiEmulationAction(TVKControl* control)
        : TVKDisplayAction(control)
    {}
    CorvaneButtonDisplayMidiEmulationAction(TVKControl* control, unsigned mode);
    CorvaneButtonDisplayMidiEmulationAction(const corvane::PlistValue& archive,
                                            TVKControl* control);

    unsigned mode() const { return m_mode; }
    void setMode(unsigned mode) { m_mode = mode; }

    QString text() override;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override;
    qint32 actionType() const override { return kActionType; }
    corvane::FourCharCode editorTabID() const override { return corvane::fourCC("MDEM"); }
    void writeTo(corvane::PlistValue& dict) const override;

private:
    CorvaneButtonDisplayMidiEmulationAction(const CorvaneButtonDisplayMidiEmulationAction&) =
        default;
    // "A" when the owning control's keyset emulates in mode A, else "B".
    QString emulationModeLetter() const;
    unsigned m_mode = 0;
};
