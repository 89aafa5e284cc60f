// Every restorable action kind survives an archive and a copy unchanged; the read-back rules
// of the stored form hold; descriptors give the exact texts.
#include "QtPrinters.h"
#include "actions/CorvaneButtonDisplayMidiEmulationAction.h"
#include "actions/CorvaneLCDButtonDisplayIconAction.h"
#include "actions/TVKBuiltInAction.h"
#include "actions/TVKDisplayControlNameAction.h"
#include "actions/TVKDisplayEmulationAction.h"
#include "actions/TVKDisplayTextAction.h"
#include "actions/TVKEmulationAction.h"
#include "actions/TVKKeySequenceAction.h"
#include "actions/TVKMIDIAction.h"
#include "actions/TVKMouseAction.h"
#include "actions/TVKSpecialAction.h"
#include "actions/TVKStandardActionTypes.h"
#include "core/PlistCodec.h"
#include "surface/Corvane_Constant_Server.h"

#include <functional>
#include <gtest/gtest.h>

using corvane::PlistValue;

namespace {

PlistValue archive(const TVKAction& action)
{
    PlistValue dict = PlistValue::makeDict();
    action.writeTo(dict);
    return dict;
}

template <typename Multiple>
std::unique_ptr<TVKAction> multiple()
{
    auto action = std::make_unique<Multiple>(nullptr, 30, true);
    for (int direction = 0; direction < action->numberOfDirections(); ++direction) {
        TVKKeystrokeList list;
        TVKKeySequenceAction::addKeystroke(QString(QChar(u'a' + direction)), 0x1E + direction,
                                           0x20000u * unsigned(direction), list);
        action->setSequence(list, direction);
    }
    return action;
}

template <typename MIDI>
std::unique_ptr<TVKAction> customMIDI()
{
    const quint8 bytes[] = {0x91, 0x40, 0xF1};
    return std::make_unique<MIDI>(2u, bytes, 3u, nullptr);
}

template <typename Mouse>
std::unique_ptr<TVKAction> mouse()
{
    auto action = std::make_unique<Mouse>(4u, nullptr);
    action->setLocationType(3);
    action->setLocation(QPointF(0.25, 45));
    action->setModifierFlags(0x140000);
    action->setUsePartialWindowName(true);
    action->setWindowName(QStringLiteral("Mixer"));
    return action;
}

template <typename BuiltIn>
std::unique_ptr<TVKAction> builtIn()
{
    return std::make_unique<BuiltIn>(nullptr, 0u, true, 2, 3, QStringLiteral("Edit"),
                                     QStringLiteral("Undo"), 0, 0, 44u, 0x40000u);
}

struct Kind
{
    qint32 type;
    corvane::FourCharCode tab;
    std::function<std::unique_ptr<TVKAction>()> make;
};

std::vector<Kind> restorableKinds()
{
    using corvane::fourCC;
    return {
        {257, fourCC("BILT"), builtIn<TVKButtonBuiltInAction>},
        {258, fourCC("KEYS"),
         [] {
             auto action = std::make_unique<TVKButtonKeySequenceAction>(nullptr, 50, false);
             action->addKeystroke(QStringLiteral("a"), 30, 0x100000, action->sequence());
             action->addKeystroke(QStringLiteral("Page Up"), 104, 0, action->sequence());
             return std::unique_ptr<TVKAction>(std::move(action));
         }},
        {259, fourCC("MOUS"), mouse<TVKButtonMouseAction>},
        {260, fourCC("MIDI"), customMIDI<TVKButtonMIDIAction>},
        {261, fourCC("SPEC"), [] { return std::make_unique<TVKButtonSpecialAction>(nullptr, 4); }},
        {262, fourCC("EMUL"),
         [] { return std::make_unique<TVKButtonEmulationAction>(nullptr, 0, 3, true, false); }},
        {513, fourCC("BILT"), builtIn<TVKEncoderBuiltInAction>},
        {514, fourCC("KEYS"), multiple<TVKEncoderKeySequenceAction>},
        {515, fourCC("MOUS"), mouse<TVKEncoderMouseAction>},
        {516, fourCC("MIDI"),
         [] {
             const quint8 bytes[] = {0xB0, 0x07};
             return std::make_unique<TVKEncoderMIDIAction>(2u, bytes, 2u, nullptr, 7u);
         }},
        {517, fourCC("SPEC"), [] { return std::make_unique<TVKEncoderSpecialAction>(nullptr, 2); }},
        {518, fourCC("EMUL"),
         [] { return std::make_unique<TVKEncoderEmulationAction>(nullptr, 1, 5, false, false); }},
        {769, fourCC("BILT"), builtIn<TVK4WayBuiltInAction>},
        {770, fourCC("KEYS"), multiple<TVK4WayKeySequenceAction>},
        {771, fourCC("MOUS"), mouse<TVK4WayMouseAction>},
        {772, fourCC("MIDI"),
         [] {
             const quint8 h[] = {0xB0, 0x10, 0xF1};
             const quint8 v[] = {0xB0, 0x11};
             return std::make_unique<TVK4WayMIDIAction>(2u, h, 3u, v, 2u, nullptr);
         }},
        {773, fourCC("SPEC"), [] { return std::make_unique<TVKSpecial4WayAction>(nullptr, 9); }},
        {1025, fourCC("BILT"), builtIn<TVKShuttleBuiltInAction>},
        {1026, fourCC("KEYS"), multiple<TVKShuttleKeySequenceAction>},
        {1027, fourCC("MOUS"), mouse<TVKShuttleMouseAction>},
        {1028, fourCC("MIDI"), customMIDI<TVKShuttleMIDIAction>},
        {1029, fourCC("SPEC"),
         [] { return std::make_unique<TVKShuttleSpecialAction>(nullptr, 10); }},
        {1281, fourCC("BILT"), builtIn<TVKJogBuiltInAction>},
        {1282, fourCC("KEYS"), multiple<TVKJogKeySequenceAction>},
        {1283, fourCC("MOUS"), mouse<TVKJogMouseAction>},
        {1284, fourCC("MIDI"), customMIDI<TVKJogMIDIAction>},
        {1285, fourCC("SPEC"), [] { return std::make_unique<TVKSpecialJogAction>(nullptr, 8); }},
        {1286, fourCC("EMUL"), [] { return std::make_unique<TVKJogEmulationAction>(nullptr, 5u); }},
        {1542, fourCC("EMUL"),
         [] { return std::make_unique<TVKFaderEmulationAction>(nullptr, 1, 7, false, false); }},
        {0x100001, fourCC("TEXT"),
         [] { return std::make_unique<TVKLCDDisplayTextAction>(nullptr, QStringLiteral("Hi")); }},
        {0x100002, fourCC("ENAM"),
         [] {
             auto action = std::make_unique<TVKLCDDisplayEncoderNameAction>();
             action->setSourceControls(2, 4, 0, 5, 40);
             return action;
         }},
        {0x100003, fourCC("EMUL"),
         [] { return std::make_unique<TVKLCDDisplayEmulationAction>(nullptr, 2); }},
        {0x100006, fourCC("BNAM"),
         [] {
             auto action = std::make_unique<TVKLCDDisplayButtonNameAction>();
             action->setSourceControls(1, 3, 3, 3, 24);
             return action;
         }},
        {0x100008, fourCC("BILT"), builtIn<TVKBuiltInLCDDisplayAction>},
        {0x100203, fourCC("EMUL"),
         [] { return std::make_unique<TVKTimecodeDisplayEmulationAction>(nullptr); }},
        {0x100208, fourCC("BILT"), builtIn<TVKBuiltInTimecodeDisplayAction>},
        {0x100701, fourCC("TEXT"),
         [] {
             return std::make_unique<CorvaneHiResLCDButtonDisplayTextAction>(
                 nullptr, 3, QStringLiteral("Track One"), QStringLiteral("Mute"), QString(),
                 QStringLiteral("unused"));
         }},
        {0x100707, fourCC("ICON"),
         [] { return std::make_unique<CorvaneLCDButtonDisplayIconAction>(nullptr, 17); }},
        {0x10070a, fourCC("MDEM"),
         [] { return std::make_unique<CorvaneButtonDisplayMidiEmulationAction>(nullptr, 2u); }},
        {0x101100, fourCC("ENAM"),
         [] {
             auto action = std::make_unique<TVKFrameletCorvaneNVLCDDisplayButtonNameAction>();
             action->setLcdDisplayMode(1);
             return action;
         }},
    };
}

} // namespace

