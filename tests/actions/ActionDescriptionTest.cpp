// The human descriptions of actions: keys as the desktop writes them, MIDI messages by name, every
// kind of action described, and searching that reads a shortcut the same in any modifier order.
#include "actions/ActionDescription.h"

#include "ModelFixture.h"
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
#include "actions/TVKNULLAction.h"
#include "actions/TVKSpecialAction.h"
#include "actions/TVKStandardActionTypes.h"
#include "actions/editors/KeyEventTranslator.h"
#include "core/StoredKeys.h"
#include "model/CorvaneModelData.h"
#include "model/TVKControl.h"
#include "model/TVKLayer.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTranslator>
#include <algorithm>
#include <set>

using namespace corvane;
namespace K = corvane::KeyEventTranslator;

namespace {

class ActionDescriptionTest : public ModelTest
{};

struct Modifier
{
    quint64 bit;
    QString written; // as descriptions write it
    QString typed;   // another name a user may type
};

// The modifier bits of a keystroke, in the order the desktop writes them.
const std::vector<Modifier>& modifiers()
{
    static const std::vector<Modifier> list = {
        {K::kControl, QStringLiteral("Ctrl"), QStringLiteral("control")},
        {K::kOption, QStringLiteral("Alt"), QStringLiteral("alt")},
        {K::kShift, QStringLiteral("Shift"), QStringLiteral("SHIFT")},
        {K::kCommand, QStringLiteral("Super"), QStringLiteral("meta")},
    };
    return list;
}

TVKKeystrokeElement keystroke(int key, Qt::KeyboardModifiers held = {}, const QString& text = {})
{
    KeyEventData event;
    event.key = key;
    event.modifiers = held;
    event.text = text;
    const std::optional<CapturedKeystroke> captured = K::keystrokeForEvent(event);
    EXPECT_TRUE(captured.has_value());
    return TVKKeystrokeElement(captured->label, captured->keyCode, captured->modifiers);
}

TVKKeystrokeList keys(std::initializer_list<TVKKeystrokeElement> list)
{
    return TVKKeystrokeList(list);
}

template <typename Action>
std::unique_ptr<Action> directionKeys(std::vector<TVKKeystrokeList> lists)
{
    auto action = std::make_unique<Action>(nullptr, 50, false);
    for (size_t d = 0; d < lists.size(); ++d)
        action->setSequence(lists[d], int(d));
    return action;
}

QString full(const TVKAction& action, int controlType = -1,
             std::optional<EmulationMode> emulationMode = std::nullopt)
{
    return describeAction(action, Detail::Full, {controlType, emulationMode});
}

QString brief(const TVKAction& action, int controlType = -1,
              std::optional<EmulationMode> emulationMode = std::nullopt)
{
    return describeAction(action, Detail::Short, {controlType, emulationMode});
}

} // namespace

// Every code the action factory restores gives an action with both descriptions; a new kind of
// action the descriptions do not know fails here.
TEST_F(ActionDescriptionTest, EveryKindOfActionTheFactoryMakesIsDescribed)
{
    std::set<qint32> described;
    const auto scan = [&](qint32 first, qint32 last) {
        for (qint32 code = first; code <= last; ++code) {
            PlistValue dict = PlistValue::makeDict();
            dict.insert(key::ActnType, PlistValue(qint64(code)));
            const std::unique_ptr<TVKAction> action =
                TVKStandardActionTypes::createActionFromArchive(dict, nullptr);
            if (!action)
                continue;
            EXPECT_FALSE(describeAction(*action, Detail::Short).isEmpty()) << std::hex << code;
            EXPECT_FALSE(describeAction(*action, Detail::Full).isEmpty()) << std::hex << code;
            described.insert(code);
        }
    };
    // Control kinds live in the second byte, display kinds above 0x100000.
    scan(0, 0x2000);
    scan(0x100000, 0x102000);
    // The scan reached the factory: 5 families of 5 control kinds, 4 emulations, 11 displays.
    EXPECT_EQ(described.size(), 40u);
}

