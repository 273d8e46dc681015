// Message boxes.
#pragma once

#include "platform/automation/Automation.h"
#include "platform/desktop/Application.h"
#include "platform/desktop/Desktop.h"
#include "platform/qt/QtHelp.h"

namespace platform {

// Escape and closing answer Cancel if there is such a button, OK if it is the only one; other boxes ignore
// both. The help button, and F1 in a box with a help reference, leave it open. Prompts are plain text, in
// which CR, LF and CR LF each break the line.
class QtMessageBoxes : public MessageBoxes {
  public:
    QtMessageBoxes(const Application& application, const QtHelp& help)
        : application_(application), help_(help) {}
    // Raises 5 for an unknown set of buttons. If the loop quits while a box is open, returns the least
    // harmful answer.
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
