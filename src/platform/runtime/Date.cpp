#include "platform/runtime/Date.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <optional>
#include <vector>

#include "platform/runtime/RuntimeError.h"

namespace platform {

namespace {

using namespace std::chrono;

constexpr sys_days epoch = sys_days(year_month_day(year(1899), month(12), day(30)));
constexpr long long secondsPerDay = 86400;

year_month_day Ymd(int y, int m, int d) {
    return {year(y), month(static_cast<unsigned>(m)), day(static_cast<unsigned>(d))};
}

RuntimeError NoDate(TextView text) {
    return RuntimeError(ErrorNumber::TypeMismatch, ToUtf8(text));
}

// The whole numbers in a text, separated by `separator`; nothing for any other text.
std::optional<std::vector<int>> Numbers(TextView text, char16_t separator) {
    std::vector<int> numbers;
    while (true) {
        const auto end = text.find(separator);
        const TextView piece = text.substr(0, end);
        if (piece.empty() || piece.size() > 4) return std::nullopt;
        int number = 0;
        for (const char16_t c : piece) {
            if (c < u'0' || c > u'9') return std::nullopt;
            number = number * 10 + (c - u'0');
        }
        numbers.push_back(number);
        if (end == TextView::npos) return numbers;
        text.remove_prefix(end + 1);
    }
}

bool TakeWord(TextView& text, TextView word) {
    if (text.size() < word.size() || !EqualsIgnoringCase(text.substr(text.size() - word.size()), word))
        return false;
    text.remove_suffix(word.size());
    while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
    return true;
}

bool ReadDay(TextView text, DateParts& parts) {
    const auto numbers = Numbers(text, u'/');
    if (!numbers || numbers->size() != 3) return false;
    parts.month = (*numbers)[0];
    parts.day = (*numbers)[1];
    parts.year = (*numbers)[2];
    if (parts.year < 30)
        parts.year += 2000;
    else if (parts.year < 100)
        parts.year += 1900;
    return DayExists(parts.year, parts.month, parts.day);
}

bool ReadTime(TextView text, DateParts& parts) {
    const bool pm = TakeWord(text, u"PM");
    const bool am = !pm && TakeWord(text, u"AM");
    const auto numbers = Numbers(text, u':');
    if (!numbers || numbers->size() < 2 || numbers->size() > 3) return false;
    parts.hour = (*numbers)[0];
    parts.minute = (*numbers)[1];
    parts.second = numbers->size() == 3 ? (*numbers)[2] : 0;
    if (parts.hour > (am || pm ? 12 : 23) || parts.minute > 59 || parts.second > 59) return false;
    if (am || pm) parts.hour = parts.hour % 12 + (pm ? 12 : 0);
    return true;
}

}  // namespace

bool DayExists(int y, int m, int d) {
    return y >= 100 && y <= 9999 && m >= 1 && m <= 12 && d >= 1 && d <= 31 && Ymd(y, m, d).ok();
}

Date MakeDate(const DateParts& parts) {
    if (!DayExists(parts.year, parts.month, parts.day) || parts.hour < 0 || parts.hour > 23 ||
        parts.minute < 0 || parts.minute > 59 || parts.second < 0 || parts.second > 59)
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    const auto day = (sys_days(Ymd(parts.year, parts.month, parts.day)) - epoch).count();
    const double time = (parts.hour * 3600 + parts.minute * 60 + parts.second) / double(secondsPerDay);
    // Before the epoch, the day number is negative but the time still counts forward: the fraction is
    // subtracted.
    return {day < 0 ? double(day) - time : double(day) + time};
}

DateParts PartsOf(Date date) {
    double whole = 0;
    const double fraction = std::fabs(std::modf(date.days, &whole));
    auto seconds = std::llround(fraction * secondsPerDay);
    auto day = static_cast<int>(whole);
    if (seconds == secondsPerDay) {
        seconds = 0;
        ++day;
    }
    const year_month_day ymd(epoch + days(day));
    DateParts parts;
    parts.year = int(ymd.year());
    parts.month = static_cast<int>(unsigned(ymd.month()));
    parts.day = static_cast<int>(unsigned(ymd.day()));
    parts.hour = static_cast<int>(seconds / 3600);
    parts.minute = static_cast<int>(seconds / 60 % 60);
    parts.second = static_cast<int>(seconds % 60);
    return parts;
}

int Weekday(Date date) {
    const DateParts parts = PartsOf(date);
    return static_cast<int>(weekday(sys_days(Ymd(parts.year, parts.month, parts.day))).c_encoding()) + 1;
}

Date DateOfText(TextView text) {
    const Text trimmed = Trim(text);
    TextView rest = trimmed;
    DateParts parts;
    const auto blank = rest.find(u' ');
    if (rest.find(u'/') != TextView::npos) {
        if (!ReadDay(rest.substr(0, blank), parts)) throw NoDate(text);
        if (blank == TextView::npos) return MakeDate(parts);
        rest.remove_prefix(blank + 1);
    }
    if (!ReadTime(rest, parts)) throw NoDate(text);
    return MakeDate(parts);
}

Date SystemClock::Now() const {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return MakeDate({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                     std::min(local.tm_sec, 59)});
}

}  // namespace platform