// Every control of every layer of the surface, in every action mode, carries a described action,
// with the context of its own control and keyset.
TEST_F(ActionDescriptionTest, EveryControlInEveryActionModeIsDescribed)
{
    CorvaneModelData model;
    TVKKeyset* keyset = model.selectedKeyset();
    ASSERT_NE(keyset, nullptr);
    for (const EmulationMode emulation :
         {EmulationMode::None, EmulationMode::A, EmulationMode::B, EmulationMode::C}) {
        keyset->setEmulationMode(emulation);
        for (int mode = ActionMode::Developer; mode <= ActionMode::RawEthernet; ++mode) {
            for (const auto& layer : keyset->layers()) {
                for (const auto* groups : {&layer->groups(), &layer->displayGroups()}) {
                    for (const TVKControlGroup& group : *groups) {
                        for (const auto& control : group) {
                            control->setActionMode(mode);
                            if (!control->action())
                                continue;
                            const ActionContext context = contextOfAction(*control->action());
                            EXPECT_EQ(context.controlType, control->tvkControlType());
                            EXPECT_EQ(context.emulationMode, std::optional(emulation));
                            EXPECT_FALSE(
                                describeAction(*control->action(), Detail::Short).isEmpty())
                                << control->name().toStdString() << " mode " << mode;
                            EXPECT_FALSE(
                                describeAction(*control->action(), Detail::Full).isEmpty());
                        }
                    }
                }
            }
        }
    }
}

// A label is the user's name for a control, else what its action does; a control with neither
// shows nothing. Over every control and display of every unit.
TEST_F(ActionDescriptionTest, ALabelIsTheUserNameElseTheShortDescription)
{
    CorvaneModelData model;
    TVKKeyset* keyset = model.selectedKeyset();
    ASSERT_NE(keyset, nullptr);
    int seen = 0;
    for (const auto& layer : keyset->layers()) {
        for (const auto* groups : {&layer->groups(), &layer->displayGroups()}) {
            for (const TVKControlGroup& group : *groups) {
                for (const auto& control : group) {
                    ++seen;
                    control->setUserName(QString());
                    control->setAction(nullptr);
                    EXPECT_FALSE(isAssigned(control->action()));
                    EXPECT_EQ(assignmentLabel(*control), QString())
                        << control->name().toStdString();
                    control->setUserName(QStringLiteral("  Punch In "));
                    EXPECT_EQ(assignmentLabel(*control), QStringLiteral("Punch In"));
                    control->setUserName(QString());
                    control->setActionMode(ActionMode::Developer);
                    if (isAssigned(control->action())) {
                        EXPECT_EQ(assignmentLabel(*control),
                                  describeAction(*control->action(), Detail::Short));
                    }
                }
            }
        }
    }
    EXPECT_GT(seen, 100);
}

// All 16 subsets of Ctrl, Alt, Shift and Super: each held modifier written once, in the desktop's
// order, before the key; and every order a user may type them in searches as the description.
TEST_F(ActionDescriptionTest, EveryModifierCombinationIsWrittenAndSearchedAlike)
{
    const auto& mods = modifiers();
    for (unsigned subset = 0; subset < (1u << mods.size()); ++subset) {
        quint64 word = 0;
        QStringList written;
        std::vector<size_t> held;
        for (size_t m = 0; m < mods.size(); ++m) {
            if (subset & (1u << m)) {
                word |= mods[m].bit;
                written << mods[m].written;
                held.push_back(m);
            }
        }
        const TVKKeystrokeElement element(QStringLiteral("s"), 31, word);
        const QString text = describeKeystroke(element);
        written << QStringLiteral("S");
        EXPECT_EQ(text, written.join(QLatin1Char('+'))) << subset;

        // Typed in every order, with either name of each modifier.
        const QString wanted = searchableText(text);
        std::vector<size_t> order = held;
        do {
            for (bool otherNames : {false, true}) {
                QStringList typed;
                for (size_t m : order)
                    typed << (otherNames ? mods[m].typed : mods[m].written.toLower());
                typed << QStringLiteral("s");
                EXPECT_EQ(searchableText(typed.join(QLatin1Char('+'))), wanted)
                    << typed.join(QLatin1Char('+')).toStdString();
                // The modifiers alone, as the start of a search, match the description too. A
                // single word without "+" is searched as the word it is ("control" finds the
                // "Control Room"), so only the desktop's names of it match a shortcut.
                if (typed.size() > 2 || (typed.size() == 2 && !otherNames)) {
                    typed.removeLast();
                    EXPECT_TRUE(wanted.contains(searchableText(typed.join(QLatin1Char('+')))))
                        << typed.join(QLatin1Char('+')).toStdString();
                }
            }
        } while (std::next_permutation(order.begin(), order.end()));
    }
}

