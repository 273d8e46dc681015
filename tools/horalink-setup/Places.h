// Where everything lies, by the environment.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace setup {

struct Places {
    std::filesystem::path program;   // this tool, with links resolved
    std::filesystem::path package;   // the tree that was installed with it
    std::filesystem::path settings;  // the settings store
    std::filesystem::path data;      // the user's data directory
    // Where the session bus looks for service files, in its order; `ownServices` is the user's among them.
    std::vector<std::filesystem::path> services;
    std::filesystem::path ownServices;
    std::string locale;  // "de_AT.UTF-8", or empty
};

// Raises Fault where the environment names no home.
Places PlacesOfEnvironment();

}  // namespace setup
