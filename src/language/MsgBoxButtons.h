// The button language of the message boxes in a database.
#pragma once

#include <cstdint>

#include "platform/runtime/Text.h"

namespace horalink {

// The sum of the names in a text like "vbYesNo+vbQuestion", without blanks. Names that aren't known count
// 0. Raises 6 for a sum beyond 32 bits, or a "+" beyond position 32,767.
std::int32_t ParseMsgBoxButtons(platform::TextView text);

// The value of one name, exactly as written; 0 for one that isn't known.
std::int32_t MsgBoxConstantValue(platform::TextView name);

// Tells a name whose value is 0 from one that isn't known.
bool IsMsgBoxConstant(platform::TextView name);

}  // namespace horalink
