// The date that the operator chooses.
#pragma once

#include "clock/Layout.h"
#include "clock/RunningClock.h"

namespace horalink {

class DatePicking {
  public:
    DatePicking(const DialogControls& controls, RunningClock& clock, const DialogLinks& links)
        : controls_(controls), clock_(clock), links_(links) {}

    // Sets the calendar up for a form whose font stands: today, tracked, in the market's style. Gives
    // false where any of it fails.
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
