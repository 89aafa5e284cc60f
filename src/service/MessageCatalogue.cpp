#include "service/MessageCatalogue.h"

#include "core/PlistCodec.h"

#include <QtEndian>

namespace corvane::msg {

MessageID propertyMessage(ControlProperty property)
{
    return MessageID(controlProperty(property).message);
}

std::optional<BodyKind> applicationMessageKind(MessageID id)
{
    if (controlPropertyForMessage(FourCharCode(id)))
        return BodyKind::PropertyList;
    switch (id) {
    case MPCn:
    case TCtl:
    case ChEK:
    case ChEL:
    case Emul:
    case TMdF:
    case TFBk:
    case TFPB:
    case TFAB:
    case TSTL:
    case TTLW:
    case TTL2:
    case TVNV:
    case TSDZ:
    case NVBk:
    case NVPB:
    case NVAB:
        return BodyKind::Words;
    case RSoc:
        return BodyKind::ResetSocket;
    case RqCC:
    case Cnct:
        return BodyKind::Request;
    case TAdK:
    case TUpK:
    case TDlK:
    case RvRB:
    case ApEP:
    case IDAc:
    case TChO:
    case TUNV:
    case TUNB:
    case MissingProperty:
        return BodyKind::PropertyList;
    default:
        return std::nullopt;
    }
}

QString codeText(MessageID id)
{
    const auto code = std::uint32_t(id);
    QString text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text.append(QChar(ushort((code >> shift) & 0xFF)));
    return text;
}

QByteArray encodePropertyList(const PlistValue& dictionary)
{
    if (!dictionary.isDict())
        return QByteArray();
    return PlistCodec::write(dictionary, PlistFormat::Xml);
}

QByteArray encodeConnectionState(bool connected)
{
    char bytes[8];
    qToLittleEndian<quint64>(connected ? 1 : 0, bytes);
    return QByteArray(bytes, 8);
}

std::optional<bool> decodeConnectionState(QByteArrayView body)
{
    if (body.size() < 8)
        return std::nullopt;
    return qFromLittleEndian<quint64>(body.data()) != 0;
}

std::optional<bool> decodeConnectStatusReply(QByteArrayView body)
{
    if (body.size() < 4)
        return std::nullopt;
    return readLittleEndian32(body.data()) != 0;
}

std::optional<ResetSocket> decodeResetSocket(QByteArrayView body)
{
    if (body.size() < 4)
        return std::nullopt;
    ResetSocket result;
    if (body.size() == 4) {
        result.port = readLittleEndian32(body.data());
        return result;
    }
    const qsizetype zero = body.indexOf('\0');
    if (zero < 0 || body.size() - zero - 1 < 4)
        return std::nullopt;
    result.ipAddress = QString::fromLatin1(body.data(), zero);
    result.port = readLittleEndian32(body.data() + zero + 1);
    return result;
}

} // namespace corvane::msg
