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

// Fills in the optional arguments at the end, and converts all to the declared types.
Arguments Prepared(const Member& member, const Arguments& given) {
    const auto& parameters = member.parameters;
    if (given.size() > parameters.size()) throw RuntimeError(ErrorNumber::WrongArgumentCount, member.name);
    const Value missing(Missing{});
    Arguments prepared(parameters.size());
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const Value& argument = i < given.size() ? given[i] : missing;
        if (argument.IsMissing() && !parameters[i].optional)
            throw RuntimeError(ErrorNumber::WrongArgumentCount, member.name);
        prepared[i] = Converted(argument, parameters[i].type);
    }
    return prepared;
}

}  // namespace

bool SameMemberName(std::string_view left, std::string_view right) {
    return left.size() == right.size() && std::equal(left.begin(), left.end(), right.begin(),
                                                     [](char a, char b) { return Lower(a) == Lower(b); });
}

const Member* FindMember(const ClassDescription& description, std::string_view name, InvokeKind kind) {
    for (const Member& member : description.members)
        if (IsWrite(member.kind) == IsWrite(kind) && SameMemberName(member.name, name)) return &member;
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
    Arguments prepared = Prepared(member, arguments);
    const Arguments before = prepared;
    Value result = member.invoke(object, prepared);
    // What the member left alone goes back as it came, not as it was converted.
    for (std::size_t i = 0; i < arguments.size(); ++i)
        if (!(prepared[i] == before[i])) arguments[i] = prepared[i];
    return result;
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
