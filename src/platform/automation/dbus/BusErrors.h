// Run-time errors as error messages on the bus, and back.
#pragma once

#include "platform/automation/dbus/Handles.h"
#include "platform/runtime/RuntimeError.h"

namespace platform {

// A failure that has a name of its own on the bus, such as a path without an object.
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

// Raises 462 if `result` of the bus library means a lost connection, 440 for another failure.
void RequireSuccess(int result);

// The answer to `call` that carries `error`. A text that can't travel is mended.
MessageRef ErrorAnswer(sd_bus_message* call, const char* name, const RuntimeError& error);

// What an error message means to the caller.
RuntimeError ErrorOfAnswer(sd_bus_message* answer);
bool IsBusy(sd_bus_message* answer);

}  // namespace platform
