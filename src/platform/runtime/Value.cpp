#include "platform/runtime/Value.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "platform/runtime/Format.h"

namespace platform {

namespace {

template <class... Handlers>
struct Overloaded : Handlers... {
    using Handlers::operator()...;
};
template <class... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

RuntimeError Mismatch() {
    return RuntimeError(ErrorNumber::TypeMismatch);
}
RuntimeError NullUse() {
    return RuntimeError(ErrorNumber::InvalidUseOfNull);
}

double NumberOfText(const Text& text) {
    const std::string utf8 = ToUtf8(Trim(text));
    const char* first = utf8.c_str() + (!utf8.empty() && utf8.front() == '+' ? 1 : 0);
    double number = 0;
    const auto [end, error] = std::from_chars(first, utf8.c_str() + utf8.size(), number);
    if (error == std::errc::result_out_of_range) throw RuntimeError(ErrorNumber::Overflow);
    if (error != std::errc() || end != utf8.c_str() + utf8.size() || !std::isfinite(number)) throw Mismatch();
    return number;
}

template <class Integer>
Integer WholeNumber(double number) {
    const double rounded = std::nearbyint(number);
    if (!(rounded >= double(std::numeric_limits<Integer>::min()) &&
          rounded <= double(std::numeric_limits<Integer>::max())))
        throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<Integer>(rounded);
}

}  // namespace

Text Value::ToText() const {
    return std::visit(Overloaded{
                          [](Empty) { return Text(); },
                          [](Null) -> Text { throw NullUse(); },
                          [](Missing) -> Text { throw Mismatch(); },
                          [](bool value) { return Text(value ? u"True" : u"False"); },
                          [](const Text& value) { return value; },
                          [](Date value) { return GeneralDateText(value); },
                          [](const ObjectRef&) -> Text { throw Mismatch(); },
                          [](float number) { return NumberText(number); },
                          [](double number) { return NumberText(number); },
                          [](auto whole) { return DecimalText(whole); },
                      },
                      storage_);
}

Text Value::ToTextOrEmpty() const {
    return IsNull() ? Text() : ToText();
}

double Value::ToDouble() const {
    return std::visit(Overloaded{
                          [](Empty) { return 0.0; },
                          [](Null) -> double { throw NullUse(); },
                          [](Missing) -> double { throw Mismatch(); },
                          [](bool value) { return value ? -1.0 : 0.0; },
                          [](const Text& value) { return NumberOfText(value); },
                          [](Date value) { return value.days; },
                          [](const ObjectRef&) -> double { throw Mismatch(); },
                          [](auto number) { return static_cast<double>(number); },
                      },
                      storage_);
}

bool Value::ToBoolean() const {
    if (const auto* text = std::get_if<Text>(&storage_)) {
        if (EqualsIgnoringCase(*text, u"True")) return true;
        if (EqualsIgnoringCase(*text, u"False")) return false;
    }
    return ToDouble() != 0;
}

std::int16_t Value::ToInteger() const {
    return WholeNumber<std::int16_t>(ToDouble());
}

std::int32_t Value::ToLong() const {
    return WholeNumber<std::int32_t>(ToDouble());
}

float Value::ToSingle() const {
    const double number = ToDouble();
    if (!(std::fabs(number) <= double(std::numeric_limits<float>::max())))
        throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<float>(number);
}

Date Value::ToDate() const {
    if (const auto* text = std::get_if<Text>(&storage_)) return DateOfText(*text);
    const double days = ToDouble();
    // 1 January 100 to 31 December 9999.
    if (!(days > -657435.0 && days < 2958466.0)) throw RuntimeError(ErrorNumber::Overflow);
    return {days};
}

ObjectRef Value::ToObject() const {
    if (const auto* object = std::get_if<ObjectRef>(&storage_)) return *object;
    throw RuntimeError(ErrorNumber::ObjectRequired);
}

}  // namespace platform
