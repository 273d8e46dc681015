// The display that follows the PC's clock.
#pragma once

#include "clock/Layout.h"
#include "platform/runtime/Date.h"

namespace horalink {

class RunningClock {
  public:
    RunningClock(const DialogControls& controls, const platform::Clock& clock)
        : controls_(controls), clock_(clock) {}

    // Updates those parts of the display that follow the PC, if they have changed. Raises nothing: the next
    // tick tries again.
    void UpdateDisplay();

    // Sets the calendar to the PC's date.
    void SetToday();

  private:
    void FollowDate();
    void FollowTime();
    platform::DateParts Now() const { return PartsOf(clock_.Now()); }

    const DialogControls& controls_;
    const platform::Clock& clock_;
};

// The two check boxes: whether time and date follow the PC, or the operator sets them.
class Tracking {
  public:
    Tracking(const DialogControls& controls, RunningClock& clock, const DialogLinks& links)
        : controls_(controls), clock_(clock), links_(links) {}

    void chkTrack_Click();
    void chkTrackDate_Click();

  private:
    const DialogControls& controls_;
    RunningClock& clock_;
    const DialogLinks& links_;
};

}  // namespace horalink
