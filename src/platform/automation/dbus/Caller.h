// Outgoing calls and the wait for their answers.
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

    // Sends a call and serves the process's other events until it is answered. A busy callee is tried again
    // for as long as `patience` lasts; without one the call has a patience of its own. `kept` lives until the
    // answer comes, which may be after the operator gave up; `tooLate` gets such an answer. Raises 462 where
    // the operator gave up or the connection was lost, and the error that the answer carries.
    MessageRef Call(const MessageRef& call, std::shared_ptr<Patience> patience, std::shared_ptr<void> kept,
                    Answered tooLate);

    // Sends a call and returns. `kept` lives until the answer comes; `answered` gets it unless it is an
    // error. A busy callee is tried again until the busy limit. Raises 462 where the connection is lost.
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
