#include "platform/events/key_event.h"

#include <QKeyEvent>

#include <algorithm>
#include <array>

namespace kelm {

namespace {

struct KeyCode
{
    int key;
    int code;
};

/// The keys that type a character, each with what it types alone and with Shift.
struct CharacterKey
{
    char plain;
    char shifted;
    int code;
};

constexpr std::array characterKeys{
    CharacterKey{'a', 'A', 0},   CharacterKey{'s', 'S', 1},   CharacterKey{'d', 'D', 2},  CharacterKey{'f', 'F', 3},
    CharacterKey{'h', 'H', 4},   CharacterKey{'g', 'G', 5},   CharacterKey{'z', 'Z', 6},  CharacterKey{'x', 'X', 7},
    CharacterKey{'c', 'C', 8},   CharacterKey{'v', 'V', 9},   CharacterKey{'b', 'B', 11}, CharacterKey{'q', 'Q', 12},
    CharacterKey{'w', 'W', 13},  CharacterKey{'e', 'E', 14},  CharacterKey{'r', 'R', 15}, CharacterKey{'y', 'Y', 16},
    CharacterKey{'t', 'T', 17},  CharacterKey{'1', '!', 18},  CharacterKey{'2', '@', 19}, CharacterKey{'3', '#', 20},
    CharacterKey{'4', '$', 21},  CharacterKey{'6', '^', 22},  CharacterKey{'5', '%', 23}, CharacterKey{'=', '+', 24},
    CharacterKey{'9', '(', 25},  CharacterKey{'7', '&', 26},  CharacterKey{'-', '_', 27}, CharacterKey{'8', '*', 28},
    CharacterKey{'0', ')', 29},  CharacterKey{']', '}', 30},  CharacterKey{'o', 'O', 31}, CharacterKey{'u', 'U', 32},
    CharacterKey{'[', '{', 33},  CharacterKey{'i', 'I', 34},  CharacterKey{'p', 'P', 35}, CharacterKey{'l', 'L', 37},
    CharacterKey{'j', 'J', 38},  CharacterKey{'\'', '"', 39}, CharacterKey{'k', 'K', 40}, CharacterKey{';', ':', 41},
    CharacterKey{'\\', '|', 42}, CharacterKey{',', '<', 43},  CharacterKey{'/', '?', 44}, CharacterKey{'n', 'N', 45},
    CharacterKey{'m', 'M', 46},  CharacterKey{'.', '>', 47},  CharacterKey{' ', ' ', 49}, CharacterKey{'`', '~', 50},
};

constexpr std::array otherKeys{
    KeyCode{Qt::Key_Return, virtualKey::returnKey},
    KeyCode{Qt::Key_Tab, virtualKey::tab},
    KeyCode{Qt::Key_Backtab, virtualKey::tab},
    KeyCode{Qt::Key_Backspace, 51},
    KeyCode{Qt::Key_Escape, virtualKey::escape},
    KeyCode{Qt::Key_Control, 55},
    KeyCode{Qt::Key_Shift, 56},
    KeyCode{Qt::Key_CapsLock, 57},
    KeyCode{Qt::Key_Alt, 58},
    KeyCode{Qt::Key_Meta, 59},
    KeyCode{Qt::Key_Enter, 76},
    KeyCode{Qt::Key_F5, 96},
    KeyCode{Qt::Key_F6, 97},
    KeyCode{Qt::Key_F7, 98},
    KeyCode{Qt::Key_F3, 99},
    KeyCode{Qt::Key_F8, 100},
    KeyCode{Qt::Key_F9, 101},
    KeyCode{Qt::Key_F11, 103},
    KeyCode{Qt::Key_F10, 109},
    KeyCode{Qt::Key_F12, 111},
    KeyCode{Qt::Key_Insert, 114},
    KeyCode{Qt::Key_Home, 115},
    KeyCode{Qt::Key_PageUp, 116},
    KeyCode{Qt::Key_Delete, 117},
    KeyCode{Qt::Key_F4, 118},
    KeyCode{Qt::Key_End, 119},
    KeyCode{Qt::Key_F2, 120},
    KeyCode{Qt::Key_PageDown, 121},
    KeyCode{Qt::Key_F1, 122},
    KeyCode{Qt::Key_Left, 123},
    KeyCode{Qt::Key_Right, 124},
    KeyCode{Qt::Key_Down, virtualKey::downArrow},
    KeyCode{Qt::Key_Up, virtualKey::upArrow},
};

/// Keys from here on have a name and type nothing.
constexpr int firstNamedKey = Qt::Key_Escape;

bool hasCharacter(const QKeyEvent& event)
{
    return event.key() >= Qt::Key_Space && event.key() < firstNamedKey;
}

} // namespace

int virtualKeyCode(const QKeyEvent& event)
{
    const int key = event.key();
    const auto other =
        std::find_if(otherKeys.begin(), otherKeys.end(), [key](KeyCode entry) { return entry.key == key; });
    if (other != otherKeys.end()) {
        return other->code;
    }
    const auto character = std::find_if(characterKeys.begin(), characterKeys.end(), [key](CharacterKey entry) {
        return entry.plain == key || entry.shifted == key;
    });
    return character != characterKeys.end() ? character->code : virtualKey::none;
}

QString charactersOf(const QKeyEvent& event)
{
    return event.modifiers().testFlag(Qt::ControlModifier) && hasCharacter(event) ? charactersIgnoringModifiers(event)
                                                                                  : event.text();
}

QString charactersIgnoringModifiers(const QKeyEvent& event)
{
    if (!hasCharacter(event)) {
        return event.text();
    }
    // The toolkit names a letter's key by its capital, and any other key by what it types together with Shift.
    const QString capital = QString::fromUcs4(std::array{static_cast<char32_t>(event.key())}.data(), 1);
    return event.modifiers().testFlag(Qt::ShiftModifier) ? capital : capital.toLower();
}

bool isControlHeld(const QKeyEvent& event)
{
#ifdef Q_OS_MACOS
    return event.modifiers().testFlag(Qt::MetaModifier);
#else
    return event.modifiers().testAnyFlags(Qt::ControlModifier | Qt::MetaModifier);
#endif
}

} // namespace kelm
