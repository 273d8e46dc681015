// Boxes that come up while something is waited for.
#pragma once

#include "platform/automation/Automation.h"

namespace platform {

// The buttons are Retry, which goes on waiting, and Cancel, which gives up; Escape and closing give up.
class QtWaitBoxes : public WaitBoxes {
  public:
    std::unique_ptr<WaitBox> Open(TextView title, TextView text, std::function<void(bool)> answered) override;
};

}  // namespace platform
