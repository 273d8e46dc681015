// Time that passes when a test says so.
#pragma once

#include "platform/runtime/Date.h"
#include "platform/runtime/EventLoop.h"

namespace fakes {

using platform::HandleRef;
using platform::Milliseconds;

// A scheduler or an event loop.
template <class Base>
class FakeTime : public Base {
  public:
    HandleRef After(Milliseconds delay, std::function<void()> call) override {
        return Add({now_ + delay, Milliseconds(0), std::move(call)});
    }
    HandleRef Every(Milliseconds interval, std::function<void()> call) override {
        return Add({now_ + interval, interval, std::move(call)});
    }
    void Pass(int milliseconds) {
        const Milliseconds end = now_ + Milliseconds(milliseconds);
        for (auto next = First(); next && next->due <= end; next = First()) {
            now_ = next->due;
            next->due = next->interval.count() > 0 ? now_ + next->interval : Milliseconds::max();
            next->call();
            next.reset();  // it may have been dropped inside its call
        }
        now_ = end;
    }

  private:
    struct Timer {
        Milliseconds due, interval;
        std::function<void()> call;
    };
    // A timer lives as long as its handle.
    struct Kept : platform::Handle {
        explicit Kept(std::shared_ptr<Timer> kept) : timer(std::move(kept)) {}
        std::shared_ptr<Timer> timer;
    };
    HandleRef Add(Timer timer) {
        const auto added = std::make_shared<Timer>(std::move(timer));
        timers_.push_back(added);
        return std::make_unique<Kept>(added);
    }
    std::shared_ptr<Timer> First() const {
        std::shared_ptr<Timer> first;
        for (const auto& weak : timers_)
            if (auto timer = weak.lock(); timer && (!first || timer->due < first->due)) first = timer;
        return first;
    }

    Milliseconds now_{0};
    std::vector<std::weak_ptr<Timer>> timers_;
};

struct FakeClock : platform::Clock {
    platform::Date Now() const override { return now; }
    platform::Date now = platform::MakeDate({2026, 11, 18, 13, 2, 3});  // a Wednesday
};

}  // namespace fakes
