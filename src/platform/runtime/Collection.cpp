#include "platform/runtime/Collection.h"

#include <algorithm>

namespace platform {

const Collection::Entry* Collection::Find(TextView key) const {
    const auto found = std::find_if(entries_.begin(), entries_.end(),
                                    [&](const Entry& entry) { return EqualsIgnoringCase(entry.key, key); });
    return found == entries_.end() ? nullptr : &*found;
}

void Collection::Add(Value item, TextView key) {
    if (Find(key)) throw RuntimeError(ErrorNumber::DuplicateKey);
    entries_.push_back({Text(key), std::move(item)});
}

const Value& Collection::Item(TextView key) const {
    if (const Entry* entry = Find(key)) return entry->item;
    throw RuntimeError(ErrorNumber::InvalidProcedureCall);
}

}  // namespace platform
