// The window: its texts, fonts and picture, and whether each text fits its place.
#pragma once

#include "Judged.h"

namespace lng {

void JudgeDialog(const Judged& addIn, Shelf& shelf);

// The topics that the window's controls refer to, each with one of them.
std::map<std::int32_t, std::string> NeededTopics(Shelf& shelf);

}  // namespace lng
