// Boxes that come up while something is waited for.
#pragma once

#include "platform/automation/Automation.h"
#include "platform/desktop/Application.h"

namespace platform {

// The first button keeps waiting; the second one, Escape and closing give up.
class QtWaitBoxes : public WaitBoxes {
  public:
    explicit QtWaitBoxes(const Application& application) : application_(application) {}
    std::unique_ptr<WaitBox> Open(TextView title, TextView text, std::function<void(bool)> answered) override;

  private:
    const Application& application_;
};

}  // namespace platform
