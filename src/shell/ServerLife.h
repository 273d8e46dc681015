// The life of a process that serves the class: when it grants an object, and when it ends.
#pragma once

#include <functional>

#include "platform/automation/Automation.h"
#include "platform/runtime/EventLoop.h"

namespace horalink {

class ServerLife {
  public:
    // All must outlive this object. `end` ends the process; called when nobody has used it for a minute.
    ServerLife(platform::Automation& automation, platform::Scheduler& scheduler, std::function<void()> end);

    // Serves a class from now on. Raises what ServeClass raises.
    void Serve(std::string_view className, std::function<platform::ObjectRef()> create);

    // Stops granting objects: whoever creates one from now on gets another process. Existing objects keep
    // working. For a process whose dialog was closed, or that is about to end.
    void Retire();

  private:
    platform::ObjectRef Grant(const std::function<platform::ObjectRef()>& create);
    void WatchIdleness();

    platform::Automation& automation_;
    platform::Scheduler& scheduler_;
    std::function<void()> end_;
    bool isRetired_ = false;
    bool isInUse_ = false;  // another process holds an object
    int granting_ = 0;      // creations under way, each from inside the one before
    platform::HandleRef idle_;
};

}  // namespace horalink
