#pragma once

#include "service/MessageFrame.h"

#include <QByteArray>
#include <QString>

class TVKModelData;

// The configuration changes the application sends the service, applied to a model the way the
// service applies them. The simulated service keeps its mirror with it, and the application
// replays its recovery journal with it, so both read the same messages the same way.

// The messages that change the stored configuration: keysets added, replaced and deleted, one
// control property, one display action, the owner keyset, the emulation mode, a keyset's
// reversed buttons and Ethernet port, the expanders' standalone flags and the surface address.
bool isConfigurationMessage(corvane::MessageID id);

// Applies one message. Messages that do not change the configuration are accepted silently;
// false, with the reason, when a message cannot be applied (the model is then unchanged).
// "Emul" needs the keyset being edited, which travels separately ("ChEK").
bool applyConfigurationMessage(TVKModelData& model, corvane::MessageID id, const QByteArray& body,
                               int editedKeyset, QString* reason);
