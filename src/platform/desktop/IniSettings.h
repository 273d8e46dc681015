// The settings store: one INI file whose sections are named application/section.
#pragma once

#include <filesystem>

#include "platform/desktop/Desktop.h"

namespace platform {

class IniSettings : public Settings {
  public:
    explicit IniSettings(std::filesystem::path file) : file_(std::move(file)) {}
    // The file is read anew each time; one that is missing or can't be read has no values.
    Text Get(TextView application, TextView section, TextView key, TextView fallback) const override;

  private:
    std::filesystem::path file_;
};

// Where the store lies: settings.ini in the directory "velmora" of the user's configuration directory.
std::filesystem::path SettingsFile();

}  // namespace platform
