// How assistive programs see the widgets.
#pragma once

class QWidget;

namespace platform::forms {

// From now on assistive programs see the role of each widget of a form, the value of spin controls, and
// pop-ups. Qt's own widgets stay as they are.
void InstallAccessibility();

// Announces a pop-up as the focus, which Qt doesn't, and the focused widget when the pop-up closes.
void SayThatItPopsUp(QWidget& window);

}  // namespace platform::forms
