// The names on the session bus of the environment.
#pragma once

#include <memory>

#include "platform/automation/BusNames.h"

namespace platform {

// Connects with the first question, and waits for each answer.
std::unique_ptr<BusNames> MakeSessionBusNames();

}  // namespace platform
