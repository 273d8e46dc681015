// Tables of cases, and many results as one text, so that one assertion sees them all.
#pragma once

#include <tuple>
#include <vector>

#include "platform/runtime/Value.h"

namespace platform {

// The cases of a test, one a row.
template <class... Columns>
using Table = std::vector<std::tuple<Columns...>>;

// The error of a call; its number is 0 where the call raises none.
template <class Call>
RuntimeError Raised(Call call) {
    try {
        call();
    } catch (const RuntimeError& error) {
        return error;
    }
    return RuntimeError(0, u"");
}

template <class Call>
std::int32_t ErrorOf(Call call) {
    return Raised(call).Number();
}
// The error's number and description, such as "6 Overflow".
template <class Call>
std::string FaultOf(Call call) {
    const RuntimeError error = Raised(call);
    return std::to_string(error.Number()) + " " + error.what();
}

// The faults of calls in their order, such as "6 Overflow|0 |".
template <class... Calls>
std::string Faults(const Calls&... calls) {
    std::string joined;
    ((joined += FaultOf(calls) + "|"), ...);
    return joined;
}

// "first|second|", each as a value is written.
template <class... Values>
std::string Joined(const Values&... values) {
    std::string joined;
    ((joined += ToUtf8(Value(values).ToText()) + "|"), ...);
    return joined;
}

}  // namespace platform