TEST_F(ActionDescriptionTest, KeysAreNamedAsTheDesktopNamesThem)
{
    // As the key sequence editor stores them from key events.
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_F4, Qt::AltModifier)), QStringLiteral("Alt+F4"));
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier)),
              QStringLiteral("Ctrl+Shift+S"));
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_A, {}, QStringLiteral("a"))),
              QStringLiteral("A"));
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_Slash, {}, QStringLiteral("/"))),
              QStringLiteral("/"));
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_Delete)), QStringLiteral("Delete"));
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_Backspace, Qt::ControlModifier)),
              QStringLiteral("Ctrl+Backspace"));
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_Space)), QStringLiteral("Space"));
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_Up, Qt::MetaModifier)),
              QStringLiteral("Super+Up"));
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_PageDown)), QStringLiteral("Page Down"));
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_Escape)), QStringLiteral("Esc"));
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_Return)), QStringLiteral("Return"));
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_Enter)), QStringLiteral("Enter"));
    // Keys stored without a label are named by their key code.
    EXPECT_EQ(describeKeystroke(keystroke(Qt::Key_Insert, Qt::ShiftModifier)),
              QStringLiteral("Shift+Insert"));
    EXPECT_EQ(describeKeystroke(TVKKeystrokeElement(QString(), 190, 0)), QStringLiteral("F20"));
    EXPECT_EQ(describeKeystroke(TVKKeystrokeElement(QString(), 115, 0)),
              QStringLiteral("Volume Up"));
    EXPECT_EQ(describeKeystroke(TVKKeystrokeElement(QString(), 500, K::kControl)),
              QStringLiteral("Ctrl+Key 500"));

    // A sequence is joined with ", ".
    const TVKKeystrokeList copyPaste = keys(
        {keystroke(Qt::Key_C, Qt::ControlModifier), keystroke(Qt::Key_V, Qt::ControlModifier)});
    EXPECT_EQ(describeKeySequence(copyPaste), QStringLiteral("Ctrl+C, Ctrl+V"));
    TVKButtonKeySequenceAction button(nullptr, 50, true);
    button.sequence() = copyPaste;
    EXPECT_EQ(brief(button), QStringLiteral("Ctrl+C, Ctrl+V"));
    EXPECT_EQ(full(button), QStringLiteral("Ctrl+C, Ctrl+V · repeats while held"));
    EXPECT_EQ(brief(TVKButtonKeySequenceAction(nullptr, 50, false)), QStringLiteral("No keys"));
    // The system's own text is left as it was.
    EXPECT_EQ(button.actionDescriptor(), QStringLiteral("Key Sequence: c v "));
}