TEST(ActionArchive, EveryRestorableKindRoundTripsThroughArchiveFileAndCopy)
{
    for (const Kind& kind : restorableKinds()) {
        SCOPED_TRACE(kind.type);
        const std::unique_ptr<TVKAction> original = kind.make();
        ASSERT_EQ(original->actionType(), kind.type);
        EXPECT_EQ(original->editorTabID(), kind.tab);
        const PlistValue stored = archive(*original);
        EXPECT_EQ(stored.value(u"TVKActnType").toInteger(), kind.type);

        // Through the written file form, as a keyset file would carry it.
        const corvane::PlistReadResult reread =
            corvane::PlistCodec::read(corvane::PlistCodec::write(stored));
        ASSERT_TRUE(reread.ok) << reread.error.toString().toStdString();

        const std::unique_ptr<TVKAction> restored =
            TVKStandardActionTypes::createActionFromArchive(reread.value, nullptr);
        ASSERT_TRUE(restored) << "type " << kind.type << " is not restorable";
        EXPECT_EQ(restored->actionType(), kind.type);
        EXPECT_EQ(archive(*restored), stored);
        EXPECT_EQ(restored->actionDescriptor(), original->actionDescriptor());

        const std::unique_ptr<TVKAction> copy = restored->copyWithZone();
        EXPECT_EQ(copy->actionType(), kind.type);
        EXPECT_EQ(archive(*copy), stored);
    }
}

