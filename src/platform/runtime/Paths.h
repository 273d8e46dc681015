// Turns path texts into real paths. The program keeps paths as text, with backslashes and in any letter case,
// until it opens a file.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "platform/runtime/Text.h"

namespace platform {

// The real path for a path text: accepts both kinds of separators, resolves ".." textually, and ignores case
// in each component that has no exact match. Relative paths start at `from`. Components that don't exist keep
// their spelling.
std::filesystem::path RealPath(TextView path, const std::filesystem::path& from = {});

// The part of an absolute path below a directory, compared as text, ignoring case. Nothing if the path isn't
// below it.
std::optional<Text> Below(TextView path, const std::filesystem::path& directory);

// Whether a file or directory exists; false if that can't be determined.
bool Exists(const std::filesystem::path& path);

// A real path as the program writes it: absolute, with backslashes.
Text PathText(const std::filesystem::path& path);

// The name of the regular file at `path`, or an empty text if there is none.
using Find = std::function<std::filesystem::path(TextView path)>;
Text Dir(TextView path, const Find& find = [](TextView each) { return RealPath(each); });

// The content of a regular file. Nothing if it can't be read, and for anything else, such as a pipe, which
// could block.
std::optional<std::string> FileContent(const std::filesystem::path& file);

}  // namespace platform
