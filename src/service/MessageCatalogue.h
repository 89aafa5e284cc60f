#pragma once

#include "core/PlistValue.h"
#include "model/ControlProperties.h"
#include "service/MessageFrame.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <optional>

// Every message ID of the link, in both directions, and the encodings that are not fixed
// field-word layouts. The service is written against exactly these codes and bodies.
namespace corvane::msg {

// Application to service, one-way, field words.
inline constexpr MessageID MPCn = messageID("MPCn"); // local ID of the announcing application
inline constexpr MessageID TCtl = messageID("TCtl"); // group, control, axis, value
inline constexpr MessageID ChEK = messageID("ChEK");
inline constexpr MessageID ChEL = messageID("ChEL");
inline constexpr MessageID Emul = messageID("Emul");
inline constexpr MessageID TMdF = messageID("TMdF");
inline constexpr MessageID TFBk = messageID("TFBk");
inline constexpr MessageID TFPB = messageID("TFPB");
inline constexpr MessageID TFAB = messageID("TFAB");
inline constexpr MessageID RSoc = messageID("RSoc"); // address text and zero, then the port
inline constexpr MessageID TSTL = messageID("TSTL");
inline constexpr MessageID TTLW = messageID("TTLW");
inline constexpr MessageID TTL2 = messageID("TTL2");
inline constexpr MessageID TVNV = messageID("TVNV");
inline constexpr MessageID TSDZ = messageID("TSDZ");
inline constexpr MessageID NVBk = messageID("NVBk");
inline constexpr MessageID NVPB = messageID("NVPB");
inline constexpr MessageID NVAB = messageID("NVAB");

// Application to service, requests without a body.
inline constexpr MessageID RqCC = messageID("RqCC");
inline constexpr MessageID Cnct = messageID("Cnct");

// Application to service, one-way, XML property-list dictionaries.
inline constexpr MessageID TAdK = messageID("TAdK");
inline constexpr MessageID TUpK = messageID("TUpK");
inline constexpr MessageID TDlK = messageID("TDlK");
inline constexpr MessageID RvRB = messageID("RvRB");
inline constexpr MessageID ApEP = messageID("ApEP");
inline constexpr MessageID IDAc = messageID("IDAc");
inline constexpr MessageID TChO = messageID("TChO");
inline constexpr MessageID TUNV = messageID("TUNV");
inline constexpr MessageID TUNB = messageID("TUNB");
// One property of one control: the IDs are those of the control property table
// (model/ControlProperties.h). A control edit for a property the control does not carry still
// goes out, with only the four index keys, under this ID.
inline constexpr MessageID MissingProperty = 0;
MessageID propertyMessage(ControlProperty property);

// Service to application, one-way.
inline constexpr MessageID CurC = messageID("CurC"); // keyset, layer, group, control
inline constexpr MessageID CnSt = messageID("CnSt"); // one 64-bit little-endian integer

enum class BodyKind
{
    Words,          // field words
    ResetSocket,    // "RSoc"
    PropertyList,   // XML property-list dictionary
    Request,        // no body, answered by a reply
    ConnectionState // "CnSt"
};

// How the body of a message from the application is laid out; nullopt for an unknown ID.
std::optional<BodyKind> applicationMessageKind(MessageID id);

// The four characters of a code as text.
QString codeText(MessageID id);

// A dictionary as an XML property list; empty when it cannot be serialised, and the message
// then goes out with an empty body.
QByteArray encodePropertyList(const PlistValue& dictionary);

// "CnSt": one 64-bit little-endian word, non-zero meaning the surface is connected. Shorter
// bodies carry no state.
QByteArray encodeConnectionState(bool connected);
std::optional<bool> decodeConnectionState(QByteArrayView body);

// The "Cnct" reply: at least one field word, non-zero meaning connected. Shorter replies count
// as a failed request.
std::optional<bool> decodeConnectStatusReply(QByteArrayView body);

struct ResetSocket
{
    QString ipAddress; // empty when the sender left the text out
    std::uint32_t port = 0;
};
// nullopt when the body is too short to hold the port word.
std::optional<ResetSocket> decodeResetSocket(QByteArrayView body);

} // namespace corvane::msg
