#include "clock/RunningClock.h"

#include <cmath>

#include "platform/runtime/Format.h"

namespace horalink {

using namespace platform;

void RunningClock::UpdateDisplay() {
    ErrorState error;
    if (controls_.chkTrackDate->Value() == 1) Skip(error, "showing the date", [&] { FollowDate(); });
    if (controls_.chkTrack->Value() == 1) Skip(error, "showing the time", [&] { FollowTime(); });
}

void RunningClock::FollowDate() {
    const forms::Calendar& calendar = *controls_.Calendar;
    const bool agrees = DayExists(calendar.Year(), calendar.Month(), calendar.Day()) &&
                        calendar.CalendarValue().days == std::floor(clock_.Now().days);
    if (!agrees) SetToday();
}

void RunningClock::SetToday() {
    forms::Calendar& calendar = *controls_.Calendar;
    calendar.SetDay(static_cast<std::int16_t>(Now().day));
    calendar.SetMonth(static_cast<std::int16_t>(Now().month));
    calendar.SetYear(static_cast<std::int16_t>(Now().year));
}

void RunningClock::FollowTime() {
    const auto& boxes = controls_.txtTime;
    const int hour = Now().hour % 12;
    boxes[0]->Text = TwoDigits(hour == 0 ? 12 : hour);
    boxes[1]->Text = TwoDigits(Now().minute);
    boxes[2]->Text = TwoDigits(Now().second);
    boxes[3]->Text = Now().hour < 12 ? u"AM" : u"PM";
}

void Tracking::chkTrack_Click() {
    controls_.updTime->Enabled = controls_.chkTrack->Value() != 1;
}

void Tracking::chkTrackDate_Click() {
    const bool tracked = controls_.chkTrackDate->Value() == 1;
    if (tracked) {
        if (links_.HasPBXName()) links_.EnableButtons(DialogLinks::updateButtonAlone, true);
        clock_.SetToday();
    }
    controls_.Calendar->showdateselectors = tracked ? selectors::hidden : selectors::shown;
}

}  // namespace horalink
