#include "ControllerFixture.h"
#include "NoticeRecorder.h"
#include "core/Notifications.h"
#include "model/TVKControl.h"
#include "model/TVKModelData.h"
#include "surface/TVK_Constant_Server.h"

#include <QAction>
#include <QJsonArray>

using namespace corvane;
using namespace corvane::test;

namespace {

// The four words of a "TCtl" line: group, control, axis, value.
std::vector<qint64> words(const QJsonObject& line)
{
    std::vector<qint64> out;
    for (const QJsonValue& word : line.value(QStringLiteral("words")).toArray())
        out.push_back(word.toInteger());
    return out;
}

} // namespace

TEST_F(ControllerTest, TouchOnTheSurfaceMovesTheSelectionAndTheHighlight)
{
    ASSERT_TRUE(startService());
    CorvaneController& c = startController();
    NoticeRecorder<note::RemoteSelectionChange> remote;

    // A release, and a touch of what is already selected, change and send nothing.
    qsizetype from = mark();
    service->command(QStringLiteral("send TCtl 0 0 0 0"));
    service->command(QStringLiteral("send TCtl 0 0 0 1"));
    ASSERT_TRUE(spinUntil([&] {
        int sent = 0;
        for (size_t i = size_t(from); i < service->lines().size(); ++i)
            sent += service->lines()[i].contains(QStringLiteral("sent"));
        return sent == 2;
    }));
    spinFor(100);
    EXPECT_TRUE(remote.posted.empty());
    EXPECT_TRUE(received(QStringLiteral("TCtl"), from).empty());

    from = mark();
    service->command(QStringLiteral("send TCtl 1 3 0 1"));
    ASSERT_TRUE(waitForCount(QStringLiteral("TCtl"), 2, from));
    const std::vector<QJsonObject> echoes = received(QStringLiteral("TCtl"), from);
    EXPECT_EQ(words(echoes[0]), (std::vector<qint64>{0, 0, 0, 0}));
    EXPECT_EQ(words(echoes[1]), (std::vector<qint64>{1, 3, 0, 1}));
    ASSERT_EQ(remote.posted.size(), 1u);
    EXPECT_TRUE(remote.posted[0].visibleEditorUpdate);
    EXPECT_EQ(remote.posted[0].control, c.modelData()->controlForKeyset(0, 0, 1, 3));
    EXPECT_EQ(c.modelDataGroupIndex(), 1);
    EXPECT_EQ(c.modelDataControlIndex(), 3);
    int group = 0;
    int control = 0;
    c.constantServer()->modelDataGroupID(1, 3, group, control);
    EXPECT_EQ(c.selectedGroup(), group);
    EXPECT_EQ(c.selectedControl(), control);

    // A click on screen: the same two messages; a second click on it, none.
    from = mark();
    c.handleTVKControl(0, 0);
    ASSERT_TRUE(waitForCount(QStringLiteral("TCtl"), 2, from));
    EXPECT_EQ(words(received(QStringLiteral("TCtl"), from)[0]), (std::vector<qint64>{1, 3, 0, 0}));
    from = mark();
    c.handleTVKControl(0, 0);
    spinFor(100);
    EXPECT_TRUE(received(QStringLiteral("TCtl"), from).empty());
}

TEST_F(ControllerTest, CurrentControlFromTheServiceIsEchoedEvenWhenNothingChanged)
{
    ASSERT_TRUE(startService());
    CorvaneController& c = startController();
    c.modelData()->addKeysetWithName(QStringLiteral("Second"), fourCC("SeCo"));
    NoticeRecorder<note::SelectedKeysetChange> keysetChange;
    for (int round = 0; round < 2; ++round) {
        const qsizetype from = mark();
        service->command(QStringLiteral("send CurC 1 2 1 3"));
        ASSERT_TRUE(waitForCount(QStringLiteral("ChEL"), 1, from));
        EXPECT_EQ(received(QStringLiteral("ChEK"), from).size(), 1u);
        EXPECT_EQ(c.selectedKeyset(), 1);
        EXPECT_EQ(c.selectedLayer(), 2);
        EXPECT_EQ(c.modelData()->selectedControlIndex(), 3);
        EXPECT_EQ(views.keysetName, QStringLiteral("Second"));
    }
    // setSelectedKeyset and the handler itself each announce the keyset, every time.
    EXPECT_EQ(keysetChange.posted.size(), 4u);
}

TEST_F(ControllerTest, MessagesArrivingWhileARequestWaitsAreServedInOrder)
{
    ASSERT_TRUE(startService());
    CorvaneController& c = startController();
    spinFor(50);
    qsizetype from = mark();
    // The service touches a control and reports the surface gone while the connection check
    // waits for its reply.
    service->command(QStringLiteral("before-reply TCtl 1 2 0 1"));
    service->command(QStringLiteral("before-reply CnSt 0"));
    ASSERT_TRUE(service->waitFor(
        [](const QJsonObject& o) {
            return o.value(QStringLiteral("held")) == QStringLiteral("CnSt");
        },
        3000, from));
    NoticeRecorder<note::RemoteSelectionChange> remote;
    EXPECT_TRUE(c.checkConnection()) << "the reply says connected";
    EXPECT_EQ(remote.posted.size(), 1u);
    EXPECT_EQ(c.modelDataControlIndex(), 2);
    ASSERT_TRUE(waitForCount(QStringLiteral("TCtl"), 2, from));
    EXPECT_EQ(words(received(QStringLiteral("TCtl"), from)[1]), (std::vector<qint64>{1, 2, 0, 1}));
    EXPECT_TRUE(c.connected());
    EXPECT_EQ(c.connectionMenuItem()->text(), QStringLiteral("(connected)"));
}

TEST_F(ControllerTest, LayerAndDisplaySelection)
{
    ASSERT_TRUE(startService());
    CorvaneController& c = startController();
    NoticeRecorder<note::SelectedLayerChange> layer;
    NoticeRecorder<note::DisplaySelectionChange> display;
    qsizetype from = mark();
    c.handleTVKLayerSelector(0);
    c.handleTVKLayerSelector(3);
    ASSERT_TRUE(waitForCount(QStringLiteral("ChEL"), 1, from));
    EXPECT_EQ(layer.posted.size(), 1u);
    EXPECT_EQ(c.modelData()->selectedLayerIndex(), 3);

    c.handleTVKDisplay(0, 1);
    EXPECT_TRUE(c.displaySelected());
    ASSERT_EQ(display.posted.size(), 1u);
    EXPECT_EQ(display.posted[0].layerIndex, 3);
    EXPECT_EQ(display.posted[0].groupID, 0);
    EXPECT_EQ(display.posted[0].controlIndex, 1) << "the display's index";
    EXPECT_EQ(display.posted[0].control, c.modelData()->displayForKeyset(0, 3, 0, 1));
}
