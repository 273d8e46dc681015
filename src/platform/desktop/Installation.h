// The installation of the family that a program belongs to.
#pragma once

#include <filesystem>
#include <vector>

#include "platform/desktop/Desktop.h"
#include "platform/runtime/Layers.h"

namespace platform {

struct Installation {
    Text market;    // the directory …/VELMORA32/CODE names it; empty where the program lies in no such tree
    Layers layers;  // of its files
};

// `program` is the result of ProgramFile, or what it would be. The trees are, each once:
// VELMORA32/CODE in the user's data directory, the one that the setting InstallPath names, the one that the
// program was started in, and the one that the program lies in if that was a link.
Installation FindInstallation(const std::filesystem::path& program, const Settings& settings);

// The languages to look for, the most wanted first: the setting, else those of the environment in the order
// of gettext, each followed by its form without a country; English is the last.
std::vector<Text> WantedLanguages(TextView setting);

}  // namespace platform
