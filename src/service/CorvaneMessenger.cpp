#include "service/CorvaneMessenger.h"

#include "core/Notifications.h"
#include "core/StoredKeys.h"
#include "service/MessageCatalogue.h"
#include "service/TVK_MessageSpecs.h"

namespace key = corvane::key;

using corvane::PlistValue;
namespace msg = corvane::msg;

CorvaneMessenger::CorvaneMessenger(TVKMessengerDelegate* controller)
    : TVK_PrivateMessenger(corvane::fourCC("Crvn"), QStringLiteral("TVK_Corvane"), controller)
{}

bool CorvaneMessenger::sendStandaloneTLState(bool standalone)
{
    return sendMessageWithId(msg::TSTL, TVK_OneIntSpec(standalone ? 1 : 0).data());
}

bool CorvaneMessenger::sendStandaloneTLWState(bool standalone)
{
    return sendMessageWithId(msg::TTLW, TVK_OneIntSpec(standalone ? 1 : 0).data());
}

bool CorvaneMessenger::sendStandaloneTLW2State(bool standalone)
{
    return sendMessageWithId(msg::TTL2, TVK_OneIntSpec(standalone ? 1 : 0).data());
}

bool CorvaneMessenger::sendStandaloneNVState(bool standalone)
{
    return sendMessageWithId(msg::TVNV, TVK_OneIntSpec(standalone ? 1 : 0).data());
}

bool CorvaneMessenger::sendStandaloneDZState(bool standalone)
{
    return sendMessageWithId(msg::TSDZ, TVK_OneIntSpec(standalone ? 1 : 0).data());
}

bool CorvaneMessenger::sendChangeCorvaneNVBankMessage(qint64 bank)
{
    return sendMessageWithId(msg::NVBk, TVK_OneIntSpec(std::uint32_t(bank)).data());
}

bool CorvaneMessenger::sendChangeCorvaneNVParamBankMessage(qint64 bank)
{
    return sendMessageWithId(msg::NVPB, TVK_OneIntSpec(std::uint32_t(bank)).data());
}

bool CorvaneMessenger::sendChangeCorvaneNVActionBankMessage(qint64 bank)
{
    return sendMessageWithId(msg::NVAB, TVK_OneIntSpec(std::uint32_t(bank)).data());
}

bool CorvaneMessenger::sendUpdateCorvaneNVGroupsMessage(const PlistValue& groups, int keyset)
{
    PlistValue dict = PlistValue::makeDict(2);
    dict.insert(key::NVButtonGroups, groups);
    dict.insert(corvane::info::KeysetIndex, PlistValue(keyset));
    return sendProperties(dict, msg::TUNV);
}

bool CorvaneMessenger::updateCorvaneNVLCDButtons(const PlistValue& buttons,
                                                 const PlistValue& displays, int keyset, int layer)
{
    PlistValue dict = PlistValue::makeDict(4);
    dict.insert(corvane::info::KeysetIndex, PlistValue(keyset));
    dict.insert(corvane::info::LayerIndex, PlistValue(layer));
    dict.insert(key::LCDBtnList, buttons);
    dict.insert(key::LCDBtnDsplList, displays);
    return sendProperties(dict, msg::TUNB);
}
