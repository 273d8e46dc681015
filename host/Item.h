// One item of a request or an answer.
#pragma once

#include "platform/runtime/Text.h"

namespace switchdesk {

struct Item {
    platform::Text command;
    platform::Text first;   // number of the data item
    platform::Text second;  // the value: to be written, or read
    platform::Text extra;   // the exchange's answer text
    friend bool operator==(const Item&, const Item&) = default;
};

}  // namespace switchdesk
