// The variant type of arguments and results.
#pragma once

#include <cstdint>
#include <memory>
#include <variant>

#include "platform/runtime/Date.h"
#include "platform/runtime/RuntimeError.h"
#include "platform/runtime/Text.h"

namespace platform {

class Object;
using ObjectRef = std::shared_ptr<Object>;

struct Empty {
    friend bool operator==(Empty, Empty) = default;
};
struct Null {
    friend bool operator==(Null, Null) = default;
};
// An argument that was left out.
struct Missing {
    friend bool operator==(Missing, Missing) = default;
};

class Value {
  public:
    using Storage = std::variant<Empty, Null, Missing, bool, std::int16_t, std::int32_t, float, double, Date,
                                 Text, ObjectRef>;

    Value() = default;
    Value(Null) : storage_(Null{}) {}
    Value(Missing) : storage_(Missing{}) {}
    Value(bool value) : storage_(value) {}
    Value(std::int16_t value) : storage_(value) {}
    Value(std::int32_t value) : storage_(value) {}
    Value(float value) : storage_(value) {}
    Value(double value) : storage_(value) {}
    Value(Date value) : storage_(value) {}
    Value(Text value) : storage_(std::move(value)) {}
    Value(TextView value) : storage_(Text(value)) {}
    Value(const char16_t* value) : storage_(Text(value)) {}
    Value(ObjectRef value) : storage_(std::move(value)) {}
    template <class Class>
        requires std::is_base_of_v<Object, Class>
    Value(std::shared_ptr<Class> value) : storage_(ObjectRef(std::move(value))) {}
    Value(const void*) = delete;  // a pointer would silently become a Boolean

    const Storage& Stored() const { return storage_; }
    bool IsEmpty() const { return std::holds_alternative<Empty>(storage_); }
    bool IsNull() const { return std::holds_alternative<Null>(storage_); }
    bool IsMissing() const { return std::holds_alternative<Missing>(storage_); }
    bool IsObject() const { return std::holds_alternative<ObjectRef>(storage_); }

    // Conversions. Each raises 94 for Null, 13 for a value that can't be converted and 6 for one out of
    // range; an empty value counts as "", 0 or False. Fractions round to the nearest, halves to even.
    Text ToText() const;
    bool ToBoolean() const;
    std::int16_t ToInteger() const;
    std::int32_t ToLong() const;
    float ToSingle() const;
    double ToDouble() const;
    Date ToDate() const;
    // The object, which may be null. Raises 424 for a value of another kind.
    ObjectRef ToObject() const;
    // As ToText, but Null counts as empty text.
    Text ToTextOrEmpty() const;

    // Same kind and same content.
    friend bool operator==(const Value&, const Value&) = default;

  private:
    Storage storage_;
};

}  // namespace platform
