// What the widgets of all control types have in common.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <utility>

#include "platform/forms/FormInput.h"
#include "platform/runtime/Guard.h"

class QMouseEvent;

namespace platform::forms {

// Raises an event of the model. The event is copied first: it may take away the form, and itself with it.
template <class... Parameters, class... Given>
void Raise(const std::function<void(Parameters...)>& event, Given&&... given) {
    if (!event) return;
    const auto running = event;
    Guard([&] { running(std::forward<Given>(given)...); });
}

// A widget that shows a control. After Detach the control is gone, while the widget may still be in the
// middle of an event.
class ControlView {
  public:
    explicit ControlView(Control& control) : control_(&control) {}
    virtual ~ControlView() = default;

    // Brings the widget to what the model says. What is equal already is left alone and not painted again.
    void Sync();
    void Detach() { control_ = nullptr; }
    void ShareLife(std::weak_ptr<void> window) { window_ = std::move(window); }
    Control* Model() const { return control_; }
    virtual QWidget& Widget() = 0;

    // False where the operator's input has to be refused.
    bool IsOperable() const { return control_ && control_->Enabled && control_->Owner().TakesInput(); }
    void MouseReleased(const QMouseEvent& event);
    void TakeInputBy(FormInput& input) { input_ = &input; }
    // Carries out what comes past the window's events, as what an assistive program does, once it is
    // accepted.
    void Act(std::function<void()> act);

  protected:
    // The window, for as long as the result is kept; for events that come from a widget itself.
    std::shared_ptr<void> KeepWindow() const { return window_.lock(); }
    virtual void SyncOwn() = 0;
    virtual QString Caption() const { return {}; }
    virtual bool ShowsCaption() const { return true; }
    // What a screen reader says where neither a caption nor a tool tip is to be seen.
    virtual QString SpokenName() const;

  private:
    void SyncCommon();
    void SyncTexts();

    Control* control_;
    FormInput* input_ = nullptr;  // as long as there is a control
    std::weak_ptr<void> window_;
};

// A control view whose model is of a known type.
template <class Type>
class TypedView : public ControlView {
  public:
    explicit TypedView(Type& control) : ControlView(control) {}
    // Only while there is a model.
    Type& Typed() const { return static_cast<Type&>(*Model()); }
};

// The place of a control on its form, in pixels.
QRect RectOf(const Control& control);

// Controls without a window of their own lie below all others, whatever the order in which they were added.
bool HasWindow(const Control& control);

// The widget of a control, or nothing for what has none (timers, menus).
ControlView* MakeControlView(Control& control, QWidget& parent);

}  // namespace platform::forms
