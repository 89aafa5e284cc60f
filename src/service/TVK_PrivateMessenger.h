#pragma once

#include "core/PlistValue.h"
#include "model/ControlProperties.h"
#include "service/TVK_CarbonCocoaMessenger.h"

class TVKAction;
class TVKKeyset;
class TVKModelData;

// The configuration messages: every edit of the model travels to the service as one message
// (a keyset added, replaced or deleted; one property of one control; one display action; the
// owner keyset; the keyset and layer being edited). Also answers the service's "CnSt" and
// "CurC".
class TVK_PrivateMessenger : public TVK_CarbonCocoaMessenger
{
    Q_OBJECT

public:
    // Properties of updateProperty(property, value, keyset).
    enum KeysetProperty
    {
        ReverseButtonsProperty = 0,
        EthernetPortProperty = 1
    };

    // Copies the owner's model data after the base has set up the ports.
    TVK_PrivateMessenger(corvane::FourCharCode localID, const QString& remotePortName,
                         TVKMessengerDelegate* owner);

    TVKModelData* modelData() const { return m_modelData; }
    void setModelData(TVKModelData* modelData) { m_modelData = modelData; }

    bool sendChangeEditKeysetMessage(qint64 keysetIndex);
    bool sendChangeEditLayerMessage(qint64 layerIndex);
    bool sendEmulationModeMessage(qint64 mode);
    bool sendModifierFunction(qint64 function);
    bool sendResetSocketMessage(const QString& ipAddress, qint64 port);
    // Any dictionary message: the dictionary as an XML property list, sent one-way.
    bool sendProperties(const corvane::PlistValue& dictionary, corvane::MessageID msgid);
    // "RvRB" (0) or "ApEP" (1); other properties send nothing and give false.
    bool updateProperty(int property, qint64 value, int keyset);
    // One property of the control at the model indices (a code of the control property table),
    // read from the model data. A control that does not carry the property still sends the four
    // indices, under ID 0; a code outside the table sends nothing and gives false.
    bool updateProperty(int property, int keyset, int layer, int group, int control);
    bool updateProperty(corvane::ControlProperty property, int keyset, int layer, int group,
                        int control)
    {
        return updateProperty(int(property), keyset, layer, group, control);
    }
    // "IDAc"; without an action a fresh null display action is sent.
    bool updateDisplayAction(const TVKAction* action, int keyset, int layer, int group,
                             int display);
    bool sendAddKeysetMessage(int index, const TVKKeyset* keyset);
    bool sendUpdateKeysetMessage(int index, const TVKKeyset* keyset);
    bool sendDeleteKeysetMessage(int index);
    bool sendOwnerKeysetChange(bool hasOwner, const QString& bundleId,
                               corvane::FourCharCode signature);

    // "RqCC": on success the four reply words, zero-extended; on failure the arguments are left
    // untouched.
    bool requestKeyset(qint64& keyset, qint64& layer, qint64& group, qint64& control);
    // "Cnct": connected is first set to false, then to the reply's first word being non-zero.
    // A missing or too short reply fails.
    bool requestConnectStatus(bool& connected);

    QByteArray MessageCallbackForPort(corvane::LocalMessagePort* port, corvane::MessageID message,
                                      const QByteArray& data, void* info) override;

protected:
    static corvane::PlistValue indexDictionary(int keyset, int layer, int group, int control);

private:
    bool sendKeysetDictionary(corvane::MessageID msgid, int index, const TVKKeyset* keyset);

    TVKModelData* m_modelData = nullptr;
};
