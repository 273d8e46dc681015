// Service files, by which the session bus starts a program for a class name.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "horalink-setup/Places.h"

namespace setup {

class Services {
  public:
    explicit Services(const Places& places) : places_(places) {}

    // The file that the bus takes for a name, and the command in it.
    std::optional<std::filesystem::path> FileOf(const std::string& name) const;
    std::string CommandOf(const std::filesystem::path& file) const;

    // Raises Fault where Enter would have to replace a file of the user's own.
    void RequireFree(const std::string& name, const std::string& arguments) const;
    // Has the bus start this tool with `arguments` for a name. Writes nothing where a package's file does
    // that already. True where the bus has something new to read. Raises Fault.
    bool Enter(const std::string& name, const std::string& arguments) const;
    // Takes away the user's file if Enter wrote it. True where there was one.
    bool Remove(const std::string& name) const;

  private:
    std::filesystem::path OwnFile(const std::string& name) const;
    std::string Command(const std::string& arguments) const;
    bool IsEntered(const std::string& name, const std::string& arguments) const;

    const Places& places_;
};

}  // namespace setup
