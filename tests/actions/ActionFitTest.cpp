// Which controls take which actions, and the clipboard form of every kind of action.
#include "actions/ActionFit.h"

#include "ModelFixture.h"
#include "actions/ActionClipboard.h"
#include "actions/ActionDescription.h"
#include "actions/TVKStandardActionTypes.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKLayer.h"

#include <QMimeData>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

namespace T = corvane::ControlType;

class ActionFit : public ModelTest
{
protected:
    void SetUp() override
    {
        ModelTest::SetUp();
        model = std::make_unique<CorvaneModelData>();
        TVKModelData::setDefaultModelData(model.get());
    }
    void TearDown() override
    {
        TVKModelData::setDefaultModelData(nullptr);
        model.reset();
        ModelTest::TearDown();
    }

    // Every control and display of a layer.
    template <typename Visit>
    void forEveryControl(Visit visit)
    {
        TVKLayer* layer = model->keysetAtIndex(0)->layerAtIndex(0);
        for (const auto* groups : {&layer->groups(), &layer->displayGroups()})
            for (const auto& group : *groups)
                for (const auto& control : group)
                    visit(*control);
    }

    std::unique_ptr<CorvaneModelData> model;
};

PlistValue actionArchive(const TVKAction& action)
{
    PlistValue dict = PlistValue::makeDict();
    action.writeTo(dict);
    return dict;
}

// The type codes with a class to restore, as the action type table lists them.
const qint32 kRestorable[] = {0x101,    0x102,    0x103,    0x104,    0x105,    0x106,    0x201,
                              0x202,    0x203,    0x204,    0x205,    0x206,    0x301,    0x302,
                              0x303,    0x304,    0x305,    0x401,    0x402,    0x403,    0x404,
                              0x405,    0x501,    0x502,    0x503,    0x504,    0x505,    0x506,
                              0x606,    0x100001, 0x100002, 0x100003, 0x100006, 0x100008, 0x100203,
                              0x100208, 0x100701, 0x100707, 0x10070a, 0x101100};

} // namespace

TEST_F(ActionFit, EveryControlTakesWhatItsOwnActionModesGiveIt)
{
    int given = 0;
    forEveryControl([&](TVKControl& control) {
        for (int mode = ActionMode::Developer; mode <= ActionMode::RawEthernet; ++mode) {
            control.setActionMode(mode);
            if (!control.action())
                continue;
            ++given;
            EXPECT_TRUE(
                actionFitsControlType(control.action()->actionType(), control.tvkControlType()))
                << control.name().toStdString() << ", mode " << mode;
        }
    });
    EXPECT_GT(given, 1000);
}

TEST_F(ActionFit, EveryKnownCodeIsRestorableAndEveryRestorableCodeIsKnown)
{
    for (qint32 code = 0; code < 0x102000; ++code) {
        if (code == 0x2000)
            code = 0x100000; // nothing lies between the control and the display codes
        PlistValue dict = PlistValue::makeDict();
        dict.insert(key::ActnType, PlistValue(qint64(code)));
        const bool restorable =
            TVKStandardActionTypes::createActionFromArchive(dict, nullptr) != nullptr;
        ASSERT_EQ(isKnownActionType(code), restorable) << std::hex << code;
    }
    for (const qint32 code : kRestorable)
        EXPECT_TRUE(isKnownActionType(code)) << std::hex << code;
    for (const qint32 never : {0, 7, 9, 0x100401, 0x306, 0x406, 0x600, -1})
        EXPECT_FALSE(isKnownActionType(never)) << std::hex << never;
}

TEST_F(ActionFit, ARefusalNamesWhatTheActionWasMadeForAndTheControl)
{
    EXPECT_EQ(actionFitProblem(0x102, T::Encoder),
              QStringLiteral("An action made for a button does not fit an encoder."));
    EXPECT_EQ(actionFitProblem(0x606, T::Encoder),
              QStringLiteral("An action made for a fader does not fit an encoder."));
    EXPECT_EQ(actionFitProblem(0x206, T::Fader),
              QStringLiteral("An action made for an encoder does not fit a fader."));
    EXPECT_EQ(actionFitProblem(0x100203, T::LCDDisplay),
              QStringLiteral("An action made for the timecode display does not fit a display "
                             "line."));
    EXPECT_EQ(actionFitProblem(0x505, T::Joystick),
              QStringLiteral("An action made for the jog wheel does not fit a joystick."));
    EXPECT_TRUE(actionFitProblem(0x202, T::Fader).isEmpty());
    EXPECT_TRUE(actionFitProblem(0x101, T::MultiColorButton).isEmpty());
    // Every control type has a name of its own.
    QStringList names;
    for (int type = 0; type < 12; ++type)
        names << controlTypeWithArticle(type);
    names.removeDuplicates();
    EXPECT_EQ(names.size(), 12);
}

