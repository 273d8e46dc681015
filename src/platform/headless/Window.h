// The one window of a toolkit without a screen, with the operator's actions.
#pragma once

#include <optional>

#include "platform/forms/FormInput.h"

namespace platform::headless {

// FormInput judges the actions, as it does for a real window.
class Window : public forms::View {
  public:
    Window(forms::Form& form, forms::InputGate& gate, std::function<bool()> isCovered);

    // Each acts at once, or later if input has to wait. A disabled or hidden control does nothing.
    void Click(forms::CommandButton& button);
    void Toggle(forms::CheckBox& box);
    void Enter(forms::TextBox& box);
    void Step(forms::UpDown& arrows, bool up);
    void Choose(forms::Calendar& calendar, const DateParts& date);
    void Turn(forms::Calendar& calendar, std::int16_t year, std::int16_t month);
    void RightClick(forms::Control& control);
    void ChooseFromMenu(std::size_t item);
    void Key(std::int16_t code);
    void Close() { input_.Close(); }

    void FormChanged() override {}
    void ControlChanged(forms::Control&) override {}
    void SetFocus() override { ++focused; }
    void PopupMenu(forms::Menu& menu) override { popped = &menu; }
    void ShowWhatsThis(forms::Control& control) override { topic = control.WhatsThisHelpID; }

    int focused = 0;                    // how often the window got the focus
    forms::Menu* popped = nullptr;      // the menu opened last
    std::optional<std::int32_t> topic;  // the help topic shown last

  private:
    // `act` may destroy the window.
    void Give(forms::Control& control, std::function<void()> act);

    forms::FormInput input_;
    forms::TextBox* entered_ = nullptr;
};

class Toolkit : public forms::Toolkit {
  public:
    // `isCovered`: whether a box covers the window.
    Toolkit(Scheduler& scheduler, std::function<bool()> isCovered)
        : gate(scheduler), isCovered_(std::move(isCovered)) {}
    std::unique_ptr<forms::View> MakeView(forms::Form& form) override;

    // The newest window, or null once it is destroyed.
    Window* Open() const { return open_.expired() ? nullptr : *open_.lock(); }

    forms::InputGate gate;

  private:
    class Tracked;
    std::function<bool()> isCovered_;
    std::weak_ptr<Window*> open_;
};

}  // namespace platform::headless
