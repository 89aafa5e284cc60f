#pragma once

#include "core/FourCharCode.h"
#include "core/PlistValue.h"

#include <QString>
#include <optional>
#include <span>

class TVKControl;

namespace corvane {

// The properties of a control that an edit changes one at a time, numbered as the edits and the
// property-update message number them.
enum class ControlProperty : int
{
    Action = 0,
    Latch = 1,
    OnColor = 2,
    Brightness = 3,
    UserName = 4,
    OffColor = 5,
    JogSensitivity = 6,
    JoystickSensitivity = 7
};

// Everything that links one property to the code: the message that tells the service about a
// change of it, the key that message carries it under (the control's archive stores the settings
// under the same key; the action, a nested object, is archived as "TVKAction"), and how it is read
// from and written to a control. The messenger, the decoder of the service's messages, the
// controller's edits and the message catalogue all go through this table, so a new property is
// one more row.
struct ControlPropertyRow
{
    ControlProperty property;
    FourCharCode message;
    QString key;
    // The value as the message carries it; none when the control does not carry the property.
    // Without a control there is none either, except for the action, which then goes out as a
    // fresh null action.
    std::optional<PlistValue> (*value)(const TVKControl* control);
    // Sets the property from a value in that form; false, changing nothing, when the control
    // does not carry it.
    bool (*setValue)(TVKControl& control, const PlistValue& value);
};

// Every row, in code order.
std::span<const ControlPropertyRow> controlProperties();
const ControlPropertyRow& controlProperty(ControlProperty property);
// The row of a code; nullptr outside the table.
const ControlPropertyRow* controlPropertyWithCode(int code);
// The row whose message this is; nullptr for every other message.
const ControlPropertyRow* controlPropertyForMessage(FourCharCode message);

} // namespace corvane
