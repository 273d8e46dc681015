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

// Reads all at once, so that the host needn't keep the record. Raises what its members raise.
Request ReadRequest(const platform::ObjectRef& record);

}  // namespace switchdesk
