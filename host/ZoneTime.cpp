#include "host/ZoneTime.h"

#include <QDateTime>
#include <algorithm>

namespace switchdesk {

namespace {

constexpr std::int64_t day = 24 * 60 * 60;

std::int64_t Offset(std::int64_t time, const QTimeZone& zone) {
    return zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(time, QTimeZone::utc()));
}

}  // namespace

platform::DateParts ShownAt(std::int64_t time, const QTimeZone& zone) {
    const QDateTime shown = QDateTime::fromSecsSinceEpoch(time + Offset(time, zone), QTimeZone::utc());
    const QDate date = shown.date();
    const QTime clock = shown.time();
    return {date.year(), date.month(), date.day(), clock.hour(), clock.minute(), clock.second()};
}

// Tries the offsets of the days before and after: clocks are changed once in that time.
std::vector<std::int64_t> TimesShowing(const platform::DateParts& shown, const QTimeZone& zone) {
    const QDateTime asUtc({shown.year, shown.month, shown.day}, {shown.hour, shown.minute, shown.second},
                          QTimeZone::utc());
    const std::int64_t zoneless = asUtc.toSecsSinceEpoch();
    std::vector<std::int64_t> times;
    for (const std::int64_t near : {zoneless - day, zoneless + day}) {
        const std::int64_t time = zoneless - Offset(near, zone);
        if (Offset(time, zone) == zoneless - time) times.push_back(time);
    }
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

}  // namespace switchdesk
