// The texts outside the window: the application's, the messages, the boxes, the help.
#pragma once

#include "Judged.h"

namespace lng {

void JudgeProject(const Judged& addIn, Desk& desk);
void JudgeMessages(const Judged& addIn, Desk& desk);
// The add-in's own boxes, among which are those of the dialog, or those that all add-ins share.
void JudgeBoxes(const Judged& judged, Shelf& shelf, std::int16_t mode);
// `topics` by number, each with who refers to it.
void JudgeHelp(const Judged& help, Shelf& shelf, const std::map<std::int32_t, std::string>& topics);

}  // namespace lng
