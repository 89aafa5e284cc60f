#pragma once

#include <QtGlobal>

class TVKModelData;

// What the messengers need of their owner, the main controller: the three calls the service's
// messages turn into, and the model data whose controls the property messages describe. The
// owner outlives its messenger; the messenger never owns it.
class TVKMessengerDelegate
{
public:
    virtual ~TVKMessengerDelegate() = default;

    // "TCtl" from the service: a control was touched (group and control are model-data
    // indices; value is signed).
    virtual void hardwareControlChangeForGroup(qint64 group, qint64 control, qint64 axis,
                                               qint64 value) = 0;
    // "CurC" from the service: the keyset, layer, group and control it has selected.
    virtual void handleCurrentControlInfoForKeyset(qint64 keyset, qint64 layer, qint64 group,
                                                   qint64 control) = 0;
    // "CnSt" from the service: whether the surface is connected.
    virtual void handleConnectionStateChange(bool connected) = 0;

    virtual TVKModelData* modelData() const = 0;
};
