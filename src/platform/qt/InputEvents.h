// Distinguishes input events of a window from others, and copies them.
#pragma once

#include <QEvent>
#include <functional>
#include <memory>

namespace platform::forms {

enum class InputKind {
    None,
    Press,
    Repeat,
    Release,
    Wheel,
    Fleeting,  // can't wait: mouse moves, and events that Qt turns into clicks
};

InputKind KindOf(const QEvent& event);

// The button or key of a press or release.
int StrokeOf(const QEvent& event);

// Returns a function that recreates the event for delivery. A copied mouse event shares its position with the
// device, and later moves would change it.
std::function<std::unique_ptr<QEvent>()> MakerOf(const QEvent& event);

}  // namespace platform::forms
