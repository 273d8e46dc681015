// The gate between all input of a process and the forms.
#pragma once

#include <deque>
#include <functional>

#include "platform/runtime/EventLoop.h"

namespace platform::forms {

// One piece of input: a press, a turn of the wheel, a close, an action of an assistive program.
struct Input {
    std::function<bool()> isRefused;
    std::function<void()> carryOut;
};

enum class Verdict { Refused, Accepted, Waits };

// Judges input when it arrives; refused input is lost. Input accepted during a call waits until the call has
// ended. Then it is judged again and carried out in order, one piece per turn of the scheduler, so that what
// one piece starts (a box, another call) counts for the next.
class InputGate {
  public:
    explicit InputGate(Scheduler& scheduler) : scheduler_(scheduler) {}
    InputGate(const InputGate&) = delete;
    InputGate& operator=(const InputGate&) = delete;

    // Makes input wait until every hold is dropped. The gate must outlive the result.
    HandleRef Hold();

    // True if accepted input needn't wait.
    bool IsOpen() const;
    // Judges input, and queues it if it must wait. The caller carries out accepted input.
    Verdict Admit(Input input);
    // The same, but carries out accepted input.
    Verdict Take(const Input& input);

  private:
    class HoldHandle;

    void DropHold();
    void DeliverLater();
    void DeliverNext();

    Scheduler& scheduler_;
    std::deque<Input> waiting_;
    HandleRef delivery_;
    int holds_ = 0;
    bool isDelivering_ = false;
};

}  // namespace platform::forms
