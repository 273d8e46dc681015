// The database engine over SQLite.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/data/Database.h"
#include "platform/runtime/Layers.h"

namespace platform {

// Opens the database that SQLite's default VFS has by this name, on disk or not. Raises 3343, 3260 and 3051.
DatabaseRef OpenSqliteDatabase(const std::filesystem::path& file, bool readOnly);

// Finds files in `layers`. A shared file is copied to the user's own tree before its first change.
std::unique_ptr<DatabaseEngine> MakeSqliteEngine(Layers layers = {});

}  // namespace platform
