// Timers and the loop of the process's one thread.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace platform {

// Something that was asked for and goes on until the handle is dropped, also from inside its own call.
class Handle {
  public:
    virtual ~Handle() = default;
};
using HandleRef = std::unique_ptr<Handle>;

using Milliseconds = std::chrono::milliseconds;

class Scheduler {
  public:
    virtual ~Scheduler() = default;
    // Calls once, when `delay` has passed.
    virtual HandleRef After(Milliseconds delay, std::function<void()> call) = 0;
    // Calls again and again, each time when `interval` has passed.
    virtual HandleRef Every(Milliseconds interval, std::function<void()> call) = 0;
};

class EventLoop : public Scheduler {
  public:
    // Calls whenever the descriptor can be read, or written.
    virtual HandleRef WhenReadable(int descriptor, std::function<void()> call) = 0;
    virtual HandleRef WhenWritable(int descriptor, std::function<void()> call) = 0;

    // Runs until Quit; a Quit that came before counts.
    virtual void Run() = 0;
    virtual void Quit() = 0;

    // Waits for one round of events and serves it: timers, descriptors, painting and input.
    virtual void ServeOnce() = 0;
    // Until every hold is dropped, input that a form accepts waits (forms/InputGate.h). That of a box
    // doesn't.
    virtual HandleRef HoldInput() = 0;
};

}  // namespace platform
