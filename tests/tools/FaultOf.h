// What a step says where it fails.
#pragma once

#include <string>

#include "common/Fault.h"

namespace lng {

template <class Step>
std::string FaultOf(Step step) {
    try {
        step();
    } catch (const tools::Fault& fault) {
        return fault.what();
    }
    return "no fault";
}

}  // namespace lng
