// The path by which the process was started.
#pragma once

#include <filesystem>

namespace platform {

// The path by which this process was started, absolute and without "." and "..". Follows symbolic links, such
// as the one in /usr/bin, but stops at a path in a family tree (…/VELMORA32/CODE/DIRECTORY): the program
// takes its market from that path, so that a market can be a link to a program elsewhere.
std::filesystem::path ProgramFile();
// The same for a program that is started by the path `started`.
std::filesystem::path ProgramFile(const std::filesystem::path& started);

// The family tree that a program lies in, …/VELMORA32/CODE, or an empty path.
std::filesystem::path FamilyTree(const std::filesystem::path& program);

}  // namespace platform
