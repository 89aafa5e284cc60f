#include "service/TVK_PrivateMessenger.h"

#include "actions/TVKNULLAction.h"
#include "core/Notifications.h"
#include "core/StoredKeys.h"
#include "model/ControlProperties.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "service/MessageCatalogue.h"
#include "service/TVKMessengerDelegate.h"
#include "service/TVK_MessageSpecs.h"

namespace key = corvane::key;

using corvane::MessageID;
using corvane::PlistValue;
namespace msg = corvane::msg;

TVK_PrivateMessenger::TVK_PrivateMessenger(corvane::FourCharCode localID,
                                           const QString& remotePortName,
                                           TVKMessengerDelegate* owner)
    : TVK_CarbonCocoaMessenger(localID, remotePortName, owner),
      m_modelData(owner ? owner->modelData() : nullptr)
{}

bool TVK_PrivateMessenger::sendChangeEditKeysetMessage(qint64 keysetIndex)
{
    return sendMessageWithId(msg::ChEK, TVK_EditKeysetSpec(std::uint32_t(keysetIndex)).data());
}

bool TVK_PrivateMessenger::sendChangeEditLayerMessage(qint64 layerIndex)
{
    return sendMessageWithId(msg::ChEL, TVK_EditLayerSpec(std::uint32_t(layerIndex)).data());
}

bool TVK_PrivateMessenger::sendEmulationModeMessage(qint64 mode)
{
    return sendMessageWithId(msg::Emul, TVK_OneIntSpec(std::uint32_t(mode)).data());
}

bool TVK_PrivateMessenger::sendModifierFunction(qint64 function)
{
    return sendMessageWithId(msg::TMdF, TVK_OneIntSpec(std::uint32_t(function)).data());
}

bool TVK_PrivateMessenger::sendResetSocketMessage(const QString& ipAddress, qint64 port)
{
    return sendMessageWithId(msg::RSoc, TVK_ResetSocketSpec(ipAddress, std::uint32_t(port)).data());
}

bool TVK_PrivateMessenger::sendProperties(const PlistValue& dictionary, MessageID msgid)
{
    return sendMessageWithId(msgid, msg::encodePropertyList(dictionary));
}

bool TVK_PrivateMessenger::updateProperty(int property, qint64 value, int keyset)
{
    MessageID msgid;
    switch (property) {
    case ReverseButtonsProperty:
        msgid = msg::RvRB;
        break;
    case EthernetPortProperty:
        msgid = msg::ApEP;
        break;
    default:
        return false;
    }
    PlistValue dict = PlistValue::makeDict(2);
    dict.insert(corvane::info::KeysetIndex, PlistValue(qint64(keyset)));
    dict.insert(corvane::info::PropVal, PlistValue(value));
    return sendProperties(dict, msgid);
}

PlistValue TVK_PrivateMessenger::indexDictionary(int keyset, int layer, int group, int control)
{
    PlistValue dict = PlistValue::makeDict(5);
    dict.insert(corvane::info::KeysetIndex, PlistValue(keyset));
    dict.insert(corvane::info::LayerIndex, PlistValue(layer));
    dict.insert(corvane::info::GroupID, PlistValue(group));
    dict.insert(corvane::info::ControlIndex, PlistValue(control));
    return dict;
}

bool TVK_PrivateMessenger::updateProperty(int property, int keyset, int layer, int group,
                                          int control)
{
    const corvane::ControlPropertyRow* row = corvane::controlPropertyWithCode(property);
    if (!row)
        return false;
    PlistValue dict = indexDictionary(keyset, layer, group, control);
    const TVKControl* target =
        m_modelData ? m_modelData->controlForKeyset(keyset, layer, group, control) : nullptr;
    // The service is told about the edit even when the control lacks the property: the four
    // indices alone, under ID 0.
    MessageID msgid = msg::MissingProperty;
    if (std::optional<PlistValue> value = row->value(target)) {
        dict.insert(row->key, std::move(*value));
        msgid = MessageID(row->message);
    }
    return sendProperties(dict, msgid);
}

