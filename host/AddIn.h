// The clock add-in as the host drives it: one instance, opened for one exchange at a time.
#pragma once

#include "host/CallLog.h"
#include "host/HostObject.h"
#include "platform/automation/Automation.h"
#include "platform/runtime/EventLoop.h"

namespace switchdesk {

class AddIn {
  public:
    // All must outlive the object.
    AddIn(platform::Automation& automation, platform::EventLoop& loop, HostView& view, CallLog& log);

    // Creates the add-in where there is none, and shows it for an exchange. What goes wrong is told to
    // the view.
    void Open(const platform::Text& exchange, const platform::ObjectRef& host);
    // Puts a background set on the add-in: on the one that is open, and on each that is opened.
    void SetBackground(std::int16_t set);
    // Lets go of the add-in. It stores its position and ends by itself afterwards.
    void Close();
    // The add-in told that its dialog has gone.
    void ChildUnloaded(std::int16_t id);

    // Calls once no process of an add-in that was open is there any more, or waiting for it has no sense.
    void WhenLeft(std::function<void()> left);

  private:
    void Show(const platform::Text& exchange, const platform::ObjectRef& host);
    void DressAddIn(const platform::ObjectRef& layer);
    void OwnerGone();

    platform::Automation& automation_;
    platform::EventLoop& loop_;
    HostView& view_;
    CallLog& log_;
    platform::ObjectRef layer_;
    std::shared_ptr<void> watch_;  // from the creation to the end of the add-in's process
    platform::Text exchange_;
    std::int16_t childId_ = 0, background_ = 0;
    std::function<void()> left_;
    platform::HandleRef release_, limit_;
};

}  // namespace switchdesk
