// Service files of the session bus: which program it starts for a class.
#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace setup {

inline constexpr const char* addInClass = "Horalink10013.cOLELayer";

// Why a command failed. The exit status is then 1.
struct Fault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The directories that the bus searches, in order: of the session, of the user, of the site. The first file
// for a class counts.
std::vector<std::filesystem::path> ServiceDirectories();
// The user's own directory among them, empty without a home.
std::filesystem::path OwnServices();

struct Service {
    std::filesystem::path file;
    std::string command;

    std::filesystem::path Program() const;
    // True if this tool, in this or an earlier version, wrote the file.
    bool IsMadeHere() const;
};
// The first service file of a class in these directories.
std::optional<Service> FindService(const std::string& name,
                                   const std::vector<std::filesystem::path>& directories);

// Makes the bus start `command` for a class. Writes a file in `directory`, unless the directories after it
// already lead to that command. Raises Fault if `directory` has a file that this tool didn't write.
void SetService(const std::string& name, const std::string& command, const std::filesystem::path& directory);

// Quotes a word of a command line, for the bus and the shell.
std::string Quoted(const std::string& word);

}  // namespace setup
