// Finds texts that aren't shown as their author meant.
#pragma once

#include <string>
#include <vector>

#include "platform/runtime/Text.h"

namespace lng {

// The faults of a text in the token language, found by the add-in's own expansion.
std::vector<std::string> TokenFaults(platform::TextView text);

// The faults of a text that is shown as it is.
std::vector<std::string> PlainTextFaults(platform::TextView text);

// The faults of a sum of button names.
std::vector<std::string> ButtonFaults(platform::TextView text);

}  // namespace lng
