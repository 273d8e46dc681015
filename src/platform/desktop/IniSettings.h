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
    // A value comes from the first of the files that has it.
    explicit IniSettings(std::vector<std::filesystem::path> files) : files_(std::move(files)) {}
    // The files are read anew each time; one that is missing or can't be read has no values.
    Text Get(TextView application, TextView section, TextView key, TextView fallback) const override;

  private:
    std::vector<std::filesystem::path> files_;
};

// The value of a key in the text of an INI file, the first where it is there more than once. Names compare
// without regard to case; blanks around names and values don't count.
std::optional<Text> IniValue(std::string_view content, TextView section, TextView key);

// velmora/settings.ini in the user's configuration directory, then in those of the site.
std::vector<std::filesystem::path> SettingsFiles();

}  // namespace platform
