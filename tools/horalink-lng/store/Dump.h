// From a database to a text source.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "source/Source.h"

namespace lng {

struct DumpedDatabase {
    DatabaseSource source;
    std::vector<std::string> notKept;  // what a source can't hold, in words
};

// Reads a whole database. Raises Fault where the file is none, or can't be read.
DumpedDatabase DumpDatabase(const std::filesystem::path& file);

// True for a file that begins as SQLite databases do.
bool IsDatabaseFile(const std::filesystem::path& file);

}  // namespace lng
