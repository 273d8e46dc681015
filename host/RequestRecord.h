// A request, read from its record.
#pragma once

#include <vector>

#include "host/Answer.h"
#include "platform/runtime/Object.h"

namespace switchdesk {

struct Request {
    platform::Text exchange, loginId, tag;
    std::vector<Item> items;
};

// Reads the whole record at once, so that the host needn't keep a reference to it. Raises what its members
// raise.
Request ReadRequest(const platform::ObjectRef& record);

}  // namespace switchdesk
