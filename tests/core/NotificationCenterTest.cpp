#include "core/NotificationCenter.h"

#include "core/Notifications.h"

#include <gtest/gtest.h>
#include <optional>

using corvane::Notification;
using corvane::NotificationCenter;

TEST(NotificationCenter, DeliversSynchronouslyByNameAndSender)
{
    NotificationCenter center;
    int sender = 0;
    int other = 0;
    QStringList seen;
    auto any = center.addObserver(corvane::note::InspUpdate, nullptr, [&](const Notification& n) {
        seen << n.name + QLatin1Char(':') + n.userInfo.value(corvane::info::GroupID).toString();
    });
    auto fromSender = center.addObserver(corvane::note::InspUpdate, &sender,
                                         [&](const Notification&) { seen << QStringLiteral("s"); });
    auto everything = center.addObserver(QString(), nullptr, [&](const Notification& n) {
        seen << QStringLiteral("all ") + n.name;
    });

    center.post(corvane::note::InspUpdate, &other, {{corvane::info::GroupID, 24}});
    EXPECT_EQ(seen, (QStringList{QStringLiteral("TVKInspUpdate:24"),
                                 QStringLiteral("all TVKInspUpdate")}));
    seen.clear();
    center.post(corvane::note::InspUpdate, &sender);
    EXPECT_EQ(seen.size(), 3);
    seen.clear();
    center.post(QStringLiteral("TVKOther"), &sender);
    EXPECT_EQ(seen, QStringList{QStringLiteral("all TVKOther")});
}

TEST(NotificationCenter, ObserverGoneWithItsOwnerEvenDuringDelivery)
{
    NotificationCenter center;
    int calls = 0;
    std::optional<NotificationCenter::Observation> second;
    auto first = center.addObserver(QStringLiteral("N"), nullptr, [&](const Notification&) {
        ++calls;
        second.reset(); // the second observer's owner goes away mid-delivery
    });
    second = center.addObserver(QStringLiteral("N"), nullptr,
                                [&](const Notification&) { calls += 100; });
    center.post(QStringLiteral("N"));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(center.observerCount(), 1u);

    {
        auto scoped = center.addObserver(QStringLiteral("N"), nullptr,
                                         [&](const Notification&) { calls += 10; });
        NotificationCenter::Observation moved = std::move(scoped);
        center.post(QStringLiteral("N"));
        EXPECT_EQ(calls, 12);
    }
    center.post(QStringLiteral("N"));
    EXPECT_EQ(calls, 13);
}

TEST(NotificationCenter, ObservationOutlivingCentreIsHarmless)
{
    NotificationCenter::Observation survivor;
    {
        NotificationCenter center;
        survivor = center.addObserver(QStringLiteral("N"), nullptr, [](const Notification&) {});
        EXPECT_TRUE(survivor.isActive());
    }
    EXPECT_FALSE(survivor.isActive());
    survivor.reset();
}
