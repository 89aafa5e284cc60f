// Every edit of every control of the surface, through the controller and the real simulated
// service: an edit that changes a property records one step (where the property is undoable) and
// tells the service under that property's message; the same edit again changes nothing and
// neither records nor sends anything.
#include "ControllerFixture.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/TVKStandardActionTypes.h"
#include "core/Notifications.h"
#include "model/ControlProperties.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "model/TVKLayer.h"
#include "model/TVKModelData.h"
#include "service/TVK_PrivateMessenger.h"

#include <QJsonArray>
#include <functional>
#include <map>

using namespace corvane;
using namespace corvane::test;

namespace {

// What the inspector posts to change one property, and where the property lives, by the control
// classes of the surface (not by the controller's table).
struct PropertyEditCase
{
    ControlProperty property;
    QString code; // the message the service is told with
    // Posts the edit of that value, on one layer or copied to all.
    std::function<void(const QVariant&, bool)> post;
    bool undoable;
    std::function<bool(const TVKControl&)> carries;
    std::function<QVariant(const TVKControl&)> current;
    std::function<QVariant(const QVariant&)> other;
};

template <typename Class>
Class* as(const TVKControl& control)
{
    return dynamic_cast<Class*>(const_cast<TVKControl*>(&control));
}

bool isType(const TVKControl& control, std::initializer_list<int> types)
{
    return std::find(types.begin(), types.end(), control.tvkControlType()) != types.end();
}

template <class Notice>
void postNotice(const Notice& notice)
{
    NotificationCenter::defaultCenter().post(notice);
}

std::vector<PropertyEditCase> propertyEditCases()
{
    auto nextColor = [](const QVariant& v) { return QVariant(qint64((v.toLongLong() + 1) % 64)); };
    auto any = [](const TVKControl&) { return true; };
    return {
        {ControlProperty::Latch, QStringLiteral("ChLa"),
         [](const QVariant& v, bool copy) {
             postNotice(note::LatchChange{v.toBool(), copy});
         },
         true, any, [](const TVKControl& c) { return QVariant(c.latched()); },
         [](const QVariant& v) { return QVariant(!v.toBool()); }},
        {ControlProperty::OnColor, QStringLiteral("ChCo"),
         [](const QVariant& v, bool copy) {
             postNotice(note::ColorChange{v.toLongLong(), copy});
         },
         true,
         [](const TVKControl& c) {
             return isType(c, {ControlType::FourWay, 9});
         },
         [](const TVKControl& c) {
             if (auto* button = as<TVKMultiColorButtonControl>(c))
                 return QVariant(qint64(button->onColor()));
             return QVariant(qint64(as<TVK4WayControl>(c)->onColor()));
         },
         nextColor},
        {ControlProperty::OffColor, QStringLiteral("COfC"),
         [](const QVariant& v, bool copy) {
             postNotice(note::OffColorChange{v.toLongLong(), copy});
         },
         true, [](const TVKControl& c) { return isType(c, {ControlType::MultiColorButton}); },
         [](const TVKControl& c) {
             return QVariant(qint64(as<TVKMultiColorButtonControl>(c)->offColor()));
         },
         nextColor},
        {ControlProperty::Brightness, QStringLiteral("ChBr"),
         [](const QVariant& v, bool copy) {
             postNotice(note::BrightnessChange{v.toLongLong(), copy});
         },
         false, [](const TVKControl& c) { return isType(c, {ControlType::FourWay}); },
         [](const TVKControl& c) { return QVariant(qint64(as<TVK4WayControl>(c)->brightness())); },
         [](const QVariant& v) { return QVariant(qint64(v.toLongLong() == 5 ? 6 : 5)); }},
        {ControlProperty::UserName, QStringLiteral("ChUN"),
         [](const QVariant& v, bool copy) {
             postNotice(note::UserNameChange{v.toString(), copy});
         },
         false, any, [](const TVKControl& c) { return QVariant(c.userName()); },
         [](const QVariant& v) { return QVariant(v.toString() + QStringLiteral(" Edited")); }},
        {ControlProperty::JogSensitivity, QStringLiteral("ChJS"),
         [](const QVariant& v, bool copy) {
             postNotice(note::JogSensChange{v.toLongLong(), copy});
         },
         false, [](const TVKControl& c) { return isType(c, {ControlType::Jog}); },
         [](const TVKControl& c) { return QVariant(qint64(as<TVKJogControl>(c)->sensitivity())); },
         [](const QVariant& v) { return QVariant(qint64(v.toLongLong() == 50 ? 51 : 50)); }},
        {ControlProperty::JoystickSensitivity, QStringLiteral("ChJy"),
         [](const QVariant& v, bool copy) {
             postNotice(note::JoySensChange{v.toLongLong(), copy});
         },
         false, [](const TVKControl& c) { return isType(c, {ControlType::Joystick}); },
         [](const TVKControl& c) {
             return QVariant(qint64(as<TVKJoystickControl>(c)->joystickSensitivity()));
         },
         [](const QVariant& v) { return QVariant(qint64(v.toLongLong() == 3 ? 4 : 3)); }},
    };
}

class PropertyEditTest : public ControllerTest
{
protected:
    void SetUp() override
    {
        ControllerTest::SetUp();
        ASSERT_TRUE(startService());
        startController();
    }

