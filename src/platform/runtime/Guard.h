// Where a call from outside enters: no exception crosses such a boundary.
#pragma once

#include <cstdio>

#include "platform/runtime/RuntimeError.h"

namespace platform {

// Runs an event. A run-time error that no routine has met ends the event and leaves a line on standard
// error; the process goes on. `End` is no run-time error and passes.
template <class Event>
void Guard(Event&& event) {
    try {
        event();
    } catch (const RuntimeError& error) {
        std::fprintf(stderr, "unhandled run-time error %d: %s\n", static_cast<int>(error.Number()),
                     error.what());
    }
}

}  // namespace platform
