// The settings store, as far as installations are entered in it.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/desktop/IniText.h"

namespace setup {

class SettingsStore {
  public:
    // Reads the file; one that is missing is empty. Raises Fault where it can't be read.
    explicit SettingsStore(std::filesystem::path file);

    // The markets that have an installation, in the order of the file.
    std::vector<std::string> Markets() const;
    bool Has(const std::string& market) const { return InstallPath(market).has_value(); }

    // As it is written, with backslashes.
    std::optional<platform::Text> InstallPath(const std::string& market) const;
    // The directory that it means, as it is spelled.
    std::optional<std::filesystem::path> Root(const std::string& market) const;
    void SetRoot(const std::string& market, const std::filesystem::path& root);
    void RemoveRoot(const std::string& market);

    // The market whose programs the class of the add-in starts: the one that was chosen, or the default, or
    // the first that is there.
    std::string MarketInUse() const;
    void Use(const std::string& market);
    void ForgetUse(const std::string& market);

    // Writes the file beside and renames it. One that has become empty goes, with its directory where that is
    // empty. Raises Fault.
    void Save() const;

  private:
    std::filesystem::path file_;
    platform::IniText text_;
};

}  // namespace setup
