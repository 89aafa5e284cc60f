#include "model/ControlProperties.h"

#include "actions/TVKNULLAction.h"
#include "actions/TVKStandardActionTypes.h"
#include "core/StoredKeys.h"
#include "model/TVKControl.h"

#include <array>

namespace corvane {

namespace {

using Value = std::optional<PlistValue>;

// The control as the class that has the setting, and, where the service is told the type code
// too, only with that code.
template <typename Class, typename Control>
Class* carrier(Control* control, int type = -1)
{
    auto* found = dynamic_cast<Class*>(control);
    return found && (type < 0 || found->tvkControlType() == type) ? found : nullptr;
}

// On colours live in two classes that share no base but TVKControl.
std::optional<int> onColorOf(const TVKControl* control)
{
    if (const auto* button = carrier<const TVKMultiColorButtonControl>(control))
        return button->onColor();
    if (const auto* trackball = carrier<const TVK4WayControl>(control))
        return trackball->onColor();
    return std::nullopt;
}

bool setOnColorOf(TVKControl& control, int color)
{
    if (auto* button = carrier<TVKMultiColorButtonControl>(&control)) {
        button->setOnColor(color);
        return true;
    }
    if (auto* trackball = carrier<TVK4WayControl>(&control)) {
        trackball->setOnColor(color);
        return true;
    }
    return false;
}

PlistValue actionDictionary(const TVKControl* control)
{
    PlistValue dict = PlistValue::makeDict();
    if (control && control->action()) {
        control->action()->writeTo(dict);
    } else {
        TVKNULLAction nullAction(const_cast<TVKControl*>(control));
        nullAction.writeTo(dict);
    }
    return dict;
}

const std::array<ControlPropertyRow, 8>& rows()
{
    namespace CT = corvane::ControlType;
    static const std::array<ControlPropertyRow, 8> table = {{
        {ControlProperty::Action, fourCC("InAc"), QStringLiteral("TVActionObject"),
         [](const TVKControl* c) -> Value { return actionDictionary(c); },
         [](TVKControl& c, const PlistValue& v) {
             c.adoptAction(TVKStandardActionTypes::createActionFromArchive(v, &c));
             return true;
         }},
        {ControlProperty::Latch, fourCC("ChLa"), key::Latch,
         [](const TVKControl* c) -> Value {
             return c ? Value(PlistValue(c->latched() ? 1 : 0)) : std::nullopt;
         },
         [](TVKControl& c, const PlistValue& v) {
             c.setLatched(v.toBool());
             return true;
         }},
        {ControlProperty::OnColor, fourCC("ChCo"), key::Color,
         [](const TVKControl* c) -> Value {
             const std::optional<int> color = onColorOf(c);
             return color ? Value(PlistValue(*color)) : std::nullopt;
         },
         [](TVKControl& c, const PlistValue& v) { return setOnColorOf(c, int(v.toInteger())); }},
        {ControlProperty::Brightness, fourCC("ChBr"), key::Brightness,
         [](const TVKControl* c) -> Value {
             const auto* ball = carrier<const TVK4WayControl>(c, CT::FourWay);
             return ball ? Value(PlistValue(ball->brightness())) : std::nullopt;
         },
         [](TVKControl& c, const PlistValue& v) {
             auto* ball = carrier<TVK4WayControl>(&c, CT::FourWay);
             if (ball)
                 ball->setBrightness(int(v.toInteger()));
             return ball != nullptr;
         }},
        {ControlProperty::UserName, fourCC("ChUN"), key::UName,
         [](const TVKControl* c) -> Value {
             return c ? Value(PlistValue(c->userName())) : std::nullopt;
         },
         [](TVKControl& c, const PlistValue& v) {
             c.setUserName(v.toString());
             return true;
         }},
        {ControlProperty::OffColor, fourCC("COfC"), key::OffColor,
         [](const TVKControl* c) -> Value {
             const auto* button = carrier<const TVKMultiColorButtonControl>(c);
             return button ? Value(PlistValue(button->offColor())) : std::nullopt;
         },
         [](TVKControl& c, const PlistValue& v) {
             auto* button = carrier<TVKMultiColorButtonControl>(&c);
             if (button)
                 button->setOffColor(int(v.toInteger()));
             return button != nullptr;
         }},
        {ControlProperty::JogSensitivity, fourCC("ChJS"), key::JogSens,
         [](const TVKControl* c) -> Value {
             const auto* jog = carrier<const TVKJogControl>(c, CT::Jog);
             return jog ? Value(PlistValue(jog->sensitivity())) : std::nullopt;
         },
         [](TVKControl& c, const PlistValue& v) {
             auto* jog = carrier<TVKJogControl>(&c, CT::Jog);
             if (jog)
                 jog->setSensitivity(int(v.toInteger()));
             return jog != nullptr;
         }},
        // Sent as an unsigned word.
        {ControlProperty::JoystickSensitivity, fourCC("ChJy"), key::JoySens,
         [](const TVKControl* c) -> Value {
             const auto* stick = carrier<const TVKJoystickControl>(c, CT::Joystick);
             if (!stick)
                 return std::nullopt;
             return PlistValue(quint64(std::uint32_t(stick->joystickSensitivity())));
         },
         [](TVKControl& c, const PlistValue& v) {
             auto* stick = carrier<TVKJoystickControl>(&c, CT::Joystick);
             if (stick)
                 stick->setJoystickSensitivity(int(v.toUnsigned()));
             return stick != nullptr;
         }},
    }};
    return table;
}

} // namespace

std::span<const ControlPropertyRow> controlProperties()
{
    return rows();
}

const ControlPropertyRow& controlProperty(ControlProperty property)
{
    return rows()[std::size_t(property)];
}

const ControlPropertyRow* controlPropertyWithCode(int code)
{
    return code >= 0 && std::size_t(code) < rows().size() ? &rows()[std::size_t(code)] : nullptr;
}

const ControlPropertyRow* controlPropertyForMessage(FourCharCode message)
{
    for (const ControlPropertyRow& row : rows()) {
        if (row.message == message)
            return &row;
    }
    return nullptr;
}

} // namespace corvane
