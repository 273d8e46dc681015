// Checks of the help file and of the register.
#pragma once

#include "check/CheckedDatabase.h"

namespace lng {

// The topics that the dialog's controls refer to, and the texts of all.
void CheckHelp(CheckedDatabase& database);

bool HasHelpTopic(CheckedDatabase& database, std::int32_t topic);

// The add-in's row of the register.
void CheckRegister(CheckedDatabase& database);

}  // namespace lng
