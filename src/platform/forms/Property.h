// Properties of the forms model: a value that tells its owner when it changes.
#pragma once

#include <utility>

namespace platform::forms {

// Whoever has properties. Changed is called after a value became another one, never for the same value.
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

    // Takes over what the operator did on the screen, which shows it already.
    void Follow(T value) { value_ = std::move(value); }

  private:
    Watched& owner_;
    T value_;
};

}  // namespace platform::forms
