// How long the operator is kept waiting by one piece of work, which may make many calls.
#pragma once

#include "platform/automation/Automation.h"
#include "platform/runtime/EventLoop.h"

namespace platform {

// How long a callee may refuse a call as busy.
class BusyLimit {
  public:
    // `settings` is read at the first refusal. Both must outlive the limit.
    BusyLimit(Scheduler& scheduler, const WaitSettings& settings)
        : scheduler_(scheduler), settings_(settings) {}

    // Counts a refusal. True where the first one lies so far back that the limit is reached.
    bool ReachedByRefusal();
    // The next refusal is the first one.
    void Reset();

  private:
    Scheduler& scheduler_;
    const WaitSettings& settings_;
    HandleRef timer_;
    bool isReached_ = false;
};

// Watches the wait limits of its calls, for each call or once for all of them, and asks the operator when one
// is reached. After giving up no further call of the work is made.
class Patience : public std::enable_shared_from_this<Patience> {
  public:
    // `settings` is read when a limit starts or is reached. All three must outlive the patience.
    Patience(Scheduler& scheduler, WaitBoxes& boxes, const WaitSettings& settings)
        : scheduler_(scheduler), boxes_(boxes), settings_(settings), busyLimit_(scheduler, settings) {}

    // From now on one pending limit covers everything, with or without a call, instead of one for each call.
    // Restarts it and closes an open box. `givenUp` runs once, when the operator gives up.
    void SpanCalls(std::function<void()> givenUp = nullptr);

    // As if the operator had given up.
    void GiveUp();
    bool IsGivenUp() const { return isGivenUp_; }
    // Raises 462 once the operator has given up.
    void RequireOngoing() const;

    // Gets the result of a call that comes after the operator gave it up.
    std::function<void(const Value&)> Late;

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
    BusyLimit busyLimit_;
    std::unique_ptr<WaitBox> box_;
};

}  // namespace platform
