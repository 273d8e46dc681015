// Dressing a form out of the language database: captions, fonts and tool tips.
#pragma once

#include "platform/data/Database.h"
#include "platform/desktop/Desktop.h"
#include "platform/forms/Form.h"

namespace horalink {

// Writes font name and size to a control, by the rule of its type name. Raises what a property raises that
// refuses its value, 438 where the control has none of that name.
void SetControlFont(platform::forms::Form& form, const platform::ObjectRef& control,
                    const platform::Value& name, const platform::Value& size);

// Gives the form caption and font from its rows of tForms; without a row it keeps its own. On failure shows
// the notice and returns false; what was written before stays.
bool LoadFormText(platform::MessageBoxes& boxes, platform::forms::Form& form, platform::Database& database);

// Gives each control that tControls names for the form its caption, font and tool tip, by the rule of its
// type. "-1" leaves a text as it is, Null empties it. On failure as above; no row behind it is processed.
bool LoadControlsText(platform::MessageBoxes& boxes, platform::forms::Form& form,
                      platform::Database& database);

}  // namespace horalink
