// Values under text keys.
#pragma once

#include <vector>

#include "platform/runtime/Value.h"

namespace platform {

// Keeps the order of adding; keys compare without regard to case.
class Collection {
  public:
    // Raises 457 for a key that is there already.
    void Add(Value item, TextView key);
    // Raises 5 for a key that isn't there.
    const Value& Item(TextView key) const;
    std::size_t Count() const { return entries_.size(); }

  private:
    struct Entry {
        Text key;
        Value item;
    };
    const Entry* Find(TextView key) const;

    std::vector<Entry> entries_;
};

}  // namespace platform
