// Objects whose members are called by name. A table describes the members (MemberTable.h).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/runtime/Value.h"

namespace platform {

// What a caller wants of a member. The numbers are part of the bus contract.
enum class InvokeKind : std::uint16_t { Method = 1, PropertyGet = 2, PropertyPut = 4, PropertyPutObject = 8 };

// Arguments in the order of declaration. A write has the new value last, an indexed property its index first.
// All are passed by reference: a callee may change an entry, and the caller sees the new value.
using Arguments = std::vector<Value>;

enum class ValueType { None, Variant, String, Integer, Long, Boolean, Single, Double, Date, Object };

struct Parameter {
    std::string_view name;
    ValueType type = ValueType::Variant;
    bool optional = false;  // passed as Missing if left out
};

// One slot of a class. `invoke` converts the arguments, and never gets more of them than there are
// parameters.
struct Member {
    std::string_view name;
    InvokeKind kind = InvokeKind::Method;
    std::vector<Parameter> parameters;
    ValueType result = ValueType::None;
    std::function<Value(Object&, const Member&, Arguments&)> invoke;

    bool IsWrite() const;
    // False for a property without an index.
    bool IsMethod() const;
};

struct TypeLibrary {
    std::string_view name, guid, version;
};

struct Slots;  // combines tables, see MemberTable.h

// A class: its type name and its members in the order of their slots. A public class has a library and GUIDs,
// and its own interface on the bus.
struct ClassDescription {
    std::string_view name;
    std::vector<Member> members;
    const TypeLibrary* library = nullptr;
    std::string_view classGuid = {}, interfaceGuid = {};
};

// Ignores case.
bool SameMemberName(std::string_view left, std::string_view right);

// The slot for a call of this kind, or null. Method and PropertyGet find each other's slots, and so do
// PropertyPut and PropertyPutObject.
const Member* FindMember(const ClassDescription& description, std::string_view name, InvokeKind kind);

// Converts to a declared type; Missing stays Missing. Raises what the conversions of Value raise.
Value Converted(const Value& value, ValueType type);

class Object : public std::enable_shared_from_this<Object> {
  public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    virtual const ClassDescription& Class() const = 0;

    // Calls a member by its name. Raises 438 for an unknown member, 383 for writing a read-only property, 450
    // for a wrong number of arguments, the conversions' errors, and what the member raises.
    virtual Value Invoke(std::string_view name, InvokeKind kind, Arguments& arguments);

    // Called when the last client of an object of this process has released it: the first before the release
    // is answered, the second afterwards. The first must not make calls.
    virtual void LastClientLeaves() {}
    virtual void LastClientGone() {}

    // Calls `left` once if the process that owns the object leaves the bus. Dropping the result ends the
    // watch. Returns null for an object of this process.
    virtual std::shared_ptr<void> WhenOwnerGone(std::function<void()> left);
};

// Calls a slot as Invoke does after finding it.
Value InvokeMember(Object& object, const Member& member, Arguments& arguments);

// --- late-bound calls -------------------------------------------------------------------------------

// An argument passed by reference: after the call the variable has the value that the callee gave it.
template <class Variable>
struct ByReference {
    Variable& variable;
};
template <class Variable>
ByReference<Variable> ByRef(Variable& variable) {
    return {variable};
}

namespace detail {

template <class T>
Value ArgumentOf(const T& value) {
    return Value(value);
}
template <class T>
Value ArgumentOf(const ByReference<T>& reference) {
    return Value(reference.variable);
}

inline void Assign(Text& variable, const Value& value) {
    variable = value.ToText();
}
inline void Assign(std::int16_t& variable, const Value& value) {
    variable = value.ToInteger();
}
inline void Assign(std::int32_t& variable, const Value& value) {
    variable = value.ToLong();
}
inline void Assign(float& variable, const Value& value) {
    variable = value.ToSingle();
}
inline void Assign(double& variable, const Value& value) {
    variable = value.ToDouble();
}
inline void Assign(Date& variable, const Value& value) {
    variable = value.ToDate();
}
inline void Assign(bool& variable, const Value& value) {
    variable = value.ToBoolean();
}
inline void Assign(Value& variable, const Value& value) {
    variable = value;
}
template <class Class>
void Assign(std::shared_ptr<Class>& variable, const Value& value) {
    const ObjectRef object = value.ToObject();
    auto cast = std::dynamic_pointer_cast<Class>(object);
    if (object && !cast) throw RuntimeError(ErrorNumber::TypeMismatch);
    variable = std::move(cast);
}

template <class T>
inline constexpr bool isByReference = false;
template <class T>
inline constexpr bool isByReference<ByReference<T>> = true;

template <class T>
void TakeBack(const T&, const Value&, const Value&) {}
template <class T>
void TakeBack(const ByReference<T>& reference, const Value& before, const Value& after) {
    if (!(before == after)) Assign(reference.variable, after);
}

template <class... Parameters>
Value InvokeLate(const ObjectRef& object, std::string_view member, InvokeKind kind,
                 const Parameters&... parameters) {
    if (!object) throw RuntimeError(ErrorNumber::ObjectNotSet);
    Arguments arguments;
    arguments.reserve(sizeof...(parameters));
    (arguments.push_back(ArgumentOf(parameters)), ...);
    if constexpr ((isByReference<Parameters> || ...)) {
        const Arguments given = arguments;
        Value result = object->Invoke(member, kind, arguments);
        arguments.resize(given.size());
        std::size_t i = 0;
        ((TakeBack(parameters, given[i], arguments[i]), ++i), ...);
        return result;
    } else {
        return object->Invoke(member, kind, arguments);
    }
}

}  // namespace detail

// Each raises 91 if `object` is null, and what Invoke raises.
template <class... Parameters>
Value Call(const ObjectRef& object, std::string_view method, const Parameters&... parameters) {
    return detail::InvokeLate(object, method, InvokeKind::Method, parameters...);
}
template <class... Parameters>
Value Get(const ObjectRef& object, std::string_view property, const Parameters&... index) {
    return detail::InvokeLate(object, property, InvokeKind::PropertyGet, index...);
}
template <class... Parameters>
void Put(const ObjectRef& object, std::string_view property, const Parameters&... indexAndValue) {
    detail::InvokeLate(object, property, InvokeKind::PropertyPut, indexAndValue...);
}

}  // namespace platform
