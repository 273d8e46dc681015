// The process's loop over Qt's.
#pragma once

#include <QObject>

#include "platform/desktop/qt/HeldInput.h"
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
    HandleRef HoldInput() override;

  private:
    QObject sources_;  // parent of all timers and watches
    HeldInput held_;
    int running_ = 0;
    bool quit_ = false;
};

}  // namespace platform
