// Keys and the mouse wheel on a spin control.
#pragma once

#include <optional>

#include "platform/forms/Controls.h"

class QKeyEvent;
class QWheelEvent;

namespace platform::forms {

enum class Direction { Up, Down };

// Makes one of the operator's steps. Errors of the handlers end here.
void Step(UpDown& spin, Direction direction);

// The step that a key means, if any: Up and Down without modifiers.
std::optional<Direction> StepOf(const QKeyEvent& event);

// Adds up the turns of a wheel, whose small ones make a step together.
class WheelSteps {
  public:
    // The whole steps that are complete now; below 0 downwards.
    int Take(const QWheelEvent& event);

  private:
    int turned_ = 0;
};

}  // namespace platform::forms
