#include "platform/desktop/IniSettings.h"

#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

namespace platform {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view WithoutBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool IsComment(std::string_view line) {
    return line.front() == ';' || line.front() == '#';
}

bool Names(std::string_view written, TextView name) {
    return EqualsIgnoringCase(FromUtf8(WithoutBlanks(written)), name);
}

// Goes through the lines of a file and knows which of them lie in the section that is looked for.
class Search {
  public:
    Search(Text section, TextView key) : section_(std::move(section)), key_(key) {}

    // The value, where this line holds it.
    std::optional<Text> Take(std::string_view line) {
        line = WithoutBlanks(line);
        if (line.empty() || IsComment(line)) return std::nullopt;
        if (line.front() == '[') {
            inSection_ = line.back() == ']' && Names(line.substr(1, line.size() - 2), section_);
            return std::nullopt;
        }
        const auto sign = line.find('=');
        if (!inSection_ || sign == std::string_view::npos || !Names(line.substr(0, sign), key_))
            return std::nullopt;
        return FromUtf8(WithoutBlanks(line.substr(sign + 1)));
    }

  private:
    Text section_;
    TextView key_;
    bool inSection_ = false;
};

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
    std::ifstream file(file_);
    Search search(Text(application).append(u"/").append(section), key);
    std::string line;
    for (bool first = true; std::getline(file, line); first = false) {
        std::string_view text = line;
        if (first && text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
        if (auto value = search.Take(text)) return *std::move(value);
    }
    return Text(fallback);
}

std::filesystem::path SettingsFile() {
    const std::filesystem::path directory = ConfigurationDirectory();
    return directory.empty() ? directory : directory / "velmora" / "settings.ini";
}

}  // namespace platform
