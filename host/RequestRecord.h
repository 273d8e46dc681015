// What the host reads of a request record.
#pragma once

#include <vector>

#include "host/Answer.h"
#include "platform/runtime/Object.h"

namespace switchdesk {

struct Request {
    platform::Text exchange, loginId, tag;
    std::vector<Item> items;
};

// Reads all that is needed, so that the record itself need not be kept. Raises what its members raise.
Request ReadRequest(const platform::ObjectRef& record);

}  // namespace switchdesk
