// The directories that the environment names for the data and the settings of programs.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace platform {

// A variable of the environment, empty where it isn't set.
std::string Variable(const char* name);

// Of one user: the directory that `variable` names, or `below` in the home directory. Empty without a home. A
// relative one would differ with the working directory, so it counts as none.
std::filesystem::path UserDirectory(const char* variable, const char* below);

// Of the site: the absolute directories of the list in `variable`, or of `otherwise` where that is empty.
std::vector<std::filesystem::path> SiteDirectories(const char* variable, const char* otherwise);

}  // namespace platform
