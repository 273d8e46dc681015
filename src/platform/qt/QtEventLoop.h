// The process's loop over Qt's.
#pragma once

#include <QObject>

#include "platform/forms/InputGate.h"
#include "platform/runtime/EventLoop.h"

namespace platform {

class QtEventLoop : public EventLoop {
  public:
    QtEventLoop();

    HandleRef After(Milliseconds delay, std::function<void()> call) override;
    HandleRef Every(Milliseconds interval, std::function<void()> call) override;
    HandleRef WhenReadable(int descriptor, std::function<void()> call) override;
    HandleRef WhenWritable(int descriptor, std::function<void()> call) override;
    void Run() override;
    void Quit() override;
    void ServeOnce() override;
    HandleRef HoldInput() override { return input_.Hold(); }

    forms::InputGate& Input() { return input_; }

  private:
    QObject sources_;  // parent of all timers and watches
    forms::InputGate input_{*this};
    int running_ = 0;
    bool quit_ = false;
};

}  // namespace platform
