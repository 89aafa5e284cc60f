#pragma once

#include "core/PlistValue.h"
#include "service/TVK_PrivateMessenger.h"

// The messenger of the Corvane surfaces: announces itself as "Crvn" to the service's port
// "TVK_Corvane", and adds the expanders' standalone flags and the LCD-button expander's banks
// and groups.
class CorvaneMessenger : public TVK_PrivateMessenger
{
    Q_OBJECT

public:
    explicit CorvaneMessenger(TVKMessengerDelegate* controller);

    // Any non-zero flag goes out as exactly 1.
    bool sendStandaloneTLState(bool standalone);
    bool sendStandaloneTLWState(bool standalone);
    bool sendStandaloneTLW2State(bool standalone);
    bool sendStandaloneNVState(bool standalone);
    bool sendStandaloneDZState(bool standalone);
    bool sendChangeCorvaneNVBankMessage(qint64 bank);
    bool sendChangeCorvaneNVParamBankMessage(qint64 bank);
    bool sendChangeCorvaneNVActionBankMessage(qint64 bank);
    // "TUNV": the groups list as the caller gives it, and the keyset.
    bool sendUpdateCorvaneNVGroupsMessage(const corvane::PlistValue& groups, int keyset);
    // "TUNB": the LCD buttons and their displays of one layer.
    bool updateCorvaneNVLCDButtons(const corvane::PlistValue& buttons,
                                   const corvane::PlistValue& displays, int keyset, int layer);
};
