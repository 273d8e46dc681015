#include "platform/runtime/Trace.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/runtime/RuntimeError.h"

namespace platform {

namespace {

bool IsWanted() {
    const char* value = std::getenv("HORALINK_TRACE");
    return value && std::string_view(value) == "1";
}

}  // namespace

void Trace(std::string_view line) {
    static const bool isWanted = IsWanted();
    if (isWanted) std::fprintf(stderr, "horalink: %.*s\n", static_cast<int>(line.size()), line.data());
}

void TraceSkipped(std::string_view statement, const RuntimeError& error) {
    Trace(std::string(statement) + " skipped: error " + std::to_string(error.Number()) + ", " + error.what());
}

}  // namespace platform
