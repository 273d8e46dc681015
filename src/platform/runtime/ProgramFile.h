// The file that a process was started by.
#pragma once

#include <filesystem>

namespace platform {

// The path that this process was started by, absolute and without "." and "..". It keeps a symbolic link in
// its last place: an installation may link to a program that lies elsewhere, and the program takes its market
// from where the link lies.
std::filesystem::path ProgramFile();

}  // namespace platform
