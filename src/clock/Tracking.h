// The two check boxes that decide whether time and date follow the PC or are the operator's to set.
#pragma once

#include "clock/DialogLinks.h"
#include "clock/Layout.h"
#include "clock/RunningClock.h"

namespace horalink {

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
