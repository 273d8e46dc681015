// The commands of the tool.
#pragma once

#include <string>
#include <vector>

namespace lng {

// Runs the tool with the words behind its name and returns its exit status: 0 done, 1 a fault was found, 2 a
// call that means nothing.
int RunTool(const std::vector<std::string>& words);

}  // namespace lng
