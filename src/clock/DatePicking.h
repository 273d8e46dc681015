// Handles the date that the operator chooses in the calendar.
#pragma once

#include "clock/Layout.h"
#include "clock/RunningClock.h"

namespace horalink {

class DatePicking {
  public:
    DatePicking(const DialogControls& controls, RunningClock& clock, const DialogLinks& links)
        : controls_(controls), clock_(clock), links_(links) {}

    // Sets up the calendar: today, following the PC, in the market's style and the form's font, which must
    // be set. Returns false if any of it fails.
    bool InitCalendar(const platform::forms::Form& form, platform::TextView marketCode);

    void Calendar_BeforeUpdate(bool& cancel);
    void Calendar_AfterUpdate();
    void Calendar_NewMonth();
    void Calendar_NewYear();

  private:
    void SetFonts(const platform::forms::Font& font);
    void SwitchOffWithoutDay();
    void KeepYear(std::int16_t refused, std::int16_t nearest);

    const DialogControls& controls_;
    RunningClock& clock_;
    const DialogLinks& links_;
};

}  // namespace horalink
