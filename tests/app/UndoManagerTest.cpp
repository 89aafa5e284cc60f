// One user gesture, one undo step: edits registered inside a grouping go back and come again
// together, in the order that restores every intermediate state.
#include "app/TVKUndoManager.h"

#include <QString>
#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace {

// A tiny model of values edited by primitives that register their own inverse, as the
// controller's edits do.
struct Values
{
    TVKUndoManager undo;
    std::vector<QString> log;
    int a = 0;
    int b = 0;
    // Which keyset each value belongs to, for the lock.
    qint64 keysetOfA = TVKUndoManager::kNoKeyset;
    qint64 keysetOfB = TVKUndoManager::kNoKeyset;

    void setA(int value)
    {
        const int old = a;
        a = value;
        log.push_back(QStringLiteral("a=%1").arg(value));
        undo.registerUndo([this, old] { setA(old); }, QStringLiteral("Set A"), keysetOfA);
    }
    void setB(int value)
    {
        const int old = b;
        b = value;
        log.push_back(QStringLiteral("b=%1").arg(value));
        undo.registerUndo([this, old] { setB(old); }, QStringLiteral("Set B"), keysetOfB);
    }
};

} // namespace

TEST(UndoManager, AGroupingIsOneStepUndoneBackwardsAndRedoneForwards)
{
    Values v;
    v.setA(1);
    {
        const TVKUndoManager::Grouping gesture(v.undo);
        v.setA(2);
        {
            const TVKUndoManager::Grouping nested(v.undo);
            v.setB(5);
        }
        EXPECT_EQ(v.undo.stack().count(), 1) << "nothing pushed while the gesture is open";
        v.setA(3);
    }
    ASSERT_EQ(v.undo.stack().count(), 2);
    EXPECT_EQ(v.undo.undoActionName(), QStringLiteral("Set A")) << "the first edit's name";

    v.log.clear();
    v.undo.undo();
    EXPECT_EQ(v.a, 1);
    EXPECT_EQ(v.b, 0);
    EXPECT_EQ(v.log, (std::vector<QString>{QStringLiteral("a=2"), QStringLiteral("b=0"),
                                           QStringLiteral("a=1")}))
        << "undone last edit first";
    v.log.clear();
    v.undo.redo();
    EXPECT_EQ(v.a, 3);
    EXPECT_EQ(v.b, 5);
    EXPECT_EQ(v.log, (std::vector<QString>{QStringLiteral("a=2"), QStringLiteral("b=5"),
                                           QStringLiteral("a=3")}));
    // And again: each run registers what reverses it.
    v.undo.undo();
    v.undo.undo();
    EXPECT_EQ(v.a, 0);
    v.undo.redo();
    v.undo.redo();
    EXPECT_EQ(v.a, 3);
    EXPECT_EQ(v.b, 5);
    EXPECT_EQ(v.undo.stack().count(), 2);
}

TEST(UndoManager, AGroupingThatRecordsNothingIsNoStep)
{
    Values v;
    {
        const TVKUndoManager::Grouping gesture(v.undo);
        EXPECT_TRUE(v.undo.isGrouping());
    }
    EXPECT_FALSE(v.undo.isGrouping());
    EXPECT_EQ(v.undo.stack().count(), 0);
    EXPECT_FALSE(v.undo.canUndo());
    // An unbalanced end changes nothing.
    v.undo.endUndoGrouping();
    v.setA(4);
    EXPECT_EQ(v.undo.stack().count(), 1);
}

TEST(UndoManager, AStepThatChangesALockedKeysetIsNeitherUndoneNorRedone)
{
    Values v;
    v.keysetOfA = 1;
    v.keysetOfB = 2;
    std::vector<qint64> lockedKeysets;
    v.undo.setLockTest([&](qint64 keyset) {
        return std::find(lockedKeysets.begin(), lockedKeysets.end(), keyset) != lockedKeysets.end();
    });
    {
        const TVKUndoManager::Grouping gesture(v.undo);
        v.setA(1);
        v.setB(2);
    }
    lockedKeysets = {2};
    EXPECT_FALSE(v.undo.canUndo());
    EXPECT_TRUE(v.undo.undoBlockedByLock());
    EXPECT_EQ(v.undo.undoKeyset(), 2) << "the locked keyset of the gesture is named";
    v.undo.undo();
    EXPECT_EQ(v.a, 1);
    EXPECT_EQ(v.b, 2);

    lockedKeysets.clear();
    EXPECT_EQ(v.undo.undoKeyset(), 1);
    v.undo.undo();
    EXPECT_EQ(v.a, 0);
    EXPECT_EQ(v.b, 0);
    // The redo half knows its keysets too.
    lockedKeysets = {1};
    EXPECT_FALSE(v.undo.canRedo());
    EXPECT_EQ(v.undo.redoKeyset(), 1);
    v.undo.redo();
    EXPECT_EQ(v.a, 0);
    lockedKeysets.clear();
    v.undo.redo();
    EXPECT_EQ(v.a, 1);
    EXPECT_EQ(v.b, 2);
}
