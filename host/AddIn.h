// The host's clock add-in: one instance, open for one exchange at a time.
#pragma once

#include <QCoreApplication>

#include "host/CallLog.h"
#include "host/HostObject.h"
#include "platform/automation/Patience.h"
#include "platform/runtime/EventLoop.h"

namespace switchdesk {

class AddIn {
    Q_DECLARE_TR_FUNCTIONS(AddIn)

  public:
    // All must outlive the object.
    AddIn(platform::Automation& automation, platform::EventLoop& loop, HostView& view, CallLog& log);

    // Creates the add-in if necessary, and shows it for an exchange. Reports errors to the view. Does nothing
    // while another opening is under way.
    void Open(const platform::Text& exchange, const platform::ObjectRef& host);
    // Sets the background of the open add-in, and of add-ins opened later.
    void SetBackground(std::int16_t set);
    // Releases the add-in, which then stores its position and ends.
    void Close();
    // Called when the add-in reports that its dialog has closed.
    void ChildUnloaded(std::int16_t id);

    // Gives up calls under way. Calls `left` once the add-in's process, if any, has ended, or after a few
    // seconds.
    void WhenLeft(std::function<void()> left);

  private:
    void Show(const platform::Text& exchange, const platform::ObjectRef& host);
    void ShowClosed(const QString& words);
    void DressAddIn(const platform::ObjectRef& layer);
    platform::ObjectRef Within() const { return automation_.Within(layer_, patience_); }
    void OwnerGone();

    platform::Automation& automation_;
    platform::EventLoop& loop_;
    HostView& view_;
    CallLog& log_;
    platform::ObjectRef layer_;
    std::shared_ptr<platform::Patience> patience_;  // limits the calls since the last opening
    std::shared_ptr<void> watch_;                   // from the creation to the end of the add-in's process
    bool isOpening_ = false;
    std::int16_t childId_ = 0, background_ = 0;
    std::function<void()> left_;
    platform::HandleRef release_, limit_;
};

}  // namespace switchdesk
