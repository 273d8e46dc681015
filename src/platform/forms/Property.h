// Properties of the forms model: values that notify their owner of changes.
#pragma once

#include <utility>
#include <vector>

#include "platform/runtime/Object.h"

namespace platform::forms {

// An owner of properties. Changed is called after a value has changed, never for an equal value.
class Watched {
  public:
    virtual ~Watched() = default;
    virtual void Changed() = 0;
};

template <class T>
class Property {
  public:
    Property(Watched& owner, T initial = T()) : owner_(owner), value_(std::move(initial)) {}
    Property(const Property&) = delete;

    operator const T&() const { return value_; }
    const T& operator()() const { return value_; }
    Property& operator=(T value) {
        if (!(value_ == value)) {
            value_ = std::move(value);
            owner_.Changed();
        }
        return *this;
    }
    Property& operator=(const Property&) = delete;

    // Takes the operator's change without notifying: the screen shows it already.
    void Follow(T value) { value_ = std::move(value); }

  private:
    Watched& owner_;
    T value_;
};

namespace detail {
template <class Class, class Type>
Type ValueTypeOf(Property<Type> Class::*);
template <class Class, class Type>
Class* OwnerOf(Property<Type> Class::*);
}  // namespace detail

// Adds the read and the write form of a property to a member table.
template <auto Field>
void AddProperty(std::vector<Member>& members, std::string_view name) {
    using Class = std::remove_pointer_t<decltype(detail::OwnerOf(Field))>;
    using Type = decltype(detail::ValueTypeOf(Field));
    members.push_back({name, InvokeKind::PropertyGet, {}, TypeOf<Type>(), [](Object& self, Arguments&) {
                           return Value((dynamic_cast<Class&>(self).*Field)());
                       }});
    members.push_back({name,
                       InvokeKind::PropertyPut,
                       {{"Value", TypeOf<Type>()}},
                       ValueType::None,
                       [](Object& self, Arguments& arguments) {
                           Type value{};
                           platform::detail::Assign(value, arguments[0]);
                           dynamic_cast<Class&>(self).*Field = std::move(value);
                           return Value();
                       }});
}

}  // namespace platform::forms
