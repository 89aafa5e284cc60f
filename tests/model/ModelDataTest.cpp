#include "ModelFixture.h"
#include "actions/TVKSpecialAction.h"
#include "core/Log.h"
#include "core/StoredKeys.h"
#include "model/CorvaneKeyset.h"
#include "model/CorvaneLayer.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKLayer.h"

namespace key = corvane::key;

using corvane::EmulationMode;
using corvane::fourCC;
using corvane::PlistValue;

namespace {

class ModelDataTest : public ModelTest
{
protected:
    // Keysets named after their position, signatures as given.
    void fill(CorvaneModelData& modelData, std::initializer_list<corvane::FourCharCode> signatures)
    {
        int n = 0;
        for (corvane::FourCharCode signature : signatures)
            modelData.addKeysetWithName(QStringLiteral("K%1").arg(n++), signature);
    }
};

TEST_F(ModelDataTest, FreshModelDataHoldsTheDefaultKeysetAndIsTheLiveOne)
{
    CorvaneModelData modelData;
    EXPECT_EQ(TVKModelData::defaultModelData(), &modelData);
    ASSERT_EQ(modelData.numberOfKeysets(), 1);
    const TVKKeyset* keyset = modelData.keysetAtIndex(0);
    EXPECT_EQ(keyset->name(), QStringLiteral("Default"));
    EXPECT_EQ(keyset->signature(), fourCC("----"));
    EXPECT_EQ(keyset->targetID(), fourCC("----"));
    EXPECT_TRUE(keyset->hasBundleID());
    EXPECT_TRUE(keyset->bundleID().isEmpty());
    EXPECT_EQ(keyset->owner(), &modelData);
    EXPECT_EQ(modelData.ipAddress(), QStringLiteral("192.168.1.250"));
    EXPECT_EQ(modelData.ethernetPort(), 23u);
    EXPECT_FALSE(modelData.controlSurfaceHasOwnerKeyset());
    EXPECT_EQ(TVKKeyset::targetIDs(), QStringList{QStringLiteral("----")});
}

TEST_F(ModelDataTest, TheLiveInstanceIsForgottenWhenDestroyed)
{
    auto first = std::make_unique<CorvaneModelData>();
    auto second = std::make_unique<CorvaneModelData>();
    EXPECT_EQ(TVKModelData::defaultModelData(), second.get());
    first.reset(); // not the live one: nothing changes
    EXPECT_EQ(TVKModelData::defaultModelData(), second.get());
    second.reset();
    EXPECT_EQ(TVKModelData::defaultModelData(), nullptr);
}

TEST_F(ModelDataTest, KeysetSelectionIsClampedIntoTheList)
{
    CorvaneModelData modelData;
    fill(modelData, {fourCC("AAAA"), fourCC("BBBB")}); // 3 keysets
    struct Case
    {
        int request;
        int expected;
    };
    for (const Case& c : {Case{0, 0}, Case{2, 2}, Case{3, 2}, Case{-1, 2}, Case{99, 2}}) {
        modelData.setSelectedKeysetIndex(c.request);
        EXPECT_EQ(modelData.selectedKeysetIndex(), c.expected) << "request " << c.request;
    }
    while (modelData.numberOfKeysets() > 0)
        modelData.deleteKeysetAtIndex(0);
    modelData.setSelectedKeysetIndex(5);
    EXPECT_EQ(modelData.selectedKeysetIndex(), 0);
    EXPECT_EQ(modelData.selectedKeyset(), nullptr);
    EXPECT_EQ(modelData.selectedControl(), nullptr);
}

TEST_F(ModelDataTest, LookupsFindTheFirstMatchAndNamesOnlyWithoutSignature)
{
    CorvaneModelData modelData; // 0: Default "----"
    modelData.addKeysetWithName(QStringLiteral("Mail"), fourCC("????"),
                                QStringLiteral("com.apple.mail"));
    modelData.addKeysetWithName(QStringLiteral("Editor"), fourCC("EDIT"));
    modelData.addKeysetWithName(QStringLiteral("Editor"), 0);
    modelData.addKeysetWithName(QStringLiteral("Second"), fourCC("EDIT"));
    modelData.keysetAtIndex(4)->setConnectViaEthernet(true);
    modelData.keysetAtIndex(4)->setEthernetPort(50000);

    EXPECT_EQ(modelData.indexOfKeysetWithSignature(fourCC("EDIT")), 2);
    EXPECT_EQ(modelData.indexOfKeysetWithSignature(fourCC("NONE")), -1);
    EXPECT_EQ(modelData.indexOfKeysetWithBundleID(QStringLiteral("com.apple.mail")), 1);
    EXPECT_EQ(modelData.indexOfKeysetWithBundleID(QStringLiteral("com.apple.Mail")), -1);
    // "Editor" with a real signature is never found by name; the one with signature 0 is.
    EXPECT_EQ(modelData.indexOfKeysetWithName(QStringLiteral("Editor")), 3);
    EXPECT_EQ(modelData.indexOfKeysetWithName(QStringLiteral("Mail")), 1);
    EXPECT_EQ(modelData.indexOfKeysetWithName(QStringLiteral("Default")), -1);
    EXPECT_EQ(modelData.appPortInUse(50000), 4);
    EXPECT_EQ(modelData.appPortInUse(49152), -1); // the default port, but not via Ethernet
}

TEST_F(ModelDataTest, InsertReplacesTheKeysetAtTheIndexAndAppendsOnlyAtTheEnd)
{
    CorvaneModelData modelData;
    fill(modelData, {fourCC("AAAA"), fourCC("BBBB"), fourCC("CCCC"), fourCC("DDDD")}); // 5
    const TVKKeyset* third = modelData.keysetAtIndex(2);

    auto replaced =
        modelData.insertKeyset(modelData.createKeysetWithName(QStringLiteral("New"), 0), 2);
    EXPECT_EQ(replaced.get(), third);
    EXPECT_EQ(modelData.numberOfKeysets(), 5);
    EXPECT_EQ(modelData.keysetAtIndex(2)->name(), QStringLiteral("New"));

    EXPECT_EQ(modelData.insertKeyset(modelData.createKeysetWithName(QStringLiteral("Last"), 0), 9),
              nullptr);
    EXPECT_EQ(modelData.numberOfKeysets(), 6);
    EXPECT_EQ(modelData.keysetAtIndex(5)->name(), QStringLiteral("Last"));
}

TEST_F(ModelDataTest, ReplacingHandsBackTheOldKeysetAndMatchesImportsBySignatureOrBundleID)
{
    CorvaneModelData modelData;
    modelData.addKeysetWithName(QStringLiteral("Mail"), 0, QStringLiteral("com.apple.mail"));
    modelData.addKeysetWithName(QStringLiteral("Editor"), fourCC("EDIT"));

    // The very same object is left where it stands.
    TVKKeyset* editor = modelData.keysetAtIndex(2);
    EXPECT_EQ(modelData.replaceKeysetAtIndex(2, std::unique_ptr<TVKKeyset>(editor)), nullptr);
    EXPECT_EQ(modelData.keysetAtIndex(2), editor);

    auto imported = modelData.createKeysetWithName(QStringLiteral("Editor 2"), fourCC("EDIT"));
    auto old = modelData.ReplaceMatchingKeyset(std::move(imported));
    EXPECT_EQ(old.get(), editor);
    EXPECT_EQ(modelData.keysetAtIndex(2)->name(), QStringLiteral("Editor 2"));

    auto mail = modelData.createKeysetWithName(QStringLiteral("Other name"), fourCC("????"),
                                               QStringLiteral("com.apple.mail"));
    EXPECT_NE(modelData.ReplaceMatchingKeyset(std::move(mail)), nullptr);
    EXPECT_EQ(modelData.keysetAtIndex(1)->name(), QStringLiteral("Other name"));

    // Names are never used for matching: nothing is added and the keyset comes back.
    auto unmatched =
        modelData.createKeysetWithName(QStringLiteral("Default"), 0, QStringLiteral("com.x.none"));
    const TVKKeyset* unmatchedPtr = unmatched.get();
    EXPECT_EQ(modelData.ReplaceMatchingKeyset(std::move(unmatched)).get(), unmatchedPtr);
    EXPECT_EQ(modelData.numberOfKeysets(), 3);
}

TEST_F(ModelDataTest, DeletingTheOwnerKeysetClearsTheOwner)
{
    struct Case
    {
        const char* what;
        QString keysetBundleID;
        corvane::FourCharCode keysetSignature;
        std::optional<QString> ownerBundleID;
        corvane::FourCharCode ownerSignature;
        bool ownerCleared;
    };
    const Case cases[] = {
        {"same bundle id", QStringLiteral("com.x.app"), fourCC("APPL"), QStringLiteral("com.x.app"),
         fourCC("ZZZZ"), true},
        {"other bundle id", QStringLiteral("com.x.app"), fourCC("APPL"),
         QStringLiteral("com.y.app"), fourCC("APPL"), false},
        // A keyset with a bundle identifier is never matched by signature.
        {"owner by signature only", QStringLiteral("com.x.app"), fourCC("APPL"), std::nullopt,
         fourCC("APPL"), false},
        {"no bundle id, same signature", QString(), fourCC("APPL"), std::nullopt, fourCC("APPL"),
         true},
        {"no bundle id, no signature", QString(), fourCC("????"), std::nullopt, fourCC("????"),
         false},
    };
    for (const Case& c : cases) {
        CorvaneModelData modelData;
        modelData.addKeysetWithName(QStringLiteral("App"), c.keysetSignature, c.keysetBundleID);
        modelData.setHasOwnerKeyset(true, c.ownerBundleID, c.ownerSignature);
        auto removed = modelData.deleteKeysetAtIndex(1);
        ASSERT_NE(removed, nullptr);
        EXPECT_EQ(modelData.numberOfKeysets(), 1) << c.what;
        EXPECT_EQ(!modelData.controlSurfaceHasOwnerKeyset(), c.ownerCleared) << c.what;
        if (c.ownerCleared) {
            EXPECT_FALSE(modelData.hasOwnerKeysetBundleID()) << c.what;
            EXPECT_EQ(modelData.ownerKeysetSignature(), 0u) << c.what;
        }
    }
}

TEST_F(ModelDataTest, OwnerKeysAreWrittenOnlyWithAnOwner)
{
    CorvaneModelData modelData;
    PlistValue archive = archiveOf(modelData);
    EXPECT_FALSE(archive.contains(key::OwnKSBID));
    EXPECT_FALSE(archive.contains(key::OwnKSSig));
    EXPECT_EQ(archive.value(key::HasOwnerKS), PlistValue(false));

    modelData.setHasOwnerKeyset(true, std::nullopt, fourCC("APPL"));
    archive = archiveOf(modelData);
    EXPECT_FALSE(archive.contains(key::OwnKSBID));
    EXPECT_EQ(archive.value(key::OwnKSSig).toString(), QStringLiteral("APPL"));

    modelData.setHasOwnerKeyset(true, QString(), fourCC("APPL"));
    EXPECT_FALSE(archiveOf(modelData).contains(key::OwnKSBID));

    modelData.setHasOwnerKeyset(true, QStringLiteral("com.x.app"), 0);
    archive = archiveOf(modelData);
    EXPECT_EQ(archive.value(key::OwnKSBID).toString(), QStringLiteral("com.x.app"));

    CorvaneModelData reread(archive);
    EXPECT_TRUE(reread.controlSurfaceHasOwnerKeyset());
    EXPECT_EQ(reread.ownerKeysetBundleID(), QStringLiteral("com.x.app"));
    EXPECT_EQ(reread.ownerKeysetSignature(), 0u);
}

TEST_F(ModelDataTest, ArchivedKeysetListReplacesTheDefaultKeysetUnlessEmpty)
{
    CorvaneModelData source;
    fill(source, {fourCC("AAAA"), fourCC("BBBB")});
    source.deleteKeysetAtIndex(0);
    source.addKeysetWithName(QStringLiteral("K2"), fourCC("CCCC"));
    PlistValue archive = archiveOf(source);

    CorvaneModelData three(archive);
    ASSERT_EQ(three.numberOfKeysets(), 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(three.keysetAtIndex(i)->name(), QStringLiteral("K%1").arg(i));

    // Entries that hold no keyset are dropped; with none readable the "Default" keyset stays.
    PlistValue damaged = archive.value(key::Keysets);
    damaged.set(1, PlistValue(QStringLiteral("K1")));
    archive.insert(key::Keysets, damaged);
    CorvaneModelData two(archive);
    ASSERT_EQ(two.numberOfKeysets(), 2);
    EXPECT_EQ(two.keysetAtIndex(1)->name(), QStringLiteral("K2"));
    PlistValue unreadable = PlistValue::makeArray();
    unreadable.append(PlistValue(qint64(3)));
    archive.insert(key::Keysets, unreadable);
    CorvaneModelData none(archive);
    ASSERT_EQ(none.numberOfKeysets(), 1);
    EXPECT_EQ(none.keysetAtIndex(0)->name(), QStringLiteral("Default"));

    archive.insert(key::Keysets, PlistValue::makeArray());
    CorvaneModelData empty(archive);
    ASSERT_EQ(empty.numberOfKeysets(), 1);
    EXPECT_EQ(empty.keysetAtIndex(0)->name(), QStringLiteral("Default"));

    archive.remove(key::Keysets);
    CorvaneModelData missing(archive);
    ASSERT_EQ(missing.numberOfKeysets(), 1);
    EXPECT_EQ(TVKModelData::defaultModelData(), &missing);
}

TEST_F(ModelDataTest, SelectionIsNotArchivedAndAccessorsFollowIt)
{
    CorvaneModelData modelData;
    fill(modelData, {fourCC("AAAA")});
    modelData.setSelectedKeysetIndex(1);
    modelData.setSelectedLayerIndex(7); // clamped by the keyset to layer 3
    modelData.setSelectedGroupIndex(3);
    modelData.setSelectedControlIndex(4);
    modelData.setSelectedDisplay(5, 0);

    TVKControl* control = modelData.selectedControl();
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(control->name(), QStringLiteral("Left Encoder 5"));
    EXPECT_EQ(control->layer()->index(), 3);
    EXPECT_EQ(modelData.selectedLayer(), control->layer());
    EXPECT_EQ(modelData.selectedDisplay()->name(), QStringLiteral("Center Display Line 2"));
    int display = -1, group = -1;
    modelData.selectedDisplay(display, group);
    EXPECT_EQ(display, 5);
    EXPECT_EQ(group, 0);

    modelData.setSelectedControlUserName(QStringLiteral("Volume"));
    const TVKEncoderSpecialAction special(nullptr, 2);
    modelData.setSelectedControlAction(&special);
    ASSERT_NE(modelData.selectedControlAction(), nullptr);
    EXPECT_NE(modelData.selectedControlAction(), &special); // a copy is stored
    EXPECT_EQ(modelData.selectedControlAction()->owningControl(), control);
    modelData.setAction(nullptr, 1, 3, 3, 4);
    EXPECT_EQ(control->action(), nullptr);
    EXPECT_EQ(control->userName(), QStringLiteral("Volume"));

    CorvaneModelData reread(archiveOf(modelData));
    EXPECT_EQ(reread.selectedKeysetIndex(), 0);
    EXPECT_EQ(reread.selectedLayerIndex(), 0);
    EXPECT_EQ(reread.selectedGroupIndex(), 0);
    EXPECT_EQ(reread.selectedControlIndex(), 0);
    EXPECT_EQ(reread.selectedDisplayGroupIndex(), 0);
    EXPECT_EQ(reread.selectedDisplayControlIndex(), 0);
}

TEST_F(ModelDataTest, PropertyCopyTakesSettingsButNotLockOrControls)
{
    CorvaneModelData modelData;
    modelData.addKeysetWithName(QStringLiteral("App"), 0, QStringLiteral("com.x.tool"),
                                QByteArray("\x89PNG", 4));
    auto* source = static_cast<CorvaneKeyset*>(modelData.keysetAtIndex(1));
    source->setEmulationMode(EmulationMode::C);
    source->setOneTouchRecord(true);
    source->setConnectViaEthernet(true);
    source->setEthernetPort(50001);
    source->setReverseRBButtons(true);
    source->setLocked(true);
    source->controlForLayer(0, 0, 0)->setUserName(QStringLiteral("Renamed"));

    auto copy = modelData.createKeysetWithPropertiesOfKeyset(*source);
    auto* corvaneCopy = dynamic_cast<CorvaneKeyset*>(copy.get());
    ASSERT_NE(corvaneCopy, nullptr);
    EXPECT_EQ(copy->bundleID(), QStringLiteral("com.x.tool"));
    EXPECT_EQ(copy->targetID(), source->targetID());
    EXPECT_EQ(copy->icon(), source->icon());
    EXPECT_EQ(copy->emulationMode(), EmulationMode::C);
    EXPECT_TRUE(copy->oneTouchRecord());
    EXPECT_TRUE(copy->connectViaEthernet());
    EXPECT_EQ(copy->ethernetPort(), 50001u);
    EXPECT_TRUE(corvaneCopy->reverseRBButtons());
    EXPECT_FALSE(copy->locked());
    EXPECT_TRUE(copy->controlForLayer(0, 0, 0)->userName().isEmpty());
}

TEST_F(ModelDataTest, TheBaseModelDataMakesNoKeysetsAndSaysSo)
{
    corvane::LogCapture capture;
    TVKModelData base;
    EXPECT_EQ(base.numberOfKeysets(), 0);
    EXPECT_EQ(base.selectedKeysetIndex(), 0);
    base.addKeysetWithName(QStringLiteral("X"), fourCC("XXXX"));
    base.addKeysetWithName(QStringLiteral("X"), 0, QStringLiteral("a.b"));
    EXPECT_EQ(base.createKeysetWithPropertiesOfKeyset(CorvaneKeyset(nullptr)), nullptr);

    // Once per keyset.
    CorvaneModelData source;
    source.addKeysetWithName(QStringLiteral("A"), fourCC("AAAA"));
    source.addKeysetWithName(QStringLiteral("B"), fourCC("BBBB"));
    TVKModelData fromArchive(archiveOf(source));
    EXPECT_EQ(fromArchive.numberOfKeysets(), 0);
    EXPECT_EQ(capture.lines(),
              (QStringList{
                  QStringLiteral(
                      "TVKModelData subclasses must override createKeysetWithName:andSignature:"),
                  QStringLiteral("TVKModelData subclasses must override "
                                 "createKeysetWithName:signature:andBundleID:"),
                  QStringLiteral(
                      "TVKModelData subclasses must override createKeysetWithPropertiesOfKeyset:"),
                  QStringLiteral("TVKModelData subclasses must override createKeysetFromArchive"),
                  QStringLiteral("TVKModelData subclasses must override createKeysetFromArchive"),
                  QStringLiteral("TVKModelData subclasses must override createKeysetFromArchive"),
              }));
}

TEST_F(ModelDataTest, NVGroupOperationsMeanTheSelectedLayerOfTheSelectedKeyset)
{
    CorvaneModelData modelData;
    fill(modelData, {fourCC("AAAA")});
    modelData.setSelectedKeysetIndex(1);
    modelData.setSelectedLayerIndex(2);
    modelData.createCorvaneNVGroupNamed(QStringLiteral("Drums"));
    modelData.addButtonID(30, 0);

    auto* layer2 = dynamic_cast<CorvaneLayer*>(modelData.keysetAtIndex(1)->layerAtIndex(2));
    auto* layer0 = dynamic_cast<CorvaneLayer*>(modelData.keysetAtIndex(1)->layerAtIndex(0));
    ASSERT_TRUE(layer2 && layer0);
    EXPECT_EQ(layer2->numCorvaneNVGroups(), 1);
    EXPECT_EQ(layer0->numCorvaneNVGroups(), 0);
    EXPECT_EQ(modelData.numCorvaneNVGroups(), 1);
    EXPECT_EQ(modelData.nameOfGroupWithID(0), QStringLiteral("Drums"));
    EXPECT_EQ(modelData.corvaneNVGroupForButtonWithID(30), 0);
    int group = -1;
    EXPECT_TRUE(modelData.buttonID(30, group));
    EXPECT_EQ(group, 0);
    EXPECT_EQ(modelData.colorForCorvaneNVGroupWithID(0), 0);
    modelData.deleteCorvaneNVGroup(0);
    EXPECT_EQ(modelData.numCorvaneNVGroups(), 0);
    EXPECT_EQ(modelData.nameOfGroupWithID(0), QStringLiteral("Unknown!"));
}

TEST_F(ModelDataTest, KeysetsTakenInFromElsewhereBelongToTheirNewModelData)
{
    auto elsewhere = std::make_unique<CorvaneModelData>();
    auto keyset = elsewhere->createKeysetWithName(QStringLiteral("Moved"), fourCC("MOVE"));
    CorvaneModelData modelData;
    modelData.addKeyset(std::move(keyset));
    elsewhere.reset();
    const TVKKeyset* moved = modelData.keysetAtIndex(1);
    EXPECT_EQ(moved->owner(), &modelData);
    EXPECT_EQ(moved->layerAtIndex(2)->owner(), &modelData);
    EXPECT_EQ(moved->controlForLayer(3, 24, 100)->owner(), &modelData);
    EXPECT_EQ(moved->displayForLayer(0, 4, 5)->owner(), &modelData);
}

TEST_F(ModelDataTest, KeysetIndexOutsideTheListIsCaughtNotRead)
{
    CorvaneModelData modelData;
    // Asserted where assertions are on; otherwise nothing is read past the list.
    EXPECT_DEBUG_DEATH(EXPECT_EQ(modelData.keysetAtIndex(1), nullptr), "");
    EXPECT_DEBUG_DEATH(EXPECT_EQ(modelData.deleteKeysetAtIndex(-1), nullptr), "");
    EXPECT_EQ(modelData.numberOfKeysets(), 1);
    EXPECT_EQ(modelData.controlForKeyset(7, 0, 0, 0), nullptr);
    EXPECT_EQ(modelData.displayForKeyset(-1, 0, 0, 0), nullptr);
}

} // namespace
