// Reports what a start of the add-in would use, and what is wrong with it.
#pragma once

#include <string>

namespace setup {

// The report in plain words, with a remedy for each problem. Sets `isWell` to whether there are none.
std::string Status(bool& isWell);

}  // namespace setup
