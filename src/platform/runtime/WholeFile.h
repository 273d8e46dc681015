// Copies files so that the copy is complete or doesn't exist.
#pragma once

#include <filesystem>

namespace platform {

// Copies a file to a path where there is none, and creates missing directories. Even if the process is
// killed, the copy is complete or doesn't exist. Never replaces a file that is already there, or that another
// process creates meanwhile. Raises std::system_error.
void CopyWhole(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace platform
