// The answer texts of a PBX and of the host's access module.
#pragma once

#include <cstdint>

#include "platform/runtime/Text.h"

namespace horalink {

// The code of an answer text: 0 to 15 and 101 to 106 from the PBX, 100 for "OK", 60 to 94 from the access
// module, −1 for a text that isn't known. Only the last 25 characters count, and of these the start; where
// several texts fit, the last of the table wins.
std::int16_t LookupAnswerText(platform::TextView answer);

}  // namespace horalink
