// Values under text keys.
#pragma once

#include <unordered_map>

#include "platform/runtime/Value.h"

namespace platform {

// Keys compare without regard to case.
class Collection {
  public:
    // Raises 457 for a key that is there already.
    void Add(Value item, TextView key);
    // Raises 5 for a key that isn't there.
    const Value& Item(TextView key) const;

  private:
    std::unordered_map<Text, Value> items_;  // by key in upper case
};

}  // namespace platform
