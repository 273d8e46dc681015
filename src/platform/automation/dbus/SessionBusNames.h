// The names on the session bus of the environment.
#pragma once

#include <memory>

#include "platform/automation/BusNames.h"

namespace platform {

// Connects on first use. Each call blocks until the bus replies.
std::unique_ptr<BusNames> MakeSessionBusNames();

// Sets an environment variable for programs that the session bus starts from now on. Raises 462 without a
// session bus, or if it doesn't reply.
void SetForStartedPrograms(const char* variable, const char* value);

}  // namespace platform
