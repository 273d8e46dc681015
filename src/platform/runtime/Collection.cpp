#include "platform/runtime/Collection.h"

namespace platform {

void Collection::Add(Value item, TextView key) {
    if (!items_.emplace(UpperCase(key), std::move(item)).second)
        throw RuntimeError(ErrorNumber::DuplicateKey);
}

const Value& Collection::Item(TextView key) const {
    const auto found = items_.find(UpperCase(key));
    if (found == items_.end()) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return found->second;
}

}  // namespace platform
