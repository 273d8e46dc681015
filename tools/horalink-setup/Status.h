// What a start of the add-in would use, and what is wrong with it.
#pragma once

#include <string>

namespace setup {

// In plain words, with a remedy for each fault. `isWell` becomes false where there is one.
std::string Status(bool& isWell);

}  // namespace setup
