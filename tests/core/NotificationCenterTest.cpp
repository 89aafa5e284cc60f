#include "core/NotificationCenter.h"

#include "core/Notifications.h"

#include <QStringList>
#include <gtest/gtest.h>
#include <optional>

using corvane::NoticeRegistry;
using corvane::Notification;
using corvane::NotificationCenter;

namespace {

struct Ping
{
    static constexpr QLatin1StringView name{"TVKTestPing"};
    int value = 0;
};

struct Pong
{
    static constexpr QLatin1StringView name{"TVKTestPong"};
};

// Observed below and posted nowhere.
struct Unanswered
{
    static constexpr QLatin1StringView name{"TVKTestUnanswered"};
};

const NoticeRegistry::Use* registered(QLatin1StringView name)
{
    for (const NoticeRegistry::Use& use : NoticeRegistry::instance().uses()) {
        if (use.name == name)
            return &use;
    }
    return nullptr;
}

} // namespace

TEST(NotificationCenter, DeliversSynchronouslyByTypeAndSender)
{
    NotificationCenter center;
    int sender = 0;
    int other = 0;
    QStringList seen;
    auto any = center.observe<Ping>(
        nullptr, [&](const Ping& p) { seen << QStringLiteral("ping %1").arg(p.value); });
    auto fromSender =
        center.observe<Ping>(&sender, [&](const Ping&) { seen << QStringLiteral("s"); });
    auto pong = center.observe<Pong>(nullptr, [&](const Pong&) { seen << QStringLiteral("pong"); });
    auto everything = center.observeAll(
        nullptr, [&](const Notification& n) { seen << QStringLiteral("all ") + QString(n.name); });

    center.post(Ping{24}, &other);
    EXPECT_EQ(seen, (QStringList{QStringLiteral("ping 24"), QStringLiteral("all TVKTestPing")}));
    seen.clear();
    center.post(Ping{1}, &sender);
    EXPECT_EQ(seen.size(), 3);
    seen.clear();
    center.post(Pong{}, &sender);
    EXPECT_EQ(seen, (QStringList{QStringLiteral("pong"), QStringLiteral("all TVKTestPong")}));
}

TEST(NotificationCenter, ObserverGoneWithItsOwnerEvenDuringDelivery)
{
    NotificationCenter center;
    int calls = 0;
    std::optional<NotificationCenter::Observation> second;
    auto first = center.observe<Ping>(nullptr, [&](const Ping&) {
        ++calls;
        second.reset(); // the second observer's owner goes away mid-delivery
    });
    second = center.observe<Ping>(nullptr, [&](const Ping&) { calls += 100; });
    center.post(Ping{});
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(center.observerCount(), 1u);

    {
        auto scoped = center.observe<Ping>(nullptr, [&](const Ping&) { calls += 10; });
        NotificationCenter::Observation moved = std::move(scoped);
        center.post(Ping{});
        EXPECT_EQ(calls, 12);
    }
    center.post(Ping{});
    EXPECT_EQ(calls, 13);
}

TEST(NotificationCenter, ObservationOutlivingCentreIsHarmless)
{
    NotificationCenter::Observation survivor;
    {
        NotificationCenter center;
        survivor = center.observe<Ping>(nullptr, [](const Ping&) {});
        EXPECT_TRUE(survivor.isActive());
    }
    EXPECT_FALSE(survivor.isActive());
    survivor.reset();
}

// The registry is filled before main() from every instantiation of post() and observe() in the
// program, whether or not that code ever runs.
TEST(NotificationCenter, RegistryKnowsEveryPostedAndObservedNoticeBeforeItRuns)
{
    const NoticeRegistry::Use* ping = registered(Ping::name);
    ASSERT_NE(ping, nullptr);
    EXPECT_TRUE(ping->posted);
    EXPECT_TRUE(ping->observed);
    EXPECT_EQ(ping->payloadType, NoticeRegistry::payloadType<Ping>());

    const NoticeRegistry::Use* unanswered = registered(Unanswered::name);
    ASSERT_NE(unanswered, nullptr);
    EXPECT_FALSE(unanswered->posted);
    EXPECT_TRUE(unanswered->observed);

    if (false) { // never runs: instantiating observe() is what registers
        NotificationCenter center;
        auto never = center.observe<Unanswered>(nullptr, [](const Unanswered&) {});
    }
}
