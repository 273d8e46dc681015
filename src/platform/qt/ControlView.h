// The base of the widgets of all control types.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <utility>

#include "platform/forms/FormInput.h"
#include "platform/runtime/RuntimeError.h"

class QMouseEvent;

namespace platform::forms {

// Raises an event of the model. Copies it first: it may destroy the form, and itself with it.
template <class... Parameters, class... Given>
void Raise(const std::function<void(Parameters...)>& event, Given&&... given) {
    if (!event) return;
    const auto running = event;
    Guard([&] { running(std::forward<Given>(given)...); });
}

// A widget that shows a control. After Detach it has no control, but may still be in the middle of an event.
class ControlView {
  public:
    explicit ControlView(Control& control) : control_(&control) {}
    virtual ~ControlView() = default;

    // Updates the widget from the model, and repaints only what has changed.
    void Sync();
    void Detach() { control_ = nullptr; }
    void ShareLife(std::weak_ptr<void> window) { window_ = std::move(window); }
    Control* Model() const { return control_; }
    virtual QWidget& Widget() = 0;

    // False if the operator's input must be refused.
    bool IsOperable() const { return control_ && control_->Enabled && control_->Owner().TakesInput(); }
    void MouseReleased(const QMouseEvent& event);
    void TakeInputBy(FormInput& input) { input_ = &input; }
    // Carries out an action that isn't an event of the window, e.g. of an assistive program, once the form's
    // input rules accept it.
    void Act(std::function<void()> act);

  protected:
    // Keeps the window alive during an event that the widget itself raises.
    std::shared_ptr<void> KeepWindow() const { return window_.lock(); }
    virtual void SyncOwn() = 0;
    virtual QString Caption() const { return {}; }
    virtual bool ShowsCaption() const { return true; }
    // What a screen reader says if neither caption nor tool tip is visible.
    virtual QString SpokenName() const;

  private:
    void SyncCommon();
    void SyncTexts();

    Control* control_;
    FormInput* input_ = nullptr;  // valid while there is a control
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

// False for labels and images, which lie below all other controls, whenever they were added.
bool HasWindow(const Control& control);

// The widget of a control; null for timers and menus.
ControlView* MakeControlView(Control& control, QWidget& parent);

}  // namespace platform::forms
