// What a call raises.
#pragma once

#include "platform/runtime/RuntimeError.h"

namespace platform {

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

}  // namespace platform