    int steps() { return controller->undoManager().stack().count(); }

    // Waits until the service has read everything sent so far: a message without a part in the
    // configuration, told apart by its word, goes after it over the same socket.
    void settle()
    {
        const qint64 token = ++m_token;
        qsizetype seen = mark();
        controller->messenger()->sendModifierFunction(token);
        ASSERT_TRUE(spinUntil([&] {
            for (const QJsonObject& line : received(QStringLiteral("TMdF"), seen)) {
                if (line.value(QStringLiteral("words")).toArray().at(0).toInteger() == token)
                    return true;
            }
            seen = mark();
            return false;
        }));
    }

    // The edit messages received since `from`: everything but requests and the settling marks.
    std::map<QString, int> editMessagesSince(qsizetype from) const
    {
        std::map<QString, int> counts;
        const std::vector<QJsonObject>& lines = service->lines();
        for (size_t i = size_t(from); i < lines.size(); ++i) {
            const QString code = lines[i].value(QStringLiteral("code")).toString();
            if (code.isEmpty() || code == QStringLiteral("TMdF") ||
                lines[i].value(QStringLiteral("request")).toBool())
                continue;
            ++counts[code];
        }
        return counts;
    }

    qint64 m_token = 0;
};

// Every group and control of a layer, as the surface's tables list them.
std::vector<std::pair<int, int>> everyControl(const TVKLayer& layer)
{
    std::vector<std::pair<int, int>> all;
    for (int group = 0; group < layer.numGroups(); ++group) {
        const TVKControlInitTable* table = layer.controlInitDataForGroupID(group);
        for (int index = 0; table && index < int(table->size()); ++index)
            all.emplace_back(group, index);
    }
    return all;
}

} // namespace

TEST_F(PropertyEditTest, EveryPropertyCaseCoversARowOfTheTable)
{
    // The action has its own test below; every other row needs its case here.
    const std::vector<PropertyEditCase> cases = propertyEditCases();
    for (const ControlPropertyRow& row : controlProperties()) {
        if (row.property == ControlProperty::Action)
            continue;
        const auto found = std::find_if(cases.begin(), cases.end(),
                                        [&](const auto& c) { return c.property == row.property; });
        ASSERT_NE(found, cases.end()) << "no edit case for property " << int(row.property);
        EXPECT_EQ(stringFromFourCharCode(row.message), found->code);
    }
}

TEST_F(PropertyEditTest, EveryEditOfEveryControlIsSentWhenItChangesSomethingAndOnlyThen)
{
    TVKModelData& model = *controller->modelData();
    const std::vector<PropertyEditCase> cases = propertyEditCases();
    const std::vector<std::pair<int, int>> controls =
        everyControl(*model.keysetAtIndex(0)->layerAtIndex(0));
    ASSERT_GT(controls.size(), 100u);
    std::map<ControlProperty, int> edited;

    for (const auto& [group, index] : controls) {
        const QString where = QStringLiteral("group %1 control %2").arg(group).arg(index);
        controller->hardwareControlChangeForGroup(group, index, 0, 1);
        ASSERT_EQ(controller->modelDataGroupIndex(), group) << where.toStdString();
        ASSERT_EQ(controller->modelDataControlIndex(), index) << where.toStdString();
        auto control = [&](int layer) -> TVKControl& {
            return *model.controlForKeyset(0, layer, group, index);
        };

        // Each property the control carries, changed on all layers.
        settle();
        qsizetype from = mark();
        std::map<QString, int> expected;
        std::vector<std::pair<const PropertyEditCase*, QVariant>> done;
        for (const PropertyEditCase& edit : cases) {
            if (!edit.carries(control(0)))
                continue;
            const QVariant value = edit.other(edit.current(control(0)));
            // A name copied to all layers goes out once, for the layer given, and leaves the
            // service behind: it is edited on one layer here.
            const bool copy = edit.property != ControlProperty::UserName;
            const int before = steps();
            edit.post(value, copy);
            for (int layer = 0; layer < (copy ? 4 : 1); ++layer)
                EXPECT_EQ(edit.current(control(layer)), value) << where.toStdString();
            EXPECT_EQ(steps(), before + (edit.undoable ? 1 : 0)) << where.toStdString();
            expected[edit.code] += copy ? 4 : 1;
            ++edited[edit.property];
            done.emplace_back(&edit, value);
        }
        settle();
        std::map<QString, int> got = editMessagesSince(from);
        got.erase(QStringLiteral("TCtl")); // the surface highlight follows the edited control
        EXPECT_EQ(got, expected) << where.toStdString();

        // The same values again, on one layer and on all: nothing recorded, nothing sent.
        from = mark();
        const int before = steps();
        for (const auto& [edit, value] : done) {
            edit->post(value, false);
            if (edit->property != ControlProperty::UserName)
                edit->post(value, true);
            EXPECT_EQ(edit->current(control(0)), value) << where.toStdString();
        }
        EXPECT_EQ(steps(), before) << where.toStdString();
        EXPECT_EQ(controller->undoManager().stack().index(), before) << where.toStdString();
        settle();
        EXPECT_EQ(editMessagesSince(from), (std::map<QString, int>{})) << where.toStdString();
    }
    // Each property the surface has was reached (these surfaces have no joystick).
    for (const PropertyEditCase& edit : cases) {
        if (edit.property != ControlProperty::JoystickSensitivity) {
            EXPECT_GT(edited[edit.property], 0) << edit.code.toStdString();
        }
    }
    EXPECT_TRUE(serviceInStep());
}

