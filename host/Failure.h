// Why an exchange couldn't do what was asked.
#pragma once

#include "platform/runtime/Text.h"

namespace switchdesk {

struct Failure {
    platform::TextView answer;  // the answer text of the items
    platform::Text sentence;    // for the operator
    bool uncertain = false;     // what was asked may have been done
};

}  // namespace switchdesk
