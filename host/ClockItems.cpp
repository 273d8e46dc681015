#include "host/ClockItems.h"

#include <algorithm>

#include "platform/runtime/Format.h"

namespace switchdesk {

using platform::DateParts;
using platform::Text;
using platform::TextView;

namespace {

constexpr TextView clockCommand = u"02", yearItem = u"0", dayItem = u"1", timeItem = u"2";
constexpr int firstYear = 1901, lastYear = 2099;

// The number in `count` digits from `start`; the text has only digits.
int Number(TextView digits, std::size_t start, std::size_t count) {
    int number = 0;
    for (const char16_t digit : digits.substr(start, count)) number = number * 10 + (digit - u'0');
    return number;
}

bool AreDigits(TextView text, std::size_t count) {
    return text.size() == count &&
           std::all_of(text.begin(), text.end(), [](char16_t c) { return c >= u'0' && c <= u'9'; });
}

Text ShortDayName(platform::Date date) {
    static constexpr TextView names[] = {u"SUN", u"MON", u"TUE", u"WED", u"THU", u"FRI", u"SAT"};
    return Text(names[platform::Weekday(date) - 1]);
}

Text ReadValue(TextView item, platform::Date now) {
    const DateParts parts = platform::PartsOf(now);
    using platform::TwoDigits;
    if (item == yearItem) return platform::DecimalText(parts.year);
    if (item == dayItem)
        return TwoDigits(parts.month) + u"/" + TwoDigits(parts.day) + u" " + ShortDayName(now);
    return TwoDigits(parts.hour) + u":" + TwoDigits(parts.minute) + u":" + TwoDigits(parts.second);
}

// The requested change. The weekday is only checked against the date.
struct Change {
    DateParts parts;
    std::optional<int> weekday;  // 0 for Sunday
};

bool TakeYear(TextView value, Change& change) {
    if (!AreDigits(value, 4)) return false;
    change.parts.year = Number(value, 0, 4);
    return change.parts.year >= firstYear && change.parts.year <= lastYear;
}

bool TakeDay(TextView value, Change& change) {
    if (!AreDigits(value, 6) || value[4] != u'0') return false;
    change.parts.month = Number(value, 0, 2);
    change.parts.day = Number(value, 2, 2);
    change.weekday = Number(value, 5, 1);
    return true;
}

bool TakeTime(TextView value, Change& change) {
    if (!AreDigits(value, 6)) return false;
    change.parts.hour = Number(value, 0, 2);
    change.parts.minute = Number(value, 2, 2);
    change.parts.second = Number(value, 4, 2);
    return change.parts.hour < 24 && change.parts.minute < 60 && change.parts.second < 60;
}

bool TakeValue(const Item& item, Change& change) {
    if (item.first == yearItem) return TakeYear(item.second, change);
    if (item.first == dayItem) return TakeDay(item.second, change);
    return TakeTime(item.second, change);
}

// The answer text for an unknown item, or an empty text.
TextView Unknown(const Item& item) {
    if (item.command != clockCommand) return u"CODE NOT USED";
    if (item.first != yearItem && item.first != dayItem && item.first != timeItem) return u"DATA NOT FOUND";
    return {};
}

// A failed read has the answer text as its value.
void Read(Item& item, platform::Date now) {
    const TextView unknown = Unknown(item);
    item.second = unknown.empty() ? ReadValue(item.first, now) : Text(unknown);
    item.extra = unknown.empty() ? answer::accepted : unknown;
}

void Take(Item& item, Change& change) {
    const TextView unknown = Unknown(item);
    if (!unknown.empty())
        item.extra = unknown;
    else
        item.extra = TakeValue(item, change) ? answer::accepted : answer::dataError;
}

bool DateIsGood(const Change& change) {
    const DateParts& parts = change.parts;
    if (!platform::DayExists(parts.year, parts.month, parts.day)) return false;
    return !change.weekday || *change.weekday == platform::Weekday(platform::MakeDate(parts)) - 1;
}

// Refuses each written item that `names` picks.
template <class Names>
std::vector<Item> RefuseWritten(std::vector<Item> items, Names names) {
    for (Item& item : items)
        if (!item.second.empty() && names(item.first)) item.extra = answer::dataError;
    return items;
}

}  // namespace

bool Writes(const std::vector<Item>& items) {
    return std::any_of(items.begin(), items.end(), [](const Item& item) { return !item.second.empty(); });
}

AnsweredItems AnswerItems(std::vector<Item> items, platform::Date now) {
    const bool writes = Writes(items);
    Change change{platform::PartsOf(now), {}};
    for (Item& item : items) item.second.empty() ? Read(item, now) : Take(item, change);
    const bool good = std::all_of(items.begin(), items.end(),
                                  [](const Item& item) { return item.extra == answer::accepted; });
    if (!good || !writes) return {std::move(items), good, {}};
    if (!DateIsGood(change)) return {RefuseDate(std::move(items)), false, {}};
    return {std::move(items), true, change.parts};
}

std::vector<Item> RefuseItems(std::vector<Item> items, TextView answer) {
    for (Item& item : items) {
        if (item.second.empty()) item.second = answer;
        item.extra = answer;
    }
    return items;
}

std::vector<Item> RefuseDate(std::vector<Item> items) {
    return RefuseWritten(std::move(items),
                         [](const Text& data) { return data == yearItem || data == dayItem; });
}

std::vector<Item> RefuseTime(std::vector<Item> items) {
    return RefuseWritten(std::move(items), [](const Text& data) { return data == timeItem; });
}

}  // namespace switchdesk
