// Keys of Qt as the key codes and shift states of forms.
#pragma once

#include <QKeyEvent>
#include <cstdint>

namespace platform::forms {

// 0 for a key that forms have no code for, and for Tab, which moves the focus before a form sees it.
std::int16_t KeyCodeOf(const QKeyEvent& key);

// 1 for Shift, 2 for Ctrl, 4 for Alt, added up.
std::int16_t ShiftOf(Qt::KeyboardModifiers modifiers);

}  // namespace platform::forms
