#include "platform/desktop/IniSettings.h"

#include <string>

#include "platform/desktop/BaseDirectories.h"
#include "platform/runtime/Paths.h"

namespace platform {

namespace {

std::string_view WithoutBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool IsName(std::string_view written, TextView name) {
    return EqualsIgnoringCase(FromUtf8(WithoutBlanks(written)), name);
}

}  // namespace

std::optional<Text> IniValue(std::string_view content, TextView section, TextView key) {
    if (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
    bool isInSection = false;
    while (!content.empty()) {
        const auto end = content.find('\n');
        const std::string_view line = WithoutBlanks(content.substr(0, end));
        content.remove_prefix(end == content.npos ? content.size() : end + 1);
        if (line.starts_with('[')) {
            isInSection = line.ends_with(']') && IsName(line.substr(1, line.size() - 2), section);
        } else if (const auto sign = line.find('='); isInSection && sign != line.npos &&
                                                     line.front() != ';' && line.front() != '#' &&
                                                     IsName(line.substr(0, sign), key)) {
            return FromUtf8(WithoutBlanks(line.substr(sign + 1)));
        }
    }
    return std::nullopt;
}

Text IniSettings::Get(TextView application, TextView section, TextView key, TextView fallback) const {
    for (const auto& file : files_) {
        const std::string content = FileContent(file).value_or("");
        if (auto value = IniValue(content, Text(application).append(u"/").append(section), key))
            return *std::move(value);
    }
    return Text(fallback);
}

std::vector<std::filesystem::path> SettingsFiles() {
    std::vector<std::filesystem::path> files;
    if (const auto own = UserDirectory("XDG_CONFIG_HOME", ".config"); !own.empty()) files.push_back(own);
    for (const auto& directory : SiteDirectories("XDG_CONFIG_DIRS", "/etc/xdg")) files.push_back(directory);
    for (auto& file : files) file = file / "velmora" / "settings.ini";
    return files;
}

}  // namespace platform
