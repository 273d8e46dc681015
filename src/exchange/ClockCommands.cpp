#include "exchange/ClockCommands.h"

namespace horalink {

using namespace platform;

namespace {

constexpr const char16_t* clockCommand = u"02";
constexpr const char16_t* yearItem = u"0";
constexpr const char16_t* dayItem = u"1";
constexpr const char16_t* timeItem = u"2";

// The time of the four boxes, in twelve hours.
Date TimeOf(const DialogControls& controls) {
    const auto box = [&](std::size_t index) { return controls.txtTime[index]->Text(); };
    return DateOfText(box(0) + u":" + box(1) + u":" + box(2) + u" " + box(3));
}

}  // namespace

std::shared_ptr<cListRequest> UpdateClockRequest(const DialogControls& controls, const LocaleTexts& locale) {
    const Date date = controls.Calendar->CalendarValue();
    const Date time = TimeOf(controls);
    auto request = std::make_shared<cListRequest>();
    request->AddToList(clockCommand, yearItem, FormatDate(date, u"yyyy", locale));
    request->AddToList(clockCommand, dayItem,
                       FormatDate(date, u"mmdd", locale) + u"0" + DecimalText(Weekday(date) - 1));
    request->AddToList(clockCommand, timeItem, FormatDate(time, u"hhmmss", locale));
    request->Tag = tag::update;
    return request;
}

std::shared_ptr<cListRequest> LookupClockRequest() {
    auto request = std::make_shared<cListRequest>();
    request->AddToList(clockCommand, yearItem);
    request->AddToList(clockCommand, dayItem);
    request->AddToList(clockCommand, timeItem);
    request->Tag = tag::lookup;
    return request;
}

}  // namespace horalink