TEST_F(ActionFit, EveryKindOfActionTravelsAsItsArchiveAndItsDescription)
{
    for (const qint32 code : kRestorable) {
        SCOPED_TRACE(code);
        // Restored onto a control that takes it, as a paste does.
        TVKControl* owner = nullptr;
        forEveryControl([&](TVKControl& control) {
            if (!owner && actionFitsControlType(code, control.tvkControlType()))
                owner = &control;
        });
        ASSERT_NE(owner, nullptr);
        PlistValue dict = PlistValue::makeDict();
        dict.insert(key::ActnType, PlistValue(qint64(code)));
        const std::unique_ptr<TVKAction> action =
            TVKStandardActionTypes::createActionFromArchive(dict, owner);
        ASSERT_TRUE(action);

        const std::unique_ptr<QMimeData> data = ActionClipboard::mimeData(*action);
        EXPECT_EQ(data->formats(),
                  (QStringList{ActionClipboard::mimeType(), QStringLiteral("text/plain")}));
        EXPECT_EQ(data->text(), describeAction(*action, Detail::Full));
        EXPECT_FALSE(data->text().isEmpty());
        const ActionClipboard::Content read = ActionClipboard::read(data.get());
        ASSERT_TRUE(read.ok()) << read.problem.toStdString();
        EXPECT_EQ(read.actionType, code);
        EXPECT_TRUE(read.archive == actionArchive(*action));
        const std::unique_ptr<TVKAction> again =
            TVKStandardActionTypes::createActionFromArchive(read.archive, owner);
        ASSERT_TRUE(again);
        EXPECT_TRUE(actionArchive(*again) == actionArchive(*action))
            << "the same action comes back";
    }
}

TEST_F(ActionFit, WhatIsNoActionIsRefusedWithTheReason)
{
    const QString type = ActionClipboard::mimeType();
    const auto under = [](const QString& format, const QByteArray& bytes) {
        auto data = std::make_unique<QMimeData>();
        data->setData(format, bytes);
        return data;
    };
    const auto typed = [](const PlistValue& code) {
        PlistValue dict = PlistValue::makeDict();
        dict.insert(key::ActnType, code);
        return PlistCodec::write(dict);
    };
    struct Case
    {
        const char* what;
        std::unique_ptr<QMimeData> data;
        const char* reason;
    };
    std::vector<Case> cases;
    cases.push_back({"no clipboard", nullptr, "holds no action"});
    auto text = std::make_unique<QMimeData>();
    text->setText(QStringLiteral("Ctrl+S"));
    cases.push_back({"text", std::move(text), "holds no action"});
    cases.push_back({"another type",
                     under(QStringLiteral("application/x-plist"), typed(PlistValue(qint64(0x102)))),
                     "holds no action"});
    cases.push_back({"not a property list", under(type, "Ctrl+S"), "cannot be read: "});
    cases.push_back({"a cut property list", under(type, typed(PlistValue(qint64(0x102))).left(60)),
                     "cannot be read: "});
    cases.push_back({"a list", under(type, PlistCodec::write(PlistValue::makeArray())),
                     "holds no action’s property list"});
    cases.push_back({"no type", under(type, PlistCodec::write(PlistValue::makeDict())),
                     "holds no action’s property list"});
    cases.push_back({"a text type", under(type, typed(PlistValue(QStringLiteral("258")))),
                     "holds no action’s property list"});
    cases.push_back({"an unknown type", under(type, typed(PlistValue(qint64(774)))),
                     "does not know (type 774)"});
    cases.push_back({"a type beyond 32 bits", under(type, typed(PlistValue(qint64(0x100000102)))),
                     "(type 4294967554)"});
    cases.push_back({"far too large", under(type, QByteArray(300 * 1024, ' ')), "too large"});
    for (const Case& c : cases) {
        const ActionClipboard::Content read = ActionClipboard::read(c.data.get());
        EXPECT_FALSE(read.ok()) << c.what;
        EXPECT_TRUE(read.problem.contains(QString::fromUtf8(c.reason)))
            << c.what << ": " << read.problem.toStdString();
    }
}
