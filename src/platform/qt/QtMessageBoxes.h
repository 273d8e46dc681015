// Message boxes.
#pragma once

#include "platform/automation/Automation.h"
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

// The first button keeps waiting; the second one, Escape and closing give up.
class QtWaitBoxes : public WaitBoxes {
  public:
    explicit QtWaitBoxes(const Application& application) : application_(application) {}
    std::unique_ptr<WaitBox> Open(TextView title, TextView text, std::function<void(bool)> answered) override;

  private:
    const Application& application_;
};

}  // namespace platform
