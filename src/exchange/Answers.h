// The judging of answers.
#pragma once

#include "platform/runtime/Format.h"
#include "request/cListRequest.h"

namespace horalink {

// The lines of an update's items that failed, each opened by CR LF; empty where none did. An item that the
// exchange refused ends in its own answer text, one that never got there in `accessFailure()`, which is
// asked for only then.
Text UpdateErrors(const cListRequest& answer, const std::function<Text()>& accessFailure);

// The clock of a lookup's answer in the form of the market. Raises 13 where an item holds an answer text
// in place of a value, or the values make no date or time.
Text ClockText(const cListRequest& answer, platform::TextView marketCode,
               const platform::LocaleTexts& locale);

}  // namespace horalink
