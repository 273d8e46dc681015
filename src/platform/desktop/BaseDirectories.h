// The base directories for data and settings, from the environment.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// An environment variable, empty if it isn't set.
std::string Variable(const char* name);

// Splits a list at its colons.
std::vector<std::string> Entries(std::string_view list);

// The user's directory: the one that `variable` names, or `below` in the home directory; empty without a
// home. Ignores relative paths, which would depend on the working directory.
std::filesystem::path UserDirectory(const char* variable, const char* below);

// The site's directories: the absolute ones in the list `variable`, or in `otherwise` if that is empty.
std::vector<std::filesystem::path> SiteDirectories(const char* variable, const char* otherwise);

}  // namespace platform