TEST_F(PropertyEditTest, EveryActionEditOfEveryControlAndDisplayIsSentWhenItChangesSomething)
{
    TVKModelData& model = *controller->modelData();
    const TVKLayer& layer = *model.keysetAtIndex(0)->layerAtIndex(0);

    // Inserts or deletes, and tells what arrived at the service meanwhile.
    settle();
    auto run = [&](auto notice) {
        const qsizetype from = mark();
        NotificationCenter::defaultCenter().post(notice);
        settle();
        std::map<QString, int> got = editMessagesSince(from);
        got.erase(QStringLiteral("TCtl"));
        return got;
    };
    using Counts = std::map<QString, int>;

    for (const auto& [group, index] : everyControl(layer)) {
        const std::string where =
            QStringLiteral("group %1 control %2").arg(group).arg(index).toStdString();
        controller->hardwareControlChangeForGroup(group, index, 0, 1);
        TVKControl* control = model.controlForKeyset(0, 0, group, index);
        ASSERT_TRUE(control);
        const std::unique_ptr<TVKAction> midi = TVKStandardActionTypes::createActionWithType(
            control->actionModeToActionType(ActionMode::NativeMIDI), 1, control);
        ASSERT_TRUE(midi) << where;
        views.editedAction = midi.get();

        int before = steps();
        EXPECT_EQ(run(note::InsertEditedAction{true}), (Counts{{QStringLiteral("InAc"), 4}}))
            << where;
        EXPECT_EQ(steps(), before + 1) << where;
        before = steps();
        EXPECT_EQ(run(note::InsertEditedAction{false}), Counts{}) << where;
        EXPECT_EQ(run(note::InsertEditedAction{true}), Counts{}) << where;
        EXPECT_EQ(steps(), before) << where;

        EXPECT_EQ(run(note::DeleteAction{false}), (Counts{{QStringLiteral("InAc"), 1}})) << where;
        EXPECT_EQ(control->action(), nullptr) << where;
        before = steps();
        EXPECT_EQ(run(note::DeleteAction{false}), Counts{}) << where;
        EXPECT_EQ(steps(), before) << where;
    }

    for (int group = 0; group < layer.numDisplayGroups(); ++group) {
        const TVKControlInitTable* table = layer.displayInitDataForGroupID(group);
        for (int index = 0; table && index < int(table->size()); ++index) {
            const std::string where =
                QStringLiteral("display group %1 display %2").arg(group).arg(index).toStdString();
            // Banked displays share their on-screen places: select in model numbering.
            controller->setSelectedDisplay(index, group);
            TVKControl* display = model.displayForKeyset(0, 0, group, index);
            ASSERT_EQ(model.selectedDisplay(), display) << where;
            TVKLCDDisplayTextAction text(display, QStringLiteral("Text %1").arg(index));
            views.editedAction = &text;

            int before = steps();
            EXPECT_EQ(run(note::InsertEditedDisplayAction{false}),
                      (Counts{{QStringLiteral("IDAc"), 1}}))
                << where;
            EXPECT_EQ(steps(), before + 1) << where;
            before = steps();
            EXPECT_EQ(run(note::InsertEditedDisplayAction{false}), Counts{}) << where;
            EXPECT_EQ(steps(), before) << where;
            EXPECT_EQ(run(note::DeleteDisplayAction{false}), (Counts{{QStringLiteral("IDAc"), 1}}))
                << where;
            before = steps();
            EXPECT_EQ(run(note::DeleteDisplayAction{false}), Counts{}) << where;
            EXPECT_EQ(steps(), before) << where;
        }
    }
    views.editedAction = nullptr;
    EXPECT_TRUE(serviceInStep());
}
