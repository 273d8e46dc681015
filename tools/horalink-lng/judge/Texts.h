// Judges the texts outside the window: the application's, the messages, the boxes, the help.
#pragma once

#include "Judged.h"

namespace lng {

void JudgeProject(const Judged& addIn, Desk& desk);
void JudgeMessages(const Judged& addIn, Desk& desk);
// Judges the add-in's own boxes, which include those of the dialog, or the boxes that all add-ins share.
void JudgeBoxes(const Judged& judged, Shelf& shelf, std::int16_t mode);
// `topics` are the needed ones by number, each with what refers to it.
void JudgeHelp(const Judged& help, Shelf& shelf, const std::map<std::int32_t, std::string>& topics);

}  // namespace lng
