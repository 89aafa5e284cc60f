#include "actions/editors/KeyEventTranslator.h"

#include <utility>

namespace corvane::KeyEventTranslator {

namespace {

// Character codes of the keys that produce no printable character.
constexpr char16_t kUpArrow = 0xF700;
constexpr char16_t kF1 = 0xF704;
constexpr char16_t kDeleteForward = 0xF728;
constexpr char16_t kHome = 0xF729;
constexpr char16_t kEnd = 0xF72B;
constexpr char16_t kPageUp = 0xF72C;
constexpr char16_t kPageDown = 0xF72D;
constexpr char16_t kClear = 0xF739;
constexpr char16_t kHelp = 0xF746;

std::optional<char16_t> fixedCharacterCode(int key)
{
    switch (key) {
    case Qt::Key_Up:
        return kUpArrow;
    case Qt::Key_Down:
        return char16_t(kUpArrow + 1);
    case Qt::Key_Left:
        return char16_t(kUpArrow + 2);
    case Qt::Key_Right:
        return char16_t(kUpArrow + 3);
    case Qt::Key_Delete:
        return kDeleteForward;
    case Qt::Key_Home:
        return kHome;
    case Qt::Key_End:
        return kEnd;
    case Qt::Key_PageUp:
        return kPageUp;
    case Qt::Key_PageDown:
        return kPageDown;
    case Qt::Key_Clear:
        return kClear;
    case Qt::Key_Help:
        return kHelp;
    case Qt::Key_Backspace:
        return char16_t(0x7F);
    case Qt::Key_Enter:
        return char16_t(0x03);
    case Qt::Key_Return:
        return char16_t(0x0D);
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return char16_t(0x09);
    case Qt::Key_Escape:
        return char16_t(0x1B);
    case Qt::Key_Space:
        return char16_t(0x20);
    default:
        break;
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F16)
        return char16_t(kF1 + (key - Qt::Key_F1));
    return std::nullopt;
}

// evdev codes (linux/input-event-codes.h) of the keys of a standard layout, for events that
// carry no scan code (synthesised events, some input methods).
constexpr std::pair<int, quint16> kFallbackCodes[] = {
    {Qt::Key_Escape, 1},
    {Qt::Key_1, 2},
    {Qt::Key_2, 3},
    {Qt::Key_3, 4},
    {Qt::Key_4, 5},
    {Qt::Key_5, 6},
    {Qt::Key_6, 7},
    {Qt::Key_7, 8},
    {Qt::Key_8, 9},
    {Qt::Key_9, 10},
    {Qt::Key_0, 11},
    {Qt::Key_Minus, 12},
    {Qt::Key_Equal, 13},
    {Qt::Key_Backspace, 14},
    {Qt::Key_Tab, 15},
    {Qt::Key_Backtab, 15},
    {Qt::Key_Q, 16},
    {Qt::Key_W, 17},
    {Qt::Key_E, 18},
    {Qt::Key_R, 19},
    {Qt::Key_T, 20},
    {Qt::Key_Y, 21},
    {Qt::Key_U, 22},
    {Qt::Key_I, 23},
    {Qt::Key_O, 24},
    {Qt::Key_P, 25},
    {Qt::Key_BracketLeft, 26},
    {Qt::Key_BracketRight, 27},
    {Qt::Key_Return, 28},
    {Qt::Key_Control, 29},
    {Qt::Key_A, 30},
    {Qt::Key_S, 31},
    {Qt::Key_D, 32},
    {Qt::Key_F, 33},
    {Qt::Key_G, 34},
    {Qt::Key_H, 35},
    {Qt::Key_J, 36},
    {Qt::Key_K, 37},
    {Qt::Key_L, 38},
    {Qt::Key_Semicolon, 39},
    {Qt::Key_Apostrophe, 40},
    {Qt::Key_QuoteLeft, 41},
    {Qt::Key_Shift, 42},
    {Qt::Key_Backslash, 43},
    {Qt::Key_Z, 44},
    {Qt::Key_X, 45},
    {Qt::Key_C, 46},
    {Qt::Key_V, 47},
    {Qt::Key_B, 48},
    {Qt::Key_N, 49},
    {Qt::Key_M, 50},
    {Qt::Key_Comma, 51},
    {Qt::Key_Period, 52},
    {Qt::Key_Slash, 53},
    {Qt::Key_Asterisk, 55},
    {Qt::Key_Alt, 56},
    {Qt::Key_Space, 57},
    {Qt::Key_CapsLock, 58},
    {Qt::Key_F1, 59},
    {Qt::Key_F2, 60},
    {Qt::Key_F3, 61},
    {Qt::Key_F4, 62},
    {Qt::Key_F5, 63},
    {Qt::Key_F6, 64},
    {Qt::Key_F7, 65},
    {Qt::Key_F8, 66},
    {Qt::Key_F9, 67},
    {Qt::Key_F10, 68},
    {Qt::Key_NumLock, 69},
    {Qt::Key_ScrollLock, 70},
    {Qt::Key_Plus, 78},
    {Qt::Key_F11, 87},
    {Qt::Key_F12, 88},
    {Qt::Key_Enter, 96},
    {Qt::Key_Home, 102},
    {Qt::Key_Up, 103},
    {Qt::Key_PageUp, 104},
    {Qt::Key_Left, 105},
    {Qt::Key_Right, 106},
    {Qt::Key_End, 107},
    {Qt::Key_Down, 108},
    {Qt::Key_PageDown, 109},
    {Qt::Key_Insert, 110},
    {Qt::Key_Delete, 111},
    {Qt::Key_Meta, 125},
    {Qt::Key_Help, 138},
    {Qt::Key_F13, 183},
    {Qt::Key_F14, 184},
    {Qt::Key_F15, 185},
    {Qt::Key_F16, 186},
    {Qt::Key_Clear, 355},
    {Qt::Key_Print, 99},
    {Qt::Key_Pause, 119},
};

} // namespace

QString labelForCharacters(const QString& characters)
{
    if (characters.isEmpty())
        return QString();
    const char16_t code = characters.at(0).unicode();
    switch (code) {
    case 0x03:
        return QStringLiteral("Enter");
    case 0x09:
        return QStringLiteral("Tab");
    case 0x0D:
        return QStringLiteral("Return");
    case 0x1B:
        return QStringLiteral("Esc");
    case 0x20:
        return QStringLiteral("space");
    case 0x7F:
        return QStringLiteral("<-Delete");
    case kUpArrow:
        return QStringLiteral("Up Arrow");
    case kUpArrow + 1:
        return QStringLiteral("Down Arrow");
    case kUpArrow + 2:
        return QStringLiteral("Left Arrow");
    case kUpArrow + 3:
        return QStringLiteral("Right Arrow");
    case kDeleteForward:
        return QStringLiteral("Delete->");
    case kHome:
        return QStringLiteral("Home");
    case kEnd:
        return QStringLiteral("End");
    case kPageUp:
        return QStringLiteral("Page Up");
    case kPageDown:
        return QStringLiteral("Page Down");
    case kClear:
        return QStringLiteral("Clear");
    case kHelp:
        return QStringLiteral("Help");
    default:
        break;
    }
    if (code >= kF1 && code <= 0xF713)
        return QStringLiteral("F") + QString::number(int(code) - 0xF703);
    return characters;
}

QString charactersIgnoringModifiers(const KeyEventData& event)
{
    if (const std::optional<char16_t> code = fixedCharacterCode(event.key))
        return QString(QChar(*code));
    // Control and Alt turn the event's text into control characters or dead keys; the key
    // itself still names the character.
    const bool textIsPlain = !(event.modifiers & (Qt::ControlModifier | Qt::AltModifier));
    if (textIsPlain && !event.text.isEmpty() && event.text.at(0).isPrint())
        return event.text;
    if (event.key >= Qt::Key_A && event.key <= Qt::Key_Z) {
        const QChar letter(char16_t(event.key));
        return QString(event.modifiers & Qt::ShiftModifier ? letter : letter.toLower());
    }
    if (event.key >= Qt::Key_Space && event.key <= 0xFF)
        return QString(QChar(char16_t(event.key)));
    return QString();
}

quint16 keyCode(const KeyEventData& event)
{
    // X11 and Wayland keycodes are the evdev codes offset by 8.
    if (event.nativeScanCode > 8)
        return quint16((event.nativeScanCode - 8) & 0xFFFF);
    for (const auto& [key, code] : kFallbackCodes) {
        if (key == event.key)
            return code;
    }
    return 0;
}

quint64 modifierWord(Qt::KeyboardModifiers modifiers)
{
    quint64 word = 0;
    if (modifiers & Qt::ShiftModifier)
        word |= kShift;
    if (modifiers & Qt::ControlModifier)
        word |= kControl;
    if (modifiers & Qt::AltModifier)
        word |= kOption;
    if (modifiers & Qt::MetaModifier)
        word |= kCommand;
    return word;
}

bool isModifierKey(int key)
{
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_ScrollLock:
        return true;
    default:
        return false;
    }
}

std::optional<CapturedKeystroke> keystrokeForEvent(const KeyEventData& event)
{
    if (isModifierKey(event.key))
        return std::nullopt;
    CapturedKeystroke keystroke;
    keystroke.label = labelForCharacters(charactersIgnoringModifiers(event));
    keystroke.keyCode = keyCode(event);
    keystroke.modifiers = modifierWord(event.modifiers);
    return keystroke;
}

} // namespace corvane::KeyEventTranslator
