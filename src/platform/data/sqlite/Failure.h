// SQLite's failures as those of the data interface.
#pragma once

#include <string_view>

#include "platform/data/Database.h"

namespace platform {

// The failure for a result code. `message` is SQLite's own wording, `file` the name of the database file.
RuntimeError SqliteFailure(int code, std::string_view message, std::string_view file);

}  // namespace platform
