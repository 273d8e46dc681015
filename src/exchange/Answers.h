// Judges and shows answers.
#pragma once

#include "common/ModuleData.h"
#include "platform/runtime/Format.h"
#include "request/cListRequest.h"

namespace horalink {

// Values of `ErrCode` with a meaning of their own.
namespace outcome {
inline constexpr std::int32_t success = 0, messageStands = 99;
}

// True if a value of any type equals a number. A text counts as the number it spells.
bool EqualsNumber(const platform::Value& value, std::int32_t number);

// One line for each item of an update that failed, each starting with CR LF. It ends in the exchange's answer
// text, or in `accessFailure()` if the item never reached the exchange.
Text UpdateErrors(const cListRequest& answer, const std::function<Text()>& accessFailure);

// The clock of a lookup's answer, in the market's format. Raises 13 if an item holds an answer text instead
// of a value, or if the values aren't a date and a time.
Text ClockText(const cListRequest& answer, platform::TextView marketCode,
               const platform::LocaleTexts& locale);

// Shows a good answer by its `Tag`, and waits until the operator closes the box. Ignores unknown tags. Raises
// 9 if a text is missing.
void ShowAnswer(const Services& services, const ModuleData& data, const cListRequest& answer);

}  // namespace horalink
