// The database engine over SQLite.
#pragma once

#include <memory>

#include "platform/data/Database.h"

namespace platform {

std::unique_ptr<DatabaseEngine> MakeSqliteEngine();

}  // namespace platform
