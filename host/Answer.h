// An exchange's answer to a request, or why there is none.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/runtime/Text.h"

namespace switchdesk {

// Answer texts of an exchange: for an item, or in place of a whole answer.
namespace answer {
inline constexpr platform::TextView accepted = u"OK", dataError = u"DATA ERROR", error = u"ERROR";
}

struct Item {
    platform::Text command;
    platform::Text first;   // number of the data item
    platform::Text second;  // the value: to be written, or read
    platform::Text extra;   // the exchange's answer text
    friend bool operator==(const Item&, const Item&) = default;
};

struct Answer {
    std::vector<Item> items;
    std::int32_t errCode = 0;
    platform::Text tag, loginId;  // both copied from the request
    platform::Text message;
};

// Why an exchange couldn't perform a request.
struct Failure {
    platform::TextView answer;  // the answer text of the items
    platform::Text sentence;    // for the operator
    bool uncertain = false;     // the request may have been performed
};

}  // namespace switchdesk
