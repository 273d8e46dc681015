#include "platform/forms/Controls.h"
#include "platform/runtime/MemberTable.h"

namespace platform::forms {

namespace {

constexpr std::int16_t lastDay = 31, lastMonth = 12, firstYear = 100, lastYear = 9999;

std::int16_t InRange(std::int16_t value, std::int16_t first, std::int16_t last, std::string_view name) {
    if (value < first || value > last) throw RuntimeError(ErrorNumber::InvalidPropertyValue, name);
    return value;
}

}  // namespace

Calendar::Calendar(Form& form, Text name, std::int16_t index)
    : Control(form, std::move(name), index),
      dayfont(std::make_shared<Font>(*this)),
      gridfont(std::make_shared<Font>(*this)),
      titlefont(std::make_shared<Font>(*this, u"MS Sans Serif", 12.0F, true)) {}

const ClassDescription& Calendar::Class() const {
    static const ClassDescription description{"Calendar", CommonMembers()};
    return description;
}

void Calendar::SetDay(std::int16_t day) {
    day_ = InRange(day, 0, lastDay, "day");
}

void Calendar::SetMonth(std::int16_t month) {
    Show(year_, InRange(month, 1, lastMonth, "month"), day_);
}

void Calendar::SetYear(std::int16_t year) {
    Show(InRange(year, firstYear, lastYear, "year"), month_, day_);
}

// Sets all three before the first event, so that no handler sees a mixture of two dates.
void Calendar::Show(std::int16_t year, std::int16_t month, std::int16_t day) {
    const bool otherYear = year != year_, otherMonth = month != month_;
    day_ = day;
    month_ = month;
    year_ = year;
    if (otherYear && NewYear) NewYear();
    if (otherMonth && NewMonth) NewMonth();
}

Date Calendar::CalendarValue() const {
    if (!DayExists(year_, month_, day_)) throw RuntimeError(ErrorNumber::TypeMismatch, "no day is chosen");
    DateParts parts;
    parts.year = year_;
    parts.month = month_;
    parts.day = day_;
    return MakeDate(parts);
}

bool Calendar::IsRefused() {
    bool cancel = false;
    if (BeforeUpdate) BeforeUpdate(cancel);
    return cancel;
}

void Calendar::ChooseDate(const DateParts& date) {
    if (!DayExists(date.year, date.month, date.day) || IsRefused()) return;
    Show(static_cast<std::int16_t>(date.year), static_cast<std::int16_t>(date.month),
         static_cast<std::int16_t>(date.day));
    if (AfterUpdate) AfterUpdate();
}

void Calendar::TurnTo(std::int16_t year, std::int16_t month) {
    if (month < 1 || month > lastMonth || year < firstYear || year > lastYear) return;
    if ((year == year_ && month == month_) || IsRefused()) return;
    Show(year, month, 0);
}

}  // namespace platform::forms
