// Whether the add-in can write its version into the register.
#pragma once

#include <filesystem>
#include <string>

#include "platform/runtime/Layers.h"

namespace setup {

// Something that is wrong, and what to do about it: commands of the shell where `isCommand`, else a sentence.
struct Problem {
    std::string what, remedy;
    bool isCommand = false;
};

// What keeps `file` from being written; nothing wrong where that is empty. `ownPlace` is where it's copied to
// first.
Problem ProblemOfWriting(const std::filesystem::path& ownPlace);

// Moves a file of the user's own away, so that the shared one counts.
std::string MoveAway(const std::filesystem::path& file);

}  // namespace setup
