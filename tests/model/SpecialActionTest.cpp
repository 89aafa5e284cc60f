#include "ModelFixture.h"
#include "actions/TVKActionContainer.h"
#include "actions/TVKNULLAction.h"
#include "actions/TVKSpecialAction.h"
#include "actions/TVKStandardActionTypes.h"
#include "core/Log.h"
#include "core/StoredKeys.h"
#include "model/TVKControl.h"

namespace key = corvane::key;

using corvane::fourCC;
using corvane::PlistValue;

namespace {

using SpecialActionTest = ModelTest;

PlistValue actionArchive(const TVKAction& action)
{
    PlistValue dict = PlistValue::makeDict(1);
    action.writeTo(dict);
    return dict;
}

TEST_F(SpecialActionTest, DescriptorsAreTheSurfaceFunctionNames)
{
    const char* names[] = {
        "Undefined",        "Developer Mode",          "Trackball Sensitivity",  "Reserved",
        "Layer 1 Selector", "Layer 2 Selector",        "Layer 3 Selector",       "Layer 4 Selector",
        "Raw Ethernet",     "Show/Hide Button Labels", "Select Layers with Knob"};
    for (int mode = 0; mode < TVKSpecialAction::kModeCount; ++mode)
        EXPECT_EQ(TVKButtonSpecialAction(nullptr, mode).actionDescriptor(),
                  QString::fromUtf8(names[mode]));
    // A tool that reads archives without making the surface constants names them as well.
    m_constants.reset();
    EXPECT_EQ(TVKSpecialJogAction(nullptr, 9).actionDescriptor(),
              QStringLiteral("Show/Hide Button Labels"));
}

TEST_F(SpecialActionTest, ModesOutsideTheFunctionsAreNeverStored)
{
    TVKSpecialJogAction action(nullptr, 5);
    action.setMode(11);
    EXPECT_EQ(action.mode(), 5);
    action.setMode(-1);
    EXPECT_EQ(action.mode(), 5);

    for (qint64 stored : {qint64(11), qint64(-2), qint64(1) << 40}) {
        PlistValue archive = actionArchive(action);
        archive.insert(key::SpMode, PlistValue(stored));
        const TVKSpecialJogAction restored(archive, nullptr);
        EXPECT_EQ(restored.mode(), 0) << stored;
    }
    PlistValue textMode = actionArchive(action);
    textMode.insert(key::SpMode, PlistValue(QStringLiteral("5")));
    EXPECT_EQ(TVKSpecialJogAction(textMode, nullptr).mode(), 0);
}

TEST_F(SpecialActionTest, FreshActionsByTypeCode)
{
    TVKEncoderControl encoder(1, QStringLiteral("E"), nullptr, nullptr, nullptr, 3, 0);
    auto special = TVKStandardActionTypes::createActionWithType(517, 8, &encoder);
    ASSERT_NE(special, nullptr);
    EXPECT_EQ(special->actionDescriptor(), QStringLiteral("Raw Ethernet"));
    EXPECT_EQ(special->owningControl(), &encoder);
    // No default action for these; emulation without a layer gives none as well.
    for (qint32 code : {774, 1030, 0x100009, 0x100401, 7, 9, 0, 518})
        EXPECT_EQ(TVKStandardActionTypes::createActionWithType(code, 1, &encoder), nullptr) << code;
}

TEST_F(SpecialActionTest, NullActionsAndTheContainer)
{
    corvane::LogCapture capture;
    const TVKNULLAction none;
    const TVKNULLDisplayAction noDisplay;
    EXPECT_EQ(none.actionType(), 7);
    EXPECT_EQ(noDisplay.actionType(), 9);
    EXPECT_EQ(none.editorTabID(), 0u);
    EXPECT_EQ(none.copyWithZone()->actionType(), 7);
    EXPECT_EQ(actionArchive(noDisplay).value(key::ActnType).toInteger(), 9);
    EXPECT_TRUE(capture.lines().isEmpty());

    TVKActionContainer container;
    EXPECT_EQ(container.actionType(), 0);
    EXPECT_EQ(container.editorTabID(), 0u);
    EXPECT_TRUE(container.actionDescriptor().isNull());
    container.setAction(std::make_unique<TVKShuttleSpecialAction>(nullptr, 6));
    EXPECT_EQ(container.actionType(), 1029);
    EXPECT_EQ(container.editorTabID(), fourCC("SPEC"));
    EXPECT_EQ(container.actionDescriptor(), QStringLiteral("Layer 3 Selector"));
    EXPECT_EQ(container.takeAction()->actionType(), 1029);
    EXPECT_TRUE(container.isEmpty());
}

} // namespace
