#pragma once

#include "actions/TVKAction.h"

#include <array>

// Sends a MIDI message: the surface's own message for the control (native) or up to three stored
// bytes (custom), any data byte of which may be kValuePlaceholder, filled in by the service with
// the control's current value.
class TVKMIDIAction : public TVKAction
{
public:
    static constexpr quint8 kValuePlaceholder = 0xF1;
    enum MidiMode : unsigned
    {
        None = 0,
        Native = 1,
        Custom = 2
    };
    using Message = std::array<quint8, 4>;

    TVKMIDIAction() = default;
    explicit TVKMIDIAction(TVKControl* control) : TVKAction(control) {}
    TVKMIDIAction(unsigned mode, const quint8* message, unsigned size, TVKControl* control);
    TVKMIDIAction(const corvane::PlistValue& archive, TVKControl* control);

    unsigned midiMode() const { return m_midiMode; }
    void setMidiMode(unsigned mode) { m_midiMode = mode; }
    unsigned messageSize() const { return m_messageSize; }
    const Message& message() const { return m_message; }

    // Copies the message when it fits ioSize and reports its size there; a message that does
    // not fit is reported as size 0 and nothing is copied.
    void getMidiMessage(quint8* destination, unsigned& ioSize) const;
    void setMidiMessage(const quint8* bytes, unsigned size);

    QString actionDescriptor() const override;
    corvane::FourCharCode editorTabID() const override;
    void writeTo(corvane::PlistValue& dict) const override;

protected:
    TVKMIDIAction(const TVKMIDIAction&) = default;
    // Reads "TVKMMsg"-style data: at most three bytes are kept.
    static unsigned readMessage(const corvane::PlistValue& data, Message& message);
    static void storeMessage(Message& message, unsigned& size, const quint8* bytes, unsigned count);
    // The getMidiMessage rule for one stored message.
    static void copyMessage(const Message& message, unsigned size, quint8* destination,
                            unsigned& ioSize);
    // " value" for the placeholder, else the byte as two hex digits and a blank.
    static QString describeDataByte(quint8 byte);

private:
    Message m_message{};
    unsigned m_midiMode = 0;
    unsigned m_messageSize = 0;
};

class TVKButtonMIDIAction : public TVKMIDIAction
{
public:
    static constexpr qint32 kActionType = 260;
    using TVKMIDIAction::TVKMIDIAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKButtonMIDIAction(const TVKButtonMIDIAction&) = default;
};

class TVKShuttleMIDIAction : public TVKMIDIAction
{
public:
    static constexpr qint32 kActionType = 1028;
    using TVKMIDIAction::TVKMIDIAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKShuttleMIDIAction(const TVKShuttleMIDIAction&) = default;
};

class TVKJogMIDIAction : public TVKMIDIAction
{
public:
    static constexpr qint32 kActionType = 1284;
    using TVKMIDIAction::TVKMIDIAction;
    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }

private:
    TVKJogMIDIAction(const TVKJogMIDIAction&) = default;
};

// Encoders and faders. A new action has resolution 1; one restored from a file that never
// stored a resolution has 0.
class TVKEncoderMIDIAction : public TVKMIDIAction
{
public:
    static constexpr qint32 kActionType = 516;

    TVKEncoderMIDIAction() = default;
    explicit TVKEncoderMIDIAction(TVKControl* control) : TVKMIDIAction(control) {}
    TVKEncoderMIDIAction(unsigned mode, const quint8* message, unsigned size, TVKControl* control)
        : TVKEncoderMIDIAction(mode, message, size, control, 1)
    {}
    TVKEncoderMIDIAction(unsigned mode, const quint8* message, unsigned size, TVKControl* control,
                         unsigned resolution);
    TVKEncoderMIDIAction(const corvane::PlistValue& archive, TVKControl* control);

    unsigned faderResolution() const { return m_faderResolution; }
    void setFaderResolution(unsigned resolution) { m_faderResolution = resolution; }

    std::unique_ptr<TVKAction> copyWithZone() const override;
    qint32 actionType() const override { return kActionType; }
    void writeTo(corvane::PlistValue& dict) const override;

private:
    TVKEncoderMIDIAction(const TVKEncoderMIDIAction&) = default;
    unsigned m_faderResolution = 0;
};

// Trackballs and joysticks: one message per axis. Axis 0 is horizontal (the base's message);
// every other axis number means vertical.
class TVK4WayMIDIAction : public TVKMIDIAction
{
public:
    static constexpr qint32 kActionType = 772;

    TVK4WayMIDIAction() = default;
    explicit TVK4WayMIDIAction(TVKControl* control) : TVKMIDIAction(control) {}
    TVK4WayMIDIAction(unsigned mode, const quint8* hMessage, unsigned hSize, const quint8* vMessage,
                      unsigned vSize, TVKControl* control);
    TVK4WayMIDIAction(const corvane::PlistValue& archive, TVKControl* control);

    unsigned messageSizeForAxis(int axis) const;
    const Message& messageForAxis(int axis) const;
    void getMidiMessage(quint8* destination, unsigned& ioSize, int axis) const;
    void setMidiMessage(const quint8* bytes, unsigned size, int axis);
    using TVKMIDIAction::getMidiMessage;
    using TVKMIDIAction::setMidiMessage;

    std::unique_ptr<TVKAction> copyWithZone() const override;
    QString actionDescriptor() const override;
    qint32 actionType() const override { return kActionType; }
    void writeTo(corvane::PlistValue& dict) const override;

private:
    TVK4WayMIDIAction(const TVK4WayMIDIAction&) = default;
    Message m_message2{};
    unsigned m_messageSize2 = 0;
};
