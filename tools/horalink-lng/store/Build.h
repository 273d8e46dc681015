// From a text source to databases.
#pragma once

#include <filesystem>
#include <vector>

#include "source/Source.h"

namespace lng {

// Fills the empty file `file` with a database. `path` is the source's, for what is wrong. Raises Fault with
// source file, line, table, row and field.
void FillDatabase(const std::string& path, const DatabaseSource& database, const std::filesystem::path& file);

// Makes the databases of a source under their own names in a folder, all of them or none, and returns the
// files. Files that are there are replaced only with `replace`.
std::vector<std::filesystem::path> BuildInto(const Source& source, const std::filesystem::path& folder,
                                             bool replace);

// Makes the one database of a source as the file `file`. Raises Fault where the source holds more.
void BuildAs(const Source& source, const std::filesystem::path& file, bool replace);

}  // namespace lng
