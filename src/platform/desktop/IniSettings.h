// The settings store: INI files whose sections are named application/section.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/desktop/Desktop.h"

namespace platform {

class IniSettings : public Settings {
  public:
    // A value is taken from the first file that has it.
    explicit IniSettings(std::vector<std::filesystem::path> files) : files_(std::move(files)) {}
    // Rereads the files each time. A file that is missing or can't be read has no values.
    Text Get(TextView application, TextView section, TextView key, TextView fallback) const override;

  private:
    std::vector<std::filesystem::path> files_;
};

// The value of a key in the text of an INI file; if the key occurs more than once, the first. Ignores case in
// names, and blanks around names and values.
std::optional<Text> IniValue(std::string_view content, TextView section, TextView key);

// velmora/settings.ini in the user's configuration directory, then in those of the site.
std::vector<std::filesystem::path> SettingsFiles();

}  // namespace platform
