// The two requests: writing and reading the clock of an exchange.
#pragma once

#include <memory>

#include "clock/Layout.h"
#include "platform/runtime/Format.h"
#include "request/cListRequest.h"

namespace horalink {

// By which the answer to a request is recognised.
namespace tag {
inline constexpr platform::TextView update = u"UPDATE_CLOCK", lookup = u"LOOKUP_CLOCK";
}

// Writes the date and time that the dialog shows. Raises 13 where these are no date or no time.
std::shared_ptr<cListRequest> UpdateClockRequest(const DialogControls& controls,
                                                 const platform::LocaleTexts& locale);

// Reads the clock; takes nothing of the dialog.
std::shared_ptr<cListRequest> LookupClockRequest();

}  // namespace horalink
