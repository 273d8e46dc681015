// Makes outgoing calls and waits for their replies.
#pragma once

#include <functional>
#include <memory>

#include "platform/automation/Patience.h"
#include "platform/automation/dbus/Connection.h"

namespace platform {

class Caller {
  public:
    using Answered = std::function<void(sd_bus_message*)>;

    Caller(Connection& connection, EventLoop& loop, WaitBoxes& boxes, const WaitSettings& settings)
        : connection_(connection), loop_(loop), boxes_(boxes), settings_(settings) {}

    std::shared_ptr<Patience> NewPatience() const;

    // Sends a call and serves the process's other events until the reply arrives. A busy callee is retried
    // until the operator gives up. Without a `patience` the call gets a new one. Keeps `kept` alive until the
    // reply arrives, even if that is after the operator gave up; `tooLate` gets such a reply. Raises 462
    // if the operator gave up or the connection was lost, and the error that the reply carries.
    MessageRef Call(const MessageRef& call, std::shared_ptr<Patience> patience, std::shared_ptr<void> kept,
                    Answered tooLate);

    // Sends a call and returns. Keeps `kept` alive until the reply arrives; `answered` gets the reply
    // unless it is an error. A busy callee is retried until the busy limit. Raises 462 if the connection is
    // lost.
    void Post(const MessageRef& call, std::shared_ptr<void> kept, Answered answered);

  private:
    class Outgoing;
    class Awaited;
    class Posted;

    Connection& connection_;
    EventLoop& loop_;
    WaitBoxes& boxes_;
    const WaitSettings& settings_;
};

}  // namespace platform
