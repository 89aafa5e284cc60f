#include "service/ConfigurationEdits.h"

#include "actions/TVKStandardActionTypes.h"
#include "core/FourCharCode.h"
#include "core/Notifications.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/ControlProperties.h"
#include "model/CorvaneKeyset.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKModelData.h"
#include "service/MessageCatalogue.h"
#include "service/TVK_MessageSpecs.h"

#include <climits>

namespace key = corvane::key;

using corvane::MessageID;
using corvane::PlistValue;
namespace msg = corvane::msg;

namespace {

// Four decimal numbers of 0 to 255, one to three digits each, joined by dots: the only form of
// address the surface's network setup produces.
bool isDottedIPv4(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() != 4)
        return false;
    for (const QString& part : parts) {
        if (part.isEmpty() || part.size() > 3)
            return false;
        for (const QChar c : part) {
            if (c < QLatin1Char('0') || c > QLatin1Char('9'))
                return false;
        }
        if (part.toInt() > 255)
            return false;
    }
    return true;
}

bool applyDictionary(TVKModelData& model, MessageID id, const PlistValue& dict, QString* reason)
{
    // Indices arrive as 64-bit numbers; one that an int cannot hold is refused as received,
    // never narrowed into another keyset or control.
    const qint64 keyset = dict.value(corvane::info::KeysetIndex).toInteger(-1);
    const qint64 wide[] = {dict.value(corvane::info::LayerIndex).toInteger(),
                           dict.value(corvane::info::GroupID).toInteger(),
                           dict.value(corvane::info::ControlIndex).toInteger()};
    for (const qint64 index : wide) {
        if (index < INT_MIN || index > INT_MAX) {
            *reason = QStringLiteral("index %1 out of range").arg(index);
            return false;
        }
    }
    const int layer = int(wide[0]);
    const int group = int(wide[1]);
    const int control = int(wide[2]);
    const bool keysetExists = keyset >= 0 && keyset < model.numberOfKeysets();

    switch (id) {
    case msg::TAdK:
    case msg::TUpK: {
        if (keyset < 0 || keyset > INT_MAX || (id == msg::TUpK && !keysetExists)) {
            *reason = QStringLiteral("no keyset at index %1").arg(keyset);
            return false;
        }
        if (id == msg::TAdK && model.numberOfKeysets() >= TVKModelData::kMaxKeysets) {
            *reason =
                QStringLiteral("no room for more than %1 keysets").arg(TVKModelData::kMaxKeysets);
            return false;
        }
        std::unique_ptr<TVKKeyset> made = model.createKeysetFromArchive(dict);
        if (!made) {
            *reason = QStringLiteral("keyset could not be made");
            return false;
        }
        if (id == msg::TAdK)
            model.insertKeyset(std::move(made), int(keyset));
        else
            model.replaceKeysetAtIndex(int(keyset), std::move(made));
        return true;
    }
    case msg::TDlK:
        if (!keysetExists) {
            *reason = QStringLiteral("no keyset at index %1").arg(keyset);
            return false;
        }
        model.deleteKeysetAtIndex(int(keyset));
        return true;
    case msg::RvRB:
    case msg::ApEP: {
        if (!keysetExists) {
            *reason = QStringLiteral("no keyset at index %1").arg(keyset);
            return false;
        }
        TVKKeyset* target = model.keysetAtIndex(int(keyset));
        const qint64 value = dict.value(corvane::info::PropVal).toInteger();
        if (id == msg::RvRB) {
            if (auto* corvaneKeyset = dynamic_cast<CorvaneKeyset*>(target))
                corvaneKeyset->setReverseRBButtons(value != 0);
        } else if (value == -1 || value == qint64(UINT32_MAX)) {
            // All bits set: the application no longer talks to the surface over Ethernet.
            target->setConnectViaEthernet(false);
        } else {
            target->setConnectViaEthernet(true);
            target->setEthernetPort(uint(value));
        }
        return true;
    }
    case msg::TChO: {
        const bool hasOwner = dict.value(key::HasOwnerKS).toBool();
        std::optional<QString> bundleID;
        if (dict.contains(key::OwnKSBID))
            bundleID = dict.value(key::OwnKSBID).toString();
        model.setHasOwnerKeyset(
            hasOwner, bundleID,
            hasOwner ? corvane::fourCharCodeFromString(dict.value(key::OwnKSSig).toString()) : 0);
        return true;
    }
    case msg::IDAc: {
        if (!keysetExists) {
            *reason = QStringLiteral("no keyset at index %1").arg(keyset);
            return false;
        }
        TVKControl* display = model.displayForKeyset(int(keyset), layer, group, control);
        if (!display) {
            *reason = QStringLiteral("no display at %1/%2/%3").arg(layer).arg(group).arg(control);
            return false;
        }
        display->adoptAction(TVKStandardActionTypes::createActionFromArchive(
            dict.value(corvane::info::ActionObject), display));
        return true;
    }
    default:
        break;
    }
    const corvane::ControlPropertyRow* property =
        corvane::controlPropertyForMessage(corvane::FourCharCode(id));
    if (!property) {
        // Messages without a part in the stored configuration (the zero-ID notice of a
        // property the control lacks, the LCD-button expander's lists).
        return true;
    }

    if (!keysetExists) {
        *reason = QStringLiteral("no keyset at index %1").arg(keyset);
        return false;
    }
    TVKControl* target = model.controlForKeyset(int(keyset), layer, group, control);
    if (!target) {
        *reason = QStringLiteral("no control at %1/%2/%3").arg(layer).arg(group).arg(control);
        return false;
    }
    // A control without the property keeps what it has.
    property->setValue(*target, dict.value(property->key));
    return true;
}

} // namespace