TEST(ActionArchive, CodesWithoutARestorableClassGiveNoAction)
{
    for (qint64 type : {0LL, 7LL, 9LL, 0x100401LL, 774LL, 1030LL, 0x100009LL, -1LL, 0x7FFFFFFFLL}) {
        PlistValue dict = PlistValue::makeDict();
        dict.insert(QStringLiteral("TVKActnType"), PlistValue(type));
        EXPECT_FALSE(TVKStandardActionTypes::createActionFromArchive(dict, nullptr)) << type;
    }
    EXPECT_FALSE(TVKStandardActionTypes::createActionFromArchive(PlistValue::makeDict(), nullptr));
    EXPECT_FALSE(
        TVKStandardActionTypes::createActionFromArchive(PlistValue(QStringLiteral("x")), nullptr));
}

TEST(ActionArchive, FreshActionsByTypeAndMode)
{
    for (qint32 type : {260, 516, 1028, 1284, 772}) {
        const auto action = TVKStandardActionTypes::createActionWithType(type, 1, nullptr);
        ASSERT_TRUE(action) << type;
        const auto* midi = static_cast<const TVKMIDIAction*>(action.get());
        EXPECT_EQ(midi->midiMode(), 1u);
        EXPECT_EQ(midi->messageSize(), 0u);
        EXPECT_EQ(action->actionDescriptor(), QStringLiteral("Native MIDI"));
        EXPECT_FALSE(archive(*action).contains(u"TVKMMsg")) << "native MIDI stores no bytes";
    }
    EXPECT_EQ(static_cast<const TVKEncoderMIDIAction*>(
                  TVKStandardActionTypes::createActionWithType(516, 1, nullptr).get())
                  ->faderResolution(),
              1u);
    for (qint32 type : {0x100006, 0x100008, 0x100208, 0x100701, 0x100707, 0x10070a, 0x101100}) {
        const auto action = TVKStandardActionTypes::createActionWithType(type, 1, nullptr);
        ASSERT_TRUE(action) << type;
        EXPECT_EQ(action->actionType(), type);
    }
    for (qint32 type : {257, 258, 259, 0x100001, 0x100009, 0x100401})
        EXPECT_FALSE(TVKStandardActionTypes::createActionWithType(type, 1, nullptr)) << type;
}

