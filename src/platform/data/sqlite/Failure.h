// Translates SQLite's errors to those of the data interface.
#pragma once

#include <filesystem>
#include <string_view>

#include "platform/data/Database.h"

namespace platform {

// The error for a result code. `message` is SQLite's own wording, `file` the database file.
RuntimeError SqliteFailure(int code, std::string_view message, const std::filesystem::path& file);

}  // namespace platform
