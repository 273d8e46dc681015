// The gate that all input of a process passes on its way to the forms.
#pragma once

#include <deque>
#include <functional>

#include "platform/runtime/EventLoop.h"

namespace platform::forms {

// One piece of input: a press, a turn of the wheel, a close, an act of an assistive program.
struct Input {
    std::function<bool()> isRefused;
    std::function<void()> carryOut;
};

enum class Verdict { Refused, Accepted, Waits };

// Input is judged when it arrives. What is refused then is lost for good. What is accepted while a call is
// out waits, and is carried out after the call in its order: one piece a turn of the scheduler, so that what
// the first starts (a box, another call) counts for the next. Each is judged again before it is carried out.
class InputGate {
  public:
    explicit InputGate(Scheduler& scheduler) : scheduler_(scheduler) {}
    InputGate(const InputGate&) = delete;
    InputGate& operator=(const InputGate&) = delete;

    // Makes input wait until every hold is dropped. The gate must outlive the result.
    HandleRef Hold();

    // True where accepted input needs no waiting.
    bool IsOpen() const;
    // Judges what has arrived and keeps what has to wait. What is accepted is for the caller to carry out.
    Verdict Admit(Input input);
    // Judges what has arrived, and carries it out where it is accepted.
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