TEST_F(ActionDescriptionTest, KeysPerDirectionNameEachDirection)
{
    const TVKKeystrokeList undo = keys({keystroke(Qt::Key_Z, Qt::ControlModifier)});
    const TVKKeystrokeList redo =
        keys({keystroke(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier)});

    const auto encoder = directionKeys<TVKEncoderKeySequenceAction>({undo, redo});
    EXPECT_EQ(brief(*encoder, ControlType::Encoder),
              QStringLiteral("CCW: Ctrl+Z · CW: Ctrl+Shift+Z"));
    EXPECT_EQ(full(*encoder, ControlType::Encoder),
              QStringLiteral("CCW: Ctrl+Z · CW: Ctrl+Shift+Z"));
    // A fader plays the encoder's actions; its directions are down and up.
    EXPECT_EQ(brief(*encoder, ControlType::Fader),
              QStringLiteral("Down: Ctrl+Z · Up: Ctrl+Shift+Z"));

    const auto jog = directionKeys<TVKJogKeySequenceAction>({undo, {}});
    EXPECT_EQ(brief(*jog, ControlType::Jog), QStringLiteral("CCW: Ctrl+Z"));
    EXPECT_EQ(full(*jog, ControlType::Jog), QStringLiteral("CCW: Ctrl+Z · CW: none"));

    // The shuttle reads from one end of its travel to the other.
    const auto shuttle =
        directionKeys<TVKShuttleKeySequenceAction>({undo, redo, keys({keystroke(Qt::Key_Space)})});
    EXPECT_EQ(brief(*shuttle, ControlType::Shuttle),
              QStringLiteral("CCW: Ctrl+Z · Stopped: Space · CW: Ctrl+Shift+Z"));

    const auto fourWay = directionKeys<TVK4WayKeySequenceAction>(
        {keys({keystroke(Qt::Key_Left)}), keys({keystroke(Qt::Key_Right)}),
         keys({keystroke(Qt::Key_Up)}), keys({keystroke(Qt::Key_Down, Qt::AltModifier)})});
    EXPECT_EQ(brief(*fourWay, ControlType::FourWay),
              QStringLiteral("Left: Left · Right: Right · Up: Up · Down: Alt+Down"));

    const auto empty = directionKeys<TVKEncoderKeySequenceAction>({});
    EXPECT_EQ(brief(*empty, ControlType::Encoder), QStringLiteral("No keys"));
    EXPECT_EQ(full(*empty, ControlType::Encoder), QStringLiteral("CCW: none · CW: none"));
}

