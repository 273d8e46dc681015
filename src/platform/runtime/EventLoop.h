// Timers and the loop of the process's one thread.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace platform {

// A running timer, watch or hold. Dropping the handle ends it, even from inside its own call.
class Handle {
  public:
    virtual ~Handle() = default;
};
using HandleRef = std::unique_ptr<Handle>;

using Milliseconds = std::chrono::milliseconds;

class Scheduler {
  public:
    virtual ~Scheduler() = default;
    // Calls once, after `delay`.
    virtual HandleRef After(Milliseconds delay, std::function<void()> call) = 0;
    // Calls repeatedly, after each `interval`.
    virtual HandleRef Every(Milliseconds interval, std::function<void()> call) = 0;
};

class EventLoop : public Scheduler {
  public:
    // Calls whenever the descriptor is ready to be read, or written.
    virtual HandleRef WhenReadable(int descriptor, std::function<void()> call) = 0;
    virtual HandleRef WhenWritable(int descriptor, std::function<void()> call) = 0;

    // Runs until Quit is called. If it was called before, returns at once.
    virtual void Run() = 0;
    virtual void Quit() = 0;

    // Waits for one round of events and serves it: timers, descriptors, painting and input.
    virtual void ServeOnce() = 0;
    // Makes input to forms wait until every hold is dropped (forms/InputGate.h). Input to boxes doesn't wait.
    virtual HandleRef HoldInput() = 0;
};

}  // namespace platform
