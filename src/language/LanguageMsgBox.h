// Message boxes by number out of the language databases.
#pragma once

#include <cstdint>

#include "common/ModuleData.h"
#include "platform/runtime/Text.h"
#include "platform/runtime/Value.h"

namespace horalink {

// The sum of the names in a text like "vbYesNo+vbQuestion", without blanks. Names that aren't known count
// 0. Raises 6 for a sum beyond 32 bits, or a "+" beyond position 32,767.
std::int32_t ParseMsgBoxButtons(platform::TextView text);

// The value of one name, exactly as written; 0 for one that isn't known.
std::int32_t MsgBoxConstantValue(platform::TextView name);

// Tells a name whose value is 0 from one that isn't known.
bool IsMsgBoxConstant(platform::TextView name);

// Numbers of the dialog's own boxes.
namespace box {
inline constexpr std::int16_t clockRead = 0, updateDone = 1, updateFailed = 2, lookupFailed = 3,
                              yearOutOfRange = 4;
}

// Where a box takes its title and help reference from.
namespace mode {
inline constexpr std::int16_t helpFromArguments = 1, general = 2, commonDatabase = 10;
}

// What a caller gives beside the number; see the modes for what is read.
struct BoxArguments {
    platform::Text args = {};  // values for %ST, each ended by "%"
    platform::Value helpFile = platform::Missing{};
    platform::Value context = platform::Missing{};
    std::int32_t hookData = 0;
    platform::Text title = u"-1";
};

// Shows row `msgNo` of tMsgBox and gives what the box gave: the button, 6 where MsgBoxAllowed refused it,
// 0 after a failure, which was shown as the notice.
std::int16_t ShowLanguageMsgBox(const Services& services, const ModuleData& data, std::int16_t boxMode,
                                std::int16_t msgNo, BoxArguments arguments = {});

// Asked ahead of every box with all that it will show; false keeps it away. The family's add-ins put their
// conditions here, and this one has none.
bool MsgBoxAllowed(platform::Text& prompt, std::int32_t& buttons, platform::Text& title,
                   std::int32_t& hookData);

}  // namespace horalink
