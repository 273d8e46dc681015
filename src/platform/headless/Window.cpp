#include "platform/headless/Window.h"

#include "platform/runtime/RuntimeError.h"

namespace platform::headless {

using namespace forms;

Window::Window(Form& form, InputGate& gate, std::function<bool()> isCovered)
    : input_(form, gate, std::move(isCovered)) {}

void Window::Give(Control& control, std::function<void()> act) {
    const auto carryOut = [&control, act = std::move(act)] {
        if (control.Enabled && control.Visible) Guard(act);
    };
    if (input_.Admit(carryOut) == Verdict::Accepted) carryOut();
}

void Window::Click(CommandButton& button) {
    constexpr FormInput::Stroke leftButton = -1;
    const auto press = [] {};
    const auto release = [&button] {
        if (button.Enabled && button.Visible && button.Click) Guard(button.Click);
    };
    input_.Press(leftButton, press, &button);
    if (input_.Release(leftButton, release) == Verdict::Accepted) release();
}

void Window::Toggle(CheckBox& box) {
    Give(box, [&box] { box.SetValue(box.Value() == 0); });
}

void Window::Enter(TextBox& box) {
    Give(box, [this, &box] {
        TextBox* const left = std::exchange(entered_, &box);
        if (left && left->LostFocus) left->LostFocus();
        if (box.GotFocus) box.GotFocus();
    });
}

void Window::Step(UpDown& arrows, bool up) {
    Give(arrows, [&arrows, up] { up ? arrows.StepUp() : arrows.StepDown(); });
}

void Window::Choose(Calendar& calendar, const DateParts& date) {
    Give(calendar, [&calendar, date] { calendar.ChooseDate(date); });
}

void Window::Turn(Calendar& calendar, std::int16_t year, std::int16_t month) {
    Give(calendar, [&calendar, year, month] { calendar.TurnTo(year, month); });
}

void Window::RightClick(Control& control) {
    Give(control, [&control] {
        if (control.MouseUp) control.MouseUp(MouseButton::Right);
    });
}

void Window::ChooseFromMenu(std::size_t item) {
    Menu& chosen = *popped->Items.at(item);
    Give(chosen, [&chosen] { chosen.Click(); });
}

void Window::Key(std::int16_t code) {
    Form& form = input_.Owner();
    const auto press = [&form, code] {
        if (form.KeyDown) Guard([&] { form.KeyDown(code); });
    };
    if (input_.Press(code, press) == Verdict::Accepted) press();
    input_.Release(code, [] {});
}

class Toolkit::Tracked : public Window {
  public:
    Tracked(Form& form, InputGate& gate, std::function<bool()> isCovered, std::weak_ptr<Window*>& open)
        : Window(form, gate, std::move(isCovered)) {
        open = self_;
    }

  private:
    std::shared_ptr<Window*> self_ = std::make_shared<Window*>(this);
};

std::unique_ptr<View> Toolkit::MakeView(Form& form) {
    return std::make_unique<Tracked>(form, gate, isCovered_, open_);
}

}  // namespace platform::headless
