// The answer texts of a PBX and of the host's access module.
#pragma once

#include <cstdint>

#include "platform/runtime/Text.h"

namespace horalink {

// The code of an answer text: 0 to 15 and 101 to 106 from the PBX, 100 for "OK", 60 to 94 from the access
// module, −1 for an unknown text. Compares the start of the last 25 characters; if several texts match, the
// last one wins.
std::int16_t LookupAnswerText(platform::TextView answer);

}  // namespace horalink
