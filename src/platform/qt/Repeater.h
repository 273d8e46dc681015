// The steps of an arrow that the operator holds with the mouse.
#pragma once

#include <QTimer>
#include <functional>

namespace platform::forms {

// Steps once when it starts, and after a moment again and again until it is stopped. A step may show a box
// and wait: no further one comes meanwhile, and none afterwards where the button was let go of. It may also
// take away the widget, and the repeater with it.
class Repeater {
  public:
    // `step` tells whether to go on.
    explicit Repeater(std::function<bool()> step);

    void Start();
    void Stop();
    bool IsRunning() const { return running_; }

  private:
    void Step(int wait);  // milliseconds until the next

    std::function<bool()> step_;
    QTimer timer_;
    bool running_ = false;
};

// Whether an event takes the mouse away from a widget that is being held: it hides, is switched off, or a
// box or another window comes in front.
bool EndsHolding(const QEvent& event);

}  // namespace platform::forms
