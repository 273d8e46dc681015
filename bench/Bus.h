// Calls over the bus, for all programs that call the add-in.
#pragma once

#include <systemd/sd-bus.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace bench {

inline constexpr const char *addInClass = "Horalink10013.cOLELayer", *exchangeName = "Main Office",
                            *objectInterface = "org.velmora.Automation1.Object",
                            *responsePath = "/Response";  // of the host's answer

using Bus = std::unique_ptr<sd_bus, decltype(&sd_bus_flush_close_unref)>;
using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

// Raises what the library reports.
inline int Check(int result, const char* what) {
    if (result < 0) throw std::runtime_error(std::string(what) + ": " + std::to_string(result));
    return result;
}

inline Bus OpenBus() {
    sd_bus* bus = nullptr;
    Check(sd_bus_open_user(&bus), "can't open the bus");
    return Bus(bus, sd_bus_flush_close_unref);
}

struct Reference {
    std::string owner, path;
};

inline Reference ReadReference(sd_bus_message* message) {
    const char *owner = nullptr, *path = nullptr;
    Check(sd_bus_message_read(message, "(so)", &owner, &path), "no object");
    return {owner, path};
}

// Waits for the answer, and serves no calls meanwhile.
template <typename... Arguments>
Message Ask(sd_bus* bus, const Reference& to, const char* interface, const char* member,
            const std::string& signature = "", Arguments... arguments) {
    sd_bus_message* answer = nullptr;
    Check(sd_bus_call_method(bus, to.owner.c_str(), to.path.c_str(), interface, member, nullptr, &answer,
                             signature.c_str(), arguments...),
          member);
    return Message(answer, sd_bus_message_unref);
}

// An object of a class; the caller owns the reference.
inline Reference Create(sd_bus* bus, const char* className) {
    const Reference factory{className, "/Factory"};
    return ReadReference(Ask(bus, factory, "org.velmora.Automation1.Factory", "CreateInstance").get());
}

enum Kind { Method = 1, Read = 2, Write = 4 };

// A late-bound call; `types` describes an array of variants.
template <typename... Arguments>
Message Invoke(sd_bus* bus, const Reference& to, const char* member, Kind kind, const char* types,
               Arguments... arguments) {
    return Ask(bus, to, objectInterface, "Invoke", std::string("sq") + types, member, static_cast<int>(kind),
               arguments...);
}

// Shows the dialog without waiting for it: the caller must watch the window from the start.
inline void Show(sd_bus* bus, const Reference& addIn) {
    Check(sd_bus_call_method_async(bus, nullptr, addIn.owner.c_str(), addIn.path.c_str(), objectInterface,
                                   "Invoke", nullptr, nullptr, "sqav", "Visible", Write, 1, "b", 1),
          "Visible");
    Check(sd_bus_flush(bus), "Visible");
}

// Creates the add-in and shows its dialog, without a host object.
inline Reference Open(sd_bus* bus) {
    const Reference addIn = Create(bus, addInClass);
    Invoke(bus, addIn, "RegisterPBX", Method, "av", 3, "s", exchangeName, "(so)", "", "/", "n", 1);
    Show(bus, addIn);
    return addIn;
}

inline pid_t ProcessOf(sd_bus* bus, const Reference& object) {
    sd_bus_creds* credentials = nullptr;
    Check(sd_bus_get_name_creds(bus, object.owner.c_str(), SD_BUS_CREDS_PID, &credentials),
          "the server has ended");
    pid_t process = 0;
    sd_bus_creds_get_pid(credentials, &process);
    sd_bus_creds_unref(credentials);
    return process;
}

}  // namespace bench
