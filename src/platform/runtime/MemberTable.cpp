#include "platform/runtime/MemberTable.h"

namespace platform {

Slots::Slots(Member member) {
    push_back(std::move(member));
}

Slots::Slots(std::initializer_list<Slots> parts) {
    for (const Slots& part : parts) insert(end(), part.begin(), part.end());
}

const Value& detail::ArgumentOf(const Member& member, const Arguments& arguments, std::size_t parameter) {
    static const Value missing(Missing{});
    const Value& argument = parameter < arguments.size() ? arguments[parameter] : missing;
    if (argument.IsMissing() && !member.parameters[parameter].optional)
        throw RuntimeError(ErrorNumber::WrongArgumentCount, member.name);
    return argument;
}

}  // namespace platform
