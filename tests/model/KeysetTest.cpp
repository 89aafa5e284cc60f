#include "ModelFixture.h"
#include "actions/TVKEmulationAction.h"
#include "actions/TVKSpecialAction.h"
#include "core/Log.h"
#include "core/PlistCodec.h"
#include "core/StoredKeys.h"
#include "model/CorvaneKeyset.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKDisplayControl.h"
#include "model/TVKLayer.h"

namespace key = corvane::key;

using corvane::EmulationMode;

using corvane::fourCC;
using corvane::PlistValue;
using corvane::stringFromFourCharCode;

namespace {

using KeysetTest = ModelTest;

QString targetIDOf(const QString& bundleID, corvane::FourCharCode signature = fourCC("????"))
{
    return stringFromFourCharCode(
        CorvaneKeyset(QStringLiteral("k"), signature, bundleID, nullptr).targetID());
}

TEST_F(KeysetTest, TargetIDsComeFromTheBundleIDAndAreMadeUniqueOnce)
{
    struct Case
    {
        QString bundleID;
        corvane::FourCharCode signature;
        QString expected;
    };
    // In order, within one run: each keyset's target ID is reserved for those after it.
    const Case cases[] = {
        {QStringLiteral("com.apple.mail"), fourCC("????"), QStringLiteral("mail")},
        {QStringLiteral("org.other.mail"), 0, QStringLiteral("nbjm")},
        // Every position is raised once a collision is seen, and the result is not checked
        // again: the third gets the second one's target ID.
        {QStringLiteral("mail"), fourCC("????"), QStringLiteral("nbjm")},
        {QStringLiteral("com.apple.safari"), 0, QStringLiteral("safa")},
        // Short components are doubled before the dashes.
        {QStringLiteral("com.x.app"), 0, QStringLiteral("appa")},
        {QStringLiteral("com.x.ab"), 0, QStringLiteral("abab")},
        {QStringLiteral("com.x.x"), 0, QStringLiteral("xx--")},
        {QStringLiteral("com.x."), 0, QStringLiteral("--- ")},
        // A real signature is its own target ID, shared or not.
        {QStringLiteral("com.apple.mail"), fourCC("ABCD"), QStringLiteral("ABCD")},
        {QStringLiteral("com.other.mail"), fourCC("ABCD"), QStringLiteral("ABCD")},
    };
    QStringList expectedList;
    for (const Case& c : cases) {
        EXPECT_EQ(targetIDOf(c.bundleID, c.signature), c.expected) << c.bundleID.toStdString();
        expectedList << c.expected;
    }
    EXPECT_EQ(TVKKeyset::targetIDs(), expectedList);
}

TEST_F(KeysetTest, NoBundleIDLeavesTheMissingSignatureAsTargetID)
{
    const CorvaneKeyset keyset(QStringLiteral("k"), fourCC("????"), std::nullopt, nullptr);
    EXPECT_EQ(keyset.targetID(), fourCC("????"));
    EXPECT_FALSE(keyset.hasBundleID());
    EXPECT_FALSE(archiveOf(keyset).contains(key::AppBID));
}

TEST_F(KeysetTest, NoSignatureIsWrittenAsTheEmptyTextAndReadBackAsNone)
{
    // Four NUL characters cannot stand in an XML document; the empty text can.
    const CorvaneKeyset keyset(QStringLiteral("k"), 0, QStringLiteral("org.example.k"), nullptr);
    const PlistValue archive = archiveOf(keyset);
    EXPECT_EQ(archive.value(key::Sig).toString(), QLatin1String(""));
    const QByteArray xml = corvane::PlistCodec::write(archive);
    EXPECT_FALSE(xml.contains("&#0;")) << xml.left(400).constData();
    const corvane::PlistReadResult read = corvane::PlistCodec::read(xml);
    ASSERT_TRUE(read.ok);
    EXPECT_EQ(CorvaneKeyset(read.value, nullptr).signature(), 0u);
}

TEST_F(KeysetTest, ArchivedTargetIDIsTakenAsItIsAndMissingKeysTakeReaderDefaults)
{
    CorvaneKeyset first(QStringLiteral("Mail"), 0, QStringLiteral("com.apple.mail"), nullptr);
    PlistValue archive = archiveOf(first);
    archive.insert(key::AppTID, PlistValue(QStringLiteral("zzzz")));
    archive.remove(key::EnetPrt);
    archive.remove(key::Lock);
    TVKKeyset::resetTargetIDs();

    const CorvaneKeyset reread(archive, nullptr);
    EXPECT_EQ(reread.targetID(), fourCC("zzzz"));
    // The reading initialiser registered the computed one; the stored one is not added.
    EXPECT_EQ(TVKKeyset::targetIDs(), QStringList{QStringLiteral("mail")});
    EXPECT_EQ(reread.ethernetPort(), 0u);
    EXPECT_FALSE(reread.locked());

    // Without a stored target ID it is computed again, against the list that now holds "mail".
    archive.remove(key::AppTID);
    const CorvaneKeyset again(archive, nullptr);
    EXPECT_EQ(stringFromFourCharCode(again.targetID()), QStringLiteral("nbjm"));
}

TEST_F(KeysetTest, LayersAreClampedAndEachLayerKnowsItsPlace)
{
    CorvaneKeyset keyset(nullptr);
    ASSERT_EQ(keyset.layers().size(), 4u);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(keyset.layerAtIndex(i)->index(), i);
        EXPECT_EQ(keyset.layerAtIndex(i)->keyset(), &keyset);
    }
    EXPECT_EQ(keyset.layerAtIndex(4), keyset.layerAtIndex(3));
    EXPECT_EQ(keyset.layerAtIndex(-1), keyset.layerAtIndex(0));
    EXPECT_EQ(keyset.controlForLayer(9, 40, 99)->name(), QStringLiteral("TLW2 Encoder Switch 1"));
    EXPECT_EQ(keyset.displayForLayer(1, 4, 239)->name(),
              QStringLiteral("CorvaneNV Button Display 24 Bank 10"));
    EXPECT_EQ(keyset.numberOfLayers(), 4);
}

