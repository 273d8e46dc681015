// Reading a text source.
#pragma once

#include <filesystem>
#include <string_view>

#include "source/Source.h"

namespace lng {

// Reads a source; `path` is named in what is wrong with it. Raises Fault with file and line.
Source ParseSource(const std::string& path, std::string_view text);

// The same out of a file.
Source ReadSource(const std::filesystem::path& file);

// The whole content of a file. Raises Fault where it can't be read.
std::string ReadWholeFile(const std::filesystem::path& file);

}  // namespace lng
