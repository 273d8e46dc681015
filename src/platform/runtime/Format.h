// Text forms of dates and numbers.
#pragma once

#include <cstdint>

#include "platform/runtime/Date.h"
#include "platform/runtime/Text.h"

namespace platform {

// What formatting needs from the machine's locale.
class LocaleTexts {
  public:
    virtual ~LocaleTexts() = default;
    virtual Text LongDate(Date date) const = 0;
    virtual Text LongTime(Date time) const = 0;
    // `weekday` 1 for Sunday up to 7 for Saturday.
    virtual Text DayName(int weekday) const = 0;
    virtual Text ShortDayName(int weekday) const = 0;
};

// Formats a date by "Long Date", "Long Time" or a pattern of the codes yyyy, mm, dd, ddd, aaaa, hh, nn, ss;
// "mm" directly after "hh" is the minute. Other characters are copied.
Text FormatDate(Date date, TextView pattern, const LocaleTexts& locale);

// A whole number with at least two digits.
Text TwoDigits(int number);

// A number as text, the same in every locale: up to 7 significant digits for a single and 15 for a double. A
// number that needs more digits than that before or after the point is written with an exponent: 1.5E+20,
// 1E-08.
Text NumberText(float number);
Text NumberText(double number);

// A date value as text that DateOfText reads back in every locale: month/day/year, hours:minutes:seconds; the
// time alone for day 0, the date alone for midnight.
Text GeneralDateText(Date date);

}  // namespace platform
