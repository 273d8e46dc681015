#include "platform/automation/dbus/BusErrors.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "platform/automation/Names.h"
#include "platform/automation/dbus/Wire.h"

namespace platform {

namespace {

struct NamedNumber {
    std::string_view name;
    ErrorNumber number;
};

// The errors of the bus itself, by name without the common prefix.
constexpr NamedNumber numbersOfBusErrors[] = {
    {"ServiceUnknown", ErrorNumber::ServerGone},
    {"NameHasNoOwner", ErrorNumber::ServerGone},
    {"NoServer", ErrorNumber::ServerGone},
    {"NoReply", ErrorNumber::ServerGone},
    {"Timeout", ErrorNumber::ServerGone},
    {"TimedOut", ErrorNumber::ServerGone},
    {"Disconnected", ErrorNumber::ServerGone},
    {"UnknownObject", ErrorNumber::ServerGone},
    {"UnknownMethod", ErrorNumber::NoSuchMember},
    {"UnknownInterface", ErrorNumber::NoSuchMember},
    {"UnknownProperty", ErrorNumber::NoSuchMember},
    {"InvalidArgs", ErrorNumber::TypeMismatch},
    {"InvalidSignature", ErrorNumber::TypeMismatch},
};

constexpr std::string_view busPrefix = "org.freedesktop.DBus.Error.";
// The common prefix of errors for a service that the bus couldn't start.
constexpr std::string_view startPrefix = "org.freedesktop.DBus.Error.Spawn.";

ErrorNumber NumberOfName(std::string_view name) {
    if (name.starts_with(startPrefix)) return ErrorNumber::ServerGone;
    if (!name.starts_with(busPrefix)) return ErrorNumber::AutomationError;
    name.remove_prefix(busPrefix.size());
    const auto found = std::find_if(std::begin(numbersOfBusErrors), std::end(numbersOfBusErrors),
                                    [&](const NamedNumber& entry) { return entry.name == name; });
    return found == std::end(numbersOfBusErrors) ? ErrorNumber::AutomationError : found->number;
}

struct ErrorBody {
    std::string description;
    std::int32_t number = 0;
};

ErrorBody ReadBody(sd_bus_message* reply) {
    ErrorBody body;
    const char* description = nullptr;
    sd_bus_message_rewind(reply, true);
    if (sd_bus_message_read_basic(reply, 's', &description) <= 0) return body;
    body.description = description;
    if (sd_bus_message_read_basic(reply, 'i', &body.number) <= 0) body.number = 0;
    return body;
}

Text Mended(Text text) {
    for (std::size_t i = 0; i < text.size(); ++i)
        if (IsUnfit(text, i)) text[i] = u'\xFFFD';
    return text;
}

bool IsDisconnection(int error) {
    return error == ENOTCONN || error == ECONNRESET || error == EPIPE || error == ESHUTDOWN ||
           error == ECONNABORTED || error == ECONNREFUSED;
}

}  // namespace

BusError UnknownObject(std::string_view path) {
    return {SD_BUS_ERROR_UNKNOWN_OBJECT, ErrorNumber::ServerGone, path};
}
BusError UnknownInterface(std::string_view interface) {
    return {SD_BUS_ERROR_UNKNOWN_INTERFACE, ErrorNumber::NoSuchMember, interface};
}
BusError UnknownMethod(std::string_view member) {
    return {SD_BUS_ERROR_UNKNOWN_METHOD, ErrorNumber::NoSuchMember, member};
}
BusError UnknownProperty(std::string_view member) {
    return {SD_BUS_ERROR_UNKNOWN_PROPERTY, ErrorNumber::NoSuchMember, member};
}
BusError ReadOnlyProperty(std::string_view member) {
    return {SD_BUS_ERROR_PROPERTY_READ_ONLY, ErrorNumber::ReadOnlyProperty, member};
}
BusError InvalidArguments(std::string_view detail) {
    return {SD_BUS_ERROR_INVALID_ARGS, ErrorNumber::TypeMismatch, detail};
}

void RequireSuccess(int result) {
    if (result >= 0) return;
    const auto number = IsDisconnection(-result) ? ErrorNumber::ServerGone : ErrorNumber::AutomationError;
    throw RuntimeError(number, std::strerror(-result));
}

MessageRef ErrorAnswer(sd_bus_message* call, const char* name, const RuntimeError& error) {
    const std::string description = ToUtf8(Mended(error.Description()));
    const sd_bus_error content{name, description.c_str(), 0};
    sd_bus_message* message = nullptr;
    RequireSuccess(sd_bus_message_new_method_error(call, &message, &content));
    MessageRef reply = Adopted(message);
    RequireSuccess(sd_bus_message_append(message, "i", error.Number()));
    return reply;
}

RuntimeError ErrorOfReply(sd_bus_message* reply) {
    const std::string_view name = sd_bus_message_get_error(reply)->name;
    const ErrorBody body = ReadBody(reply);
    if (name == bus::errorName && body.number != 0)
        return RuntimeError(body.number, FromUtf8(body.description));
    const ErrorNumber number = NumberOfName(name);
    if (body.description.empty()) return RuntimeError(number, name);
    return RuntimeError(static_cast<std::int32_t>(number), FromUtf8(body.description));
}

bool IsBusy(sd_bus_message* reply) {
    return sd_bus_message_is_method_error(reply, bus::busyErrorName) > 0;
}

}  // namespace platform
