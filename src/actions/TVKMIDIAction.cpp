#include "actions/TVKMIDIAction.h"

#include "actions/ActionText.h"
#include "core/StoredKeys.h"
#include "surface/TVK_Constant_Server.h"

#include <algorithm>
#include <cstring>

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

QString midiModeText(unsigned mode)
{
    return corvane::surfaceConstants().midiModeDescriptor(int(mode));
}

PlistValue messageData(const TVKMIDIAction::Message& message, unsigned size)
{
    return PlistValue(QByteArray(reinterpret_cast<const char*>(message.data()),
                                 qsizetype(std::min<unsigned>(size, unsigned(message.size())))));
}

} // namespace

TVKMIDIAction::TVKMIDIAction(unsigned mode, const quint8* message, unsigned size,
                             TVKControl* control)
    : TVKAction(control), m_midiMode(mode)
{
    storeMessage(m_message, m_messageSize, message, size);
}

TVKMIDIAction::TVKMIDIAction(const PlistValue& archive, TVKControl* control)
    : TVKAction(archive, control)
{
    m_midiMode = unsigned(archive.value(key::MMode).toUnsigned() & 0xFFFFFFFFu);
    m_messageSize = readMessage(archive.value(key::MMsg), m_message);
}

unsigned TVKMIDIAction::readMessage(const PlistValue& data, Message& message)
{
    message.fill(0);
    if (!data.isData())
        return 0;
    const QByteArray bytes = data.toData();
    // Over-long messages from older or damaged files are cut to three bytes.
    const unsigned size = unsigned(std::min<qsizetype>(bytes.size(), 3));
    std::memcpy(message.data(), bytes.constData(), size);
    return size;
}

void TVKMIDIAction::storeMessage(Message& message, unsigned& size, const quint8* bytes,
                                 unsigned count)
{
    message.fill(0);
    size = bytes ? std::min<unsigned>(count, unsigned(message.size())) : 0;
    if (size)
        std::memcpy(message.data(), bytes, size);
}

void TVKMIDIAction::copyMessage(const Message& message, unsigned size, quint8* destination,
                                unsigned& ioSize)
{
    if (size <= ioSize && destination) {
        std::memcpy(destination, message.data(), size);
        ioSize = size;
    } else {
        ioSize = 0;
    }
}

void TVKMIDIAction::getMidiMessage(quint8* destination, unsigned& ioSize) const
{
    copyMessage(m_message, m_messageSize, destination, ioSize);
}

void TVKMIDIAction::setMidiMessage(const quint8* bytes, unsigned size)
{
    storeMessage(m_message, m_messageSize, bytes, size);
}

QString TVKMIDIAction::describeDataByte(quint8 byte)
{
    if (byte == kValuePlaceholder)
        return QStringLiteral(" value");
    return QLatin1Char(' ') + corvane::hexByte(byte) + QLatin1Char(' ');
}

QString TVKMIDIAction::actionDescriptor() const
{
    if (m_midiMode == Native)
        return QStringLiteral("Native MIDI");
    // The first byte is printed even for an empty message; the blanks around the data bytes
    // are uneven on purpose, so the texts match what users have always seen.
    QString text = midiModeText(m_midiMode) + QStringLiteral(": ") + corvane::hexByte(m_message[0]);
    if (m_messageSize >= 2)
        text += describeDataByte(m_message[1]);
    if (m_messageSize == 3)
        text += describeDataByte(m_message[2]);
    return text;
}

corvane::FourCharCode TVKMIDIAction::editorTabID() const
{
    return corvane::fourCC("MIDI");
}

void TVKMIDIAction::writeTo(PlistValue& dict) const
{
    TVKAction::writeTo(dict);
    dict.insert(key::MMode, PlistValue(quint64(m_midiMode)));
    if (m_midiMode == Custom)
        dict.insert(key::MMsg, messageData(m_message, m_messageSize));
}

