// The database engine over SQLite.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/data/Database.h"
#include "platform/runtime/Paths.h"

namespace platform {

// Opens the file or what SQLite's default file system has by that name. Raises 3343, 3260 and 3051.
DatabaseRef OpenSqliteDatabase(const std::filesystem::path& file, bool readOnly);

// Looks for files by `spellings`.
std::unique_ptr<DatabaseEngine> MakeSqliteEngine(Spellings spellings = {});

}  // namespace platform
