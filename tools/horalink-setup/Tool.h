// The command line of the tool.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace setup {

// Takes the place of this process with another program; comes back only where that failed.
using Execute = std::function<void(const std::vector<std::string>& command)>;

// Runs the tool with the words behind its name and returns its exit status: 0 done, 1 something is wrong or
// stands in the way, 2 a call that means nothing.
int RunTool(const std::vector<std::string>& words, const Execute& execute);

}  // namespace setup
