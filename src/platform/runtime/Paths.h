// Paths stay text with backslashes, upper case and all, until a file is opened. Here they become real.
#pragma once

#include <filesystem>
#include <fstream>
#include <vector>

#include "platform/runtime/Text.h"

namespace platform {

// Directories whose spelling is known. A directory that may be entered but not listed can't be found without.
using Spellings = std::vector<Text>;

// The file that a path means: separators of either kind, ".." taken away by text, and each component
// found without regard to case where the exact one is missing. As far as a path agrees with one of the
// spellings, that one is tried first. What doesn't exist keeps its spelling.
std::filesystem::path RealPath(TextView path, const Spellings& spellings = {});

// A real path as the system writes it: absolute, with backslashes.
Text PathText(const std::filesystem::path& path);

// The name of the normal file at `path`, or an empty text where there is none.
Text Dir(TextView path, const Spellings& spellings = {});

// The bytes of a normal file; not open where there is none. A pipe, which would be waited for, is none.
std::ifstream OpenToRead(const std::filesystem::path& file);

}  // namespace platform
