// Message boxes by number, from the language databases.
#pragma once

#include <cstdint>

#include "common/ModuleData.h"
#include "platform/runtime/Text.h"
#include "platform/runtime/Value.h"

namespace horalink {

// The sum of the names in a text like "vbYesNo+vbQuestion", without blanks. Unknown names count 0. Raises 6
// for a sum beyond 32 bits, or a "+" beyond position 32,767.
std::int32_t ParseMsgBoxButtons(platform::TextView text);

// The value of a name, exactly as written; 0 for an unknown one.
std::int32_t MsgBoxConstantValue(platform::TextView name);

// False for an unknown name.
bool IsMsgBoxConstant(platform::TextView name);

// Numbers of the dialog's own boxes.
namespace box {
inline constexpr std::int16_t clockRead = 0, updateDone = 1, updateFailed = 2, lookupFailed = 3,
                              yearOutOfRange = 4;
}

// Where the title and help reference of a box come from.
namespace mode {
inline constexpr std::int16_t helpFromArguments = 1, general = 2, commonDatabase = 10;
}

// Arguments beside the number; which of them count depends on the mode.
struct BoxArguments {
    platform::Text args = {};  // values for %ST, each ended by "%"
    platform::Value helpFile = platform::Missing{};
    platform::Value context = platform::Missing{};
    std::int32_t hookData = 0;
    platform::Text title = u"-1";
};

// Shows row `msgNo` of tMsgBox and returns the button; 6 if MsgBoxAllowed refused the box; 0 after a failure,
// shown as the notice.
std::int16_t ShowLanguageMsgBox(const Services& services, const ModuleData& data, std::int16_t boxMode,
                                std::int16_t msgNo, BoxArguments arguments = {});

// Called before each box; false suppresses it. Other add-ins of the family have conditions here, this one has
// none.
bool MsgBoxAllowed(platform::Text& prompt, std::int32_t& buttons, platform::Text& title,
                   std::int32_t& hookData);

}  // namespace horalink
