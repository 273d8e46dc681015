// What the operator gives one form.
#pragma once

#include <map>

#include "platform/forms/Form.h"
#include "platform/forms/InputGate.h"

namespace platform::forms {

// Judges input by the form: one that isn't enabled, or that a box covers, refuses it. Belongs to the form's
// view; what still waits when it goes is lost.
class FormInput {
  public:
    // A mouse button or a key, by a number of the view's choice.
    using Stroke = int;
    using CarryOut = std::function<void()>;

    FormInput(Form& form, InputGate& gate, std::function<bool()> isCovered);
    Form& Owner() const { return form_; }

    // Input that the caller carries out where it is accepted; `carryOut` is for what waits.
    Verdict Press(Stroke stroke, CarryOut carryOut);
    // A key that is held. Once one of its repeats is refused, so is the rest.
    Verdict Repeat(Stroke stroke, CarryOut carryOut);
    // Shares the fate of its press, so that a click is taken or refused as a whole.
    Verdict Release(Stroke stroke, CarryOut carryOut);
    Verdict Admit(CarryOut carryOut);
    // For what can't wait, such as moves of the mouse.
    bool TakesNow() const { return !IsRefused() && gate_.IsOpen(); }

    // What an assistive program does to a control; judged by the control as well.
    void Act(const Control& control, CarryOut act);
    // Unloads the form.
    void Close();

  private:
    using Fate = std::shared_ptr<bool>;  // true for a stroke that has been refused

    bool IsRefused() const { return !form_.TakesInput() || isCovered_(); }
    // Guards a judgement against being asked after this object has gone.
    std::function<bool()> WhileAlive(std::function<bool()> isRefused) const;
    Verdict Continue(const Fate& fate, CarryOut carryOut);

    Form& form_;
    InputGate& gate_;
    std::function<bool()> isCovered_;
    std::map<Stroke, Fate> strokes_;
    const std::shared_ptr<void> alive_ = std::make_shared<char>();
};

}  // namespace platform::forms
