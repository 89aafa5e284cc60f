#include "ModelFixture.h"
#include "actions/TVKSpecialAction.h"
#include "core/PlistCodec.h"
#include "model/ArchiveRepairLog.h"
#include "model/CorvaneKeyset.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKDisplayControl.h"
#include "model/TVKLayer.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <functional>
#include <variant>

using corvane::ArchiveRepair;
using corvane::ArchiveRepairLog;
using corvane::fourCC;
using corvane::PlistValue;

namespace {

class ArchiveTest : public ModelTest
{
protected:
    // A configuration that uses every kind of model key.
    std::unique_ptr<CorvaneModelData> makeConfiguration()
    {
        auto modelData = std::make_unique<CorvaneModelData>();
        modelData->setOneTouchRecordDefault(true);
        modelData->setIpAddress(QStringLiteral("10.0.0.7"));
        modelData->setEthernetPort(4001);
        modelData->setStandaloneTLW2(true);
        modelData->setStandaloneDZ(true);
        modelData->setHardwareStyle(3);
        modelData->addKeysetWithName(QStringLiteral("Mail"), fourCC("????"),
                                     QStringLiteral("com.apple.mail"),
                                     QByteArray("\x89PNG\r\n", 6));
        modelData->addKeysetWithName(QStringLiteral("Editor"), fourCC("EDIT"));
        modelData->setHasOwnerKeyset(true, QStringLiteral("com.apple.mail"), fourCC("MAIL"));

        auto* mail = static_cast<CorvaneKeyset*>(modelData->keysetAtIndex(1));
        mail->setEmulationMode(corvane::EmulationMode::B);
        mail->setOneTouchRecord(true);
        mail->setConnectViaEthernet(true);
        mail->setEthernetPort(50123);
        mail->setLocked(true);
        mail->setReverseRBButtons(true);
        mail->setAllControlsToActionMode(corvane::ActionMode::Developer);
        mail->layerAtIndex(1)->setAllControlsToActionMode(corvane::ActionMode::NativeMIDI);
        mail->layerAtIndex(2)->setAllControlsToActionMode(corvane::ActionMode::Emulation);
        // Only the surface's eight TLW2 encoders and switches are stored; the layers' others
        // are made afresh on reading, so keep them at their defaults here.
        for (const auto& layer : mail->layers()) {
            for (int group : {29, 30}) {
                for (std::size_t i = 8; i < layer->groups()[std::size_t(group)].size(); ++i)
                    layer->groups()[std::size_t(group)][i]->takeAction();
            }
        }
        mail->controlForLayer(2, 3, 1)->setUserName(QStringLiteral("Pan ✓"));
        static_cast<TVKJogControl*>(mail->controlForLayer(0, 1, 5))->setSensitivity(12);
        auto* lit = static_cast<TVKMultiColorButtonControl*>(mail->controlForLayer(3, 24, 200));
        lit->setOnColor(0x2A);
        lit->setOffColor(0x15);
        static_cast<TVK4WayControl*>(mail->controlForLayer(1, 11, 2))->setBrightness(4);

        modelData->setSelectedKeysetIndex(1);
        modelData->setSelectedLayerIndex(1);
        modelData->createCorvaneNVGroupNamed(QStringLiteral("Drums"));
        modelData->createCorvaneNVGroupNamed(QStringLiteral("Bass"));
        modelData->addButtonID(12, 1);
        modelData->addButtonID(13, 1);
        modelData->addButtonID(200, 0);
        return modelData;
    }
};

TEST_F(ArchiveTest, WholeConfigurationRoundTripsThroughTheTreeAndAFile)
{
    auto original = makeConfiguration();
    const PlistValue archive = archiveOf(*original);
    original.reset();
    TVKKeyset::resetTargetIDs();

    ArchiveRepairLog repairs;
    CorvaneModelData reread(archive);
    EXPECT_TRUE(repairs.isEmpty());
    EXPECT_EQ(firstDifference(archiveOf(reread), archive).toStdString(), "");

    ASSERT_EQ(reread.numberOfKeysets(), 3);
    const auto* mail = static_cast<const CorvaneKeyset*>(reread.keysetAtIndex(1));
    EXPECT_EQ(mail->targetID(), fourCC("mail"));
    EXPECT_EQ(mail->icon(), QByteArray("\x89PNG\r\n", 6));
    EXPECT_TRUE(mail->reverseRBButtons());
    EXPECT_EQ(mail->controlForLayer(1, 21, 0)->action()->actionType(), 0x204);
    EXPECT_EQ(mail->controlForLayer(2, 21, 0)->action()->actionType(), 0x606);
    EXPECT_EQ(mail->displayForLayer(2, 0, 0)->action()->actionType(), 0x100003);
    EXPECT_EQ(mail->controlForLayer(2, 3, 1)->userName(), QStringLiteral("Pan ✓"));
    EXPECT_EQ(mail->controlForLayer(0, 0, 0)->action()->owningControl(),
              mail->controlForLayer(0, 0, 0));
    EXPECT_EQ(reread.ownerKeysetSignature(), fourCC("MAIL"));
    EXPECT_TRUE(reread.standaloneDZ());
    EXPECT_EQ(reread.hardwareStyle(), 3);
    reread.setSelectedKeysetIndex(1);
    reread.setSelectedLayerIndex(1);
    EXPECT_EQ(reread.nameOfGroupWithID(1), QStringLiteral("Bass"));

    // The same through an XML file on disk.
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("config.plist"));
    ASSERT_TRUE(corvane::PlistCodec::writeFile(path, archive));
    const corvane::PlistReadResult read = corvane::PlistCodec::readFile(path);
    ASSERT_TRUE(read.ok) << read.error.toString().toStdString();
    const CorvaneModelData fromFile(read.value);
    EXPECT_EQ(firstDifference(archiveOf(fromFile), archive).toStdString(), "");
}

