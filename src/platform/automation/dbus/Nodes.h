// The tree of object paths, and the introspection data of each.
#pragma once

#include <string>
#include <vector>

#include "platform/runtime/Object.h"

namespace platform {

// The paths of exported objects are this one, a slash and a number.
inline constexpr char objectsPath[] = "/Object";

inline constexpr char introspectableInterface[] = "org.freedesktop.DBus.Introspectable";
inline constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";

// A node that has only children.
std::string BranchNodeXml(const std::vector<std::string>& children);
std::string FactoryNodeXml();
std::string ObjectNodeXml(const ClassDescription& description);

}  // namespace platform
