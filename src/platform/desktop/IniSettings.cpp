#include "platform/desktop/IniSettings.h"

#include <cstdlib>
#include <sstream>
#include <string>

#include "platform/desktop/IniText.h"
#include "platform/runtime/Paths.h"

namespace platform {

namespace {

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::filesystem::path ConfigurationDirectory() {
    // A relative directory would mean another store in every working directory, so it counts as none.
    const std::filesystem::path configured = Variable("XDG_CONFIG_HOME");
    if (configured.is_absolute()) return configured;
    const std::filesystem::path home = Variable("HOME");
    return home.is_absolute() ? home / ".config" : std::filesystem::path();
}

}  // namespace

Text IniSettings::Get(TextView application, TextView section, TextView key, TextView fallback) const {
    // What can't be read, such as a directory, must not raise anything here.
    std::ostringstream content;
    content << OpenToRead(file_).rdbuf();
    return IniText(content.str())
        .Value(Text(application).append(u"/").append(section), key)
        .value_or(Text(fallback));
}

std::filesystem::path SettingsFile() {
    const std::filesystem::path directory = ConfigurationDirectory();
    return directory.empty() ? directory : directory / "velmora" / "settings.ini";
}

}  // namespace platform
