#include "horalink-setup/Services.h"

#include <algorithm>
#include <fstream>
#include <system_error>

#include "platform/desktop/BaseDirectories.h"
#include "platform/desktop/IniSettings.h"
#include "platform/runtime/Paths.h"

namespace setup {

namespace fs = std::filesystem;

namespace {

constexpr const char* servicesFolder = "dbus-1/services";
// How the first line begins. Its end differs between versions.
constexpr const char* mark = "# Made by horalink-setup";

void Write(const fs::path& file, const std::string& content) {
    const fs::path draft = file.native() + ".new";  // the bus ignores this name
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    if (!(std::ofstream(draft) << content << std::flush)) throw Fault(file.native() + " can't be written");
    fs::rename(draft, file);
}

}  // namespace

fs::path OwnServices() {
    const fs::path data = platform::UserDirectory("XDG_DATA_HOME", ".local/share");
    return data.empty() ? data : data / servicesFolder;
}

std::vector<fs::path> ServiceDirectories() {
    std::vector<fs::path> directories;
    if (const fs::path session = platform::Variable("XDG_RUNTIME_DIR"); session.is_absolute())
        directories.push_back(session / servicesFolder);
    if (const fs::path own = OwnServices(); !own.empty()) directories.push_back(own);
    for (const fs::path& data : platform::SiteDirectories("XDG_DATA_DIRS", "/usr/local/share:/usr/share"))
        directories.push_back((data / servicesFolder).lexically_normal());
    return directories;
}

fs::path Service::Program() const {
    if (command.starts_with('"')) return command.substr(1, command.find('"', 1) - 1);
    return command.substr(0, command.find(' '));
}

bool Service::IsMadeHere() const {
    return platform::FileContent(file).value_or("").starts_with(mark);
}

std::optional<Service> FindService(const std::string& name, const std::vector<fs::path>& directories) {
    for (const fs::path& directory : directories) {
        const fs::path file = directory / (name + ".service");
        if (const auto command =
                platform::IniValue(platform::FileContent(file).value_or(""), u"D-BUS Service", u"Exec"))
            return Service{file, platform::ToUtf8(*command)};
    }
    return std::nullopt;
}

void SetService(const std::string& name, const std::string& command, const fs::path& directory) {
    std::vector<fs::path> later = ServiceDirectories();
    later.erase(later.begin(), std::next(std::find(later.begin(), later.end(), directory)));
    const auto here = FindService(name, {directory}), after = FindService(name, later);
    if (here && here->command != command && !here->IsMadeHere())
        throw Fault(here->file.native() + " starts another program for the class; delete it first");
    const bool isNeeded = !after || after->command != command;
    if (here && !isNeeded && here->IsMadeHere()) fs::remove(here->file);
    if (isNeeded && (!here || here->command != command))
        Write(directory / (name + ".service"),
              mark + std::string(" market.\n[D-BUS Service]\nName=") + name + "\nExec=" + command + "\n");
}

std::string Quoted(const std::string& word) {
    if (word.find_first_of(" \t\"'\\$`#&;|<>()*?[]~!") == std::string::npos) return word;
    std::string quoted = "\"";
    for (const char c : word) {
        if (c == '"' || c == '\\' || c == '$' || c == '`') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

}  // namespace setup