TEST_F(ActionDescriptionTest, MidiMessagesByName)
{
    const auto custom = [](std::initializer_list<quint8> bytes) {
        const std::vector<quint8> message(bytes);
        return TVKButtonMIDIAction(TVKMIDIAction::Custom, message.data(), unsigned(message.size()),
                                   nullptr);
    };
    const quint8 v = TVKMIDIAction::kValuePlaceholder;

    EXPECT_EQ(full(custom({0x90, 60, 100})), QStringLiteral("Note On C4 (60) vel 100 · ch 1"));
    EXPECT_EQ(brief(custom({0x90, 60, 100})), QStringLiteral("Note On C4"));
    EXPECT_EQ(full(custom({0x8F, 69, v})), QStringLiteral("Note Off A4 (69) vel value · ch 16"));
    EXPECT_EQ(full(custom({0x90, v, v})), QStringLiteral("Note On value vel value · ch 1"));
    EXPECT_EQ(full(custom({0xB0, 7, v})), QStringLiteral("CC 7 · value · ch 1"));
    EXPECT_EQ(brief(custom({0xB0, 7, v})), QStringLiteral("CC 7"));
    EXPECT_EQ(full(custom({0xC3, 5})), QStringLiteral("Program 5 · ch 4"));
    EXPECT_EQ(full(custom({0xE0, 0x00, 0x40})), QStringLiteral("Pitch Bend · 0 · ch 1"));
    EXPECT_EQ(full(custom({0xE1, 0x7F, 0x7F})), QStringLiteral("Pitch Bend · 8191 · ch 2"));
    EXPECT_EQ(full(custom({0xE0, v, v})), QStringLiteral("Pitch Bend · value · ch 1"));
    EXPECT_EQ(full(custom({0xA0, 60, 30})), QStringLiteral("Aftertouch C4 (60) · 30 · ch 1"));
    EXPECT_EQ(full(custom({0xD2, v})), QStringLiteral("Channel Pressure · value · ch 3"));
    EXPECT_EQ(full(custom({0xF8})), QStringLiteral("Clock"));
    EXPECT_EQ(full(custom({0x12, 0x34})), QStringLiteral("MIDI 12 34"));
    EXPECT_EQ(full(custom({})), QStringLiteral("No MIDI message"));
    EXPECT_EQ(full(TVKButtonMIDIAction(TVKMIDIAction::Native, nullptr, 0, nullptr)),
              QStringLiteral("Native MIDI"));
    EXPECT_EQ(full(TVKButtonMIDIAction(TVKMIDIAction::None, nullptr, 0, nullptr)),
              QStringLiteral("No MIDI"));

    EXPECT_EQ(midiNoteName(0), QStringLiteral("C-1"));
    EXPECT_EQ(midiNoteName(61), QStringLiteral("C#4"));
    EXPECT_EQ(midiNoteName(127), QStringLiteral("G9"));

    // The joystick and trackball send one message per axis.
    const quint8 horizontal[] = {0xB0, 16, v};
    const quint8 vertical[] = {0xB0, 17, v};
    const TVK4WayMIDIAction axes(TVKMIDIAction::Custom, horizontal, 3, vertical, 3, nullptr);
    EXPECT_EQ(brief(axes), QStringLiteral("Horizontal: CC 16; Vertical: CC 17"));
    const TVK4WayMIDIAction oneAxis(TVKMIDIAction::Custom, nullptr, 0, vertical, 3, nullptr);
    EXPECT_EQ(brief(oneAxis), QStringLiteral("Vertical: CC 17"));
    EXPECT_EQ(full(oneAxis),
              QStringLiteral("Horizontal: No MIDI message; Vertical: CC 17 · value · ch 1"));
}

TEST_F(ActionDescriptionTest, MouseEmulationBuiltInSurfaceAndDisplayActions)
{
    TVKButtonMouseAction click(1u, nullptr);
    click.setModifierFlags(unsigned(K::kControl | K::kShift));
    click.setLocationType(1);
    click.setLocation(QPointF(120, 45));
    click.setWindowName(QStringLiteral("Arrange"));
    EXPECT_EQ(brief(click), QStringLiteral("Ctrl+Shift+Click"));
    EXPECT_EQ(full(click),
              QStringLiteral("Ctrl+Shift+Click at 120, 45 from the top left of “Arrange”"));
    click.setLocationType(3);
    click.setLocation(QPointF(0.5, 20));
    click.setUsePartialWindowName(true);
    EXPECT_EQ(full(click),
              QStringLiteral("Ctrl+Shift+Click at 50% of the width, 20 from the top of a "
                             "window titled “…Arrange…”"));
    EXPECT_EQ(full(TVKButtonMouseAction(7u, nullptr)), QStringLiteral("Vertical Scroll Wheel"));

    const TVKButtonEmulationAction play(nullptr, 0, 3, true, false);
    EXPECT_EQ(brief(play, ControlType::Button, EmulationMode::A),
              QStringLiteral("Transport · Play"));
    EXPECT_EQ(full(play, ControlType::Button, EmulationMode::A),
              QStringLiteral("Mode A · Transport · Play"));
    EXPECT_EQ(full(TVKButtonEmulationAction(nullptr, 16, 4, false, false), ControlType::Button,
                   EmulationMode::C),
              QStringLiteral("Mode C · Solo 5"));
    EXPECT_EQ(brief(TVKButtonEmulationAction(nullptr, 3, 1, true, false)),
              QStringLiteral("Bank change · Bank right"));
    EXPECT_EQ(brief(TVKEncoderEmulationAction(nullptr, 2, 0, false, true)),
              QStringLiteral("Display scroll"));
    EXPECT_EQ(full(TVKJogEmulationAction(nullptr, 7u), ControlType::Jog, EmulationMode::C),
              QStringLiteral("Mode C · Jog · speed 7"));

    const TVKButtonBuiltInAction record(nullptr, 0u, false, 0, 1, QStringLiteral("Transport"),
                                        QStringLiteral("Record"), 0, 0, 57u, 0u);
    EXPECT_EQ(brief(record), QStringLiteral("Record"));
    EXPECT_EQ(full(record), QStringLiteral("Transport · Record"));
    EXPECT_EQ(record.actionDescriptor(), QStringLiteral("Built In- Transport: Record"));

    EXPECT_EQ(brief(TVKButtonSpecialAction(nullptr, 5)), QStringLiteral("Layer 2 Selector"));
    EXPECT_EQ(full(TVKButtonSpecialAction(nullptr, 5)),
              QStringLiteral("Surface: Layer 2 Selector"));

    const CorvaneHiResLCDButtonDisplayTextAction text(
        nullptr, 2u, QStringLiteral("Record"), QStringLiteral("Arm it"), QString(), QString());
    EXPECT_EQ(brief(text), QStringLiteral("Record / Arm it"));
    EXPECT_EQ(full(text), QStringLiteral("Text “Record / Arm it”"));
    EXPECT_EQ(full(CorvaneButtonDisplayMidiEmulationAction(nullptr, 2u), -1, EmulationMode::B),
              QStringLiteral("Mode B · Emulation status"));
}

