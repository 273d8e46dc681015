#include "clock/Tracking.h"

namespace horalink {

namespace {

constexpr std::int16_t updateButtonAlone = 1;

}  // namespace

void Tracking::chkTrack_Click() {
    controls_.updTime->Enabled = controls_.chkTrack->Value() != 1;
}

void Tracking::chkTrackDate_Click() {
    const bool tracked = controls_.chkTrackDate->Value() == 1;
    if (tracked) {
        if (links_.HasPBXName()) links_.EnableButtons(updateButtonAlone, true);
        clock_.SetToday();
    }
    controls_.Calendar->showdateselectors = tracked ? selectors::hidden : selectors::shown;
}

}  // namespace horalink
