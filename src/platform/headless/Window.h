// The one window of a toolkit without a screen, and the operator in front of it.
#pragma once

#include <optional>

#include "platform/forms/FormInput.h"

namespace platform::headless {

// What the operator does is judged by FormInput, as the input of a real window is.
class Window : public forms::View {
  public:
    Window(forms::Form& form, forms::InputGate& gate, std::function<bool()> isCovered);

    // Each carries out at once what the form takes now, and later what has to wait. A control that is off or
    // hidden does nothing.
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

    int focused = 0;                    // times that the window was given the focus
    forms::Menu* popped = nullptr;      // the menu that was offered last
    std::optional<std::int32_t> topic;  // of the help that was shown last

  private:
    // `act` may take the window away.
    void Give(forms::Control& control, std::function<void()> act);

    forms::FormInput input_;
    forms::TextBox* entered_ = nullptr;
};

class Toolkit : public forms::Toolkit {
  public:
    // `isCovered` says whether a box lies over the window.
    Toolkit(Scheduler& scheduler, std::function<bool()> isCovered)
        : gate(scheduler), isCovered_(std::move(isCovered)) {}
    std::unique_ptr<forms::View> MakeView(forms::Form& form) override;

    // The window that was made last, or null where it has been dropped.
    Window* Open() const { return open_.expired() ? nullptr : *open_.lock(); }

    forms::InputGate gate;

  private:
    class Tracked;
    std::function<bool()> isCovered_;
    std::weak_ptr<Window*> open_;
};

}  // namespace platform::headless
