// Makes introspection data from member tables.
#pragma once

#include <string>
#include <vector>

#include "platform/runtime/Object.h"

namespace platform {

// The signature of a declared type on the bus: "s", "n", "i", "b", "d", "(d)", "(so)", "v"; "" for none.
std::string_view SignatureOf(ValueType type);

// The name of the typed interface of a public class, "Library._Class"; empty for a class without one.
std::string TypedInterfaceName(const ClassDescription& description);

// The typed interface of a public class as introspection XML: members in the order of their slots, a
// property once, at its first slot; the GUIDs, the library's name and its version as annotations.
std::string TypedInterfaceXml(const ClassDescription& description);

// Introspection XML of the late-bound interface, and of the factory's.
std::string ObjectInterfaceXml();
std::string FactoryInterfaceXml();

}  // namespace platform
