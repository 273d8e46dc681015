// The database engine over SQLite.
#pragma once

#include <memory>

#include "platform/data/Database.h"
#include "platform/desktop/Paths.h"

namespace platform {

// Looks for files by `spellings`.
std::unique_ptr<DatabaseEngine> MakeSqliteEngine(Spellings spellings = {});

}  // namespace platform