// Unassigned controls are the same in every layer of every keyset, so the binary form stores a
// configuration of them in well under a kilobyte per keyset; it must read back however many
// there are.
TEST_F(ArchiveTest, ConfigurationsOfUnassignedKeysetsReadBackFromTheBinaryForm)
{
    // As many keysets as a configuration may hold, all sharing their controls: the most
    // compact file the writer makes for the largest tree, which the reader must still take.
    CorvaneModelData original;
    for (int i = 1; i < TVKModelData::kMaxKeysets; ++i)
        original.addKeysetWithName(QStringLiteral("Keyset %1").arg(i), fourCC("AP00") + quint32(i));
    const PlistValue archive = archiveOf(original);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("config.bplist"));
    ASSERT_TRUE(corvane::PlistCodec::writeFile(path, archive, corvane::PlistFormat::Binary));
    EXPECT_LT(QFileInfo(path).size(), 256 * 1024);
    const corvane::PlistReadResult read = corvane::PlistCodec::readFile(path);
    ASSERT_TRUE(read.ok) << read.error.reason.toStdString();
    EXPECT_EQ(read.value, archive);
}

TEST_F(ArchiveTest, KeysetsBeyondTheLimitAreDroppedAndReported)
{
    // Entries that are no keysets are cheap to read; the one past the limit is a keyset.
    PlistValue archive = PlistValue::makeDict();
    PlistValue keysets = PlistValue::makeArray();
    for (int i = 0; i < TVKModelData::kMaxKeysets; ++i)
        keysets.append(PlistValue(qint64(i)));
    keysets.append(archiveOf(CorvaneKeyset(QStringLiteral("Beyond"), fourCC("BYND"), nullptr)));
    archive.insert(QStringLiteral("TVKKeysets"), keysets);
    EXPECT_EQ(TVKModelData::archiveLimitExceeded(archive),
              QStringLiteral("the configuration holds 257 keysets, more than the limit of 256"));

    ArchiveRepairLog log;
    const CorvaneModelData read(archive);
    ASSERT_EQ(read.numberOfKeysets(), 1);
    EXPECT_EQ(read.keysetAtIndex(0)->name(), QStringLiteral("Default"));
    ASSERT_FALSE(log.repairs().empty());
    EXPECT_EQ(log.repairs().front().what,
              QStringLiteral("keysets 256 to 256 beyond the limit of 256 dropped"));
    EXPECT_TRUE(TVKModelData::archiveLimitExceeded(archiveOf(read)).isNull());
}

TEST_F(ArchiveTest, ExportedKeysetImportsAsAnEqualKeyset)
{
    auto modelData = makeConfiguration();
    const PlistValue keysetArchive = archiveOf(*modelData->keysetAtIndex(1));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Mail.CvKs"));
    ASSERT_TRUE(corvane::PlistCodec::writeFile(path, keysetArchive));
    const corvane::PlistReadResult read = corvane::PlistCodec::readFile(path);
    ASSERT_TRUE(read.ok);
    auto imported = modelData->createKeysetFromArchive(read.value);
    EXPECT_EQ(firstDifference(archiveOf(*imported), keysetArchive).toStdString(), "");
    EXPECT_EQ(imported->owner(), modelData.get());
}

