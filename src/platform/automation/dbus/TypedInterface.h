// Serves the typed interface of public classes: maps D-Bus methods and properties to the member table.
#pragma once

#include "platform/automation/dbus/IncomingCall.h"

namespace platform {

// Serves a method call. Raises 438 if the class has no such method. Names are case-sensitive here, unlike in
// late binding.
void CallTypedMethod(IncomingCall& call, Object& object);

// True if CallTypedMethod would find the method.
bool HasTypedMethod(const ClassDescription& description, std::string_view name);

// Serves a call of the standard properties interface: Get, Set or GetAll.
void ServeProperties(IncomingCall& call, Object& object);

}  // namespace platform
