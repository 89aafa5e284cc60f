#include "model/ControlProperties.h"

#include "ModelFixture.h"
#include "actions/TVKStandardActionTypes.h"
#include "model/CorvaneKeyset.h"
#include "model/TVKControl.h"
#include "model/TVKLayer.h"

#include <set>

using corvane::ControlProperty;
using corvane::ControlPropertyRow;
using corvane::PlistValue;

namespace {

// Which control types carry each property, as the control classes of the surface have them.
bool carries(ControlProperty property, int type)
{
    namespace CT = corvane::ControlType;
    switch (property) {
    case ControlProperty::Action:
    case ControlProperty::Latch:
    case ControlProperty::UserName:
        return true;
    case ControlProperty::OnColor:
        return type == CT::FourWay || type == CT::MultiColorButton;
    case ControlProperty::OffColor:
        return type == CT::MultiColorButton;
    case ControlProperty::Brightness:
        return type == CT::FourWay;
    case ControlProperty::JogSensitivity:
        return type == CT::Jog;
    case ControlProperty::JoystickSensitivity:
        return type == CT::Joystick;
    }
    return false;
}

PlistValue archiveOfControl(const TVKControl& control)
{
    PlistValue dict = PlistValue::makeDict();
    control.writeTo(dict);
    return dict;
}

// A value the control does not hold yet, in the form the property's message carries.
PlistValue anotherValue(const ControlPropertyRow& row, TVKControl& control)
{
    const PlistValue current = row.value(&control).value_or(PlistValue(qint64(0)));
    switch (row.property) {
    case ControlProperty::Action: {
        const std::unique_ptr<TVKAction> midi = TVKStandardActionTypes::createActionWithType(
            control.actionModeToActionType(corvane::ActionMode::NativeMIDI), 1, &control);
        PlistValue dict = PlistValue::makeDict();
        midi->writeTo(dict);
        return dict;
    }
    case ControlProperty::Latch:
        return PlistValue(qint64(current.toInteger() ? 0 : 1));
    case ControlProperty::UserName:
        return PlistValue(current.toString() + QStringLiteral(" B"));
    default:
        return PlistValue(qint64((current.toInteger() + 1) % 64));
    }
}

class ControlPropertyTest : public ModelTest
{};

} // namespace

TEST_F(ControlPropertyTest, TheRowsAreInCodeOrderWithTheirOwnMessagesAndKeys)
{
    std::set<corvane::FourCharCode> messages;
    std::set<QString> keys;
    int code = 0;
    for (const ControlPropertyRow& row : corvane::controlProperties()) {
        EXPECT_EQ(int(row.property), code);
        EXPECT_EQ(corvane::controlPropertyWithCode(code), &row);
        EXPECT_EQ(corvane::controlPropertyForMessage(row.message), &row);
        messages.insert(row.message);
        keys.insert(row.key);
        ++code;
    }
    EXPECT_EQ(code, 8);
    EXPECT_EQ(messages.size(), 8u);
    EXPECT_EQ(keys.size(), 8u);
    EXPECT_EQ(corvane::controlPropertyWithCode(8), nullptr);
    EXPECT_EQ(corvane::controlPropertyWithCode(-1), nullptr);
    EXPECT_EQ(corvane::controlPropertyForMessage(0), nullptr);
}

TEST_F(ControlPropertyTest, EveryRowReadsAndWritesExactlyTheControlsThatCarryIt)
{
    CorvaneKeyset keyset(nullptr);
    const TVKLayer& layer = *keyset.layerAtIndex(0);
    int reached = 0;
    for (int group = 0; group < layer.numGroups(); ++group) {
        const TVKControlInitTable* table = layer.controlInitDataForGroupID(group);
        for (int index = 0; table && index < int(table->size()); ++index) {
            TVKControl& control = *keyset.controlForLayer(0, group, index);
            for (const ControlPropertyRow& row : corvane::controlProperties()) {
                const bool expected = carries(row.property, control.tvkControlType());
                const std::string where = QStringLiteral("group %1 control %2 property %3")
                                              .arg(group)
                                              .arg(index)
                                              .arg(int(row.property))
                                              .toStdString();
                EXPECT_EQ(row.value(&control).has_value(), expected) << where;
                const PlistValue value = anotherValue(row, control);
                const PlistValue before = archiveOfControl(control);
                EXPECT_EQ(row.setValue(control, value), expected) << where;
                if (expected) {
                    EXPECT_EQ(row.value(&control), value) << where;
                    // Only the buttons archive their latch.
                    const int type = control.tvkControlType();
                    if (row.property != ControlProperty::Latch ||
                        type == corvane::ControlType::Button ||
                        type == corvane::ControlType::MultiColorButton) {
                        EXPECT_NE(archiveOfControl(control), before) << where;
                    }
                    ++reached;
                } else {
                    EXPECT_EQ(archiveOfControl(control), before) << "changed nothing: " << where;
                }
            }
        }
    }
    EXPECT_GT(reached, 300);
}

TEST_F(ControlPropertyTest, TheJoystickSensitivityGoesOutUnsignedAndOnlyForItsType)
{
    const ControlPropertyRow& row = corvane::controlProperty(ControlProperty::JoystickSensitivity);
    TVKJoystickControl joystick(corvane::ControlType::Joystick, QStringLiteral("J"), nullptr,
                                nullptr, nullptr, 0, 0);
    ASSERT_TRUE(row.setValue(joystick, PlistValue(quint64(0xFFFFFFFFu))));
    EXPECT_EQ(joystick.joystickSensitivity(), -1);
    const std::optional<PlistValue> sent = row.value(&joystick);
    ASSERT_TRUE(sent);
    EXPECT_EQ(sent->toUnsigned(), 0xFFFFFFFFu);
    // The archive keeps it signed.
    EXPECT_EQ(archiveOfControl(joystick).value(row.key).toInteger(), -1);

    TVKJoystickControl mistyped(corvane::ControlType::Jog, QStringLiteral("J"), nullptr, nullptr,
                                nullptr, 0, 0);
    EXPECT_FALSE(row.value(&mistyped));
    EXPECT_FALSE(row.setValue(mistyped, PlistValue(qint64(5))));
}

TEST_F(ControlPropertyTest, WithoutAControlOnlyTheActionHasAValueTheNullAction)
{
    for (const ControlPropertyRow& row : corvane::controlProperties()) {
        const std::optional<PlistValue> value = row.value(nullptr);
        EXPECT_EQ(value.has_value(), row.property == ControlProperty::Action);
        if (value) {
            EXPECT_EQ(value->value(u"TVKActnType").toInteger(), 7);
        }
    }
}
