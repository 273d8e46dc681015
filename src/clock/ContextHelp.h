// Help on the control that the operator points at, and on the add-in as a whole.
#pragma once

#include "clock/Layout.h"

namespace horalink {

class ContextHelp {
  public:
    ContextHelp(platform::forms::Form& form, const DialogControls& controls)
        : form_(form), controls_(controls) {}

    // A right click offers the menu; every other button does nothing.
    void Control_MouseUp(platform::forms::Control& control, platform::forms::MouseButton button);
    void itmWhatsThis_Click();

  private:
    platform::forms::Form& form_;
    const DialogControls& controls_;
    platform::forms::Control* WhatsThisControl = nullptr;
};

}  // namespace horalink
