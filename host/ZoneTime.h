// Times of day in a time zone, as seconds since 1970.
#pragma once

#include <QTimeZone>
#include <cstdint>
#include <vector>

#include "platform/runtime/Date.h"

namespace switchdesk {

// What the clocks of a zone show at a time, and the reverse: all times at which they show it, earliest first.
// None if a clock change skips it, two if they show it twice.
platform::DateParts ShownAt(std::int64_t time, const QTimeZone& zone);
std::vector<std::int64_t> TimesShowing(const platform::DateParts& shown, const QTimeZone& zone);

}  // namespace switchdesk
