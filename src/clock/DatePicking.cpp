#include "clock/DatePicking.h"

#include "platform/runtime/Value.h"

namespace horalink {

using namespace platform;

namespace {

constexpr std::int16_t firstYear = 1901, lastYear = 2099;

}  // namespace

bool DatePicking::InitCalendar(const forms::Form& form, TextView marketCode) {
    try {
        forms::Calendar& calendar = *controls_.Calendar;
        clock_.SetToday();
        calendar.gridcelleffect = 2;
        calendar.MarketStyle = marketCode.starts_with(u'9') ? std::int16_t{2} : std::int16_t{1};
        calendar.showdateselectors = selectors::hidden;
        calendar.ShowOption = true;
        SetFonts(*form.Font);
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

void DatePicking::SetFonts(const forms::Font& font) {
    const std::int16_t size = Value(font.Size()).ToInteger();
    const forms::Calendar& calendar = *controls_.Calendar;
    for (const auto& own : {calendar.dayfont, calendar.gridfont, calendar.titlefont}) {
        own->Name = font.Name();
        own->SetSize(size);
        own->Charset = forms::shiftJis;
    }
}

void DatePicking::Calendar_BeforeUpdate(bool& cancel) {
    if (controls_.chkTrackDate->Value() == 1) cancel = true;
}

void DatePicking::Calendar_AfterUpdate() {
    if (links_.HasPBXName())
        links_.EnableButtons(DialogLinks::updateButtonAlone, controls_.Calendar->Day() != 0);
}

void DatePicking::Calendar_NewMonth() {
    SwitchOffWithoutDay();
}

void DatePicking::Calendar_NewYear() {
    KeepYear(firstYear - 1, firstYear);
    KeepYear(lastYear + 1, lastYear);
    SwitchOffWithoutDay();
}

void DatePicking::KeepYear(std::int16_t refused, std::int16_t nearest) {
    if (controls_.Calendar->Year() != refused) return;
    links_.ShowYearNotice();
    controls_.Calendar->SetYear(nearest);
}

void DatePicking::SwitchOffWithoutDay() {
    if (controls_.Calendar->Day() == 0) links_.EnableButtons(DialogLinks::updateButtonAlone, false);
}

}  // namespace horalink