TEST(ActionArchive, ReadBackRulesOfTheStoredForm)
{
    // Keystroke modifiers come back as 32 bits; repeat as a 16-bit flag.
    PlistValue keystroke = PlistValue::makeDict();
    keystroke.insert(QStringLiteral("TVKChar"), PlistValue(QStringLiteral("x")));
    keystroke.insert(QStringLiteral("TVKKCode"), PlistValue(qint64(0x12345)));
    keystroke.insert(QStringLiteral("TVKMods"), PlistValue(quint64(0xFFFF000000120000ull)));
    PlistValue keys = PlistValue::makeArray();
    keys.append(keystroke);
    PlistValue button = PlistValue::makeDict();
    button.insert(QStringLiteral("TVKActnType"), PlistValue(258));
    button.insert(QStringLiteral("TVKRpt"), PlistValue(qint64(0x10000)));
    button.insert(QStringLiteral("TVKKeySeq"), keys);
    TVKButtonKeySequenceAction restoredButton(button, nullptr);
    ASSERT_EQ(restoredButton.sequence().size(), 1u);
    EXPECT_EQ(restoredButton.sequence()[0].modifierFlags(), 0x120000u);
    EXPECT_EQ(restoredButton.sequence()[0].keyCode(), 0x2345u);
    EXPECT_FALSE(restoredButton.repeat()) << "only the low 16 bits of TVKRpt count";

    // Over-long MIDI data is cut to three bytes; a missing resolution reads as 0.
    PlistValue midi = PlistValue::makeDict();
    midi.insert(QStringLiteral("TVKMMode"), PlistValue(2));
    midi.insert(QStringLiteral("TVKMMsg"), PlistValue(QByteArray("\x90\x3c\x40\x7f\x01", 5)));
    TVKEncoderMIDIAction encoder(midi, nullptr);
    EXPECT_EQ(encoder.messageSize(), 3u);
    EXPECT_EQ(encoder.message()[2], 0x40);
    EXPECT_EQ(encoder.faderResolution(), 0u);
    quint8 small[2] = {0xAA, 0xAA};
    unsigned size = 2;
    encoder.getMidiMessage(small, size);
    EXPECT_EQ(size, 0u) << "a message larger than the buffer is reported as size 0";
    EXPECT_EQ(small[0], 0xAA);

    // A missing jog speed reads as 1; the layer's default jog emulation has 0.
    PlistValue jog = PlistValue::makeDict();
    jog.insert(QStringLiteral("TVKActnType"), PlistValue(1286));
    EXPECT_EQ(TVKJogEmulationAction(jog, nullptr).jogSpeed(), 1u);
    EXPECT_EQ(TVKJogEmulationAction(nullptr, 0, 0, false, true).jogSpeed(), 0u);

    // The location is the text "{x, y}"; partial-name flag is 16-bit; an absent name stays absent.
    PlistValue mouseDict = PlistValue::makeDict();
    mouseDict.insert(QStringLiteral("TVKLoc"), PlistValue(QStringLiteral("{120, 45.5}")));
    mouseDict.insert(QStringLiteral("TVKPartial"), PlistValue(qint64(0x20000)));
    mouseDict.insert(QStringLiteral("TVKMOp"), PlistValue(1));
    mouseDict.insert(QStringLiteral("TVKLocType"), PlistValue(1));
    TVKButtonMouseAction restoredMouse(mouseDict, nullptr);
    EXPECT_EQ(restoredMouse.location(), QPointF(120, 45.5));
    EXPECT_FALSE(restoredMouse.usePartialWindowName());
    EXPECT_TRUE(restoredMouse.windowName().isNull());
    EXPECT_FALSE(archive(restoredMouse).contains(u"TVKWName"));
    EXPECT_EQ(archive(restoredMouse).value(u"TVKLoc").toString(), QStringLiteral("{120, 45.5}"));
    EXPECT_EQ(TVKMouseAction::pointFromString(QStringLiteral("garbage")), QPointF());

    // A per-direction action from an older file keeps fewer slots than it has directions.
    PlistValue lists = PlistValue::makeArray();
    lists.append(PlistValue::makeArray());
    PlistValue fourWay = PlistValue::makeDict();
    fourWay.insert(QStringLiteral("TVKSMultSeq"), lists);
    TVK4WayKeySequenceAction restoredFourWay(fourWay, nullptr);
    EXPECT_EQ(restoredFourWay.sequences().size(), 1u);
    EXPECT_EQ(restoredFourWay.sequenceForDirection(2), nullptr);
    EXPECT_EQ(archive(restoredFourWay).value(u"TVKSMultSeq").size(), 1);
    EXPECT_EQ(archive(TVK4WayKeySequenceAction(nullptr, 0, false)).value(u"TVKSMultSeq").size(), 4);

    // Lists of the wrong kind in a damaged file give no keystrokes and no slots.
    PlistValue wrongKinds = PlistValue::makeDict();
    wrongKinds.insert(QStringLiteral("TVKKeySeq"), keystroke);
    wrongKinds.insert(QStringLiteral("TVKSMultSeq"), keystroke);
    EXPECT_TRUE(TVKButtonKeySequenceAction(wrongKinds, nullptr).sequence().empty());
    EXPECT_TRUE(TVKJogKeySequenceAction(wrongKinds, nullptr).sequences().empty());
    lists.append(keystroke);
    fourWay.insert(QStringLiteral("TVKSMultSeq"), lists);
    EXPECT_TRUE(TVK4WayKeySequenceAction(fourWay, nullptr).sequenceForDirection(1)->empty());

    // An emulated display's text follows from its stored source.
    PlistValue display = PlistValue::makeDict();
    display.insert(QStringLiteral("TVKDisplaySrc"), PlistValue(1));
    EXPECT_EQ(TVKLCDDisplayEmulationAction(display, nullptr).actionDescriptor(),
              QStringLiteral("Emulation- LCD Line 2"));
}

