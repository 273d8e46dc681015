#include "platform/forms/FormInput.h"

namespace platform::forms {

FormInput::FormInput(Form& form, InputGate& gate, std::function<bool()> isCovered)
    : form_(form), gate_(gate), isCovered_(std::move(isCovered)) {}

std::function<bool()> FormInput::WhileAlive(std::function<bool()> isRefused) const {
    return [isRefused = std::move(isRefused), alive = std::weak_ptr(alive_)] {
        return alive.expired() || isRefused();
    };
}

Verdict FormInput::Press(Stroke stroke, CarryOut carryOut, const Control* target) {
    return Continue(strokes_[stroke] = std::make_shared<bool>(target && !target->Enabled),
                    std::move(carryOut));
}

Verdict FormInput::Repeat(Stroke stroke, CarryOut carryOut) {
    const auto found = strokes_.find(stroke);
    return found == strokes_.end() ? Press(stroke, std::move(carryOut))
                                   : Continue(found->second, std::move(carryOut));
}

Verdict FormInput::Continue(const Fate& fate, CarryOut carryOut) {
    return gate_.Admit(
        {WhileAlive([this, fate] { return *fate = *fate || IsRefused(); }), std::move(carryOut)});
}

// A form disabled since the press takes the release all the same: the window must know that the button is up.
Verdict FormInput::Release(Stroke stroke, CarryOut carryOut) {
    const auto ended = strokes_.extract(stroke);
    if (ended.empty()) return Admit(std::move(carryOut));
    return gate_.Admit(
        {WhileAlive([this, fate = ended.mapped()] { return *fate || isCovered_(); }), std::move(carryOut)});
}

Verdict FormInput::Admit(CarryOut carryOut) {
    return gate_.Admit({WhileAlive([this] { return IsRefused(); }), std::move(carryOut)});
}

void FormInput::Act(const Control& control, CarryOut act) {
    gate_.Take({WhileAlive([this, &control] { return !control.Enabled || IsRefused(); }), std::move(act)});
}

void FormInput::Close() {
    auto waiting = std::make_shared<char>();  // exists while the close waits at the gate
    const std::weak_ptr<const void> mark = waiting;
    const Verdict verdict = gate_.Take(
        {WhileAlive([this] { return IsRefused(); }), [&form = form_, waiting = std::move(waiting)]() mutable {
             waiting.reset();
             form.Unload();
         }});
    if (verdict == Verdict::Waits) form_.CloseWaits(mark);
}

}  // namespace platform::forms
