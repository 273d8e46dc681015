#include "platform/automation/dbus/Wire.h"

#include <cstring>
#include <utility>

#include "platform/automation/Introspection.h"
#include "platform/automation/dbus/BusErrors.h"

namespace platform {

namespace {

// The bytes that stand for values without content.
constexpr std::uint8_t emptyMark = 0, nullMark = 1, missingMark = 10;

void RequireRead(int result) {
    if (result <= 0) throw RuntimeError(ErrorNumber::TypeMismatch, "unreadable value in a message");
}

template <class Basic>
Basic ReadBasic(sd_bus_message* message, char type) {
    Basic value{};
    RequireRead(sd_bus_message_read_basic(message, type, &value));
    return value;
}

template <class Whole>
Value LongOf(Whole number) {
    if (!std::in_range<std::int32_t>(number)) throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<std::int32_t>(number);
}

Value ReadMark(sd_bus_message* message) {
    RequireRead(sd_bus_message_enter_container(message, 'r', "y"));
    const auto mark = ReadBasic<std::uint8_t>(message, 'y');
    RequireSuccess(sd_bus_message_exit_container(message));
    switch (mark) {
        case emptyMark:
            return Value();
        case nullMark:
            return Null{};
        case missingMark:
            return Missing{};
        default:
            throw RuntimeError(ErrorNumber::TypeMismatch, "unknown kind of empty value");
    }
}

Value ReadDate(sd_bus_message* message) {
    RequireRead(sd_bus_message_enter_container(message, 'r', "d"));
    const auto days = ReadBasic<double>(message, 'd');
    RequireSuccess(sd_bus_message_exit_container(message));
    return Value(days).ToDate();
}

Value ReadBasicValue(sd_bus_message* message, char type) {
    switch (type) {
        case 's':
            return FromUtf8(ReadString(message));
        case 'n':
            return ReadBasic<std::int16_t>(message, 'n');
        case 'i':
            return ReadBasic<std::int32_t>(message, 'i');
        case 'b':
            return ReadBasic<int>(message, 'b') != 0;
        case 'd':
            return ReadBasic<double>(message, 'd');
        case 'y':
            return static_cast<std::int16_t>(ReadBasic<std::uint8_t>(message, 'y'));
        case 'q':
            return LongOf(ReadBasic<std::uint16_t>(message, 'q'));
        case 'u':
            return LongOf(ReadBasic<std::uint32_t>(message, 'u'));
        case 'x':
            return LongOf(ReadBasic<std::int64_t>(message, 'x'));
        case 't':
            return LongOf(ReadBasic<std::uint64_t>(message, 't'));
        default:
            throw RuntimeError(ErrorNumber::TypeMismatch, "a value of a type that isn't supported");
    }
}

Value ReadContent(sd_bus_message* message, std::string_view signature, const ObjectAtAddress& objectAt) {
    if (signature.size() == 1) return ReadBasicValue(message, signature[0]);
    if (signature == "(y)") return ReadMark(message);
    if (signature == "(d)") return ReadDate(message);
    if (signature == "(so)") return objectAt(ReadAddress(message));
    throw RuntimeError(ErrorNumber::TypeMismatch, "a value of a type that isn't supported");
}

const char* SignatureOfContent(const Value& value) {
    struct Signature {
        const char* operator()(Empty) { return "(y)"; }
        const char* operator()(Null) { return "(y)"; }
        const char* operator()(Missing) { return "(y)"; }
        const char* operator()(bool) { return "b"; }
        const char* operator()(std::int16_t) { return "n"; }
        const char* operator()(std::int32_t) { return "i"; }
        const char* operator()(float) { return "d"; }
        const char* operator()(double) { return "d"; }
        const char* operator()(Date) { return "(d)"; }
        const char* operator()(const Text&) { return "s"; }
        const char* operator()(const ObjectRef&) { return "(so)"; }
    };
    return std::visit(Signature(), value.Stored());
}

// Appends a value without the variant around it.
class ContentWriter {
  public:
    ContentWriter(sd_bus_message* message, const AddressOfObject& addressOf)
        : message_(message), addressOf_(addressOf) {}

    void operator()(Empty) { Mark(emptyMark); }
    void operator()(Null) { Mark(nullMark); }
    void operator()(Missing) { Mark(missingMark); }
    void operator()(bool value) { Basic('b', static_cast<int>(value)); }
    void operator()(std::int16_t value) { Basic('n', value); }
    void operator()(std::int32_t value) { Basic('i', value); }
    void operator()(float value) { Basic('d', static_cast<double>(value)); }
    void operator()(double value) { Basic('d', value); }
    void operator()(Date value) { RequireSuccess(sd_bus_message_append(message_, "(d)", value.days)); }
    void operator()(const Text& value) { AppendText(message_, value); }
    void operator()(const ObjectRef& value) { AppendAddress(message_, addressOf_(value)); }