TEST_F(ArchiveTest, EachRepairIsReportedAndTheGapsFilledFromTheTables)
{
    CorvaneModelData source;
    source.keysetAtIndex(0)->setName(QStringLiteral("Broken"));
    source.keysetAtIndex(0)->setAllControlsToActionMode(corvane::ActionMode::Developer);
    PlistValue archive = archiveOf(source);
    PlistValue* keyset = child(child(&archive, u"TVKKeysets"), 0);
    PlistValue* layers = child(keyset, u"TVKLayers");
    PlistValue* groups = child(child(layers, 0), u"TVKGroups");
    ASSERT_NE(groups, nullptr);

    // Group 0: an action of a type that cannot be restored.
    child(child(child(groups, 0), 1), u"TVKAction")
        ->insert(QStringLiteral("TVKActnType"), PlistValue(qint64(774)));
    // Group 2: a control of unknown type at index 2 ends the group's reading.
    child(child(groups, 2), 2)->insert(QStringLiteral("TVKType"), PlistValue(qint64(12)));
    child(child(groups, 2), 3)
        ->insert(QStringLiteral("TVKUName"), PlistValue(QStringLiteral("lost")));
    // Group 3: an entry that is no dictionary at index 1 ends the group's reading too.
    child(groups, 3)->set(1, PlistValue(QStringLiteral("Left Encoder 2")));
    // Group 5: only three of eight controls archived.
    groups->set(5, truncated(groups->at(5), 3));
    // Group 29: the surface's eight archived, the table's 32 held: not a repair.
    groups->set(29, truncated(groups->at(29), 8));
    // Only 27 groups and one display group in layer 1; only three layers.
    PlistValue* layer1 = child(layers, 1);
    layer1->insert(QStringLiteral("TVKGroups"), truncated(layer1->value(u"TVKGroups"), 27));
    layer1->insert(QStringLiteral("TVKDisplays"), truncated(layer1->value(u"TVKDisplays"), 1));
    keyset->insert(QStringLiteral("TVKLayers"), truncated(*layers, 3));

    ArchiveRepairLog log;
    const CorvaneModelData reread(archive);
    const TVKKeyset* k = reread.keysetAtIndex(0);

    const QString name = QStringLiteral("Broken");
    const std::vector<ArchiveRepair> expected = {
        {name, 0, 0, false, 1, QStringLiteral("action of type 774 cannot be restored; dropped")},
        {name, 0, 2, false, 2,
         QStringLiteral("control of unknown type 12 dropped, with the 4 archived after it")},
        {name, 0, 2, false, 2, QStringLiteral("controls 2 to 6 missing; made afresh")},
        {name, 0, 3, false, 1,
         QStringLiteral(
             "control entry that is no dictionary dropped, with the 4 archived after it")},
        {name, 0, 3, false, 1, QStringLiteral("controls 1 to 5 missing; made afresh")},
        {name, 0, 5, false, 3, QStringLiteral("controls 3 to 7 missing; made afresh")},
        {name, 1, 27, false, -1, QStringLiteral("group missing; made afresh")},
        {name, 1, 28, false, -1, QStringLiteral("group missing; made afresh")},
        {name, 1, 29, false, -1, QStringLiteral("group missing; made afresh")},
        {name, 1, 30, false, -1, QStringLiteral("group missing; made afresh")},
        {name, 1, 1, true, -1, QStringLiteral("display group missing; made afresh")},
        {name, 1, 2, true, -1, QStringLiteral("display group missing; made afresh")},
        {name, 1, 3, true, -1, QStringLiteral("display group missing; made afresh")},
        {name, 1, 4, true, -1, QStringLiteral("display group missing; made afresh")},
        {name, 3, -1, false, -1, QStringLiteral("layer missing; made afresh")},
    };
    ASSERT_EQ(log.repairs().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(log.repairs()[i], expected[i])
            << i << ": " << log.repairs()[i].what.toStdString();
    }

    EXPECT_EQ(k->controlForLayer(0, 0, 1)->action(), nullptr);
    EXPECT_NE(k->controlForLayer(0, 0, 2)->action(), nullptr);
    const auto& layer0 = k->layerAtIndex(0)->groups();
    EXPECT_EQ(layer0[2].size(), 7u);
    EXPECT_TRUE(layer0[2][3]->userName().isEmpty());
    EXPECT_EQ(layer0[2][3]->action(), nullptr); // fresh, with no action
    ASSERT_EQ(layer0[3].size(), 6u);
    EXPECT_NE(dynamic_cast<const TVKEncoderControl*>(layer0[3][1].get()), nullptr);
    EXPECT_EQ(layer0[3][1]->name(), QStringLiteral("Left Encoder 2"));
    EXPECT_EQ(layer0[5].size(), 8u);
    EXPECT_EQ(layer0[5][7]->name(), QStringLiteral("F8"));
    EXPECT_EQ(layer0[29].size(), 32u);
    EXPECT_NE(layer0[29][7]->action(), nullptr);
    EXPECT_EQ(layer0[29][8]->action(), nullptr);
    EXPECT_EQ(k->layerAtIndex(1)->groups().size(), 31u);
    EXPECT_EQ(k->layerAtIndex(1)->displayGroups()[4].size(), 240u);
    EXPECT_EQ(k->layers().size(), 4u);
}

