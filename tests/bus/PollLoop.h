// An event loop on poll, for tests without a toolkit.
#pragma once

#include <poll.h>

#include <algorithm>
#include <stdexcept>
#include <variant>

#include "../unit/FakeTime.h"

namespace platform::test {

class PollLoop : public EventLoop {
  public:
    HandleRef After(Milliseconds delay, std::function<void()> call) override {
        return sources_.Add({.due = Clock::now() + delay, .call = std::move(call)});
    }
    HandleRef Every(Milliseconds interval, std::function<void()> call) override {
        return sources_.Add({.due = Clock::now() + interval, .interval = interval, .call = std::move(call)});
    }
    HandleRef WhenReadable(int descriptor, std::function<void()> call) override {
        return sources_.Add({.descriptor = descriptor, .events = POLLIN, .call = std::move(call)});
    }
    HandleRef WhenWritable(int descriptor, std::function<void()> call) override {
        return sources_.Add({.descriptor = descriptor, .events = POLLOUT, .call = std::move(call)});
    }
    void Run() override {
        while (!quit_) ServeOnce();
    }
    void Quit() override { quit_ = true; }
    // Throws where nothing happens for longer than any test may take.
    void ServeOnce() override {
        if (!Round(Milliseconds(20000))) throw std::logic_error("waits for what never happens");
    }
    HandleRef HoldInput() override { return holds_.Add({}); }
    std::ptrdiff_t Holds() const {
        return std::count_if(holds_.begin(), holds_.end(), [](const auto& hold) { return !hold.expired(); });
    }

    // Serves until the condition holds, for ten seconds at most. Gives the condition.
    bool ServeUntil(const std::function<bool()>& condition) {
        const auto limit = Clock::now() + Milliseconds(10000);
        while (!condition() && Clock::now() < limit) Round(Milliseconds(50));
        return condition();
    }
    // Serves for as long as something happens at once.
    void ServeReady() {
        while (Round(Milliseconds(0))) continue;
    }

  private:
    using Clock = std::chrono::steady_clock;
    static constexpr auto never = Clock::time_point::max();
    struct Source {
        int descriptor = -1;  // which poll passes over
        short events = 0;
        Clock::time_point due = never;
        Milliseconds interval{0};
        std::function<void()> call;
    };

    bool Round(Milliseconds wait) {
        std::erase_if(sources_, [](const auto& source) { return source.expired(); });
        // What is added while a round is served counts from the next one on; what ends, at once.
        const auto sources = sources_;
        std::vector<pollfd> descriptors;
        for (const auto& weak : sources) {
            const auto source = weak.lock();
            descriptors.push_back({source->descriptor, source->events, 0});
            wait = std::min(wait, std::chrono::ceil<Milliseconds>(source->due - Clock::now()));
        }
        poll(descriptors.data(), descriptors.size(), std::max(0, static_cast<int>(wait.count())));
        bool served = false;
        const auto now = Clock::now();
        for (std::size_t i = 0; i < sources.size(); ++i) {
            const auto source = sources[i].lock();
            if (!source || (descriptors[i].revents == 0 && source->due > now)) continue;
            if (descriptors[i].revents & POLLNVAL) throw std::logic_error("watches a closed descriptor");
            source->due = source->interval.count() > 0 ? now + source->interval : never;
            source->call();
            served = true;
        }
        return served;
    }

    fakes::Sources<Source> sources_;
    fakes::Sources<std::monostate> holds_;
    bool quit_ = false;
};

}  // namespace platform::test
