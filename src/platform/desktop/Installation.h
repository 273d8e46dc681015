// Finds the installation that a program belongs to.
#pragma once

#include <filesystem>
#include <vector>

#include "platform/desktop/Desktop.h"
#include "platform/runtime/Layers.h"

namespace platform {

struct Installation {
    Text market;    // CODE in the path …/VELMORA32/CODE; empty if the program lies in no such tree
    Layers layers;  // where its files are
};

// `program` is a path as ProgramFile returns it. The trees, without duplicates, are VELMORA32/CODE in the
// user's data directory, the tree that the setting InstallPath names, the one that the program was started
// in, and the one that it really lies in if it was started by a link.
Installation FindInstallation(const std::filesystem::path& program, const Settings& settings);

// The languages to look for, in order of preference: those of the setting, or else of the environment in the
// order of gettext, each followed by its form without a country; English comes last.
std::vector<Text> WantedLanguages(TextView setting);

}  // namespace platform