TEST_F(ActionDescriptionTest, SearchTextKeepsWordsThatAreNotShortcuts)
{
    // Only runs joined by "+" are read as modifiers; names and plain words stay as they are.
    EXPECT_EQ(searchableText(QStringLiteral("Emulation- modifiers: control")),
              QStringLiteral("emulation- modifiers: control"));
    EXPECT_EQ(searchableText(QStringLiteral("Shifted Alternate")),
              QStringLiteral("shifted alternate"));
    EXPECT_EQ(searchableText(QStringLiteral("CCW: Shift+Ctrl+Z · CW: Meta+Alt+F4")),
              QStringLiteral("ccw: ctrl+shift+z · cw: alt+super+f4"));
    EXPECT_EQ(searchableText(QStringLiteral("Ctrl++")), QStringLiteral("ctrl++"));
}

// A whole shortcut finds that shortcut and no longer one it begins or ends; other words and a
// shortcut still being typed are found anywhere.
TEST_F(ActionDescriptionTest, AShortcutSearchedForIsFoundWhole)
{
    const auto finds = [](const char* text, const char* wanted) {
        return searchFinds(searchableText(QString::fromUtf8(text)),
                           searchableText(QString::fromUtf8(wanted)));
    };
    EXPECT_TRUE(finds("Ctrl+S", "ctrl+s"));
    EXPECT_TRUE(finds("Ctrl+C, Ctrl+S", "ctrl+s"));
    EXPECT_TRUE(finds("CCW: Ctrl+Z · CW: Ctrl+Shift+Z", "shift+ctrl+z"));
    EXPECT_FALSE(finds("Ctrl+Shift+Z", "ctrl+s"));
    EXPECT_FALSE(finds("Ctrl+Shift+S", "shift+s"));
    EXPECT_FALSE(finds("Ctrl+Shift+S10", "ctrl+shift+s"));
    EXPECT_FALSE(finds("Ctrl+Page Up", "ctrl+pag"));
    EXPECT_TRUE(finds("Ctrl+Page Up", "ctrl+page"));
    EXPECT_TRUE(finds("Ctrl+Shift+Z", "ctrl+"));
    EXPECT_TRUE(finds("Ctrl+Shift+Z", "shift+ctrl+"));
    EXPECT_TRUE(finds("Note On C4 (60) vel 100 · ch 1", "ON C4"));
    EXPECT_TRUE(finds("Mode A · Transport · Play", "transport · pl"));
}

