// Texts that come out otherwise than their writer meant.
#pragma once

#include <string>
#include <vector>

#include "platform/runtime/Text.h"

namespace lng {

// Of a text in the token language, judged by the add-in's own expansion.
std::vector<std::string> TokenFaults(platform::TextView text);

// Of a text that is shown as it is.
std::vector<std::string> PlainTextFaults(platform::TextView text);

// Of a chain of button names.
std::vector<std::string> ButtonFaults(platform::TextView text);

}  // namespace lng