  private:
    void Mark(std::uint8_t mark) { RequireSuccess(sd_bus_message_append(message_, "(y)", mark)); }
    template <class Number>
    void Basic(char type, Number value) {
        RequireSuccess(sd_bus_message_append_basic(message_, type, &value));
    }

    sd_bus_message* message_;
    const AddressOfObject& addressOf_;
};

void AppendContent(sd_bus_message* message, const Value& value, const AddressOfObject& addressOf) {
    std::visit(ContentWriter(message, addressOf), value.Stored());
}

void RequireFit(TextView text) {
    for (std::size_t i = 0; i < text.size(); ++i)
        if (IsUnfit(text, i))
            throw RuntimeError(ErrorNumber::InvalidProcedureCall,
                               "a text with U+0000 or a code point without character can't be handed over");
}

}  // namespace

bool IsUnfit(TextView text, std::size_t index) {
    const char16_t unit = text[index];
    if (unit == 0 || unit >= 0xFFFE || (unit >= 0xFDD0 && unit <= 0xFDEF)) return true;
    // The last two of every 65,536 code points: the pair's low sixteen bits are FFFE or FFFF.
    if (unit != 0xDFFE && unit != 0xDFFF) return false;
    return index > 0 && (text[index - 1] & 0xFC3F) == 0xD83F;
}

void AppendText(sd_bus_message* message, TextView text) {
    RequireFit(text);
    const std::string utf8 = ToUtf8(text);
    char* place = nullptr;
    RequireSuccess(sd_bus_message_append_string_space(message, utf8.size(), &place));
    std::memcpy(place, utf8.data(), utf8.size());
}

void AppendAddress(sd_bus_message* message, const Address& address) {
    RequireSuccess(sd_bus_message_append(message, "(so)", address.owner.c_str(), address.path.c_str()));
}

void AppendVariant(sd_bus_message* message, const Value& value, const AddressOfObject& addressOf) {
    RequireSuccess(sd_bus_message_open_container(message, 'v', SignatureOfContent(value)));
    AppendContent(message, value, addressOf);
    RequireSuccess(sd_bus_message_close_container(message));
}

void AppendTyped(sd_bus_message* message, const Value& value, ValueType type,
                 const AddressOfObject& addressOf) {
    if (type == ValueType::None) return;
    if (type == ValueType::Variant) return AppendVariant(message, value, addressOf);
    const Value converted = Converted(value, type);
    if (converted.IsMissing()) throw RuntimeError(ErrorNumber::TypeMismatch);
    AppendContent(message, converted, addressOf);
}

std::string_view ReadString(sd_bus_message* message) {
    return ReadBasic<const char*>(message, 's');
}

std::uint16_t ReadWord(sd_bus_message* message) {
    return ReadBasic<std::uint16_t>(message, 'q');
}

Address ReadAddress(sd_bus_message* message) {
    RequireRead(sd_bus_message_enter_container(message, 'r', "so"));
    Address address;
    address.owner = ReadString(message);
    address.path = ReadBasic<const char*>(message, 'o');
    RequireSuccess(sd_bus_message_exit_container(message));
    const bool isGood =
        address.IsNothing() ? address.path == "/" : sd_bus_service_name_is_valid(address.owner.c_str()) > 0;
    if (!isGood) throw RuntimeError(ErrorNumber::TypeMismatch, "no reference to an object");
    return address;
}

Value ReadVariant(sd_bus_message* message, const ObjectAtAddress& objectAt) {
    char type = 0;
    const char* contents = nullptr;
    RequireRead(sd_bus_message_peek_type(message, &type, &contents));
    if (type != 'v') throw RuntimeError(ErrorNumber::TypeMismatch);
    const std::string signature(contents);
    RequireRead(sd_bus_message_enter_container(message, 'v', signature.c_str()));
    Value value = ReadContent(message, signature, objectAt);
    RequireSuccess(sd_bus_message_exit_container(message));
    return value;
}

Value ReadTyped(sd_bus_message* message, ValueType type, const ObjectAtAddress& objectAt) {
    if (type == ValueType::Variant) return ReadVariant(message, objectAt);
    return Converted(ReadContent(message, SignatureOf(type), objectAt), type);
}

void ReadVariants(sd_bus_message* message, const std::function<void()>& read) {
    RequireRead(sd_bus_message_enter_container(message, 'a', "v"));
    // An empty array is at its end as soon as it is entered.
    while (sd_bus_message_at_end(message, false) == 0) read();
    RequireSuccess(sd_bus_message_exit_container(message));
}

}  // namespace platform
