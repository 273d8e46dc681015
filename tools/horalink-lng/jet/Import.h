// From the Jet format to ours.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "source/Source.h"

namespace lng {

struct ImportedDatabase {
    DatabaseSource source;
    std::vector<std::string> notKept;  // in words
    bool lostValues = false;           // a value of a field is among them
};

// Reads every table of a file. Raises Fault where the file can't be read, or gives other rows than it counts.
ImportedDatabase ImportJet(const std::filesystem::path& file);

// Counts the rows of a database once more in its file. Raises Fault where they differ from what was imported.
void RequireAllRows(const DatabaseSource& source, const std::filesystem::path& file);

}  // namespace lng
