// Reports what the program ignores, for those who want to know.
#pragma once

#include <string_view>

namespace platform {

// Writes a line to standard error where the environment has HORALINK_TRACE=1.
void Trace(std::string_view line);

}  // namespace platform
