#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

// Builders and parsers of the fixed-layout message bodies: field words (32-bit, little-endian)
// one after another, with no header and no length prefix.

class TVK_OutgoingMessageSpec
{
public:
    virtual ~TVK_OutgoingMessageSpec() = default;

    std::uint32_t bufferSize() const { return std::uint32_t(m_buffer.size()); }
    // Appends one field word.
    void serializeField(std::uint32_t field);
    // A copy of the bytes written so far.
    QByteArray data() const { return m_buffer; }

protected:
    TVK_OutgoingMessageSpec() = default;
    // Raw bytes of a field that is not a word (the reset-socket address text).
    void serializeBytes(const QByteArray& bytes) { m_buffer.append(bytes); }
    void reserve(qsizetype bytes) { m_buffer.reserve(bytes); }

private:
    QByteArray m_buffer;
};

class TVK_IncomingMessageSpec
{
public:
    explicit TVK_IncomingMessageSpec(const QByteArray& data) : m_buffer(data) {}
    virtual ~TVK_IncomingMessageSpec() = default;

    std::uint32_t bufferSize() const { return std::uint32_t(m_buffer.size()); }
    std::uint32_t pos() const { return m_pos; }
    // The word at the read position. Bytes the sender did not supply read as zero, so a short
    // body never makes the reader run past what was received.
    std::uint32_t deserializeNextField();

private:
    QByteArray m_buffer;
    std::uint32_t m_pos = 0;
};

class TVK_PortConnectDisconnectSpec : public TVK_OutgoingMessageSpec
{
public:
    explicit TVK_PortConnectDisconnectSpec(std::uint32_t portID);
    std::uint32_t portID() const { return m_portID; }

private:
    std::uint32_t m_portID;
};

class TVK_EditKeysetSpec : public TVK_OutgoingMessageSpec
{
public:
    explicit TVK_EditKeysetSpec(std::uint32_t keysetIndex);
    std::uint32_t editKeyset() const { return m_editKeyset; }

private:
    std::uint32_t m_editKeyset;
};

class TVK_EditLayerSpec : public TVK_OutgoingMessageSpec
{
public:
    explicit TVK_EditLayerSpec(std::uint32_t layerIndex);
    std::uint32_t editLayer() const { return m_editLayer; }

private:
    std::uint32_t m_editLayer;
};

class TVK_OneIntSpec : public TVK_OutgoingMessageSpec
{
public:
    explicit TVK_OneIntSpec(std::uint32_t oneInt);
    std::uint32_t oneInt() const { return m_oneInt; }

private:
    std::uint32_t m_oneInt;
};

class TVK_TwoIntSpec : public TVK_OutgoingMessageSpec
{
public:
    TVK_TwoIntSpec(std::uint32_t intOne, std::uint32_t intTwo);
    std::uint32_t intOne() const { return m_intOne; }
    std::uint32_t intTwo() const { return m_intTwo; }

private:
    std::uint32_t m_intOne;
    std::uint32_t m_intTwo;
};

class TVK_ThreeIntSpec : public TVK_OutgoingMessageSpec
{
public:
    TVK_ThreeIntSpec(std::uint32_t intOne, std::uint32_t intTwo, std::uint32_t intThree);
    std::uint32_t intOne() const { return m_intOne; }
    std::uint32_t intTwo() const { return m_intTwo; }
    std::uint32_t intThree() const { return m_intThree; }

private:
    std::uint32_t m_intOne;
    std::uint32_t m_intTwo;
    std::uint32_t m_intThree;
};

class TVK_OutgoingControlStateSpec : public TVK_OutgoingMessageSpec
{
public:
    TVK_OutgoingControlStateSpec(std::uint32_t group, std::uint32_t controlOrChannel,
                                 std::uint32_t axis, std::uint32_t value);
    std::uint32_t groupIndex() const { return m_groupIndex; }
    std::uint32_t controlNumOrChannel() const { return m_controlNumOrChannel; }
    std::uint32_t axis() const { return m_axis; }
    std::uint32_t value() const { return m_value; }

private:
    std::uint32_t m_groupIndex;
    std::uint32_t m_controlNumOrChannel;
    std::uint32_t m_axis;
    std::uint32_t m_value;
};

// arrayLength, optionalData, then arrayLength words from array: arrayLength × 4 + 8 bytes.
class TVK_OutgoingLongArraySpec : public TVK_OutgoingMessageSpec
{
public:
    TVK_OutgoingLongArraySpec(std::uint32_t length, const std::uint32_t* array,
                              std::uint32_t optionalData);
    std::uint32_t arrayLength() const { return m_arrayLength; }
    std::uint32_t optionalData() const { return m_optionalData; }

private:
    std::uint32_t m_arrayLength;
    std::uint32_t m_optionalData;
};

// The address as ASCII with its terminating zero (left out entirely when it is not ASCII or
// does not fit the service's 32-byte field), then the port as one word.
class TVK_ResetSocketSpec : public TVK_OutgoingMessageSpec
{
public:
    static constexpr int IPFieldSize = 32;

    TVK_ResetSocketSpec(const QString& ipAddress, std::uint32_t port);
    QString ip() const { return m_ip; }
    std::uint32_t port() const { return m_port; }

private:
    QString m_ip;
    std::uint32_t m_port;
};

class TVK_IncomingControlStateSpec : public TVK_IncomingMessageSpec
{
public:
    explicit TVK_IncomingControlStateSpec(const QByteArray& data);
    std::uint32_t groupIndex() const { return m_groupIndex; }
    std::uint32_t controlNumOrChannel() const { return m_controlNumOrChannel; }
    std::uint32_t axis() const { return m_axis; }
    // Sent as the two's-complement pattern of a signed value.
    std::int32_t value() const { return m_value; }

private:
    std::uint32_t m_groupIndex;
    std::uint32_t m_controlNumOrChannel;
    std::uint32_t m_axis;
    std::int32_t m_value;
};

class TVK_IncomingCurrentControlInfoSpec : public TVK_IncomingMessageSpec
{
public:
    explicit TVK_IncomingCurrentControlInfoSpec(const QByteArray& data);
    std::uint32_t keysetIndex() const { return m_keysetIndex; }
    std::uint32_t layerIndex() const { return m_layerIndex; }
    std::uint32_t groupIndex() const { return m_groupIndex; }
    std::uint32_t controlNumOrChannel() const { return m_controlNumOrChannel; }

private:
    std::uint32_t m_keysetIndex;
    std::uint32_t m_layerIndex;
    std::uint32_t m_groupIndex;
    std::uint32_t m_controlNumOrChannel;
};
