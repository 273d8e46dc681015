// Outgoing calls and the wait for their answers.
#pragma once

#include <functional>
#include <memory>

#include "platform/automation/Automation.h"
#include "platform/automation/dbus/Connection.h"

namespace platform {

class Caller {
  public:
    Caller(Connection& connection, EventLoop& loop, WaitBoxes& boxes, const WaitSettings& settings)
        : connection_(connection), loop_(loop), boxes_(boxes), settings_(settings) {}

    // Sends a call and serves the process's other events until it is answered. A busy callee is tried again;
    // at the wait limits a box asks whether to go on. `kept` lives until the answer comes, which may be after
    // the operator gave up; `tooLate` gets such an answer. Raises 462 where the operator gave up or the
    // connection was lost, and what the answer tells of.
    MessageRef Call(const MessageRef& call, std::shared_ptr<void> kept,
                    std::function<void(sd_bus_message*)> tooLate);

  private:
    class Waiting;

    Connection& connection_;
    EventLoop& loop_;
    WaitBoxes& boxes_;
    const WaitSettings& settings_;
};

}  // namespace platform
