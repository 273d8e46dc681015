// The token language of the texts in a database.
#pragma once

#include "platform/desktop/Desktop.h"
#include "platform/runtime/Text.h"

namespace horalink {

// Expands a text: pieces parted by "&", each trimmed, with %CR, %AND, %SP, %SP4 and %ST for the next of
// `args`, whose values end in "%". `args` comes back without what was used. A failure is shown as the
// notice; the result is then what was built so far, and `args` stays as it was.
platform::Text ExpandTextTokens(platform::MessageBoxes& boxes, platform::TextView text, platform::Text& args);

// A position in a text, from 1. Positions are 16 bits wide: raises 6 for one beyond.
std::int16_t TextPosition(std::size_t index);

}  // namespace horalink
