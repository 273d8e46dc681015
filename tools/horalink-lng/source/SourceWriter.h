// Writing a text source.
#pragma once

#include <string>

#include "source/Source.h"

namespace lng {

// The text that ParseSource reads back as the same source.
std::string WriteSource(const Source& source);

}  // namespace lng
