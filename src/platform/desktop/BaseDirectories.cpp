#include "platform/desktop/BaseDirectories.h"

#include <cstdlib>
#include <sstream>

namespace platform {

namespace fs = std::filesystem;

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

fs::path UserDirectory(const char* variable, const char* below) {
    const fs::path configured = Variable(variable);
    if (configured.is_absolute()) return configured;
    const fs::path home = Variable("HOME");
    return home.is_absolute() ? home / below : fs::path();
}

std::vector<fs::path> SiteDirectories(const char* variable, const char* otherwise) {
    const std::string configured = Variable(variable);
    std::istringstream list(configured.empty() ? otherwise : configured);
    std::vector<fs::path> directories;
    for (std::string directory; std::getline(list, directory, ':');)
        if (fs::path(directory).is_absolute()) directories.emplace_back(directory);
    return directories;
}

}  // namespace platform
