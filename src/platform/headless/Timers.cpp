#include "platform/headless/Timers.h"

namespace platform::headless {

using namespace std::chrono;

void Clock::Set(const DateParts& parts) {
    const sys_days day = year(parts.year) / parts.month / parts.day;
    set_ = day + hours(parts.hour) + minutes(parts.minute) + seconds(parts.second);
    since_ = timers_.Now();
}

Date Clock::Now() const {
    const sys_seconds now = set_ + floor<seconds>(timers_.Now() - since_);
    const sys_days day = floor<days>(now);
    const year_month_day date(day);
    const hh_mm_ss time(now - day);
    return MakeDate({int(date.year()), int(unsigned(date.month())), int(unsigned(date.day())),
                     int(time.hours().count()), int(time.minutes().count()), int(time.seconds().count())});
}

}  // namespace platform::headless
