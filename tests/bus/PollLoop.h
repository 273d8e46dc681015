// An event loop on poll, for tests without a toolkit.
#pragma once

#include <poll.h>

#include <stdexcept>
#include <variant>

#include "platform/headless/Timers.h"

namespace platform::test {

// Each round takes a millisecond of its timers, and no less of the computer's: a routine whose wait is over
// goes on before a timer finds it too slow.
class PollLoop : public headless::Timers<EventLoop> {
  public:
    HandleRef WhenReadable(int descriptor, std::function<void()> call) override {
        return watches_.Add({{descriptor, POLLIN, 0}, std::move(call)});
    }
    HandleRef WhenWritable(int descriptor, std::function<void()> call) override {
        return watches_.Add({{descriptor, POLLOUT, 0}, std::move(call)});
    }
    HandleRef HoldInput() override { return holds_.Add({}); }
    void Run() override {}
    void Quit() override {}
    void ServeOnce() override {
        if (Now() > Milliseconds(20000)) throw std::logic_error("waits for what never happens");
        // What is added meanwhile counts from the next round on; what ends, at once.
        for (const auto& weak : std::vector(watches_)) {
            const auto watch = weak.lock();
            if (!watch || poll(&watch->descriptor, 1, 0) <= 0) continue;
            if (watch->descriptor.revents & POLLNVAL) throw std::logic_error("watches a closed descriptor");
            watch->call();
        }
        poll(nullptr, 0, 1);
        Pass(1);
    }
    std::ptrdiff_t Holds() const {
        return std::count_if(holds_.begin(), holds_.end(), [](const auto& hold) { return !hold.expired(); });
    }

    // Serves until the condition holds, for ten seconds at most. Gives the condition.
    bool ServeUntil(const std::function<bool()>& condition) {
        const auto limit = Now() + Milliseconds(10000);
        while (!condition() && Now() < limit) ServeOnce();
        return condition();
    }

  private:
    struct Watch {
        pollfd descriptor;
        std::function<void()> call;
    };
    headless::Sources<Watch> watches_;
    headless::Sources<std::monostate> holds_;
};

}  // namespace platform::test
