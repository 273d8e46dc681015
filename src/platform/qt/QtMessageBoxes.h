// Message boxes.
#pragma once

#include "platform/desktop/Application.h"
#include "platform/desktop/Desktop.h"
#include "platform/qt/QtHelp.h"

namespace platform {

// Escape and closing a box answer Cancel where there is such a button, OK where it is the only one, and
// nothing elsewhere. The help button, and F1 where the box has a help reference, leave it open. Prompts are
// plain text. Each of CR, LF and CR LF breaks a line.
class QtMessageBoxes : public MessageBoxes {
  public:
    QtMessageBoxes(const Application& application, const QtHelp& help)
        : application_(application), help_(help) {}
    // Raises 5 for a set of buttons that there isn't. Where the loop quits under an open box, the answer is
    // the one that does least.
    std::int16_t Show(const MessageBox& box) override;

  private:
    const Application& application_;
    const QtHelp& help_;
};

}  // namespace platform
