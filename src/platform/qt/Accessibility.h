// What assistive programs are told of the widgets.
#pragma once

class QWidget;

namespace platform::forms {

// From now on the widgets of forms have the roles of what they show, a spin control its value, and what pops
// up is found. What Qt's own widgets tell of themselves stays as it is.
void InstallAccessibility();

// Says that a window that has popped up is where the keys go now, which Qt doesn't count as the focus; and
// when it goes, who has them again.
void SayThatItPopsUp(QWidget& window);

}  // namespace platform::forms