TEST(ActionArchive, CopiesShareNothingWithTheirSource)
{
    TVKShuttleKeySequenceAction source(nullptr, 50, false);
    TVKKeystrokeList list;
    TVKKeySequenceAction::addKeystroke(QStringLiteral("a"), 30, 0, list);
    source.setSequence(list, 0);
    const auto copy = source.copyWithZone();
    auto* shuttle = static_cast<TVKShuttleKeySequenceAction*>(copy.get());
    TVKKeySequenceAction::setKeystroke(QStringLiteral("z"), 44, 0, 0,
                                       *shuttle->sequenceForDirection(0));
    EXPECT_EQ(source.sequenceForDirection(0)->at(0).character(), QStringLiteral("a"));

    TVK4WayMIDIAction midi;
    const quint8 bytes[] = {0x90, 0x40, 0x7F};
    midi.setMidiMessage(bytes, 3, 1);
    const auto midiCopy = midi.copyWithZone();
    const quint8 other[] = {0x80};
    static_cast<TVK4WayMIDIAction*>(midiCopy.get())->setMidiMessage(other, 1, 1);
    EXPECT_EQ(midi.messageSizeForAxis(1), 3u);
}

struct DescriptorCase
{
    const char* name;
    std::function<std::unique_ptr<TVKAction>()> make;
    QString expected;
};

