// The time that the operator sets: four boxes, one of them under edit, and one spin control for all.
#pragma once

#include "clock/Layout.h"

namespace horalink {

class TimeField {
  public:
    explicit TimeField(const DialogControls& controls) : controls_(controls) {}

    // No section is under edit.
    void Reset() { CurrentSection = -1; }

    void txtTime_GotFocus(std::int16_t index);
    void txtTime_LostFocus() { CurrentSection = -1; }
    void updTime_Change();
    // Either arrow, after the step.
    void updTime_Click();

  private:
    void SelectSection();

    const DialogControls& controls_;
    std::int16_t CurrentSection = -1;
};

}  // namespace horalink
