// Values by text key.
#pragma once

#include <unordered_map>

#include "platform/runtime/Value.h"

namespace platform {

// Ignores case in keys.
class Collection {
  public:
    // Raises 457 if the key is in use.
    void Add(Value item, TextView key) {
        if (!items_.emplace(UpperCase(key), std::move(item)).second)
            throw RuntimeError(ErrorNumber::DuplicateKey);
    }
    // Raises 5 for an unknown key.
    const Value& Item(TextView key) const {
        const auto found = items_.find(UpperCase(key));
        if (found == items_.end()) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
        return found->second;
    }

  private:
    std::unordered_map<Text, Value> items_;  // by key in upper case
};

}  // namespace platform
