#include "horalink-setup/Places.h"

#include <cstdlib>
#include <sstream>

#include "common/Fault.h"
#include "horalink-setup/Market.h"
#include "platform/desktop/IniSettings.h"

namespace setup {

namespace fs = std::filesystem;

namespace {

constexpr const char* serviceFolder = "dbus-1/services";

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

fs::path DataHome() {
    // The rules for these directories let a relative one count as none.
    const fs::path configured = Variable("XDG_DATA_HOME");
    if (configured.is_absolute()) return configured;
    const fs::path home = Variable("HOME");
    if (!home.is_absolute())
        throw tools::Fault("HOME names no directory, so there is no place for an installation");
    return home / ".local/share";
}

void AddDirectories(std::vector<fs::path>& services, const std::string& list) {
    std::istringstream directories(list);
    for (std::string directory; std::getline(directories, directory, ':');)
        if (fs::path(directory).is_absolute()) services.push_back(fs::path(directory) / serviceFolder);
}

std::vector<fs::path> ServiceDirectories(const fs::path& own) {
    std::vector<fs::path> services;
    AddDirectories(services, Variable("XDG_RUNTIME_DIR"));
    services.push_back(own);
    const std::string system = Variable("XDG_DATA_DIRS");
    AddDirectories(services, system.empty() ? "/usr/local/share" : system);
    AddDirectories(services, "/usr/share");
    return services;
}

std::string Locale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (std::string value = Variable(name); !value.empty()) return value;
    return {};
}

}  // namespace

Places PlacesOfEnvironment() {
    Places places;
    places.program = fs::read_symlink("/proc/self/exe");
    places.package = places.program.parent_path().parent_path() / "lib/VELMORA32" / defaultMarket;
    places.data = DataHome();
    places.settings = platform::SettingsFile();
    if (places.settings.empty()) throw tools::Fault("HOME names no directory, so there is no settings store");
    places.ownServices = places.data / serviceFolder;
    places.services = ServiceDirectories(places.ownServices);
    places.locale = Locale();
    return places;
}

}  // namespace setup
