// Key events as the key sequence editor stores them: evdev key code, modifier word and label.
#include "QtPrinters.h"
#include "actions/editors/KeyEventTranslator.h"

#include <gtest/gtest.h>

using namespace corvane;
namespace K = corvane::KeyEventTranslator;

namespace {

KeyEventData event(int key, Qt::KeyboardModifiers modifiers = {}, const QString& text = {},
                   quint32 scanCode = 0)
{
    KeyEventData e;
    e.key = key;
    e.modifiers = modifiers;
    e.text = text;
    e.nativeScanCode = scanCode;
    return e;
}

} // namespace

TEST(KeyEvents, LabelsOfTheRemappingTable)
{
    const std::vector<std::pair<int, QString>> cases = {
        {Qt::Key_Enter, QStringLiteral("Enter")},
        {Qt::Key_Tab, QStringLiteral("Tab")},
        {Qt::Key_Backtab, QStringLiteral("Tab")},
        {Qt::Key_Return, QStringLiteral("Return")},
        {Qt::Key_Escape, QStringLiteral("Esc")},
        {Qt::Key_Space, QStringLiteral("space")},
        {Qt::Key_Backspace, QStringLiteral("<-Delete")},
        {Qt::Key_Up, QStringLiteral("Up Arrow")},
        {Qt::Key_Down, QStringLiteral("Down Arrow")},
        {Qt::Key_Left, QStringLiteral("Left Arrow")},
        {Qt::Key_Right, QStringLiteral("Right Arrow")},
        {Qt::Key_F1, QStringLiteral("F1")},
        {Qt::Key_F16, QStringLiteral("F16")},
        {Qt::Key_Delete, QStringLiteral("Delete->")},
        {Qt::Key_Home, QStringLiteral("Home")},
        {Qt::Key_End, QStringLiteral("End")},
        {Qt::Key_PageUp, QStringLiteral("Page Up")},
        {Qt::Key_PageDown, QStringLiteral("Page Down")},
        {Qt::Key_Clear, QStringLiteral("Clear")},
        {Qt::Key_Help, QStringLiteral("Help")},
    };
    for (const auto& [key, label] : cases)
        EXPECT_EQ(K::keystrokeForEvent(event(key))->label, label) << key;

    // F17 and above have no code of their own in the table; their text (none) gives no label.
    EXPECT_EQ(K::keystrokeForEvent(event(Qt::Key_F17))->label, QString());
    EXPECT_EQ(K::labelForCharacters(QString(QChar(char16_t(0xF713)))), QStringLiteral("F16"));
    EXPECT_EQ(K::labelForCharacters(QStringLiteral("ab")), QStringLiteral("ab"));
    EXPECT_EQ(K::labelForCharacters(QString()), QString());
}

TEST(KeyEvents, CharactersIgnoreControlAndAlt)
{
    EXPECT_EQ(K::keystrokeForEvent(event(Qt::Key_A, {}, QStringLiteral("a")))->label,
              QStringLiteral("a"));
    // Control turns the text into a control character; the key still names the letter.
    EXPECT_EQ(
        K::keystrokeForEvent(event(Qt::Key_A, Qt::ControlModifier, QStringLiteral("\x01")))->label,
        QStringLiteral("a"));
    EXPECT_EQ(K::keystrokeForEvent(
                  event(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier, QStringLiteral("\x01")))
                  ->label,
              QStringLiteral("A"));
    EXPECT_EQ(K::keystrokeForEvent(event(Qt::Key_Slash, Qt::AltModifier, QStringLiteral("\u00f7")))
                  ->label,
              QStringLiteral("/"));
    EXPECT_EQ(
        K::keystrokeForEvent(event(Qt::Key_Exclam, Qt::ShiftModifier, QStringLiteral("!")))->label,
        QStringLiteral("!"));
}

TEST(KeyEvents, KeyCodeAndModifierWord)
{
    // X11/Wayland scan codes are evdev codes plus 8.
    const auto a = K::keystrokeForEvent(
        event(Qt::Key_A, Qt::ShiftModifier | Qt::MetaModifier, QStringLiteral("A"), 38));
    EXPECT_EQ(a->keyCode, 30u);
    EXPECT_EQ(a->modifiers, K::kShift | K::kCommand);
    EXPECT_EQ(K::modifierWord(Qt::ControlModifier | Qt::AltModifier), 0xC0000u);

    // Events without a scan code fall back to the key's code on a standard layout.
    EXPECT_EQ(K::keyCode(event(Qt::Key_A)), 30u);
    EXPECT_EQ(K::keyCode(event(Qt::Key_PageUp)), 104u);
    EXPECT_EQ(K::keyCode(event(Qt::Key_F12)), 88u);
    EXPECT_EQ(K::keyCode(event(Qt::Key_Enter)), 96u);
    EXPECT_EQ(K::keyCode(event(Qt::Key_unknown)), 0u);
}

TEST(KeyEvents, ModifierKeysAloneAreNotKeystrokes)
{
    for (int key : {Qt::Key_Shift, Qt::Key_Control, Qt::Key_Alt, Qt::Key_Meta, Qt::Key_AltGr,
                    Qt::Key_Super_L, Qt::Key_CapsLock})
        EXPECT_FALSE(K::keystrokeForEvent(event(key, Qt::ShiftModifier, {}, 50))) << key;
}
