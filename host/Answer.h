// What an exchange gives back on a request.
#pragma once

#include <cstdint>
#include <vector>

#include "host/Item.h"

namespace switchdesk {

struct Answer {
    std::vector<Item> items;
    std::int32_t errCode = 0;
    platform::Text tag, loginId;  // both as the request had them
    platform::Text message;
};

}  // namespace switchdesk