bool TVK_PrivateMessenger::updateDisplayAction(const TVKAction* action, int keyset, int layer,
                                               int group, int display)
{
    PlistValue dict = indexDictionary(keyset, layer, group, display);
    PlistValue actionDict = PlistValue::makeDict();
    if (action) {
        action->writeTo(actionDict);
    } else {
        TVKNULLDisplayAction nullAction(nullptr);
        nullAction.writeTo(actionDict);
    }
    dict.insert(corvane::info::ActionObject, actionDict);
    return sendProperties(dict, msg::IDAc);
}

bool TVK_PrivateMessenger::sendKeysetDictionary(MessageID msgid, int index, const TVKKeyset* keyset)
{
    PlistValue dict = PlistValue::makeDict();
    dict.insert(corvane::info::KeysetIndex, PlistValue(index));
    if (keyset)
        keyset->writeTo(dict);
    return sendProperties(dict, msgid);
}

bool TVK_PrivateMessenger::sendAddKeysetMessage(int index, const TVKKeyset* keyset)
{
    return sendKeysetDictionary(msg::TAdK, index, keyset);
}

bool TVK_PrivateMessenger::sendUpdateKeysetMessage(int index, const TVKKeyset* keyset)
{
    return sendKeysetDictionary(msg::TUpK, index, keyset);
}

bool TVK_PrivateMessenger::sendDeleteKeysetMessage(int index)
{
    PlistValue dict = PlistValue::makeDict(1);
    dict.insert(corvane::info::KeysetIndex, PlistValue(index));
    return sendProperties(dict, msg::TDlK);
}

bool TVK_PrivateMessenger::sendOwnerKeysetChange(bool hasOwner, const QString& bundleId,
                                                 corvane::FourCharCode signature)
{
    PlistValue dict = PlistValue::makeDict(3);
    dict.insert(key::HasOwnerKS, PlistValue(hasOwner ? 1 : 0));
    if (hasOwner) {
        if (!bundleId.isEmpty())
            dict.insert(key::OwnKSBID, PlistValue(bundleId));
        dict.insert(key::OwnKSSig, PlistValue(corvane::stringFromFourCharCode(signature)));
    }
    return sendProperties(dict, msg::TChO);
}

bool TVK_PrivateMessenger::requestKeyset(qint64& keyset, qint64& layer, qint64& group,
                                         qint64& control)
{
    QByteArray reply;
    if (!sendRequestWithId(msg::RqCC, reply))
        return false;
    const TVK_IncomingCurrentControlInfoSpec info(reply);
    keyset = info.keysetIndex();
    layer = info.layerIndex();
    group = info.groupIndex();
    control = info.controlNumOrChannel();
    return true;
}

bool TVK_PrivateMessenger::requestConnectStatus(bool& connected)
{
    connected = false;
    QByteArray reply;
    if (!sendRequestWithId(msg::Cnct, reply))
        return false;
    const std::optional<bool> state = msg::decodeConnectStatusReply(reply);
    if (!state)
        return false;
    connected = *state;
    return true;
}

QByteArray TVK_PrivateMessenger::MessageCallbackForPort(corvane::LocalMessagePort* port,
                                                        MessageID message, const QByteArray& data,
                                                        void* info)
{
    if (message == msg::CnSt) {
        if (const std::optional<bool> state = msg::decodeConnectionState(data)) {
            if (delegate())
                delegate()->handleConnectionStateChange(*state);
        }
        return QByteArray();
    }
    if (message == msg::CurC) {
        const TVK_IncomingCurrentControlInfoSpec current(data);
        if (delegate())
            delegate()->handleCurrentControlInfoForKeyset(
                current.keysetIndex(), current.layerIndex(), current.groupIndex(),
                current.controlNumOrChannel());
        return QByteArray();
    }
    return TVK_CarbonCocoaMessenger::MessageCallbackForPort(port, message, data, info);
}
