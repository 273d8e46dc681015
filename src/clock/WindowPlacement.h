// Reopens the dialog where the operator left it; the host stores the place.
#pragma once

#include "platform/desktop/Desktop.h"
#include "platform/forms/Form.h"

namespace horalink {

// Moves the form to the place that the host has stored, or centres it if there is none. Leaves the form where
// it is if the stored text isn't a place. Raises nothing.
void RestorePlace(platform::forms::Form& form, const platform::Screen& screen,
                  const platform::ObjectRef& host);

// Stores the form's place, "left,top" in twips. Raises nothing; does nothing without a host.
void SavePlace(const platform::forms::Form& form, const platform::ObjectRef& host);

}  // namespace horalink
