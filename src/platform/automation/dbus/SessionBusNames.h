// The names on the session bus of the environment.
#pragma once

#include <memory>

#include "platform/automation/BusNames.h"

namespace platform {

// Connects with the first question, and waits for each answer.
std::unique_ptr<BusNames> MakeSessionBusNames();

// Puts a variable into the environment of the programs that the session bus starts from now on. Raises 462
// where there is no session bus, or it doesn't answer.
void SetForStartedPrograms(const char* variable, const char* value);

}  // namespace platform
