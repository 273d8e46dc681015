// The files that hold every text the operator reads.
#pragma once

#include "platform/data/Database.h"
#include "platform/desktop/Application.h"
#include "platform/desktop/Desktop.h"

namespace horalink {

// Opens a language database. On failure shows the notice, sets `database` to nothing and returns false.
bool OpenLanguageDatabase(platform::DatabaseEngine& engine, platform::MessageBoxes& boxes,
                          platform::TextView fileName, platform::DatabaseRef& database, bool readOnly);

// Gives the application its title and the texts of the two wait boxes, from the row `exeName` of tProject.
// On failure shows the notice and returns false; what was written before stays.
bool LoadProjectText(platform::MessageBoxes& boxes, platform::Application& app, platform::TextView exeName,
                     platform::Database& database);

}  // namespace horalink
