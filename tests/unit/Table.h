// The cases of a test, one a row.
#pragma once

#include <tuple>
#include <vector>

namespace platform {

template <class... Columns>
using Table = std::vector<std::tuple<Columns...>>;

}  // namespace platform
