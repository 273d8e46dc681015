// Date values: days since 30 December 1899, the time of day as the fraction.
#pragma once

#include "platform/runtime/Text.h"

namespace platform {

struct Date {
    double days = 0;
    friend bool operator==(const Date&, const Date&) = default;
};

struct DateParts {
    int year = 1899, month = 12, day = 30;
    int hour = 0, minute = 0, second = 0;
};

// Makes a date value. Raises error 5 for a date or time that doesn't exist, or a year outside 100 to 9999.
Date MakeDate(const DateParts& parts);

// The parts of a date value, rounded to the second.
DateParts PartsOf(Date date);

// True if the calendar has this day.
bool DayExists(int year, int month, int day);

// 1 for Sunday up to 7 for Saturday.
int Weekday(Date date);

// The date value of a text: month/day/year with slashes, or hours:minutes[:seconds] with or without AM or PM,
// or both with a blank between. Independent of the locale. Years 0 to 29 count as 2000 to 2029, 30 to 99 as
// 1930 to 1999. Raises error 13 for any other text.
Date DateOfText(TextView text);

// The source of the current local date and time; tests provide their own.
class Clock {
  public:
    virtual ~Clock() = default;
    virtual Date Now() const = 0;
};

// The computer's clock in the local time zone.
class SystemClock : public Clock {
  public:
    Date Now() const override;
};

}  // namespace platform
