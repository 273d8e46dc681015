// Tables of cases, and many results as one text, so that one assertion sees them all.
#pragma once

#include "ErrorOf.h"
#include "Table.h"
#include "platform/runtime/Value.h"

namespace platform {

// "first|second|", each as a value is written.
template <class... Values>
std::string Joined(const Values&... values) {
    std::string joined;
    ((joined += ToUtf8(Value(values).ToText()) + "|"), ...);
    return joined;
}

// The faults of calls in their order, each with its number, such as "6 Overflow|0 |".
template <class... Calls>
std::string Faults(const Calls&... calls) {
    std::string joined;
    ((joined += FaultOf(calls) + "|"), ...);
    return joined;
}

}  // namespace platform
