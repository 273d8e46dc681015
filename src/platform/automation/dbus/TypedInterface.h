// The typed interface of public classes: methods and properties of the bus on the table of members.
#pragma once

#include "platform/automation/dbus/IncomingCall.h"

namespace platform {

// Serves a call of a method. Raises 438 where the class has none of that name. Unlike late binding, names
// compare exactly, as introspection lists them.
void CallTypedMethod(IncomingCall& call, Object& object);

// True where CallTypedMethod finds a method.
bool HasTypedMethod(const ClassDescription& description, std::string_view name);

// Serves a call of the bus's interface for properties: Get, Set or GetAll.
void ServeProperties(IncomingCall& call, Object& object);

}  // namespace platform
