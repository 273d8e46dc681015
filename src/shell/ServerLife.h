// The life of a process that serves the class: when it grants an object, and when it ends.
#pragma once

#include <functional>

#include "platform/automation/Automation.h"
#include "platform/runtime/EventLoop.h"

namespace horalink {

class ServerLife {
  public:
    // All must outlive this object. Calls `end`, which ends the process, after a minute without use.
    ServerLife(platform::Automation& automation, platform::Scheduler& scheduler, std::function<void()> end);

    // Serves a class from now on. Raises what ServeClass raises.
    void Serve(std::string_view className, std::function<platform::ObjectRef()> create);

    // Stops granting objects: later creations start another process. Existing objects keep working.
    void Retire();

  private:
    platform::ObjectRef Grant(const std::function<platform::ObjectRef()>& create);
    void WatchIdleness();

    platform::Automation& automation_;
    platform::Scheduler& scheduler_;
    std::function<void()> end_;
    bool isRetired_ = false;
    bool isInUse_ = false;  // a client holds an object
    int granting_ = 0;      // creations under way, nested
    platform::HandleRef idle_;
};

}  // namespace horalink