TEST_F(KeysetTest, CopyWithoutEmulationDropsEmulationLayerByLayer)
{
    CorvaneModelData modelData;
    modelData.addKeysetWithName(QStringLiteral("App"), 0, QStringLiteral("com.x.tool"),
                                QByteArray("icon"));
    auto* source = static_cast<CorvaneKeyset*>(modelData.keysetAtIndex(1));
    source->setEmulationMode(EmulationMode::B);
    source->setLocked(true);
    source->setOneTouchRecord(true);
    source->setReverseRBButtons(true);

    TVKControl* emulated = source->controlForLayer(1, 0, 0);
    emulated->adoptAction(std::make_unique<TVKButtonEmulationAction>(emulated, 7, 0, true, true));
    emulated->setUserName(QStringLiteral("Flip"));
    TVKControl* special = source->controlForLayer(3, 3, 2);
    special->adoptAction(std::make_unique<TVKEncoderSpecialAction>(special, 4));
    auto* lit = static_cast<TVKMultiColorButtonControl*>(source->controlForLayer(2, 24, 5));
    lit->setOnColor(0x30);
    lit->setLatched(true);
    auto* jog = static_cast<TVKJogControl*>(source->controlForLayer(0, 1, 5));
    jog->setSensitivity(3);

    auto copy = source->copyWithoutEmulation();
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->owner(), &modelData);
    EXPECT_EQ(copy->emulationMode(), EmulationMode::None);
    EXPECT_TRUE(copy->locked());
    EXPECT_TRUE(copy->oneTouchRecord());
    EXPECT_EQ(copy->bundleID(), QStringLiteral("com.x.tool"));
    EXPECT_TRUE(copy->icon().isEmpty());
    EXPECT_FALSE(static_cast<CorvaneKeyset*>(copy.get())->reverseRBButtons());

    const TVKControl* copiedEmulated = copy->controlForLayer(1, 0, 0);
    EXPECT_EQ(copiedEmulated->action(), nullptr);
    EXPECT_EQ(copiedEmulated->userName(), QStringLiteral("Flip"));
    const TVKControl* copiedSpecial = copy->controlForLayer(3, 3, 2);
    ASSERT_NE(copiedSpecial->action(), nullptr);
    EXPECT_EQ(copiedSpecial->action()->actionType(), 517);
    // The copy belongs to the new keyset's control, not to the source's.
    EXPECT_EQ(copiedSpecial->action()->owningControl(), copiedSpecial);
    const auto* copiedLit =
        static_cast<const TVKMultiColorButtonControl*>(copy->controlForLayer(2, 24, 5));
    EXPECT_EQ(copiedLit->onColor(), 0x30);
    EXPECT_TRUE(copiedLit->latched());
    // Sensitivities are not copied.
    EXPECT_EQ(static_cast<const TVKJogControl*>(copy->controlForLayer(0, 1, 5))->sensitivity(), 64);
}

TEST_F(KeysetTest, MappingListingShowsLayerZeroOnly)
{
    CorvaneKeyset keyset(QStringLiteral("Editor"), fourCC("EDIT"), nullptr);
    keyset.controlForLayer(0, 0, 0)->setUserName(QStringLiteral("Save"));
    TVKControl* second = keyset.controlForLayer(0, 0, 1);
    second->adoptAction(std::make_unique<TVKButtonSpecialAction>(second, 5));
    keyset.controlForLayer(1, 0, 2)->setUserName(QStringLiteral("not shown"));

    corvane::LogCapture capture;
    keyset.printMappings();
    ASSERT_GE(capture.lines().size(), 4);
    EXPECT_EQ(capture.lines().at(0), QStringLiteral("\nEditor\n"));
    EXPECT_EQ(capture.lines().at(1), QStringLiteral("M1\tSave"));
    EXPECT_EQ(capture.lines().at(2), QStringLiteral("M2\tLayer 2 Selector"));
    EXPECT_EQ(capture.lines().at(3), QStringLiteral("M3\t"));
    int controls = 0;
    for (const auto& group : keyset.layerAtIndex(0)->groups())
        controls += int(group.size());
    EXPECT_EQ(capture.lines().size(), controls + 1);
}

TEST_F(KeysetTest, TheBaseKeysetLogsWhatSubclassesMustProvide)
{
    corvane::LogCapture capture;
    TVKKeyset base(QStringLiteral("B"), fourCC("BASE"), QString(), nullptr);
    base.createLayers();
    EXPECT_EQ(base.createLayerFromArchive(PlistValue::makeDict(), 0), nullptr);
    EXPECT_EQ(base.copyWithoutEmulation(), nullptr);
    EXPECT_EQ(base.layerAtIndex(0), nullptr);
    EXPECT_EQ(base.controlForLayer(0, 0, 0), nullptr);
    EXPECT_EQ(capture.lines(),
              (QStringList{
                  QStringLiteral("Must Override createLayers!"),
                  QStringLiteral("TVKKeyset subclasses must override createLayerFromArchive"),
                  QStringLiteral("subclasses of TVKKeyset MUST override copyWithoutEmulation:"),
              }));
}

} // namespace