TEST_F(ArchiveTest, ControlsBeyondTheSurfaceCountAreMadeAfresh)
{
    CorvaneKeyset keyset(nullptr);
    keyset.controlForLayer(0, 29, 20)->setUserName(QStringLiteral("edited"));
    keyset.controlForLayer(0, 29, 5)->setUserName(QStringLiteral("kept"));
    ArchiveRepairLog log;
    const CorvaneKeyset reread(archiveOf(keyset), nullptr);
    EXPECT_TRUE(log.isEmpty());
    EXPECT_EQ(reread.controlForLayer(0, 29, 5)->userName(), QStringLiteral("kept"));
    EXPECT_TRUE(reread.controlForLayer(0, 29, 20)->userName().isEmpty());
    EXPECT_EQ(reread.layerAtIndex(0)->groups()[29].size(), 32u);
}

TEST_F(ArchiveTest, ValuesOfTheWrongKindTakeTheDefaults)
{
    CorvaneModelData source;
    source.keysetAtIndex(0)->setAllControlsToActionMode(corvane::ActionMode::RawEthernet);
    const PlistValue good = archiveOf(source);
    const PlistValue text(QStringLiteral("nonsense"));
    const PlistValue list = PlistValue::makeArray();
    const PlistValue dict = PlistValue::makeDict();
    const PlistValue huge(qint64(1) << 40);
    const PlistValue negative(qint64(-5));

    using Edit = std::function<void(PlistValue&)>;
    auto at = [](std::initializer_list<std::variant<const char16_t*, int>> path, PlistValue value) {
        // The list's backing array ends with this call: keep a copy.
        return Edit([path = std::vector(path), value](PlistValue& root) {
            PlistValue* node = &root;
            auto it = path.begin();
            for (; node && it + 1 != path.end(); ++it) {
                if (std::holds_alternative<int>(*it))
                    node = node->findAt(std::get<int>(*it));
                else
                    node = node->find(QStringView(std::get<const char16_t*>(*it)));
            }
            if (!node)
                return;
            if (std::holds_alternative<int>(*it))
                node->set(std::get<int>(*it), value);
            else
                node->insert(QStringView(std::get<const char16_t*>(*it)).toString(), value);
        });
    };
    const std::vector<std::pair<const char*, Edit>> edits = {
        {"keyset list is text", at({u"TVKKeysets"}, text)},
        {"keyset is a list", at({u"TVKKeysets", 0}, list)},
        {"keyset name is a number", at({u"TVKKeysets", 0, u"TVKName"}, huge)},
        {"layers are a dictionary", at({u"TVKKeysets", 0, u"TVKLayers"}, dict)},
        {"layer is text", at({u"TVKKeysets", 0, u"TVKLayers", 1}, text)},
        {"groups are a dictionary", at({u"TVKKeysets", 0, u"TVKLayers", 0, u"TVKGroups"}, dict)},
        {"group is text", at({u"TVKKeysets", 0, u"TVKLayers", 0, u"TVKGroups", 3}, text)},
        {"control is a list", at({u"TVKKeysets", 0, u"TVKLayers", 0, u"TVKGroups", 3, 0}, list)},
        {"control type is huge",
         at({u"TVKKeysets", 0, u"TVKLayers", 0, u"TVKGroups", 3, 0, u"TVKType"}, huge)},
        {"control type is negative",
         at({u"TVKKeysets", 0, u"TVKLayers", 0, u"TVKGroups", 3, 0, u"TVKType"}, negative)},
        {"action is text",
         at({u"TVKKeysets", 0, u"TVKLayers", 0, u"TVKGroups", 0, 0, u"TVKAction"}, text)},
        {"special mode is huge",
         at({u"TVKKeysets", 0, u"TVKLayers", 0, u"TVKGroups", 0, 0, u"TVKAction", u"TVKSpMode"},
            huge)},
        {"colour is text",
         at({u"TVKKeysets", 0, u"TVKLayers", 0, u"TVKGroups", 24, 0, u"TVKColor"}, text)},
        {"NV groups are text", at({u"TVKKeysets", 0, u"TVKLayers", 0, u"TVKNVButtonGroups"}, text)},
        {"NV group is a list",
         at({u"TVKKeysets", 0, u"TVKLayers", 0, u"TVKNVButtonGroups"},
            [] {
                PlistValue groups = PlistValue::makeArray();
                groups.append(PlistValue::makeArray());
                PlistValue g = PlistValue::makeDict();
                g.insert(QStringLiteral("TVKGrpClrs"), PlistValue(qint64(-3)));
                g.insert(QStringLiteral("TVKGrpMem"), PlistValue(QStringLiteral("1")));
                groups.append(g);
                return groups;
            }())},
        {"assignments are a list",
         at({u"TVKKeysets", 0, u"TVKLayers", 0, u"TVKNVGroupAssigns"}, list)},
        {"port is text", at({u"TVKEnetPrt"}, text)},
        {"address is a number", at({u"TVKIPAdr"}, negative)},
        {"keyset port is negative", at({u"TVKKeysets", 0, u"TVKEnetPrt"}, negative)},
        {"signature is a dictionary", at({u"TVKKeysets", 0, u"TVKSig"}, dict)},
        {"icon is text", at({u"TVKKeysets", 0, u"TVKAppIcon"}, text)},
    };
    for (const auto& [what, edit] : edits) {
        PlistValue archive = good;
        edit(archive);
        EXPECT_NE(archive, good) << what;
        const CorvaneModelData reread(archive);
        ASSERT_GE(reread.numberOfKeysets(), 1) << what;
        const TVKKeyset* keyset = reread.keysetAtIndex(0);
        ASSERT_EQ(keyset->layers().size(), 4u) << what;
        for (const auto& layer : keyset->layers()) {
            ASSERT_EQ(layer->groups().size(), 31u) << what;
            ASSERT_EQ(layer->displayGroups().size(), 5u) << what;
        }
        EXPECT_EQ(keyset->controlForLayer(0, 24, 239)->name(),
                  QStringLiteral("CorvaneNV LCD Button 24 - Bank 10"))
            << what;
        PlistValue rewritten = archiveOf(reread);
        EXPECT_TRUE(rewritten.contains(u"TVKKeysets")) << what;
    }
}

