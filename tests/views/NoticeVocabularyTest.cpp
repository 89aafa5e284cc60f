// Links every library of the application in whole, so that the notice registry holds each post()
// and observe() the application's code contains, whether or not a test runs it.
#include "core/NotificationCenter.h"
#include "core/Notifications.h"

#include <QStringList>
#include <algorithm>
#include <gtest/gtest.h>
#include <string>

using corvane::NoticeRegistry;

namespace {

std::string namesWhere(bool (*keep)(const NoticeRegistry::Use&))
{
    QStringList names;
    for (const NoticeRegistry::Use& use : NoticeRegistry::instance().uses()) {
        if (keep(use))
            names << QString(use.name);
    }
    names.sort();
    return names.join(QLatin1Char(' ')).toStdString();
}

const NoticeRegistry::Use* find(QLatin1StringView name)
{
    for (const NoticeRegistry::Use& use : NoticeRegistry::instance().uses()) {
        if (use.name == name)
            return &use;
    }
    return nullptr;
}

} // namespace

TEST(NoticeVocabulary, TheRegistryHoldsTheApplicationsOwnCode)
{
    // Nothing in this test posts or observes these; only the inspector and the controller do.
    const NoticeRegistry::Use* latch = find(corvane::note::LatchChange::name);
    ASSERT_NE(latch, nullptr);
    EXPECT_TRUE(latch->posted);
    EXPECT_TRUE(latch->observed);
    const NoticeRegistry::Use* layer = find(corvane::note::InspUpdate::name);
    ASSERT_NE(layer, nullptr);
    EXPECT_TRUE(layer->posted) << "posted from the model library";
}

TEST(NoticeVocabulary, EveryObservedNoticeHasAPoster)
{
    EXPECT_EQ(namesWhere([](const NoticeRegistry::Use& u) { return u.observed && !u.posted; }),
              std::string())
        << "observed, and posted nowhere in the application";
}

TEST(NoticeVocabulary, EachNameTravelsWithOnePayloadType)
{
    const auto& uses = NoticeRegistry::instance().uses();
    QStringList twice;
    for (size_t i = 0; i < uses.size(); ++i) {
        for (size_t j = i + 1; j < uses.size(); ++j) {
            if (uses[i].name == uses[j].name)
                twice << QString(uses[i].name);
        }
    }
    EXPECT_EQ(twice.join(QLatin1Char(' ')).toStdString(), std::string());
}

TEST(NoticeVocabulary, ReservedNamesAreNotPostedOrObserved)
{
    const auto& reserved = corvane::note::reservedNames;
    for (const NoticeRegistry::Use& use : NoticeRegistry::instance().uses())
        EXPECT_EQ(std::count(reserved.begin(), reserved.end(), use.name), 0) << use.name.data();
    for (size_t i = 0; i < reserved.size(); ++i) {
        EXPECT_TRUE(reserved[i].startsWith(QLatin1StringView("TVK"))) << reserved[i].data();
        for (size_t j = i + 1; j < reserved.size(); ++j)
            EXPECT_NE(reserved[i], reserved[j]);
    }
}
