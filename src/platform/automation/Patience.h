// Limits how long one operation, which may make many calls, keeps the operator waiting.
#pragma once

#include "platform/automation/Automation.h"
#include "platform/runtime/EventLoop.h"

namespace platform {

// How long a callee may refuse a call as busy.
class BusyLimit {
  public:
    // `settings` is read at the first refusal. Both arguments must outlive the limit.
    BusyLimit(Scheduler& scheduler, const WaitSettings& settings)
        : scheduler_(scheduler), settings_(settings) {}

    // Notes a refusal. The first one starts the limit; returns true once it has run out.
    bool ReachedByRefusal();
    // The next refusal starts the limit again.
    void Reset();

  private:
    Scheduler& scheduler_;
    const WaitSettings& settings_;
    HandleRef timer_;
    bool isReached_ = false;
};

// Watches the wait limits of an operation, for each call or once for all of them, and asks the operator when
// one is reached. Once the operator has given up, the operation makes no further calls.
class Patience : public std::enable_shared_from_this<Patience> {
  public:
    // `settings` is read when a limit starts or is reached. The arguments must outlive the patience.
    Patience(Scheduler& scheduler, WaitBoxes& boxes, const WaitSettings& settings)
        : scheduler_(scheduler), boxes_(boxes), settings_(settings), busyLimit_(scheduler, settings) {}

    // From now on one pending limit covers the whole operation, even between calls, instead of one for each
    // call. Restarts that limit and closes an open box. `givenUp` runs once, when the operator gives up.
    void SpanCalls(std::function<void()> givenUp = nullptr);

    // Acts as if the operator had given up.
    void GiveUp();
    bool IsGivenUp() const { return isGivenUp_; }
    // Raises 462 once the operator has given up.
    void RequireOngoing() const;

    // Gets the result of a call if it arrives after the operator gave up.
    std::function<void(const Value&)> Late;

    // For the code that makes the calls: reports the progress of each.
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
