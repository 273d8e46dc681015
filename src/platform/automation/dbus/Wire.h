// Reads and writes values in messages.
#pragma once

#include <functional>
#include <string>

#include "platform/automation/dbus/Handles.h"
#include "platform/runtime/Object.h"

namespace platform {

// The address of an object on the bus.
struct Address {
    std::string owner, path;
    bool IsNothing() const { return owner.empty(); }
    friend bool operator==(const Address&, const Address&) = default;
};

using AddressOfObject = std::function<Address(const ObjectRef&)>;
using ObjectAtAddress = std::function<ObjectRef(const Address&)>;

// True if receivers would reject a text because of the code unit at `index`: U+0000, or the last unit of a
// noncharacter.
bool IsUnfit(TextView text, std::size_t index);

// Each raises 5 for a text with an unfit code unit.
void AppendText(sd_bus_message* message, TextView text);
void AppendAddress(sd_bus_message* message, const Address& address);
void AppendVariant(sd_bus_message* message, const Value& value, const AddressOfObject& addressOf);
// Appends the value with the signature of `type`. Also raises what converting to `type` raises.
void AppendTyped(sd_bus_message* message, const Value& value, ValueType type,
                 const AddressOfObject& addressOf);

// Each raises 13 for a value of another type, 6 for a number or date out of range, and what `objectAt`
// raises. The text of ReadString is valid as long as the message.
std::string_view ReadString(sd_bus_message* message);
std::uint16_t ReadWord(sd_bus_message* message);
Address ReadAddress(sd_bus_message* message);
Value ReadVariant(sd_bus_message* message, const ObjectAtAddress& objectAt);
Value ReadTyped(sd_bus_message* message, ValueType type, const ObjectAtAddress& objectAt);

// Reads an array of variants: calls `read` for each entry.
void ReadVariants(sd_bus_message* message, const std::function<void()>& read);

}  // namespace platform
