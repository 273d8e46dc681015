// Builds member tables: makes each slot from a pointer to the C++ member.
#pragma once

#include <initializer_list>
#include <tuple>
#include <type_traits>
#include <utility>

#include "platform/runtime/Object.h"

namespace platform {

// Slots in order, combined from single slots and other tables.
struct Slots : std::vector<Member> {
    Slots(Member member);
    Slots(std::initializer_list<Slots> parts);
};

// A parameter whose argument may be left out. The member then gets a default value, or Missing for a Variant.
constexpr Parameter Optional(std::string_view name) {
    return {name, ValueType::Variant, true};
}

namespace detail {

template <class T>
constexpr ValueType TypeOf() {
    if constexpr (std::is_void_v<T>)
        return ValueType::None;
    else if constexpr (std::is_same_v<T, Value>)
        return ValueType::Variant;
    else if constexpr (std::is_same_v<T, Text>)
        return ValueType::String;
    else if constexpr (std::is_same_v<T, std::int16_t>)
        return ValueType::Integer;
    else if constexpr (std::is_same_v<T, std::int32_t>)
        return ValueType::Long;
    else if constexpr (std::is_same_v<T, bool>)
        return ValueType::Boolean;
    else if constexpr (std::is_same_v<T, float>)
        return ValueType::Single;
    else if constexpr (std::is_same_v<T, double>)
        return ValueType::Double;
    else if constexpr (std::is_same_v<T, Date>)
        return ValueType::Date;
    else
        return ValueType::Object;
}

// The argument for a parameter; Missing if an optional one is left out. Raises 450 if a required one is left
// out.
const Value& ArgumentOf(const Member& member, const Arguments& arguments, std::size_t parameter);

template <class Type>
void Take(Type& variable, const Member& member, const Arguments& arguments, std::size_t parameter) {
    const Value& argument = ArgumentOf(member, arguments, parameter);
    if (std::is_same_v<Type, Value> || !argument.IsMissing()) Assign(variable, argument);
}

// An argument that the member didn't change is returned as it came, not as it was converted.
template <class Declared, class Type>
void GiveBack(const Type& variable, const Member& member, Arguments& arguments, std::size_t parameter) {
    if constexpr (std::is_same_v<Declared, Type&>) {
        Type before{};
        Take(before, member, arguments, parameter);
        if (parameter < arguments.size() && !(variable == before)) arguments[parameter] = Value(variable);
    }
}

inline Parameter Typed(Parameter parameter, ValueType type) {
    parameter.type = type;
    return parameter;
}

// Makes a slot from a signature. Non-const references are passed by reference, other parameters by value.
template <class Class, class Result, class... Declared>
struct Signature {
    template <auto Function>
    static Value Invoke(Object& object, const Member& member, Arguments& arguments) {
        std::tuple<std::remove_cvref_t<Declared>...> all;
        return std::apply(
            [&](auto&... variables) {
                [[maybe_unused]] std::size_t parameter = 0;
                (Take(variables, member, arguments, parameter++), ...);
                const auto call = [&]() -> Result {
                    return std::invoke(Function, static_cast<Class&>(object),
                                       static_cast<Declared&&>(variables)...);
                };
                Value result;
                if constexpr (std::is_void_v<Result>)
                    call();
                else
                    result = Value(call());
                parameter = 0;
                (GiveBack<Declared>(variables, member, arguments, parameter++), ...);
                return result;
            },
            all);
    }

    template <auto Function, class... Names>
    static Member Slot(InvokeKind kind, std::string_view name, const Names&... parameters) {
        static_assert(sizeof...(Names) == sizeof...(Declared), "each parameter has a name");
        return {name,
                kind,
                {Typed({parameters}, TypeOf<std::remove_cvref_t<Declared>>())...},
                TypeOf<std::remove_cvref_t<Result>>(),
                &Invoke<Function>};
    }
};

// The type of a field's value. For a Property that is the type of the property's value.
template <class Field>
struct ContentOf {
    using Type = std::remove_const_t<Field>;
};
template <class Field>
    requires requires { typename Field::Content; }
struct ContentOf<Field> {
    using Type = typename Field::Content;
};

template <class Pointer>
struct Reached;
template <class Class, class Field>
struct Reached<Field Class::*> {
    using Content = typename ContentOf<Field>::Type;
    using Reader = Signature<Class, const Content&>;
    using Writer = Signature<Class, void, Content>;
    template <auto Pointer>
    static void Write(Class& object, Content value) {
        object.*Pointer = std::move(value);
    }
};
template <class Class, class Result, class... Declared>
struct Reached<Result (Class::*)(Declared...)> {
    using Reader = Signature<Class, Result, Declared...>;
};
template <class Class, class Result, class... Declared>
struct Reached<Result (Class::*)(Declared...) const> : Reached<Result (Class::*)(Declared...)> {};

}  // namespace detail

// A member function, with the names of its parameters: Method<&cListRequest::Clear>("Clear").
template <auto Function, class... Names>
Member Method(std::string_view name, const Names&... parameters) {
    using Signature = typename detail::Reached<decltype(Function)>::Reader;
    return Signature::template Slot<Function>(InvokeKind::Method, name, parameters...);
}

// The read slot of a property: from a field, or from a function whose parameters are the index.
template <auto Reader, class... Names>
Member Read(std::string_view name, const Names&... index) {
    using Signature = typename detail::Reached<decltype(Reader)>::Reader;
    return Signature::template Slot<Reader>(InvokeKind::PropertyGet, name, index...);
}

// The write slot: from a field, or from a function whose last parameter is the new value. A single parameter
// without a name is called "Value".
template <auto Writer, class... Names>
Member Write(std::string_view name, const Names&... indexAndValue) {
    using Reached = detail::Reached<decltype(Writer)>;
    if constexpr (sizeof...(Names) == 0)
        return Write<Writer>(name, "Value");
    else if constexpr (std::is_member_object_pointer_v<decltype(Writer)>)
        return Reached::Writer::template Slot<&Reached::template Write<Writer>>(InvokeKind::PropertyPut, name,
                                                                                indexAndValue...);
    else
        return Reached::Reader::template Slot<Writer>(InvokeKind::PropertyPut, name, indexAndValue...);
}

// Both slots of a property without an index, the read slot first.
template <auto Reader, auto Writer = Reader>
Slots ReadWrite(std::string_view name) {
    return {Read<Reader>(name), Write<Writer>(name)};
}

}  // namespace platform
