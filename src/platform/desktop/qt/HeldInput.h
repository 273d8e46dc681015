// The operator's input, held back while the program waits inside a call.
#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QWindow>
#include <deque>
#include <functional>
#include <memory>

#include "platform/runtime/EventLoop.h"

namespace platform {

// While a hold is open, clicks, keys and close requests are caught at the window, before any widget sees
// them. When the last hold goes they are delivered in their order, one a turn of the event loop, so that
// what the first of them starts (a box, another hold) counts for the next. Input for the active modal
// window passes: it belongs to a box that the program shows in the meantime.
//
// Leaving the events in Qt's queue (QEventLoop::ExcludeUserInputEvents) would not do: a loop that waits for
// more events returns at once, again and again, while excluded ones are queued.
class HeldInput : public QObject {
  public:
    HeldInput() = default;
    ~HeldInput() override;

    // Holds input until the result is dropped.
    HandleRef Open();

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    class Hold;
    struct Kept {
        QPointer<QWindow> window;
        std::function<std::unique_ptr<QEvent>()> makeEvent;
    };

    void Close();
    void Keep(QWindow& window, const QEvent& event);
    void DeliverLater();
    void DeliverNext();

    int holds_ = 0;
    std::deque<Kept> kept_;
    bool deliveryAhead_ = false;
    const QEvent* delivering_ = nullptr;
};

}  // namespace platform