// The display kinds beyond text: names of a row of controls, emulated lines and timecode, icons
// and the status line, with the emulation mode where it matters.
TEST_F(ActionDescriptionTest, EveryDisplayKindSaysWhatItShows)
{
    EXPECT_EQ(full(TVKLCDDisplayEncoderNameAction(nullptr)), QStringLiteral("Encoder names"));
    EXPECT_EQ(full(TVKLCDDisplayButtonNameAction(nullptr)), QStringLiteral("Button names"));
    TVKFrameletCorvaneNVLCDDisplayButtonNameAction nv(nullptr);
    EXPECT_EQ(full(nv), QStringLiteral("Button names"));
    nv.setLcdDisplayMode(1);
    EXPECT_EQ(full(nv), QStringLiteral("Function and parameter numbers"));
    nv.setLcdDisplayMode(7);
    EXPECT_EQ(full(nv), QStringLiteral("Display mode 7"));

    const TVKLCDDisplayEmulationAction line(nullptr, 1);
    EXPECT_EQ(brief(line, -1, EmulationMode::B), QStringLiteral("LCD Line 2"));
    EXPECT_EQ(full(line, -1, EmulationMode::B), QStringLiteral("Mode B · LCD Line 2"));
    EXPECT_EQ(full(line, -1, EmulationMode::None), QStringLiteral("Emulation · LCD Line 2"));
    EXPECT_EQ(brief(TVKLCDDisplayEmulationAction(nullptr, 5)), QStringLiteral("Source 5"));

    const TVKTimecodeDisplayEmulationAction timecode(nullptr);
    EXPECT_EQ(brief(timecode), QStringLiteral("Emulated timecode"));
    EXPECT_EQ(full(timecode, -1, EmulationMode::None),
              QStringLiteral("Emulated timecode (emulation is off)"));
    EXPECT_EQ(full(timecode, -1, EmulationMode::C), QStringLiteral("Mode C · Emulated timecode"));

    EXPECT_EQ(full(CorvaneLCDButtonDisplayIconAction(nullptr, 12)), QStringLiteral("ROM icon 12"));
    EXPECT_EQ(full(CorvaneButtonDisplayMidiEmulationAction(nullptr, 1u)),
              QStringLiteral("Native MIDI status"));
    EXPECT_EQ(brief(CorvaneButtonDisplayMidiEmulationAction(nullptr, 2u), -1, EmulationMode::A),
              QStringLiteral("Emulation status"));
    EXPECT_EQ(full(CorvaneButtonDisplayMidiEmulationAction(nullptr, 9u)),
              QStringLiteral("Status mode 9"));
    EXPECT_EQ(full(TVKNULLDisplayAction(nullptr)), QStringLiteral("No action"));
}

namespace {

// Stands for a translation: every letter of every text of the descriptions becomes '#', so
// that a letter left in a description is a word that escaped translation.
class MarkingTranslator final : public QTranslator
{
public:
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        if (qstrcmp(context, "ActionDescription") != 0)
            return QString();
        QString marked = QString::fromUtf8(source);
        for (QChar& c : marked) {
            if (c.isLetter())
                c = u'#';
        }
        return marked;
    }
    bool isEmpty() const override { return false; }
};

} // namespace

