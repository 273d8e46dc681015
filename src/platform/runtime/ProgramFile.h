// The file that a process was started by.
#pragma once

#include <filesystem>

namespace platform {

// The path that this process was started by, absolute and without "." and "..". A symbolic link is followed,
// as the one in /usr/bin is, until it lies in a tree of the family (…/VELMORA32/CODE/DIRECTORY): the program
// takes its market from there, so a market can be a link to a program that lies elsewhere.
std::filesystem::path ProgramFile();
// What it would be for a program that is started by this path.
std::filesystem::path ProgramFile(const std::filesystem::path& started);

// The tree of the family that a program lies in, …/VELMORA32/CODE, or an empty path.
std::filesystem::path FamilyTree(const std::filesystem::path& program);

}  // namespace platform
