#include "ControllerFixture.h"

#include <QAction>

using namespace corvane;
using namespace corvane::test;

TEST_F(ControllerTest, WithoutTheServiceTheControllerPollsUntilItAppears)
{
    CorvaneController& c = startController();
    EXPECT_FALSE(c.connected());
    c.validateMenuItems();
    EXPECT_TRUE(c.menuItem(TVKMenuCommand::AttemptReconnect)->isEnabled());
    ASSERT_TRUE(startService());
    // The transport finds the port within 0.2 s, the next poll within 1.0 s.
    ASSERT_TRUE(spinUntil([&] { return c.connected(); }, 4000));
    EXPECT_EQ(c.connectionMenuItem()->text(), QStringLiteral("(connected)"));
    EXPECT_FALSE(c.connectionMenuItem()->isEnabled());
}

TEST_F(ControllerTest, ServiceQuittingIsNoticedByTheKeepAliveWatch)
{
    ASSERT_TRUE(startService());
    CorvaneController& c = startController();
    ASSERT_TRUE(spinUntil([&] { return c.connected(); }));
    service->terminate();
    // One keep-alive period (1.5 s) and the queued state change after it; the wait is generous.
    ASSERT_TRUE(spinUntil([&] { return !c.connected(); }, 4000));
    EXPECT_EQ(c.connectionMenuItem()->text(), QStringLiteral("reconnect"));
    EXPECT_TRUE(c.connectionMenuItem()->isEnabled());

    // Back again: polling finds it.
    ASSERT_TRUE(startService());
    ASSERT_TRUE(spinUntil([&] { return c.connected(); }, 4000));
}

TEST_F(ControllerTest, SurfaceStateReportedByTheServiceAndReconnect)
{
    ASSERT_TRUE(startService(QStringList{QStringLiteral("--disconnected")}));
    CorvaneController& c = startController();
    spinFor(100);
    EXPECT_FALSE(c.connected());
    service->command(QStringLiteral("surface connected"));
    ASSERT_TRUE(spinUntil([&] { return c.connected(); }, 4000)) << "the 1.0 s poll";

    // An unplugged surface is reported only by the service; the watch does not ask.
    service->command(QStringLiteral("send CnSt 0"));
    ASSERT_TRUE(spinUntil([&] { return !c.connected(); }));
    EXPECT_EQ(c.connectionMenuItem()->text(), QStringLiteral("reconnect"));

    c.setIpAddress(QStringLiteral("192.168.1.20"));
    c.setEthernetPort(5004);
    const qsizetype from = mark();
    c.connectionMenuItem()->trigger();
    ASSERT_TRUE(waitForCount(QStringLiteral("RSoc"), 1, from));
    const QJsonObject reset = received(QStringLiteral("RSoc"), from).front();
    EXPECT_EQ(reset.value(QStringLiteral("ip")).toString(), QStringLiteral("192.168.1.20"));
    EXPECT_EQ(reset.value(QStringLiteral("port")).toInteger(), 5004);
}
