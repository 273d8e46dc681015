// Converts run-time errors to error messages on the bus and back.
#pragma once

#include "platform/automation/dbus/Handles.h"
#include "platform/runtime/RuntimeError.h"

namespace platform {

// A failure for which D-Bus has a standard error name, e.g. a call to a path without an object.
class BusError : public RuntimeError {
  public:
    // `name` must be a literal.
    BusError(const char* name, ErrorNumber number, std::string_view detail)
        : RuntimeError(number, detail), name_(name) {}
    const char* Name() const { return name_; }

  private:
    const char* name_;
};

BusError UnknownObject(std::string_view path);
BusError UnknownInterface(std::string_view interface);
BusError UnknownMethod(std::string_view member);
BusError UnknownProperty(std::string_view member);
BusError ReadOnlyProperty(std::string_view member);
BusError InvalidArguments(std::string_view detail);

// `result` comes from the bus library. Raises 462 if it means a lost connection, 440 for any other failure.
void RequireSuccess(int result);

// The reply to `call` that carries `error`. Replaces characters of its description that can't be sent.
MessageRef ErrorAnswer(sd_bus_message* call, const char* name, const RuntimeError& error);

// The run-time error that an error message means to the caller.
RuntimeError ErrorOfReply(sd_bus_message* reply);
bool IsBusy(sd_bus_message* reply);

}  // namespace platform
