#include "ModelFixture.h"
#include "actions/CorvaneButtonDisplayMidiEmulationAction.h"
#include "actions/TVKDisplayEmulationAction.h"
#include "actions/TVKEmulationAction.h"
#include "actions/TVKSpecialAction.h"
#include "core/Log.h"
#include "core/StoredKeys.h"
#include "model/CorvaneKeyset.h"
#include "model/TVKControl.h"
#include "model/TVKDisplayControl.h"
#include "model/TVKLayer.h"

namespace key = corvane::key;

using corvane::PlistValue;

namespace {

class ControlTest : public ModelTest
{
protected:
    void SetUp() override
    {
        ModelTest::SetUp();
        m_keyset = std::make_unique<CorvaneKeyset>(nullptr);
    }
    void TearDown() override
    {
        m_keyset.reset();
        ModelTest::TearDown();
    }
    TVKControl* control(int group, int index, int layer = 0) const
    {
        return m_keyset->controlForLayer(layer, group, index);
    }
    TVKControl* display(int group, int index) const
    {
        return m_keyset->displayForLayer(0, group, index);
    }

    std::unique_ptr<CorvaneKeyset> m_keyset;
};

TEST_F(ControlTest, ActionModesMapToTypesBySortOfControl)
{
    struct Row
    {
        const char* what;
        int group, index;
        qint32 types[4];
    };
    const Row rows[] = {
        {"button", 0, 0, {0x105, 0x104, 0x106, 0x105}},
        {"multi-colour button", 24, 0, {0x105, 0x104, 0x106, 0x105}},
        {"encoder", 3, 0, {0x205, 0x204, 0x206, 0x205}},
        {"fader", 21, 0, {0x205, 0x204, 0x606, 0x205}},
        {"trackball", 11, 0, {0x305, 0x304, 0x306, 0x305}},
        {"shuttle", 1, 6, {0x405, 0x404, 0x406, 0x405}},
        {"jog", 1, 5, {0x505, 0x504, 0x506, 0x505}},
    };
    for (const Row& row : rows) {
        const TVKControl* c = control(row.group, row.index);
        for (int mode = 0; mode < 4; ++mode)
            EXPECT_EQ(c->actionModeToActionType(mode), row.types[mode]) << row.what << " " << mode;
        EXPECT_EQ(c->actionModeToActionType(4), 0) << row.what;
        EXPECT_EQ(c->actionModeToActionType(-1), 0) << row.what;
    }
    const TVKJoystickControl joystick(8, QStringLiteral("J"), nullptr, nullptr, nullptr, 0, 0);
    EXPECT_EQ(joystick.actionModeToActionType(2), 0x306);

    const TVKControl* any = control(0, 0);
    const int subTypes[] = {1, 1, 0, 8, 0};
    for (int mode = 0; mode < 5; ++mode)
        EXPECT_EQ(any->actionModeToActionSubType(mode), subTypes[mode]) << mode;
}

TEST_F(ControlTest, SpecialModesGiveDeveloperOrRawEthernetActions)
{
    struct Row
    {
        int group, index, actionMode;
        qint32 type;
        int specialMode;
    };
    for (const Row& row :
         {Row{0, 0, 0, 0x105, 1}, Row{0, 0, 3, 0x105, 8}, Row{21, 4, 0, 0x205, 1},
          Row{11, 1, 3, 0x305, 8}, Row{1, 6, 0, 0x405, 1}, Row{1, 5, 3, 0x505, 8}}) {
        TVKControl* c = control(row.group, row.index);
        c->setActionMode(row.actionMode);
        ASSERT_NE(c->action(), nullptr) << row.group << ":" << row.index;
        EXPECT_EQ(c->action()->actionType(), row.type);
        EXPECT_EQ(c->action()->owningControl(), c);
        const auto* special = dynamic_cast<const TVKSpecialAction*>(c->action());
        ASSERT_NE(special, nullptr);
        EXPECT_EQ(special->mode(), row.specialMode);
    }
    EXPECT_EQ(control(21, 4)->action()->actionDescriptor(), QStringLiteral("Developer Mode"));
}

TEST_F(ControlTest, ControlsWithoutAnEmulationAreLeftWithoutAction)
{
    for (auto [group, index] : {std::pair{1, 6}, std::pair{11, 0}, std::pair{3, 0}}) {
        TVKControl* c = control(group, index);
        c->setActionMode(corvane::ActionMode::Developer);
        c->setActionMode(corvane::ActionMode::Emulation);
        EXPECT_EQ(c->action(), nullptr) << group << ":" << index;
    }
    // A mode outside 0..3 clears the action too.
    TVKControl* button = control(0, 1);
    button->setActionMode(corvane::ActionMode::Developer);
    button->setActionMode(7);
    EXPECT_EQ(button->action(), nullptr);
}

TEST_F(ControlTest, DisplaysHaveNoActionInDeveloperOrRawEthernetMode)
{
    TVKControl* line = display(0, 0);
    line->adoptAction(std::make_unique<TVKButtonSpecialAction>(line, 1));
    for (int mode : {0, 3, 9}) {
        line->setActionMode(mode);
        EXPECT_EQ(line->action(), nullptr) << mode;
    }
    // A display with no emulation row gets nothing in emulation mode.
    TVKControl* left = display(0, 3);
    left->setActionMode(corvane::ActionMode::Emulation);
    EXPECT_EQ(left->action(), nullptr);
    EXPECT_TRUE(line->isDisplay());
    EXPECT_FALSE(control(0, 0)->isDisplay());
}

TEST_F(ControlTest, SetActionStoresACopyPointingAtTheControl)
{
    TVKControl* target = control(2, 3);
    const TVKButtonSpecialAction original(control(0, 0), 6);
    target->setAction(&original);
    ASSERT_NE(target->action(), nullptr);
    EXPECT_NE(target->action(), &original);
    EXPECT_EQ(target->action()->owningControl(), target);
    EXPECT_EQ(original.owningControl(), control(0, 0));
    EXPECT_EQ(target->action()->actionDescriptor(), QStringLiteral("Layer 3 Selector"));
    target->setAction(nullptr);
    EXPECT_EQ(target->action(), nullptr);
}

TEST_F(ControlTest, CopyWithoutEmulationCopiesOnlyBetweenSameTypes)
{
    TVKControl* source = control(0, 0, 1);
    source->setUserName(QStringLiteral("Src"));
    source->setLatched(true);
    source->adoptAction(std::make_unique<TVKButtonSpecialAction>(source, 4));

    TVKControl* encoder = control(3, 0);
    EXPECT_FALSE(encoder->copyFromWithoutEmulation(*source));
    EXPECT_TRUE(encoder->userName().isEmpty());
    EXPECT_EQ(encoder->action(), nullptr);

    TVKControl* button = control(0, 0);
    EXPECT_TRUE(button->copyFromWithoutEmulation(*source));
    EXPECT_EQ(button->userName(), QStringLiteral("Src"));
    EXPECT_TRUE(button->latched());
    ASSERT_NE(button->action(), nullptr);
    EXPECT_EQ(button->action()->owningControl(), button);

    // An emulation in the source clears the target's action.
    source->adoptAction(std::make_unique<TVKButtonEmulationAction>(source, 7, 0, true, true));
    EXPECT_TRUE(button->copyFromWithoutEmulation(*source));
    EXPECT_EQ(button->action(), nullptr);

    auto* trackball = static_cast<TVK4WayControl*>(control(11, 0, 1));
    trackball->setOnColor(12);
    trackball->setBrightness(3);
    auto* target = static_cast<TVK4WayControl*>(control(11, 0));
    EXPECT_TRUE(target->copyFromWithoutEmulation(*trackball));
    EXPECT_EQ(target->onColor(), 12);
    EXPECT_EQ(target->brightness(), 3);
}

TEST_F(ControlTest, DisplaysKeepTheirOwnActionWhenTheSourceEmulates)
{
    TVKControl* source = display(0, 0);
    TVKControl* target = m_keyset->displayForLayer(1, 0, 0);
    target->adoptAction(std::make_unique<TVKButtonSpecialAction>(target, 9));
    source->adoptAction(std::make_unique<TVKLCDDisplayEmulationAction>(source, 1));
    EXPECT_TRUE(target->copyFromWithoutEmulation(*source));
    ASSERT_NE(target->action(), nullptr);
    EXPECT_EQ(target->action()->actionType(), 261); // left as it was

    source->setAction(nullptr);
    EXPECT_TRUE(target->copyFromWithoutEmulation(*source));
    EXPECT_EQ(target->action(), nullptr);

    // A button display's MIDI/emulation status is copied only in its native-MIDI mode.
    TVKControl* from = display(2, 0);
    TVKControl* to = m_keyset->displayForLayer(1, 2, 0);
    from->adoptAction(std::make_unique<CorvaneButtonDisplayMidiEmulationAction>(
        from, CorvaneButtonDisplayMidiEmulationAction::Emulation));
    EXPECT_TRUE(to->copyFromWithoutEmulation(*from));
    EXPECT_EQ(to->action(), nullptr);
    from->adoptAction(std::make_unique<CorvaneButtonDisplayMidiEmulationAction>(
        from, CorvaneButtonDisplayMidiEmulationAction::NativeMIDI));
    EXPECT_TRUE(to->copyFromWithoutEmulation(*from));
    ASSERT_NE(to->action(), nullptr);
    EXPECT_EQ(to->action()->actionType(), CorvaneButtonDisplayMidiEmulationAction::kActionType);
}

TEST_F(ControlTest, DisplayableNamesShowUserNameOrWhatTheActionMakesOfTheControl)
{
    TVKControl* encoder = control(4, 0);
    EXPECT_EQ(encoder->displayableName(), QString());
    encoder->adoptAction(std::make_unique<TVKEncoderEmulationAction>(encoder, 2, 0, false, false));
    EXPECT_EQ(encoder->displayableName(), QStringLiteral("   <-->"));
    encoder->adoptAction(std::make_unique<TVKEncoderEmulationAction>(encoder, 0, 0, false, false));
    EXPECT_EQ(encoder->displayableName(), QString());
    encoder->adoptAction(std::make_unique<TVKEncoderSpecialAction>(encoder, 2));
    EXPECT_EQ(encoder->displayableName(), QStringLiteral("Tb Sens"));
    encoder->setUserName(QStringLiteral("Pan"));
    EXPECT_EQ(encoder->displayableName(), QStringLiteral("Pan"));

    TVKControl* fader = control(21, 0);
    fader->adoptAction(std::make_unique<TVKFaderEmulationAction>(fader, 1, 0, false, false));
    EXPECT_EQ(fader->displayableName(), QStringLiteral("   <-->"));
    fader->adoptAction(std::make_unique<TVKFaderEmulationAction>(fader, 0, 0, false, false));
    EXPECT_EQ(fader->displayableName(), QString());

    TVKControl* button = control(0, 0);
    button->adoptAction(std::make_unique<TVKButtonSpecialAction>(button, 2));
    EXPECT_EQ(button->displayableName(), QString());
}

TEST_F(ControlTest, SubclassSettingsRoundTripAndTakeDefaultsWhenMissing)
{
    struct Row
    {
        int group, index;
        std::vector<std::pair<QString, int>> keys;
    };
    const Row rows[] = {
        {0, 0, {{key::Latch, 1}}},
        {11, 0, {{key::Color, 0}, {key::Brightness, 10}}},
        {1, 5, {{key::JogSens, 64}}},
        {24, 3, {{key::Latch, 0}, {key::Color, 7}, {key::OffColor, 7}, {key::NVButtonGroup, -1}}},
    };
    for (const Row& row : rows) {
        TVKControl* c = control(row.group, row.index);
        PlistValue archive = PlistValue::makeDict();
        c->writeTo(archive);
        EXPECT_EQ(archive.value(key::Name).toString(), c->name());
        EXPECT_EQ(archive.value(key::Type).toInteger(), c->type());
        EXPECT_FALSE(archive.contains(key::Action));
        for (const auto& [name, defaultValue] : row.keys) {
            if (name != key::Latch) {
                EXPECT_EQ(archive.value(name).toInteger(), defaultValue) << name.toStdString();
            }
            archive.insert(name, PlistValue(qint64(defaultValue + 3)));
        }
        auto changed =
            m_keyset->layerAtIndex(0)->createControlFromArchive(archive, row.group, row.index);
        PlistValue rewritten = PlistValue::makeDict();
        changed->writeTo(rewritten);
        for (const auto& [name, defaultValue] : row.keys) {
            const qint64 expected = name == key::Latch ? 1 : defaultValue + 3;
            EXPECT_EQ(rewritten.value(name).toInteger(), expected) << name.toStdString();
            archive.remove(name);
        }
        auto defaults =
            m_keyset->layerAtIndex(0)->createControlFromArchive(archive, row.group, row.index);
        PlistValue defaultArchive = PlistValue::makeDict();
        defaults->writeTo(defaultArchive);
        for (const auto& [name, defaultValue] : row.keys) {
            const qint64 expected = name == key::Latch ? 0 : defaultValue;
            EXPECT_EQ(defaultArchive.value(name).toInteger(), expected) << name.toStdString();
        }
    }
}

TEST_F(ControlTest, MultiColourAndButtonDisplayCopies)
{
    auto* from = static_cast<TVKMultiColorButtonControl*>(control(24, 0));
    auto* to = static_cast<TVKMultiColorButtonControl*>(control(24, 1));
    from->setUserName(QStringLiteral("Kick"));
    from->setOnColor(0x3F);
    from->setOffColor(0x01);
    from->setLatched(true);
    from->setMemberOfGroup(2);
    from->adoptAction(std::make_unique<TVKButtonSpecialAction>(from, 9));
    to->copyMultiColorButton(*from);
    EXPECT_EQ(to->userName(), QStringLiteral("Kick"));
    EXPECT_EQ(to->onColor(), 0x3F);
    EXPECT_EQ(to->offColor(), 0x01);
    EXPECT_TRUE(to->latched());
    EXPECT_EQ(to->memberOfGroup(), -1);
    ASSERT_NE(to->action(), nullptr);
    EXPECT_EQ(to->action()->owningControl(), to);

    auto* d0 = static_cast<TVKLCDButtonDisplayControl*>(display(2, 0));
    auto* d1 = static_cast<TVKLCDButtonDisplayControl*>(display(2, 1));
    d0->setUserName(QStringLiteral("Label"));
    d1->copyDisplay(*d0);
    EXPECT_EQ(d1->userName(), QStringLiteral("Label"));

    TVKFrameletLCDButtonControl framelet(9, QStringLiteral("F"), nullptr, nullptr, nullptr, 0, 0);
    framelet.toggleIsSelected();
    EXPECT_TRUE(framelet.isSelected());
    framelet.setButtonGroup(4);
    PlistValue archive = PlistValue::makeDict();
    framelet.writeTo(archive);
    EXPECT_EQ(archive.value(key::FLButtonGroup).toInteger(), 4);
    const TVKFrameletLCDButtonControl reread(archive, nullptr, nullptr, nullptr, 0, 0);
    EXPECT_EQ(reread.buttonGroup(), 4);
    EXPECT_FALSE(reread.isSelected());
}

TEST_F(ControlTest, TheBaseControlHasNoActionTypes)
{
    corvane::LogCapture capture;
    TVKControl base(0, QStringLiteral("x"), nullptr, nullptr, nullptr, 0, 0);
    EXPECT_EQ(base.actionModeToActionType(0), 0);
    base.setActionMode(corvane::ActionMode::Developer);
    EXPECT_EQ(base.action(), nullptr);
    EXPECT_TRUE(capture.contains(
        QStringLiteral("TVKControl subclasses must override actionModeToActionType")));
}

} // namespace
