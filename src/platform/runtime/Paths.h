// Paths stay text with backslashes, upper case and all, until a file is opened. Here they become real.
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>

#include "platform/runtime/Text.h"

namespace platform {

// The file that a path means: separators of either kind, ".." taken away by text, and each component
// found without regard to case where the exact one is missing. A relative path begins at `from`. What doesn't
// exist keeps its spelling.
std::filesystem::path RealPath(TextView path, const std::filesystem::path& from = {});

// What an absolute path says after that of a directory, compared as text without regard to case. Nothing
// where it doesn't lead below it.
std::optional<Text> Below(TextView path, const std::filesystem::path& directory);

// Whether there is a file or a directory, as far as can be seen.
bool Exists(const std::filesystem::path& path);

// A real path as the system writes it: absolute, with backslashes.
Text PathText(const std::filesystem::path& path);

// The name of the normal file at `path`, or an empty text where there is none.
using Find = std::function<std::filesystem::path(TextView path)>;
Text Dir(TextView path, const Find& find = [](TextView each) { return RealPath(each); });

// The bytes of a normal file; not open where there is none. A pipe, which would be waited for, is none.
std::ifstream OpenToRead(const std::filesystem::path& file);

}  // namespace platform
