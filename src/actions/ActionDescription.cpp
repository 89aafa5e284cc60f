#include "actions/ActionDescription.h"

#include "actions/ActionText.h"
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
#include "actions/editors/KeyEventTranslator.h"
#include "model/TVKControl.h"
#include "model/TVKKeyset.h"
#include "surface/SurfaceConstants.h"
#include "surface/TVK_Constant_Server.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <array>
#include <optional>
#include <utility>

namespace corvane {

namespace {

// The words of the descriptions, under one translation context.
struct Words
{
    Q_DECLARE_TR_FUNCTIONS(ActionDescription)
};

const QString kSeparator = QStringLiteral(" · ");

// Texts of the system's vocabularies (special functions, mouse operations, emulated groups) are
// translated under the same context, with the vocabulary's text as the source.
QString vocabulary(const QString& text)
{
    return Words::tr(text.toUtf8().constData());
}

// "bank_change" reads "Bank change", "transport" "Transport".
QString capitalised(const QString& text)
{
    QString result = vocabulary(text);
    result.replace(QLatin1Char('_'), QLatin1Char(' '));
    if (!result.isEmpty())
        result[0] = result.at(0).toUpper();
    return result;
}

// Names of the keys whose keystroke has no label, by evdev code.
constexpr std::pair<quint16, const char*> kKeyNames[] = {
    {1, QT_TRANSLATE_NOOP("ActionDescription", "Esc")},
    {14, QT_TRANSLATE_NOOP("ActionDescription", "Backspace")},
    {15, QT_TRANSLATE_NOOP("ActionDescription", "Tab")},
    {28, QT_TRANSLATE_NOOP("ActionDescription", "Return")},
    {57, QT_TRANSLATE_NOOP("ActionDescription", "Space")},
    {58, QT_TRANSLATE_NOOP("ActionDescription", "Caps Lock")},
    {69, QT_TRANSLATE_NOOP("ActionDescription", "Num Lock")},
    {70, QT_TRANSLATE_NOOP("ActionDescription", "Scroll Lock")},
    {96, QT_TRANSLATE_NOOP("ActionDescription", "Enter")},
    {99, QT_TRANSLATE_NOOP("ActionDescription", "Print")},
    {102, QT_TRANSLATE_NOOP("ActionDescription", "Home")},
    {103, QT_TRANSLATE_NOOP("ActionDescription", "Up")},
    {104, QT_TRANSLATE_NOOP("ActionDescription", "Page Up")},
    {105, QT_TRANSLATE_NOOP("ActionDescription", "Left")},
    {106, QT_TRANSLATE_NOOP("ActionDescription", "Right")},
    {107, QT_TRANSLATE_NOOP("ActionDescription", "End")},
    {108, QT_TRANSLATE_NOOP("ActionDescription", "Down")},
    {109, QT_TRANSLATE_NOOP("ActionDescription", "Page Down")},
    {110, QT_TRANSLATE_NOOP("ActionDescription", "Insert")},
    {111, QT_TRANSLATE_NOOP("ActionDescription", "Delete")},
    {113, QT_TRANSLATE_NOOP("ActionDescription", "Mute")},
    {114, QT_TRANSLATE_NOOP("ActionDescription", "Volume Down")},
    {115, QT_TRANSLATE_NOOP("ActionDescription", "Volume Up")},
    {119, QT_TRANSLATE_NOOP("ActionDescription", "Pause")},
    {127, QT_TRANSLATE_NOOP("ActionDescription", "Menu")},
    {138, QT_TRANSLATE_NOOP("ActionDescription", "Help")},
    {163, QT_TRANSLATE_NOOP("ActionDescription", "Next Track")},
    {164, QT_TRANSLATE_NOOP("ActionDescription", "Play/Pause")},
    {165, QT_TRANSLATE_NOOP("ActionDescription", "Previous Track")},
    {166, QT_TRANSLATE_NOOP("ActionDescription", "Stop")},
    {355, QT_TRANSLATE_NOOP("ActionDescription", "Clear")},
};

// The evdev codes of the function keys: F1–F10, F11–F12 and F13–F24 lie in three runs.
QString functionKeyName(quint16 code)
{
    if (code >= 59 && code <= 68)
        return QStringLiteral("F%1").arg(code - 58);
    if (code == 87 || code == 88)
        return QStringLiteral("F%1").arg(code - 76);
    if (code >= 183 && code <= 194)
        return QStringLiteral("F%1").arg(code - 170);
    return QString();
}

QString keyNameForCode(quint16 code)
{
    for (const auto& [keyCode, name] : kKeyNames) {
        if (keyCode == code)
            return Words::tr(name);
    }
    const QString function = functionKeyName(code);
    if (!function.isEmpty())
        return function;
    return code == 0 ? Words::tr("Unknown Key") : Words::tr("Key %1").arg(code);
}

// The labels the key sequence editor stores for keys without a printable character, in the
// desktop's words.
QString keyNameForLabel(const QString& label)
{
    static const std::pair<QLatin1StringView, const char*> kLabels[] = {
        {QLatin1StringView("Up Arrow"), QT_TRANSLATE_NOOP("ActionDescription", "Up")},
        {QLatin1StringView("Down Arrow"), QT_TRANSLATE_NOOP("ActionDescription", "Down")},
        {QLatin1StringView("Left Arrow"), QT_TRANSLATE_NOOP("ActionDescription", "Left")},
        {QLatin1StringView("Right Arrow"), QT_TRANSLATE_NOOP("ActionDescription", "Right")},
        {QLatin1StringView("Delete->"), QT_TRANSLATE_NOOP("ActionDescription", "Delete")},
        {QLatin1StringView("<-Delete"), QT_TRANSLATE_NOOP("ActionDescription", "Backspace")},
        {QLatin1StringView("space"), QT_TRANSLATE_NOOP("ActionDescription", "Space")},
        {QLatin1StringView("Esc"), QT_TRANSLATE_NOOP("ActionDescription", "Esc")},
        {QLatin1StringView("Return"), QT_TRANSLATE_NOOP("ActionDescription", "Return")},
        {QLatin1StringView("Enter"), QT_TRANSLATE_NOOP("ActionDescription", "Enter")},
        {QLatin1StringView("Tab"), QT_TRANSLATE_NOOP("ActionDescription", "Tab")},
        {QLatin1StringView("Home"), QT_TRANSLATE_NOOP("ActionDescription", "Home")},
        {QLatin1StringView("End"), QT_TRANSLATE_NOOP("ActionDescription", "End")},
        {QLatin1StringView("Page Up"), QT_TRANSLATE_NOOP("ActionDescription", "Page Up")},
        {QLatin1StringView("Page Down"), QT_TRANSLATE_NOOP("ActionDescription", "Page Down")},
        {QLatin1StringView("Clear"), QT_TRANSLATE_NOOP("ActionDescription", "Clear")},
        {QLatin1StringView("Help"), QT_TRANSLATE_NOOP("ActionDescription", "Help")},
    };
    for (const auto& [stored, name] : kLabels) {
        if (label == stored)
            return Words::tr(name);
    }
    return QString();
}

QString keyName(const TVKKeystrokeElement& keystroke)
{
    const QString& label = keystroke.character();
    if (label.isEmpty())
        return keyNameForCode(keystroke.keyCode());
    const QString named = keyNameForLabel(label);
    if (!named.isEmpty())
        return named;
    // Shortcuts are written with the letter in upper case, whether or not Shift is held; Shift
    // shows as a modifier of its own.
    if (label.size() == 1 && label.at(0).isLetter())
        return label.toUpper();
    return label;
}

QString emulationModeText(std::optional<EmulationMode> mode)
{
    switch (mode.value_or(EmulationMode::None)) {
    case EmulationMode::A:
        return Words::tr("Mode A");
    case EmulationMode::B:
        return Words::tr("Mode B");
    case EmulationMode::C:
        return Words::tr("Mode C");
    default:
        return QString();
    }
}

QString withEmulationMode(const QString& body, const ActionContext& context)
{
    const QString mode = emulationModeText(context.emulationMode);
    return (mode.isEmpty() ? Words::tr("Emulation") : mode) + kSeparator + body;
}

// ---- key sequences

QString describeButtonKeys(const TVKButtonKeySequenceAction& action, Detail detail)
{
    QString text = describeKeySequence(action.sequence());
    if (text.isEmpty())
        text = Words::tr("No keys");
    if (detail == Detail::Full && action.repeat())
        text += kSeparator + Words::tr("repeats while held");
    return text;
}

struct DirectionName
{
    int direction;
    QString name;
};

// The directions of a per-direction action in the order they are read, with the names a user
// of that control would give them.
std::vector<DirectionName> directionsOf(const TVKMultipleKeySequenceAction& action,
                                        const ActionContext& context)
{
    switch (action.actionType()) {
    case TVK4WayKeySequenceAction::kActionType:
        return {{0, Words::tr("Left")},
                {1, Words::tr("Right")},
                {2, Words::tr("Up")},
                {3, Words::tr("Down")}};
    case TVKShuttleKeySequenceAction::kActionType:
        return {{0, Words::tr("CCW")}, {2, Words::tr("Stopped")}, {1, Words::tr("CW")}};
    case TVKEncoderKeySequenceAction::kActionType:
        // A fader plays the encoder's key sequences: turning down is the encoder's
        // counter-clockwise.
        if (context.controlType == ControlType::Fader)
            return {{0, Words::tr("Down")}, {1, Words::tr("Up")}};
        [[fallthrough]];
    default:
        return {{0, Words::tr("CCW")}, {1, Words::tr("CW")}};
    }
}

QString describeDirectionKeys(const TVKMultipleKeySequenceAction& action, Detail detail,
                              const ActionContext& context)
{
    QStringList parts;
    for (const DirectionName& direction : directionsOf(action, context)) {
        const TVKKeystrokeList* sequence = action.sequenceForDirection(direction.direction);
        const QString keys = sequence ? describeKeySequence(*sequence) : QString();
        if (keys.isEmpty() && detail == Detail::Short)
            continue;
        parts << direction.name + QStringLiteral(": ") +
                     (keys.isEmpty() ? Words::tr("none") : keys);
    }
    if (parts.isEmpty())
        return Words::tr("No keys");
    QString text = parts.join(kSeparator);
    if (detail == Detail::Full && action.repeat())
        text += kSeparator + Words::tr("repeats while held");
    return text;
}

// ---- MIDI

// A data byte of a message: its number, the control's value for the placeholder, or nothing
// when the message is shorter.
std::optional<QString> dataByte(const quint8* bytes, unsigned size, unsigned index)
{
    if (index >= size)
        return std::nullopt;
    if (bytes[index] == TVKMIDIAction::kValuePlaceholder)
        return Words::tr("value");
    return QString::number(bytes[index] & 0x7F);
}

QString noteText(const quint8* bytes, unsigned size, Detail detail)
{
    if (size < 2)
        return QString();
    if (bytes[1] == TVKMIDIAction::kValuePlaceholder)
        return QLatin1Char(' ') + Words::tr("value");
    const int note = bytes[1] & 0x7F;
    if (detail == Detail::Short)
        return QLatin1Char(' ') + midiNoteName(note);
    return QStringLiteral(" %1 (%2)").arg(midiNoteName(note)).arg(note);
}

QString systemMessageName(quint8 status)
{
    switch (status) {
    case 0xF0:
        return Words::tr("SysEx");
    case 0xF1:
        return Words::tr("MTC Quarter Frame");
    case 0xF2:
        return Words::tr("Song Position");
    case 0xF3:
        return Words::tr("Song Select");
    case 0xF6:
        return Words::tr("Tune Request");
    case 0xF8:
        return Words::tr("Clock");
    case 0xFA:
        return Words::tr("Start");
    case 0xFB:
        return Words::tr("Continue");
    case 0xFC:
        return Words::tr("Stop");
    case 0xFE:
        return Words::tr("Active Sensing");
    case 0xFF:
        return Words::tr("Reset");
    default:
        return Words::tr("System %1").arg(hexByte(status).toUpper());
    }
}

QString rawBytes(const quint8* bytes, unsigned size)
{
    QStringList parts;
    for (unsigned i = 0; i < size; ++i)
        parts << (bytes[i] == TVKMIDIAction::kValuePlaceholder ? Words::tr("value")
                                                               : hexByte(bytes[i]).toUpper());
    return Words::tr("MIDI %1").arg(parts.join(QLatin1Char(' ')));
}

QString describeMidiAction(const TVKMIDIAction& action, Detail detail)
{
    switch (action.midiMode()) {
    case TVKMIDIAction::Native:
        return Words::tr("Native MIDI");
    case TVKMIDIAction::Custom:
        break;
    default:
        return Words::tr("No MIDI");
    }
    if (const auto* fourWay = dynamic_cast<const TVK4WayMIDIAction*>(&action)) {
        QStringList parts;
        const std::pair<int, QString> axes[] = {{0, Words::tr("Horizontal")},
                                                {1, Words::tr("Vertical")}};
        for (const auto& [axis, name] : axes) {
            const unsigned size = fourWay->messageSizeForAxis(axis);
            if (size == 0 && detail == Detail::Short)
                continue;
            parts << name + QStringLiteral(": ") +
                         describeMidiMessage(fourWay->messageForAxis(axis).data(), size, detail);
        }
        return parts.isEmpty() ? Words::tr("No MIDI message") : parts.join(QStringLiteral("; "));
    }
    return describeMidiMessage(action.message().data(), action.messageSize(), detail);
}

// ---- mouse

QString windowText(const TVKMouseAction& action)
{
    if (action.windowName().isNull())
        return Words::tr("no window");
    if (action.usePartialWindowName())
        return Words::tr("a window titled “…%1…”").arg(action.windowName());
    return QStringLiteral("“%1”").arg(action.windowName());
}

QString mousePlace(const TVKMouseAction& action)
{
    const QString x = roundedNumber(TVKMouseAction::isWidthFraction(action.locationType())
                                        ? action.location().x() * 100.0
                                        : action.location().x());
    const QString y = roundedNumber(action.location().y());
    const QString window = windowText(action);
    switch (action.locationType()) {
    case 1:
        return Words::tr("at %1, %2 from the top left of %3").arg(x, y, window);
    case 2:
        return Words::tr("at %1, %2 from the top right of %3").arg(x, y, window);
    case 3:
        return Words::tr("at %1% of the width, %2 from the top of %3").arg(x, y, window);
    case 4:
        return Words::tr("at %1, %2 from the bottom left of %3").arg(x, y, window);
    case 5:
        return Words::tr("at %1, %2 from the bottom right of %3").arg(x, y, window);
    case 6:
        return Words::tr("at %1% of the width, %2 from the bottom of %3").arg(x, y, window);
    case 7:
        return Words::tr("at %1, %2 on the screen").arg(x, y);
    default:
        return QString();
    }
}

QString describeMouse(const TVKMouseAction& action, Detail detail)
{
    QString operation = surfaceConstants().mouseActionString(int(action.operation()));
    operation = operation.isEmpty() ? Words::tr("Mouse") : vocabulary(operation);
    const QString text = modifierPrefix(action.modifierFlags()) + operation;
    if (detail == Detail::Short)
        return text;
    const QString place = mousePlace(action);
    return place.isEmpty() ? text : text + QLatin1Char(' ') + place;
}

// ---- emulation

QString emulatedControl(const TVKEmulationAction& action)
{
    const TVK_Constant_Server& constants = surfaceConstants();
    const bool buttons = dynamic_cast<const TVKButtonEmulationAction*>(&action) != nullptr;
    const QString group = buttons ? constants.buttonEmulationGroupName(action.emulatedGroup())
                                  : constants.encoderEmulationGroupName(action.emulatedGroup());
    const QString groupText =
        group.isNull() ? Words::tr("Group %1").arg(action.emulatedGroup() + 1) : capitalised(group);
    if (buttons && action.displayControlAsName()) {
        const QString name =
            constants.buttonEmulationControlName(action.emulatedGroup(), action.emulatedControl());
        if (!name.isNull())
            return groupText + kSeparator + capitalised(name);
    }
    if (action.onlyControlInGroup())
        return groupText;
    return groupText + QLatin1Char(' ') + QString::number(qint64(action.emulatedControl()) + 1);
}

QString describeEmulation(const TVKEmulationAction& action, Detail detail,
                          const ActionContext& context)
{
    QString body;
    if (const auto* jog = dynamic_cast<const TVKJogEmulationAction*>(&action)) {
        body = Words::tr("Jog");
        if (detail == Detail::Full && context.emulationMode == EmulationMode::C)
            body += kSeparator + Words::tr("speed %1").arg(jog->jogSpeed());
    } else {
        body = emulatedControl(action);
    }
    return detail == Detail::Short ? body : withEmulationMode(body, context);
}

// ---- built-in commands and surface functions

QString describeBuiltIn(const TVKBuiltInAction& action, Detail detail)
{
    const QString command =
        action.commandName().isEmpty() ? Words::tr("Built-in command") : action.commandName();
    if (detail == Detail::Short || action.commandGroupName().isEmpty())
        return command;
    return action.commandGroupName() + kSeparator + command;
}

QString describeSpecial(const TVKSpecialAction& action, Detail detail)
{
    const QString function = surfaceConstants().specialModeDescriptor(action.mode());
    const QString text = function.isNull() ? Words::tr("Undefined") : vocabulary(function);
    return detail == Detail::Short ? text : Words::tr("Surface: %1").arg(text);
}

// ---- displays

QString describeDisplay(const TVKAction& action, Detail detail, const ActionContext& context)
{
    if (const auto* text = dynamic_cast<const TVKDisplayTextAction*>(&action)) {
        QString shown = text->storedText();
        shown.replace(QLatin1Char('\n'), QStringLiteral(" / "));
        if (shown.trimmed().isEmpty())
            return Words::tr("Empty text");
        return detail == Detail::Short ? shown : Words::tr("Text “%1”").arg(shown);
    }
    if (const auto* names =
            dynamic_cast<const TVKFrameletCorvaneNVLCDDisplayButtonNameAction*>(&action)) {
        switch (names->lcdDisplayMode()) {
        case 0:
            return Words::tr("Button names");
        case 1:
            return Words::tr("Function and parameter numbers");
        default:
            return Words::tr("Display mode %1").arg(names->lcdDisplayMode());
        }
    }
    if (dynamic_cast<const TVKLCDDisplayEncoderNameAction*>(&action))
        return Words::tr("Encoder names");
    if (dynamic_cast<const TVKLCDDisplayButtonNameAction*>(&action))
        return Words::tr("Button names");
    if (const auto* emulation = dynamic_cast<const TVKDisplayEmulationAction*>(&action)) {
        const QString source = emulation->storedText().isEmpty()
                                   ? Words::tr("Source %1").arg(emulation->displaySource())
                                   : vocabulary(emulation->storedText());
        return detail == Detail::Short ? source : withEmulationMode(source, context);
    }
    if (dynamic_cast<const TVKTimecodeDisplayEmulationAction*>(&action)) {
        const QString timecode = Words::tr("Emulated timecode");
        if (detail == Detail::Short)
            return timecode;
        return context.emulationMode == EmulationMode::None
                   ? Words::tr("Emulated timecode (emulation is off)")
                   : withEmulationMode(timecode, context);
    }
    if (const auto* icon = dynamic_cast<const CorvaneLCDButtonDisplayIconAction*>(&action))
        return Words::tr("ROM icon %1").arg(icon->romIcon());
    if (const auto* status =
            dynamic_cast<const CorvaneButtonDisplayMidiEmulationAction*>(&action)) {
        switch (status->mode()) {
        case CorvaneButtonDisplayMidiEmulationAction::NativeMIDI:
            return Words::tr("Native MIDI status");
        case CorvaneButtonDisplayMidiEmulationAction::Emulation:
            return detail == Detail::Short
                       ? Words::tr("Emulation status")
                       : withEmulationMode(Words::tr("Emulation status"), context);
        default:
            return Words::tr("Status mode %1").arg(status->mode());
        }
    }
    return QString();
}

} // namespace

ActionContext contextOfAction(const TVKAction& action)
{
    ActionContext context;
    if (const TVKControl* control = action.owningControl()) {
        context.controlType = control->tvkControlType();
        if (const TVKKeyset* keyset = control->keyset())
            context.emulationMode = keyset->emulationMode();
    }
    return context;
}

QString describeAction(const TVKAction& action, Detail detail)
{
    return describeAction(action, detail, contextOfAction(action));
}

QString describeAction(const TVKAction& action, Detail detail, const ActionContext& context)
{
    // Built-in commands are key sequence actions too; they are named by their command.
    if (const auto* builtIn = dynamic_cast<const TVKBuiltInAction*>(&action))
        return describeBuiltIn(*builtIn, detail);
    if (const auto* keys = dynamic_cast<const TVKButtonKeySequenceAction*>(&action))
        return describeButtonKeys(*keys, detail);
    if (const auto* keys = dynamic_cast<const TVKMultipleKeySequenceAction*>(&action))
        return describeDirectionKeys(*keys, detail, context);
    if (const auto* midi = dynamic_cast<const TVKMIDIAction*>(&action))
        return describeMidiAction(*midi, detail);
    if (const auto* mouse = dynamic_cast<const TVKMouseAction*>(&action))
        return describeMouse(*mouse, detail);
    if (const auto* special = dynamic_cast<const TVKSpecialAction*>(&action))
        return describeSpecial(*special, detail);
    if (const auto* emulation = dynamic_cast<const TVKEmulationAction*>(&action))
        return describeEmulation(*emulation, detail, context);
    if (dynamic_cast<const TVKNULLAction*>(&action) ||
        dynamic_cast<const TVKNULLDisplayAction*>(&action))
        return Words::tr("No action");
    return describeDisplay(action, detail, context);
}

bool isAssigned(const TVKAction* action)
{
    return action && !dynamic_cast<const TVKNULLAction*>(action) &&
           !dynamic_cast<const TVKNULLDisplayAction*>(action);
}

QString assignmentLabel(const TVKControl& control)
{
    if (!control.userName().trimmed().isEmpty())
        return control.userName().trimmed();
    return isAssigned(control.action()) ? describeAction(*control.action(), Detail::Short)
                                        : QString();
}

QString modifierPrefix(quint64 modifiers)
{
    QString text;
    if (modifiers & KeyEventTranslator::kControl)
        text += Words::tr("Ctrl") + QLatin1Char('+');
    if (modifiers & KeyEventTranslator::kOption)
        text += Words::tr("Alt") + QLatin1Char('+');
    if (modifiers & KeyEventTranslator::kShift)
        text += Words::tr("Shift") + QLatin1Char('+');
    if (modifiers & KeyEventTranslator::kCommand)
        text += Words::tr("Super") + QLatin1Char('+');
    return text;
}

QString describeKeystroke(const TVKKeystrokeElement& keystroke)
{
    return modifierPrefix(keystroke.modifierFlags()) + keyName(keystroke);
}

QString describeKeySequence(const TVKKeystrokeList& sequence)
{
    QStringList keys;
    for (const TVKKeystrokeElement& keystroke : sequence)
        keys << describeKeystroke(keystroke);
    return keys.join(QStringLiteral(", "));
}

QString midiNoteName(int note)
{
    // Note names differ between languages (H for B, Do for C): they are translated too.
    static const char* const kNames[] = {
        QT_TRANSLATE_NOOP("ActionDescription", "C"),  QT_TRANSLATE_NOOP("ActionDescription", "C#"),
        QT_TRANSLATE_NOOP("ActionDescription", "D"),  QT_TRANSLATE_NOOP("ActionDescription", "D#"),
        QT_TRANSLATE_NOOP("ActionDescription", "E"),  QT_TRANSLATE_NOOP("ActionDescription", "F"),
        QT_TRANSLATE_NOOP("ActionDescription", "F#"), QT_TRANSLATE_NOOP("ActionDescription", "G"),
        QT_TRANSLATE_NOOP("ActionDescription", "G#"), QT_TRANSLATE_NOOP("ActionDescription", "A"),
        QT_TRANSLATE_NOOP("ActionDescription", "A#"), QT_TRANSLATE_NOOP("ActionDescription", "B")};
    return Words::tr(kNames[note % 12]) + QString::number(note / 12 - 1);
}

QString describeMidiMessage(const quint8* bytes, unsigned size, Detail detail)
{
    if (!bytes || size == 0)
        return Words::tr("No MIDI message");
    const quint8 status = bytes[0];
    if (status < 0x80 || status == TVKMIDIAction::kValuePlaceholder)
        return rawBytes(bytes, size);
    if (status >= 0xF0)
        return systemMessageName(status);

    const QString channel = Words::tr("ch %1").arg((status & 0x0F) + 1);
    const bool full = detail == Detail::Full;
    QStringList parts;
    switch (status & 0xF0) {
    case 0x80:
    case 0x90: {
        QString text = ((status & 0xF0) == 0x90 ? Words::tr("Note On") : Words::tr("Note Off")) +
                       noteText(bytes, size, detail);
        if (full) {
            if (const std::optional<QString> velocity = dataByte(bytes, size, 2))
                text += QLatin1Char(' ') + Words::tr("vel %1").arg(*velocity);
        }
        parts << text;
        break;
    }
    case 0xA0: {
        parts << Words::tr("Aftertouch") + noteText(bytes, size, detail);
        if (full) {
            if (const std::optional<QString> pressure = dataByte(bytes, size, 2))
                parts << *pressure;
        }
        break;
    }
    case 0xB0: {
        const std::optional<QString> number = dataByte(bytes, size, 1);
        parts << (number ? Words::tr("CC %1").arg(*number) : Words::tr("CC"));
        if (full) {
            if (const std::optional<QString> value = dataByte(bytes, size, 2))
                parts << *value;
        }
        break;
    }
    case 0xC0: {
        const std::optional<QString> program = dataByte(bytes, size, 1);
        parts << (program ? Words::tr("Program %1").arg(*program) : Words::tr("Program"));
        break;
    }
    case 0xD0: {
        parts << Words::tr("Channel Pressure");
        if (full) {
            if (const std::optional<QString> pressure = dataByte(bytes, size, 1))
                parts << *pressure;
        }
        break;
    }
    default: { // 0xE0
        parts << Words::tr("Pitch Bend");
        if (full && size >= 2) {
            const bool value = bytes[1] == TVKMIDIAction::kValuePlaceholder ||
                               (size >= 3 && bytes[2] == TVKMIDIAction::kValuePlaceholder);
            if (value) {
                parts << Words::tr("value");
            } else {
                // Least significant seven bits first; the centre, 8192, reads as 0.
                const int msb = size >= 3 ? bytes[2] & 0x7F : 0;
                parts << QString::number(((msb << 7) | (bytes[1] & 0x7F)) - 8192);
            }
        }
        break;
    }
    }
    if (full)
        parts << channel;
    return parts.join(kSeparator);
}

QString searchableText(const QString& text)
{
    // The names a user may type for each modifier, in the order descriptions write them.
    static const std::array<QStringList, 4> kModifiers = {
        QStringList{QStringLiteral("ctrl"), QStringLiteral("control")},
        QStringList{QStringLiteral("alt"), QStringLiteral("option"), QStringLiteral("opt")},
        QStringList{QStringLiteral("shift")},
        QStringList{QStringLiteral("super"), QStringLiteral("meta"), QStringLiteral("win"),
                    QStringLiteral("cmd"), QStringLiteral("command")},
    };
    static const QRegularExpression kRun(QStringLiteral(
        "(?<![\\w])(?:(?:ctrl|control|alt|option|opt|shift|super|meta|win|cmd|command)\\+)+"
        "(?:(?:ctrl|control|alt|option|opt|shift|super|meta|win|cmd|command)(?![\\w]))?"));

    const QString lower = text.toLower();
    QString result;
    result.reserve(lower.size());
    qsizetype done = 0;
    QRegularExpressionMatchIterator runs = kRun.globalMatch(lower);
    while (runs.hasNext()) {
        const QRegularExpressionMatch run = runs.next();
        result += QStringView(lower).mid(done, run.capturedStart() - done);
        std::array<bool, 4> held{};
        const QString matched = run.captured();
        for (const QString& name : matched.split(QLatin1Char('+'), Qt::SkipEmptyParts)) {
            for (size_t m = 0; m < kModifiers.size(); ++m) {
                if (kModifiers[m].contains(name))
                    held[m] = true;
            }
        }
        QStringList names;
        for (size_t m = 0; m < kModifiers.size(); ++m) {
            if (held[m])
                names << kModifiers[m].first();
        }
        result += names.join(QLatin1Char('+'));
        if (matched.endsWith(QLatin1Char('+')))
            result += QLatin1Char('+');
        done = run.capturedEnd();
    }
    result += QStringView(lower).mid(done);
    return result;
}

bool searchFinds(const QString& searchable, const QString& wanted)
{
    const qsizetype plus = wanted.lastIndexOf(QLatin1Char('+'));
    const bool shortcut = plus > 0 && plus + 1 < wanted.size();
    if (!shortcut)
        return searchable.contains(wanted);
    const auto partOfKeys = [](QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('+'); };
    for (qsizetype at = searchable.indexOf(wanted); at >= 0;
         at = searchable.indexOf(wanted, at + 1)) {
        const qsizetype end = at + wanted.size();
        if ((at == 0 || !partOfKeys(searchable.at(at - 1))) &&
            (end == searchable.size() || !searchable.at(end).isLetterOrNumber()))
            return true;
    }
    return false;
}

} // namespace corvane
