#include "platform/qt/Stepping.h"

#include <QKeyEvent>
#include <QWheelEvent>

#include "platform/runtime/Guard.h"

namespace platform::forms {

void Step(UpDown& spin, Direction direction) {
    Guard([&] { direction == Direction::Up ? spin.StepUp() : spin.StepDown(); });
}

std::optional<Direction> StepOf(const QKeyEvent& event) {
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return {};
    if (event.key() == Qt::Key_Up) return Direction::Up;
    if (event.key() == Qt::Key_Down) return Direction::Down;
    return {};
}

int WheelSteps::Take(const QWheelEvent& event) {
    turned_ += event.angleDelta().y();
    const int steps = turned_ / QWheelEvent::DefaultDeltasPerStep;
    turned_ -= steps * QWheelEvent::DefaultDeltasPerStep;
    return steps;
}

}  // namespace platform::forms
