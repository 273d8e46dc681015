// The judging of answers.
#pragma once

#include "common/ModuleData.h"
#include "platform/runtime/Format.h"
#include "request/cListRequest.h"

namespace horalink {

// Outcomes of a request that the code tells apart in `ErrCode`.
namespace outcome {
inline constexpr std::int32_t success = 0, messageStands = 99;
}

// True for a value that is equal to a number, whatever its type; a text counts as the number that it spells.
bool EqualsNumber(const platform::Value& value, std::int32_t number);

// The lines of an update's items that failed, each opened by CR LF; empty where none did. An item that the
// exchange refused ends in its own answer text, one that never got there in `accessFailure()`, which is
// asked for only then.
Text UpdateErrors(const cListRequest& answer, const std::function<Text()>& accessFailure);

// The clock of a lookup's answer in the form of the market. Raises 13 where an item holds an answer text
// in place of a value, or the values make no date or time.
Text ClockText(const cListRequest& answer, platform::TextView marketCode,
               const platform::LocaleTexts& locale);

// Shows the operator what a good answer says, by its `Tag`, and waits until the box is closed. Any other tag
// shows nothing. Raises 9 where a text that it needs is missing.
void ShowAnswer(const Services& services, const ModuleData& data, const cListRequest& answer);

}  // namespace horalink
