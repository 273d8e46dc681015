// The operator's input for one form.
#pragma once

#include <map>

#include "platform/forms/Form.h"
#include "platform/forms/InputGate.h"

namespace platform::forms {

// Refuses input while the form is hidden, disabled or covered by a box. Belongs to the form's view; when that
// is destroyed, waiting input is lost.
class FormInput {
  public:
    // A mouse button or a key, by a number of the view's choice.
    using Stroke = int;
    using CarryOut = std::function<void()>;

    FormInput(Form& form, InputGate& gate, std::function<bool()> isCovered);
    Form& Owner() const { return form_; }

    // The caller carries out accepted input itself; `carryOut` is called for input that had to wait. A press
    // on a disabled control is refused.
    Verdict Press(Stroke stroke, CarryOut carryOut, const Control* target = nullptr);
    // For a held key. After one refused repeat the others are refused too.
    Verdict Repeat(Stroke stroke, CarryOut carryOut);
    // Refused if its press was, so that a click is taken or refused as a whole.
    Verdict Release(Stroke stroke, CarryOut carryOut);
    Verdict Admit(CarryOut carryOut);
    // For input that can't wait, such as mouse moves.
    bool TakesNow() const { return !IsRefused() && gate_.IsOpen(); }

    // An assistive program's action on a control; refused if the control is disabled.
    void Act(const Control& control, CarryOut act);
    // Unloads the form.
    void Close();

  private:
    using Fate = std::shared_ptr<bool>;  // true once the stroke is refused

    bool IsRefused() const { return !form_.TakesInput() || isCovered_(); }
    // Refuses once this object is destroyed.
    std::function<bool()> WhileAlive(std::function<bool()> isRefused) const;
    Verdict Continue(const Fate& fate, CarryOut carryOut);

    Form& form_;
    InputGate& gate_;
    std::function<bool()> isCovered_;
    std::map<Stroke, Fate> strokes_;
    const std::shared_ptr<void> alive_ = std::make_shared<char>();
};

}  // namespace platform::forms
