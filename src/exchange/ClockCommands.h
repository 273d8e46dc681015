// The two requests: writing and reading the clock of an exchange.
#pragma once

#include <memory>

#include "clock/Layout.h"
#include "platform/runtime/Format.h"
#include "request/cListRequest.h"

namespace horalink {

// Identify the answer to a request.
namespace tag {
inline constexpr platform::TextView update = u"UPDATE_CLOCK", lookup = u"LOOKUP_CLOCK";
}

// Writes the date and time shown. Raises 13 if they aren't valid.
std::shared_ptr<cListRequest> UpdateClockRequest(const DialogControls& controls,
                                                 const platform::LocaleTexts& locale);

// Reads the clock.
std::shared_ptr<cListRequest> LookupClockRequest();

}  // namespace horalink
