// Captions, fonts and tool tips of a form, from the language database.
#pragma once

#include "platform/data/Database.h"
#include "platform/desktop/Desktop.h"
#include "platform/forms/Form.h"

namespace horalink {

// Sets a control's font by the rule of its type. Raises what its properties raise: 380 for a bad value, 438
// for a missing property.
void SetControlFont(platform::forms::Form& form, const platform::ObjectRef& control,
                    const platform::Value& name, const platform::Value& size);

// Sets the form's caption and font from tForms, if it has a row. On failure shows the notice and returns
// false; what was set before stays.
bool LoadFormText(platform::MessageBoxes& boxes, platform::forms::Form& form, platform::Database& database);

// Sets caption, font and tool tip of each control named in tControls, by the rule of its type. "-1" leaves a
// text as it is, Null clears it. On failure as above; the remaining rows are skipped.
bool LoadControlsText(platform::MessageBoxes& boxes, platform::forms::Form& form,
                      platform::Database& database);

}  // namespace horalink
