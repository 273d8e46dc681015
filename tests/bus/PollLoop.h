// An event loop on poll, for tests without a toolkit.
#pragma once

#include <list>

#include "platform/runtime/EventLoop.h"

namespace platform::test {

class PollLoop : public EventLoop {
  public:
    HandleRef After(Milliseconds delay, std::function<void()> call) override;
    HandleRef Every(Milliseconds interval, std::function<void()> call) override;
    HandleRef WhenReadable(int descriptor, std::function<void()> call) override;
    HandleRef WhenWritable(int descriptor, std::function<void()> call) override;
    void Run() override;
    void Quit() override { quit_ = true; }
    // Throws where nothing happens for longer than any test may take.
    void ServeOnce() override;
    HandleRef HoldInput() override;

    int Holds() const { return *holds_; }

    // Serves until the condition holds, for ten seconds at most. Gives the condition.
    bool ServeUntil(const std::function<bool()>& condition);
    // Serves for as long as something happens at once.
    void ServeReady();

  private:
    using Clock = std::chrono::steady_clock;
    struct Timer {
        Clock::time_point due;
        Milliseconds interval;
        std::function<void()> call;
        bool isOn = true;
    };
    struct Watch {
        int descriptor;
        short events;
        std::function<void()> call;
        bool isOn = true;
    };
    template <class Entry>
    class Holder;

    HandleRef AddTimer(Milliseconds delay, Milliseconds interval, std::function<void()> call);
    HandleRef AddWatch(int descriptor, short events, std::function<void()> call);
    bool Round(Milliseconds longest);
    Milliseconds UntilNextTimer(Milliseconds longest) const;
    bool ServeDescriptors(Milliseconds wait);
    bool ServeTimers();

    std::list<std::shared_ptr<Timer>> timers_;
    std::list<std::shared_ptr<Watch>> watches_;
    std::shared_ptr<int> holds_ = std::make_shared<int>(0);
    bool quit_ = false;
};

}  // namespace platform::test
