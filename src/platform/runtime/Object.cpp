#include "platform/runtime/Object.h"

#include <algorithm>
#include <string>

namespace platform {

namespace {

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool IsWrite(InvokeKind kind) {
    return kind == InvokeKind::PropertyPut || kind == InvokeKind::PropertyPutObject;
}

}  // namespace

bool Member::IsWrite() const {
    return platform::IsWrite(kind);
}

bool Member::IsMethod() const {
    return kind == InvokeKind::Method || parameters.size() > (IsWrite() ? 1U : 0U);
}

bool SameMemberName(std::string_view left, std::string_view right) {
    return left.size() == right.size() && std::equal(left.begin(), left.end(), right.begin(),
                                                     [](char a, char b) { return Lower(a) == Lower(b); });
}

const Member* FindMember(const ClassDescription& description, std::string_view name, InvokeKind kind) {
    for (const Member& member : description.members)
        if (member.IsWrite() == IsWrite(kind) && SameMemberName(member.name, name)) return &member;
    return nullptr;
}

Value Converted(const Value& value, ValueType type) {
    if (value.IsMissing()) return value;
    switch (type) {
        case ValueType::None:
        case ValueType::Variant:
            return value;
        case ValueType::String:
            return value.ToText();
        case ValueType::Integer:
            return value.ToInteger();
        case ValueType::Long:
            return value.ToLong();
        case ValueType::Boolean:
            return value.ToBoolean();
        case ValueType::Single:
            return value.ToSingle();
        case ValueType::Double:
            return value.ToDouble();
        case ValueType::Date:
            return value.ToDate();
        case ValueType::Object:
            return value.ToObject();
    }
    return value;
}

Value InvokeMember(Object& object, const Member& member, Arguments& arguments) {
    if (arguments.size() > member.parameters.size())
        throw RuntimeError(ErrorNumber::WrongArgumentCount, member.name);
    return member.invoke(object, member, arguments);
}

Value Object::Invoke(std::string_view name, InvokeKind kind, Arguments& arguments) {
    const ClassDescription& description = Class();
    if (const Member* member = FindMember(description, name, kind))
        return InvokeMember(*this, *member, arguments);
    const auto other = IsWrite(kind) ? InvokeKind::PropertyGet : InvokeKind::PropertyPut;
    const std::string where = std::string(description.name) + "." + std::string(name);
    if (IsWrite(kind) && FindMember(description, name, other))
        throw RuntimeError(ErrorNumber::ReadOnlyProperty, where);
    throw RuntimeError(ErrorNumber::NoSuchMember, where);
}

std::shared_ptr<void> Object::WhenOwnerGone(std::function<void()>) {
    return nullptr;
}

}  // namespace platform