bool isConfigurationMessage(MessageID id)
{
    if (corvane::controlPropertyForMessage(corvane::FourCharCode(id)))
        return true;
    switch (id) {
    case msg::TAdK:
    case msg::TUpK:
    case msg::TDlK:
    case msg::IDAc:
    case msg::TChO:
    case msg::Emul:
    case msg::RvRB:
    case msg::ApEP:
    case msg::TSTL:
    case msg::TTLW:
    case msg::TTL2:
    case msg::TVNV:
    case msg::TSDZ:
    case msg::RSoc:
        return true;
    default:
        return false;
    }
}

bool applyConfigurationMessage(TVKModelData& model, MessageID id, const QByteArray& body,
                               int editedKeyset, QString* reason)
{
    TVK_IncomingMessageSpec words(body);
    auto* corvaneModel = dynamic_cast<CorvaneModelData*>(&model);
    switch (id) {
    case msg::Emul:
        if (editedKeyset >= 0 && editedKeyset < model.numberOfKeysets())
            model.keysetAtIndex(editedKeyset)
                ->setEmulationMode(corvane::EmulationMode(words.deserializeNextField()));
        return true;
    case msg::TSTL:
        if (corvaneModel)
            corvaneModel->setStandaloneTL(words.deserializeNextField() != 0);
        return true;
    case msg::TTLW:
        if (corvaneModel)
            corvaneModel->setStandaloneTLW(words.deserializeNextField() != 0);
        return true;
    case msg::TTL2:
        if (corvaneModel)
            corvaneModel->setStandaloneTLW2(words.deserializeNextField() != 0);
        return true;
    case msg::TVNV:
        if (corvaneModel)
            corvaneModel->setStandaloneNV(words.deserializeNextField() != 0);
        return true;
    case msg::TSDZ:
        if (corvaneModel)
            corvaneModel->setStandaloneDZ(words.deserializeNextField() != 0);
        return true;
    case msg::RSoc: {
        const std::optional<msg::ResetSocket> reset = msg::decodeResetSocket(body);
        if (!reset) {
            *reason = QStringLiteral("reset-socket body too short");
            return false;
        }
        if (!reset->ipAddress.isEmpty() && !isDottedIPv4(reset->ipAddress)) {
            *reason = QStringLiteral("reset-socket address is not a dotted IPv4 address");
            return false;
        }
        if (!reset->ipAddress.isEmpty())
            model.setIpAddress(reset->ipAddress);
        model.setEthernetPort(reset->port);
        return true;
    }
    default:
        break;
    }
    if (msg::applicationMessageKind(id) != msg::BodyKind::PropertyList)
        return true;
    const corvane::PlistReadResult read = corvane::PlistCodec::read(body);
    if (!read.ok || !read.value.isDict()) {
        *reason = read.ok ? QStringLiteral("body is not a dictionary") : read.error.toString();
        return false;
    }
    return applyDictionary(model, id, read.value, reason);
}
