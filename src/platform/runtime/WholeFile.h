// A file that appears whole or not at all.
#pragma once

#include <filesystem>

namespace platform {

// Copies a file to a place where there is none, with the directories on the way. Killed at any moment, it has
// made all of the file or nothing. A file that is there already, or that another process puts there
// meanwhile, stays as it is. Raises std::system_error.
void CopyWhole(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace platform
