#include "clock/ContextHelp.h"

#include <utility>

namespace horalink {

using namespace platform;

void ContextHelp::Control_MouseUp(forms::Control& control, forms::MouseButton button) {
    if (button != forms::MouseButton::Right) return;
    WhatsThisControl = &control;
    form_.PopupMenu(*controls_.mnuWhatsThis);
}

void ContextHelp::itmWhatsThis_Click() {
    forms::Control* const control = std::exchange(WhatsThisControl, nullptr);
    if (!control) throw RuntimeError(ErrorNumber::ObjectNotSet);
    form_.ShowWhatsThis(*control);
}

}  // namespace horalink
