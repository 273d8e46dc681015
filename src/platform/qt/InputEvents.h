// The events of a window that are the operator's input.
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
    Fleeting,  // can't wait: a move of the mouse, and what Qt makes clicks of itself
};

InputKind KindOf(const QEvent& event);

// The button or key of a press or release.
int StrokeOf(const QEvent& event);

// Makes the event anew for when it is delivered. A copy would not do for the mouse: copies share their point
// with the device, which moves it along with all that comes after.
std::function<std::unique_ptr<QEvent>()> MakerOf(const QEvent& event);

}  // namespace platform::forms