TEST_F(ArchiveTest, MissingKeysTakeTheStatedDefaults)
{
    PlistValue keysetArchive = PlistValue::makeDict();
    keysetArchive.insert(QStringLiteral("TVKName"), PlistValue(QStringLiteral("Bare")));
    PlistValue control = PlistValue::makeDict();
    control.insert(QStringLiteral("TVKType"), PlistValue(qint64(9)));
    PlistValue group = PlistValue::makeArray();
    group.append(control);
    PlistValue groups = PlistValue::makeArray();
    for (int g = 0; g < 24; ++g)
        groups.append(PlistValue::makeArray());
    groups.append(group);
    PlistValue layer = PlistValue::makeDict();
    layer.insert(QStringLiteral("TVKGroups"), groups);
    PlistValue layers = PlistValue::makeArray();
    layers.append(layer);
    keysetArchive.insert(QStringLiteral("TVKLayers"), layers);
    PlistValue keysets = PlistValue::makeArray();
    keysets.append(keysetArchive);
    PlistValue archive = PlistValue::makeDict();
    archive.insert(QStringLiteral("TVKKeysets"), keysets);

    const CorvaneModelData modelData(archive);
    EXPECT_EQ(modelData.ipAddress(), QStringLiteral("192.168.1.250"));
    EXPECT_EQ(modelData.ethernetPort(), 23u);
    EXPECT_FALSE(modelData.oneTouchRecordDefault());
    EXPECT_FALSE(modelData.standaloneTL());
    EXPECT_EQ(modelData.hardwareStyle(), 0);
    const auto* keyset = static_cast<const CorvaneKeyset*>(modelData.keysetAtIndex(0));
    EXPECT_EQ(keyset->signature(), 0u);
    EXPECT_FALSE(keyset->hasBundleID());
    EXPECT_EQ(keyset->ethernetPort(), 0u);
    EXPECT_EQ(keyset->emulationMode(), corvane::EmulationMode::None);
    EXPECT_FALSE(keyset->locked());
    EXPECT_FALSE(keyset->reverseRBButtons());
    EXPECT_TRUE(keyset->icon().isEmpty());
    const auto& button =
        dynamic_cast<const TVKMultiColorButtonControl&>(*keyset->controlForLayer(0, 24, 0));
    EXPECT_EQ(button.onColor(), 7);
    EXPECT_EQ(button.offColor(), 7);
    EXPECT_EQ(button.memberOfGroup(), -1);
    EXPECT_EQ(button.action(), nullptr);
    EXPECT_TRUE(button.name().isEmpty()); // the archive's (missing) name, not the table's
    EXPECT_EQ(keyset->controlForLayer(0, 24, 1)->name(),
              QStringLiteral("CorvaneNV LCD Button 2 - Bank 1"));
}

