// Judges the window: its texts, fonts and pictures, and whether each text fits its place.
#pragma once

#include "Judged.h"

namespace lng {

void JudgeDialog(const Judged& addIn, Shelf& shelf);

// The help topics that are needed, each with one control that refers to it.
std::map<std::int32_t, std::string> NeededTopics(Shelf& shelf);

}  // namespace lng
