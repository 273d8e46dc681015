// An event loop on poll, for tests without a toolkit.
#pragma once

#include <poll.h>

#include <stdexcept>
#include <variant>

#include "platform/headless/Timers.h"

namespace platform::test {

class PollLoop : public headless::Timers<EventLoop> {
  public:
    HandleRef WhenReadable(int descriptor, std::function<void()> call) override {
        return watches_.Add({descriptor, POLLIN, std::move(call)});
    }
    HandleRef WhenWritable(int descriptor, std::function<void()> call) override {
        return watches_.Add({descriptor, POLLOUT, std::move(call)});
    }
    void Run() override {}
    void Quit() override {}
    void ServeOnce() override {
        if (Clock::now() - start_ > Milliseconds(20000))
            throw std::logic_error("waits for what never happens");
        ServeDescriptors();
        // As fast as the computer's time, but never so fast that a routine whose wait is over doesn't go on
        // first.
        const bool isLater = Clock::now() - last_ >= Milliseconds(1);
        if (isLater) last_ = Clock::now();
        Pass(isLater ? 1 : 0);
    }
    HandleRef HoldInput() override { return holds_.Add({}); }
    std::ptrdiff_t Holds() const {
        return std::count_if(holds_.begin(), holds_.end(), [](const auto& hold) { return !hold.expired(); });
    }

    // Serves until the condition holds, for ten seconds at most. Gives the condition.
    bool ServeUntil(const std::function<bool()>& condition) {
        const auto limit = Clock::now() + Milliseconds(10000);
        while (!condition() && Clock::now() < limit) ServeOnce();
        return condition();
    }

  private:
    using Clock = std::chrono::steady_clock;
    struct Watch {
        int descriptor;
        short events;
        std::function<void()> call;
    };

    void ServeDescriptors() {
        std::erase_if(watches_, [](const auto& watch) { return watch.expired(); });
        // What is added while a round is served counts from the next one on; what ends, at once.
        const auto watches = watches_;
        std::vector<pollfd> descriptors;
        for (const auto& watch : watches)
            descriptors.push_back({watch.lock()->descriptor, watch.lock()->events, 0});
        poll(descriptors.data(), descriptors.size(), 1);
        for (std::size_t i = 0; i < watches.size(); ++i) {
            const auto watch = watches[i].lock();
            if (!watch || descriptors[i].revents == 0) continue;
            if (descriptors[i].revents & POLLNVAL) throw std::logic_error("watches a closed descriptor");
            watch->call();
        }
    }

    headless::Sources<Watch> watches_;
    headless::Sources<std::monostate> holds_;
    const Clock::time_point start_ = Clock::now();
    Clock::time_point last_ = start_;
};

}  // namespace platform::test
