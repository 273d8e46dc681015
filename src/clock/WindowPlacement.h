// The dialog reopens where the operator left it: the host keeps its place in a store of named values.
#pragma once

#include "platform/desktop/Desktop.h"
#include "platform/forms/Form.h"

namespace horalink {

// Moves the form to the place that the host has stored, or to the middle of the screen where there is
// none. A stored text that is no place leaves the form where it is. Raises nothing.
void RestorePlace(platform::forms::Form& form, const platform::Screen& screen,
                  const platform::ObjectRef& host);

// Stores the form's place, "left,top" in twips. Raises nothing, also without a host.
void SavePlace(const platform::forms::Form& form, const platform::ObjectRef& host);

}  // namespace horalink
