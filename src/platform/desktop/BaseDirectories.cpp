#include "platform/desktop/BaseDirectories.h"

#include <algorithm>
#include <cstdlib>

namespace platform {

namespace fs = std::filesystem;

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::vector<std::string> Entries(std::string_view list) {
    std::vector<std::string> entries;
    while (!list.empty()) {
        const std::string_view entry = list.substr(0, list.find(':'));
        entries.emplace_back(entry);
        list.remove_prefix(std::min(entry.size() + 1, list.size()));
    }
    return entries;
}

fs::path UserDirectory(const char* variable, const char* below) {
    const fs::path configured = Variable(variable);
    if (configured.is_absolute()) return configured;
    const fs::path home = Variable("HOME");
    return home.is_absolute() ? home / below : fs::path();
}

std::vector<fs::path> SiteDirectories(const char* variable, const char* otherwise) {
    const std::string configured = Variable(variable);
    std::vector<fs::path> directories;
    for (const std::string& entry : Entries(configured.empty() ? otherwise : configured))
        if (fs::path(entry).is_absolute()) directories.emplace_back(entry);
    return directories;
}

}  // namespace platform
