// The database engine over SQLite.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/data/Database.h"
#include "platform/runtime/Layers.h"

namespace platform {

// Opens the file or what SQLite's default file system has by that name. Raises 3343, 3260 and 3051.
DatabaseRef OpenSqliteDatabase(const std::filesystem::path& file, bool readOnly);

// Looks for files in `layers`. One that all users share is copied to its place in the user's own tree before
// the first row of it is changed.
std::unique_ptr<DatabaseEngine> MakeSqliteEngine(Layers layers = {});

}  // namespace platform
