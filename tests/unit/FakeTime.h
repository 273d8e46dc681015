// Time that passes when a test says so.
#pragma once

#include <algorithm>
#include <vector>

#include "platform/runtime/Date.h"
#include "platform/runtime/EventLoop.h"

namespace fakes {

using platform::HandleRef;
using platform::Milliseconds;

// Sources of events, each of which lives as long as its handle.
template <class Source>
struct Sources : std::vector<std::weak_ptr<Source>> {
    HandleRef Add(Source source) {
        const auto added = std::make_shared<Source>(std::move(source));
        this->push_back(added);
        return std::make_unique<Kept>(added);
    }

  private:
    struct Kept : platform::Handle {
        explicit Kept(std::shared_ptr<Source> source) : kept(std::move(source)) {}
        std::shared_ptr<Source> kept;
    };
};

// A scheduler or an event loop.
template <class Base>
class FakeTime : public Base {
  public:
    HandleRef After(Milliseconds delay, std::function<void()> call) override {
        return timers_.Add({now_ + delay, Milliseconds(0), std::move(call)});
    }
    HandleRef Every(Milliseconds interval, std::function<void()> call) override {
        return timers_.Add({now_ + interval, interval, std::move(call)});
    }
    void Pass(int milliseconds) {
        const Milliseconds end = now_ + Milliseconds(milliseconds);
        for (auto next = First(); next && next->due <= end; next = First()) {
            now_ = next->due;
            next->due = next->interval.count() > 0 ? now_ + next->interval : Milliseconds::max();
            next->call();
            next.reset();  // it may have been dropped inside its call
        }
        now_ = std::max(now_, end);  // more may have passed inside a call
    }

  private:
    struct Timer {
        Milliseconds due, interval;
        std::function<void()> call;
    };
    std::shared_ptr<Timer> First() const {
        std::shared_ptr<Timer> first;
        for (const auto& weak : timers_)
            if (auto timer = weak.lock(); timer && (!first || timer->due < first->due)) first = timer;
        return first;
    }

    Milliseconds now_{0};
    Sources<Timer> timers_;
};

struct FakeClock : platform::Clock {
    platform::Date Now() const override { return now; }
    platform::Date now = platform::MakeDate({2026, 11, 18, 13, 2, 3});  // a Wednesday
};

}  // namespace fakes
