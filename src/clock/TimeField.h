// The time that the operator sets: four boxes, and one spin control that steps the box being edited.
#pragma once

#include "clock/Layout.h"

namespace horalink {

class TimeField {
  public:
    explicit TimeField(const DialogControls& controls) : controls_(controls) {}

    // Ends editing.
    void Reset() { CurrentSection = -1; }

    void txtTime_GotFocus(std::int16_t index);
    void txtTime_LostFocus() { CurrentSection = -1; }
    void updTime_Change();
    // After a step by either arrow.
    void updTime_Click();

  private:
    void SelectSection();

    const DialogControls& controls_;
    std::int16_t CurrentSection = -1;
};

}  // namespace horalink
