// Tokens in the texts of a database.
#pragma once

#include "platform/desktop/Desktop.h"
#include "platform/runtime/Text.h"

namespace horalink {

// The value of a text that is missing.
inline constexpr platform::TextView noValue = u"-1";

// Expands a text: pieces separated by "&", each trimmed, with %CR, %AND, %SP, %SP4, and %ST for the next
// value of `args`, where each value ends in "%". Removes the used values from `args`. On failure shows the
// notice, returns what was expanded so far, and leaves `args` alone.
platform::Text ExpandTextTokens(platform::MessageBoxes& boxes, platform::TextView text, platform::Text& args);

// A position in a text, from 1. Raises 6 beyond 16 bits.
std::int16_t TextPosition(std::size_t index);

}  // namespace horalink
