// What assistive programs are told of the widgets.
#pragma once

namespace platform::forms {

// From now on the widgets of forms have the roles of what they show, and a spin control its value. What Qt's
// own widgets tell of themselves stays as it is.
void InstallAccessibility();

}  // namespace platform::forms