TEST_F(ArchiveTest, BooleansAreReadFromIntegersOrBooleans)
{
    CorvaneModelData modelData;
    PlistValue archive = archiveOf(modelData);
    PlistValue* keyset = child(child(&archive, u"TVKKeysets"), 0);
    keyset->insert(QStringLiteral("TVKLock"), PlistValue(qint64(1)));
    keyset->insert(QStringLiteral("TVKOneTchRcd"), PlistValue(true));
    keyset->insert(QStringLiteral("RvrsRBBtns"), PlistValue(qint64(2)));
    archive.insert(QStringLiteral("TVKHasOwnerKS"), PlistValue(qint64(1)));
    archive.insert(QStringLiteral("TVKOwnKSSig"), PlistValue(QStringLiteral("OWNR")));
    const CorvaneModelData reread(archive);
    const auto* k = static_cast<const CorvaneKeyset*>(reread.keysetAtIndex(0));
    EXPECT_TRUE(k->locked());
    EXPECT_TRUE(k->oneTouchRecord());
    EXPECT_TRUE(k->reverseRBButtons());
    EXPECT_TRUE(reread.controlSurfaceHasOwnerKeyset());
    EXPECT_EQ(reread.ownerKeysetSignature(), fourCC("OWNR"));
    EXPECT_FALSE(reread.hasOwnerKeysetBundleID());
}

TEST_F(ArchiveTest, DroppedDisplayActionsAreReportedAsDisplays)
{
    CorvaneKeyset keyset(QStringLiteral("Shows"), fourCC("SHOW"), nullptr);
    PlistValue archive = archiveOf(keyset);
    PlistValue action = PlistValue::makeDict();
    action.insert(QStringLiteral("TVKActnType"), PlistValue(qint64(0x100401)));
    child(child(child(child(child(&archive, u"TVKLayers"), 2), u"TVKDisplays"), 4), 30)
        ->insert(QStringLiteral("TVKAction"), action);
    ArchiveRepairLog log;
    const CorvaneKeyset reread(archive, nullptr);
    ASSERT_EQ(log.repairs().size(), 1u);
    EXPECT_EQ(
        log.repairs()[0],
        (ArchiveRepair{QStringLiteral("Shows"), 2, 4, true, 30,
                       QStringLiteral("action of type 1049601 cannot be restored; dropped")}));
    EXPECT_EQ(reread.displayForLayer(2, 4, 30)->action(), nullptr);
}

TEST_F(ArchiveTest, ReadControlsShareTheTablesNames)
{
    CorvaneKeyset keyset(nullptr);
    keyset.controlForLayer(0, 3, 0)->setName(QStringLiteral("Renamed"));
    const CorvaneKeyset reread(archiveOf(keyset), nullptr);
    const TVKLayer& layer = *reread.layerAtIndex(0);
    // One copy of each factory name for the whole configuration, not one per control.
    EXPECT_EQ(layer.controlForGroup(24, 17)->name().constData(),
              layer.controlInitDataForGroupID(24)->at(17).name.constData());
    EXPECT_EQ(reread.displayForLayer(3, 4, 9)->name().constData(),
              layer.displayInitDataForGroupID(4)->at(9).name.constData());
    EXPECT_EQ(layer.controlForGroup(3, 0)->name(), QStringLiteral("Renamed"));
}

} // namespace
