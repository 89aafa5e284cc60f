#include "service/TVK_MessageSpecs.h"

#include "service/MessageFrame.h"

void TVK_OutgoingMessageSpec::serializeField(std::uint32_t field)
{
    corvane::appendLittleEndian32(m_buffer, field);
}

std::uint32_t TVK_IncomingMessageSpec::deserializeNextField()
{
    char word[4] = {0, 0, 0, 0};
    const qsizetype size = m_buffer.size();
    for (int i = 0; i < 4; ++i) {
        const qsizetype at = qsizetype(m_pos) + i;
        if (at < size)
            word[i] = m_buffer.at(at);
    }
    m_pos += 4;
    return corvane::readLittleEndian32(word);
}

TVK_PortConnectDisconnectSpec::TVK_PortConnectDisconnectSpec(std::uint32_t portID)
    : m_portID(portID)
{
    serializeField(m_portID);
}

TVK_EditKeysetSpec::TVK_EditKeysetSpec(std::uint32_t keysetIndex) : m_editKeyset(keysetIndex)
{
    serializeField(m_editKeyset);
}

TVK_EditLayerSpec::TVK_EditLayerSpec(std::uint32_t layerIndex) : m_editLayer(layerIndex)
{
    serializeField(m_editLayer);
}

TVK_OneIntSpec::TVK_OneIntSpec(std::uint32_t oneInt) : m_oneInt(oneInt)
{
    serializeField(m_oneInt);
}

TVK_TwoIntSpec::TVK_TwoIntSpec(std::uint32_t intOne, std::uint32_t intTwo)
    : m_intOne(intOne), m_intTwo(intTwo)
{
    serializeField(m_intOne);
    serializeField(m_intTwo);
}

TVK_ThreeIntSpec::TVK_ThreeIntSpec(std::uint32_t intOne, std::uint32_t intTwo,
                                   std::uint32_t intThree)
    : m_intOne(intOne), m_intTwo(intTwo), m_intThree(intThree)
{
    serializeField(m_intOne);
    serializeField(m_intTwo);
    serializeField(m_intThree);
}

TVK_OutgoingControlStateSpec::TVK_OutgoingControlStateSpec(std::uint32_t group,
                                                           std::uint32_t controlOrChannel,
                                                           std::uint32_t axis, std::uint32_t value)
    : m_groupIndex(group), m_controlNumOrChannel(controlOrChannel), m_axis(axis), m_value(value)
{
    serializeField(m_groupIndex);
    serializeField(m_controlNumOrChannel);
    serializeField(m_axis);
    serializeField(m_value);
}

TVK_OutgoingLongArraySpec::TVK_OutgoingLongArraySpec(std::uint32_t length,
                                                     const std::uint32_t* array,
                                                     std::uint32_t optionalData)
    : m_arrayLength(array ? length : 0), m_optionalData(optionalData)
{
    reserve(qsizetype(m_arrayLength) * 4 + 8);
    serializeField(m_arrayLength);
    serializeField(m_optionalData);
    for (std::uint32_t i = 0; i < m_arrayLength; ++i)
        serializeField(array[i]);
}

TVK_ResetSocketSpec::TVK_ResetSocketSpec(const QString& ipAddress, std::uint32_t port)
    : m_ip(ipAddress), m_port(port)
{
    bool ascii = m_ip.size() < IPFieldSize;
    for (const QChar c : m_ip)
        ascii = ascii && c.unicode() < 0x80;
    if (ascii) {
        // The service reads the text up to its first zero byte, and the port right after it.
        QByteArray text = m_ip.toLatin1();
        const qsizetype zero = text.indexOf('\0');
        if (zero >= 0)
            text.truncate(zero);
        text.append('\0');
        serializeBytes(text);
    }
    serializeField(m_port);
}

TVK_IncomingControlStateSpec::TVK_IncomingControlStateSpec(const QByteArray& data)
    : TVK_IncomingMessageSpec(data)
{
    m_groupIndex = deserializeNextField();
    m_controlNumOrChannel = deserializeNextField();
    m_axis = deserializeNextField();
    m_value = std::int32_t(deserializeNextField());
}

TVK_IncomingCurrentControlInfoSpec::TVK_IncomingCurrentControlInfoSpec(const QByteArray& data)
    : TVK_IncomingMessageSpec(data)
{
    m_keysetIndex = deserializeNextField();
    m_layerIndex = deserializeNextField();
    m_groupIndex = deserializeNextField();
    m_controlNumOrChannel = deserializeNextField();
}
