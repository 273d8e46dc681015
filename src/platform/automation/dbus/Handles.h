// Owning handles for the reference-counted types of the bus library.
#pragma once

#include <systemd/sd-bus.h>

#include <memory>

namespace platform {

struct BusDeleter {
    void operator()(sd_bus* bus) const { sd_bus_unref(bus); }
    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
using BusRef = std::unique_ptr<sd_bus, BusDeleter>;
using SlotRef = std::unique_ptr<sd_bus_slot, BusDeleter>;

// Copyable, since queued functions hold messages.
using MessageRef = std::shared_ptr<sd_bus_message>;

// Adopted takes over a reference, Shared adds one.
inline MessageRef Adopted(sd_bus_message* message) {
    return MessageRef(message, sd_bus_message_unref);
}
inline MessageRef Shared(sd_bus_message* message) {
    return Adopted(sd_bus_message_ref(message));
}

}  // namespace platform