// Every word of every kind of action goes through the translation; what is left are numbers,
// punctuation and what the user gave (key labels, window names, texts, command names).
TEST_F(ActionDescriptionTest, EveryWordGoesThroughTranslation)
{
    if (!QCoreApplication::instance()) {
        static int argc = 1;
        static char name[] = "actions_tests";
        static char* argv[] = {name, nullptr};
        static QCoreApplication* application = new QCoreApplication(argc, argv);
        (void)application;
    }
    MarkingTranslator marking;
    ASSERT_TRUE(QCoreApplication::installTranslator(&marking));
    std::vector<std::unique_ptr<TVKAction>> actions;
    // Every kind as the factory makes it.
    for (const auto& [first, last] : {std::pair{0, 0x2000}, std::pair{0x100000, 0x102000}}) {
        for (qint32 code = first; code <= last; ++code) {
            PlistValue dict = PlistValue::makeDict();
            dict.insert(key::ActnType, PlistValue(qint64(code)));
            if (auto action = TVKStandardActionTypes::createActionFromArchive(dict, nullptr))
                actions.push_back(std::move(action));
        }
    }
    // Keys named by their code, with every modifier, in every direction.
    const TVKKeystrokeElement del(QString(), 111,
                                  K::kControl | K::kOption | K::kShift | K::kCommand);
    auto button = std::make_unique<TVKButtonKeySequenceAction>(nullptr, 50, true);
    button->sequence() = keys({del, TVKKeystrokeElement(QStringLiteral("Up Arrow"), 0, 0),
                               TVKKeystrokeElement(QString(), 500, 0)});
    actions.push_back(std::move(button));
    actions.push_back(directionKeys<TVKShuttleKeySequenceAction>({keys({del}), {}, keys({del})}));
    actions.push_back(directionKeys<TVK4WayKeySequenceAction>({keys({del}), {}, {}, keys({del})}));
    // Every MIDI message by name, with the value placeholder.
    const quint8 v = TVKMIDIAction::kValuePlaceholder;
    for (const std::vector<quint8>& message : std::vector<std::vector<quint8>>{{0x90, 61, 100},
                                                                               {0x80, 60, v},
                                                                               {0xA0, v, 3},
                                                                               {0xB0, 7, v},
                                                                               {0xC0, 5},
                                                                               {0xD0, v},
                                                                               {0xE0, 0, 64},
                                                                               {0xF0},
                                                                               {0xF8},
                                                                               {0xFF},
                                                                               {0x12, 0x34}}) {
        actions.push_back(std::make_unique<TVKButtonMIDIAction>(
            TVKMIDIAction::Custom, message.data(), unsigned(message.size()), nullptr));
    }
    // Mouse operations in every place.
    for (unsigned operation = 0; operation < 12; ++operation) {
        for (int place = 0; place <= 7; ++place) {
            auto mouse = std::make_unique<TVKButtonMouseAction>(operation, nullptr);
            mouse->setModifierFlags(unsigned(K::kControl | K::kShift));
            mouse->setLocationType(place);
            actions.push_back(std::move(mouse));
        }
    }
    // Every surface function and every emulated control.
    for (int mode = 0; mode < 64; ++mode)
        actions.push_back(std::make_unique<TVKButtonSpecialAction>(nullptr, mode));
    for (int group = 0; group < 40; ++group) {
        for (int control = 0; control < 8; ++control) {
            actions.push_back(
                std::make_unique<TVKButtonEmulationAction>(nullptr, group, control, true, false));
            actions.push_back(
                std::make_unique<TVKEncoderEmulationAction>(nullptr, group, control, false, false));
        }
    }
    for (int source = 0; source < 4; ++source)
        actions.push_back(std::make_unique<TVKLCDDisplayEmulationAction>(nullptr, source));

    // The translation reaches the descriptions at all.
    EXPECT_EQ(full(TVKButtonSpecialAction(nullptr, 5)),
              QStringLiteral("#######: ##### 2 ########"));
    static const QRegularExpression letter(QStringLiteral("[A-Za-z]"));
    for (const auto& action : actions) {
        for (const Detail detail : {Detail::Short, Detail::Full}) {
            for (const auto mode : {EmulationMode::None, EmulationMode::A, EmulationMode::C}) {
                for (const int type : {-1, int(ControlType::Fader)}) {
                    const QString text = describeAction(*action, detail, {type, mode});
                    EXPECT_FALSE(text.contains(letter))
                        << std::hex << action->actionType() << ": " << text.toStdString();
                }
            }
        }
    }
    QCoreApplication::removeTranslator(&marking);
    EXPECT_EQ(brief(TVKButtonSpecialAction(nullptr, 5)), QStringLiteral("Layer 2 Selector"));
}
