// Dressing a form out of the language database: captions, fonts and tool tips.
#pragma once

#include "platform/data/Database.h"
#include "platform/desktop/Desktop.h"
#include "platform/forms/Form.h"

namespace horalink {

// Gives the form caption and font from its rows of tForms; without a row it keeps its own. On failure shows
// the notice and returns false; what was written before stays.
bool LoadFormText(platform::MessageBoxes& boxes, platform::forms::Form& form, platform::Database& database);

// Gives each control that tControls names for the form its caption, font and tool tip, by the rule of its
// type. "-1" leaves a text as it is, Null empties it. On failure as above; no row behind it is processed.
bool LoadControlsText(platform::MessageBoxes& boxes, platform::forms::Form& form,
                      platform::Database& database);

}  // namespace horalink
