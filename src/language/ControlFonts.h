// Where each type of control takes its font, and the character set that goes with it.
#pragma once

#include "platform/forms/Form.h"

namespace horalink {

// Writes font name and size to a control, by the rule of its type name. Raises what a property raises that
// refuses its value, 438 where the control has none of that name.
void SetControlFont(platform::forms::Form& form, const platform::ObjectRef& control,
                    const platform::Value& name, const platform::Value& size);

}  // namespace horalink