std::unique_ptr<TVKAction> TVKButtonMIDIAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKButtonMIDIAction(*this));
}

std::unique_ptr<TVKAction> TVKShuttleMIDIAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKShuttleMIDIAction(*this));
}

std::unique_ptr<TVKAction> TVKJogMIDIAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKJogMIDIAction(*this));
}

// ---- encoder

TVKEncoderMIDIAction::TVKEncoderMIDIAction(unsigned mode, const quint8* message, unsigned size,
                                           TVKControl* control, unsigned resolution)
    : TVKMIDIAction(mode, message, size, control), m_faderResolution(resolution)
{}

TVKEncoderMIDIAction::TVKEncoderMIDIAction(const PlistValue& archive, TVKControl* control)
    : TVKMIDIAction(archive, control)
{
    m_faderResolution = unsigned(archive.value(key::FdrRes).toUnsigned(0) & 0xFFFFFFFFu);
}

std::unique_ptr<TVKAction> TVKEncoderMIDIAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVKEncoderMIDIAction(*this));
}

void TVKEncoderMIDIAction::writeTo(PlistValue& dict) const
{
    TVKMIDIAction::writeTo(dict);
    dict.insert(key::FdrRes, PlistValue(quint64(m_faderResolution)));
}

// ---- 4-way

TVK4WayMIDIAction::TVK4WayMIDIAction(unsigned mode, const quint8* hMessage, unsigned hSize,
                                     const quint8* vMessage, unsigned vSize, TVKControl* control)
    : TVKMIDIAction(mode, hMessage, hSize, control)
{
    storeMessage(m_message2, m_messageSize2, vMessage, vSize);
}

TVK4WayMIDIAction::TVK4WayMIDIAction(const PlistValue& archive, TVKControl* control)
    : TVKMIDIAction(archive, control)
{
    m_messageSize2 = readMessage(archive.value(key::MMsg2), m_message2);
}

unsigned TVK4WayMIDIAction::messageSizeForAxis(int axis) const
{
    return axis == 0 ? messageSize() : m_messageSize2;
}

const TVKMIDIAction::Message& TVK4WayMIDIAction::messageForAxis(int axis) const
{
    return axis == 0 ? message() : m_message2;
}

void TVK4WayMIDIAction::getMidiMessage(quint8* destination, unsigned& ioSize, int axis) const
{
    copyMessage(messageForAxis(axis), messageSizeForAxis(axis), destination, ioSize);
}

void TVK4WayMIDIAction::setMidiMessage(const quint8* bytes, unsigned size, int axis)
{
    if (axis == 0)
        setMidiMessage(bytes, size);
    else
        storeMessage(m_message2, m_messageSize2, bytes, size);
}

std::unique_ptr<TVKAction> TVK4WayMIDIAction::copyWithZone() const
{
    return std::unique_ptr<TVKAction>(new TVK4WayMIDIAction(*this));
}

QString TVK4WayMIDIAction::actionDescriptor() const
{
    if (midiMode() == Native)
        return QStringLiteral("Native MIDI");
    auto describeAxis = [](const Message& message, unsigned size) {
        if (size == 0)
            return QStringLiteral("none ");
        QString text;
        for (unsigned i = 0; i < size && i < message.size(); ++i) {
            text += message[i] == kValuePlaceholder ? QStringLiteral("value")
                                                    : corvane::hexByte(message[i]);
            text += QLatin1Char(' ');
        }
        return text;
    };
    return midiModeText(Custom) + QStringLiteral(": ") + midiModeText(3) + QStringLiteral(" - ") +
           describeAxis(message(), messageSize()) + midiModeText(4) + QStringLiteral(" - ") +
           describeAxis(m_message2, m_messageSize2);
}

void TVK4WayMIDIAction::writeTo(PlistValue& dict) const
{
    TVKMIDIAction::writeTo(dict);
    if (midiMode() == Custom)
        dict.insert(key::MMsg2, messageData(m_message2, m_messageSize2));
}
