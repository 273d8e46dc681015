// Finds out whether the add-in can write its version into the register.
#pragma once

#include <filesystem>
#include <string>

#include "platform/runtime/Layers.h"

namespace setup {

// A problem and its remedy: shell commands if `isCommand`, else a sentence.
struct Problem {
    std::string what, remedy;
    bool isCommand = false;
};

// The problem that prevents writing the register at `ownPlace`, where a shared one is copied first. Its texts
// are empty if there is none.
Problem ProblemOfWriting(const std::filesystem::path& ownPlace);

// The shell commands that move a user's own file away, so that the shared one counts.
std::string MoveAway(const std::filesystem::path& file);

}  // namespace setup
