// Service files of the session bus: which program it starts for a class.
#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace setup {

inline constexpr const char* addInClass = "Horalink10013.cOLELayer";

// Why something can't be done. Exit status 1.
struct Fault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Where the bus looks, the first file for a class counts: of the session, of the user, of the site.
std::vector<std::filesystem::path> ServiceDirectories();
// The directory of the user in it, empty without a home.
std::filesystem::path OwnServices();

struct Service {
    std::filesystem::path file;
    std::string command;

    std::filesystem::path Program() const;
    // By this tool, in this or an earlier version.
    bool IsMadeHere() const;
};
// The first service file of a class in these directories.
std::optional<Service> FindService(const std::string& name,
                                   const std::vector<std::filesystem::path>& directories);

// Makes the bus start `command` for a class, by a file in `directory` unless those that count after it do so
// already. Raises Fault where another program's file is in the way.
void SetService(const std::string& name, const std::string& command, const std::filesystem::path& directory);

// A word of a command line, as the bus and the shell read it.
std::string Quoted(const std::string& word);

}  // namespace setup
