// How long the operator is kept waiting by one piece of work, which may make many calls.
#pragma once

#include <optional>

#include "platform/automation/Automation.h"
#include "platform/runtime/EventLoop.h"

namespace platform {

// Watches the limits of its calls, which hold for each of them, or once for all of them, and asks whether to
// go on when one is reached. Once the operator has given up, no further call of the work is made.
class Patience : public std::enable_shared_from_this<Patience> {
  public:
    // `settings` is read when a limit starts or is reached. All three must outlive the patience.
    Patience(Scheduler& scheduler, WaitBoxes& boxes, const WaitSettings& settings)
        : scheduler_(scheduler), boxes_(boxes), settings_(settings) {}

    // From now on one pending limit over all that goes on, calls or none, in place of one for each call.
    // Starts it anew and closes the box that is open. `givenUp` runs once, when the operator gives up.
    void SpanCalls(std::function<void()> givenUp = nullptr);

    // As if the operator had given up.
    void GiveUp();
    bool IsGivenUp() const { return isGivenUp_; }
    // Raises 462 once the operator has given up.
    void RequireOngoing() const;

    // What becomes of a call.
    void CallSent();
    void CallRefused();
    void CallEnded();

  private:
    void StartPendingLimit();
    void Ask(TextView title, TextView text);
    void Decided(bool giveUp);
    void CloseBox();

    Scheduler& scheduler_;
    WaitBoxes& boxes_;
    const WaitSettings& settings_;
    bool spansCalls_ = false, isGivenUp_ = false;
    bool callIsOut_ = false, boxIsOpen_ = false;
    std::function<void()> givenUp_;
    HandleRef pendingLimit_;
    std::optional<std::chrono::steady_clock::time_point> refusedSince_;
    std::unique_ptr<WaitBox> box_;
};

}  // namespace platform
