// Judging a set of databases as the add-in would.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "check/Findings.h"

namespace lng {

struct CheckedFiles {
    // Databases, or one text source that holds them.
    std::vector<std::filesystem::path> files;
    std::optional<std::filesystem::path> common, help, backgrounds;
    // The source among the files; empty where there is none.
    std::string SourcePath() const;
};

// Reads a set and reports every fault. Raises Fault for a source that can't be made into databases and for a
// file that is no part of a set, WrongCall for two files of one kind.
Findings CheckSet(const CheckedFiles& files);

}  // namespace lng
