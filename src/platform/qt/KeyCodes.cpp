#include "platform/qt/KeyCodes.h"

#include <algorithm>
#include <array>

namespace platform::forms {

namespace {

struct Pair {
    int qtKey;
    std::int16_t code;
};

constexpr std::array pairs{
    Pair{Qt::Key_Backspace, 8}, Pair{Qt::Key_Clear, 12},    Pair{Qt::Key_Return, 13},
    Pair{Qt::Key_Enter, 13},    Pair{Qt::Key_Shift, 16},    Pair{Qt::Key_Control, 17},
    Pair{Qt::Key_Alt, 18},      Pair{Qt::Key_Pause, 19},    Pair{Qt::Key_CapsLock, 20},
    Pair{Qt::Key_Escape, 27},   Pair{Qt::Key_PageUp, 33},   Pair{Qt::Key_PageDown, 34},
    Pair{Qt::Key_End, 35},      Pair{Qt::Key_Home, 36},     Pair{Qt::Key_Left, 37},
    Pair{Qt::Key_Up, 38},       Pair{Qt::Key_Right, 39},    Pair{Qt::Key_Down, 40},
    Pair{Qt::Key_Print, 44},    Pair{Qt::Key_Insert, 45},   Pair{Qt::Key_Delete, 46},
    Pair{Qt::Key_Help, 47},     Pair{Qt::Key_NumLock, 144}, Pair{Qt::Key_ScrollLock, 145},
};

constexpr std::array keypadPairs{
    Pair{Qt::Key_Asterisk, 106}, Pair{Qt::Key_Plus, 107},  Pair{Qt::Key_Minus, 109},
    Pair{Qt::Key_Period, 110},   Pair{Qt::Key_Comma, 110}, Pair{Qt::Key_Slash, 111},
};

template <class Table>
std::int16_t Find(const Table& table, int qtKey) {
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const Pair& pair) { return pair.qtKey == qtKey; });
    return found == table.end() ? std::int16_t{0} : found->code;
}

std::int16_t Within(int key, int first, int firstCode) {
    return static_cast<std::int16_t>(key - first + firstCode);
}

}  // namespace

std::int16_t KeyCodeOf(const QKeyEvent& event) {
    constexpr int firstFunctionKey = 112, firstKeypadDigit = 96;
    const int key = event.key();
    const bool keypad = event.modifiers().testFlag(Qt::KeypadModifier);
    if (key >= Qt::Key_F1 && key <= Qt::Key_F16) return Within(key, Qt::Key_F1, firstFunctionKey);
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return Within(key, Qt::Key_0, keypad ? firstKeypadDigit : '0');
    if (key >= Qt::Key_A && key <= Qt::Key_Z) return Within(key, Qt::Key_A, 'A');
    if (key == Qt::Key_Space) return ' ';
    return Find(pairs, key) != 0 || !keypad ? Find(pairs, key) : Find(keypadPairs, key);
}

std::int16_t ShiftOf(Qt::KeyboardModifiers modifiers) {
    int shift = 0;
    if (modifiers.testFlag(Qt::ShiftModifier)) shift += 1;
    if (modifiers.testFlag(Qt::ControlModifier)) shift += 2;
    if (modifiers.testFlag(Qt::AltModifier)) shift += 4;
    return static_cast<std::int16_t>(shift);
}

}  // namespace platform::forms
