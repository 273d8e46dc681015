// Looks at what is installed, as the programs will find it.
#pragma once

#include "horalink-setup/Commands.h"
#include "horalink-setup/Report.h"

namespace setup {

// Never raises for what it looks at: whatever is wrong stands in the report, in plain words.
Report Inspect(const Context& context);

}  // namespace setup
