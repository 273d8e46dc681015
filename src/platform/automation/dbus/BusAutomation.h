// Automation over the session bus.
#pragma once

#include <memory>

#include "platform/automation/Automation.h"
#include "platform/runtime/EventLoop.h"

namespace platform {

// Connects to the session bus that the environment names. Raises 462 if there is none or it can't be reached.
// The arguments must outlive the result.
std::unique_ptr<Automation> ConnectToSessionBus(EventLoop& loop, WaitBoxes& boxes,
                                                const WaitSettings& settings);

}  // namespace platform
