// Time that passes only on request.
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

#include "platform/runtime/Date.h"
#include "platform/runtime/EventLoop.h"

namespace platform::headless {

// Event sources, each of which lives as long as its handle.
template <class Source>
struct Sources : std::vector<std::weak_ptr<Source>> {
    HandleRef Add(Source source) {
        std::erase_if(*this, [](const auto& each) { return each.expired(); });
        const auto added = std::make_shared<Source>(std::move(source));
        this->push_back(added);
        return std::make_unique<Kept>(added);
    }

  private:
    struct Kept : Handle {
        explicit Kept(std::shared_ptr<Source> source) : kept(std::move(source)) {}
        std::shared_ptr<Source> kept;
    };
};

// The timers of a scheduler or event loop. They run inside Pass.
template <class Base>
class Timers : public Base {
  public:
    HandleRef After(Milliseconds delay, std::function<void()> call) override {
        return timers_.Add({now_ + delay, Milliseconds(0), std::move(call)});
    }
    HandleRef Every(Milliseconds interval, std::function<void()> call) override {
        return timers_.Add({now_ + interval, interval, std::move(call)});
    }
    Milliseconds Now() const { return now_; }
    // Lets time pass. May be called from a timer's call.
    void Pass(int milliseconds) {
        const Milliseconds end = now_ + Milliseconds(milliseconds);
        for (auto next = First(); next && next->due <= end; next = First()) {
            now_ = std::max(now_, next->due);
            next->due = next->interval.count() > 0 ? now_ + next->interval : Milliseconds::max();
            next->call();
            next.reset();  // its call may have dropped it: First must not find it again
        }
        now_ = std::max(now_, end);
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

// The computer's clock. It runs with the timers.
class Clock : public platform::Clock {
  public:
    explicit Clock(const Timers<Scheduler>& timers) : timers_(timers) { Set({2026, 11, 18, 13, 2, 3}); }
    Date Now() const override;
    void Set(const DateParts& parts);

  private:
    const Timers<Scheduler>& timers_;
    std::chrono::sys_seconds set_;
    Milliseconds since_{0};
};

}  // namespace platform::headless