TEST(ActionDescriptor, ExactTexts)
{
    const Corvane_Constant_Server constants;
    const std::vector<DescriptorCase> cases = {
        {"empty button keys",
         [] { return std::make_unique<TVKButtonKeySequenceAction>(nullptr, 50, false); },
         QStringLiteral("Key Sequence: ")},
        {"encoder keys", multiple<TVKEncoderKeySequenceAction>,
         QStringLiteral("Key Sequence:  Counter Clockwise - a  Clockwise - b ")},
        {"4-way keys, empty",
         [] { return std::make_unique<TVK4WayKeySequenceAction>(nullptr, 0, false); },
         QStringLiteral("Key Sequence:  Left -  Right -  Up -  Down - ")},
        {"empty custom prints its first byte",
         [] { return std::make_unique<TVKJogMIDIAction>(2u, nullptr, 0u, nullptr); },
         QStringLiteral("Custom MIDI: 00")},
        {"unassigned MIDI",
         [] { return std::make_unique<TVKJogMIDIAction>(0u, nullptr, 0u, nullptr); },
         QStringLiteral("Native MIDI: 00")},
        {"percentage of width", restorableKinds()[2].make,
         QStringLiteral("Horizontal Drag at 45 from top, 25% of width of \"Mixer\"")},
        {"absent window name",
         [] {
             auto action = std::make_unique<TVKButtonMouseAction>(2u, nullptr);
             action->setLocationType(5);
             action->setLocation(QPointF(2.5, 3.5));
             return action;
         },
         QStringLiteral("Horizontal Move at 4, 2 from bottom right of \"(null)\"")},
        {"operation 10", [] { return std::make_unique<TVKButtonMouseAction>(10u, nullptr); },
         QString(QLatin1String(""))},
        {"named control past the names",
         [] { return std::make_unique<TVKButtonEmulationAction>(nullptr, 13, 5, true, false); },
         QStringLiteral("Emulation- user switch")},
        {"unknown group",
         [] { return std::make_unique<TVKButtonEmulationAction>(nullptr, 30, 0, false, true); },
         QStringLiteral("Emulation- (null)")},
        {"fader", restorableKinds()[28].make, QStringLiteral("Emulation- fader: 8")},
        {"built-in", restorableKinds()[0].make, QStringLiteral("Built In- Edit: Undo")},
        {"hi-res text", restorableKinds()[36].make,
         QStringLiteral("Custom Text \"Track On\nMute\n\"")},
        {"unknown status",
         [] { return std::make_unique<CorvaneButtonDisplayMidiEmulationAction>(nullptr, 7u); },
         QStringLiteral("????")},
        {"emulated status without a keyset", restorableKinds()[38].make,
         QStringLiteral("Emulate Mode B Display")},
    };
    for (const DescriptorCase& c : cases)
        EXPECT_EQ(c.make()->actionDescriptor(), c.expected) << c.name;
}

TEST(ActionDescriptor, PerDirectionNames)
{
    TVK4WayKeySequenceAction fourWay;
    EXPECT_EQ(fourWay.descriptorForAxis(3), QStringLiteral("Down"));
    EXPECT_EQ(fourWay.descriptorForAxis(4), QStringLiteral("none"));
    TVKShuttleKeySequenceAction shuttle;
    EXPECT_EQ(shuttle.descriptorForAxis(2), QStringLiteral("Stopped"));
    EXPECT_EQ(shuttle.descriptorForAxis(3), QStringLiteral("none"));
}

TEST(KeystrokeList, IndexPastTheEndAddressesTheLastKeystroke)
{
    TVKKeystrokeList list;
    EXPECT_EQ(TVKKeySequenceAction::keystrokeAtIndex(0, list), nullptr);
    TVKKeySequenceAction::setKeystroke(QStringLiteral("x"), 1, 0, 3, list); // nothing to set
    EXPECT_TRUE(list.empty());
    TVKKeySequenceAction::addKeystrokeElement(nullptr, list);
    EXPECT_TRUE(list.empty());
    TVKKeySequenceAction::addKeystroke(QStringLiteral("a"), 30, 0, list);
    TVKKeySequenceAction::addKeystroke(QStringLiteral("b"), 48, 0, list);
    EXPECT_EQ(TVKKeySequenceAction::keystrokeAtIndex(9, list)->character(), QStringLiteral("b"));
    TVKKeySequenceAction::setKeystroke(QStringLiteral("c"), 0x10046, 7, 9, list);
    EXPECT_EQ(list[1], TVKKeystrokeElement(QStringLiteral("c"), 0x46, 7));
    TVKKeySequenceAction::removeKeystrokeAtIndex(9, list);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].character(), QStringLiteral("a"));

    TVKEncoderKeySequenceAction encoder(nullptr, 0, false);
    encoder.setSequence(list, 5);
    encoder.setSequence(*encoder.sequenceForDirection(1), 1); // the same list: nothing happens
    EXPECT_EQ(encoder.sequences().size(), 2u);
    EXPECT_TRUE(encoder.sequenceForDirection(1)->empty());
}
