// Properties of the forms model: values that notify their owner of changes.
#pragma once

#include <utility>

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
    using Content = T;

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

}  // namespace platform::forms
