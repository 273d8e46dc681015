// Values in messages.
#pragma once

#include <functional>
#include <string>

#include "platform/automation/dbus/Handles.h"
#include "platform/runtime/Object.h"

namespace platform {

// Where an object is found on the bus.
struct Address {
    std::string owner, path;
    bool IsNothing() const { return owner.empty(); }
    friend bool operator==(const Address&, const Address&) = default;
};

using AddressOfObject = std::function<Address(const ObjectRef&)>;
using ObjectAtAddress = std::function<ObjectRef(const Address&)>;

// True where the unit at `index` makes a text that receivers can't take: U+0000, or the end of one of the
// code points that are no character.
bool IsUnfit(TextView text, std::size_t index);

// Each raises 5 for a text that can't travel.
void AppendText(sd_bus_message* message, TextView text);
void AppendAddress(sd_bus_message* message, const Address& address);
void AppendVariant(sd_bus_message* message, const Value& value, const AddressOfObject& addressOf);
// Bare, as the signature of `type` says. Raises what converting to `type` raises.
void AppendTyped(sd_bus_message* message, const Value& value, ValueType type,
                 const AddressOfObject& addressOf);

// Each raises 13 for anything else than what it reads, 6 for a number or date out of range, and what
// `objectAt` raises. The text stays as long as the message.
std::string_view ReadString(sd_bus_message* message);
std::uint16_t ReadWord(sd_bus_message* message);
Address ReadAddress(sd_bus_message* message);
Value ReadVariant(sd_bus_message* message, const ObjectAtAddress& objectAt);
Value ReadTyped(sd_bus_message* message, ValueType type, const ObjectAtAddress& objectAt);

// An array of variants: calls `read` for every entry.
void ReadVariants(sd_bus_message* message, const std::function<void()>& read);

}  // namespace platform
