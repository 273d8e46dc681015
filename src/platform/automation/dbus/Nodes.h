// The tree of object paths, and the introspection data of each.
#pragma once

#include <string>
#include <vector>

#include "platform/runtime/Object.h"

namespace platform {

// Exported objects are "/Object/" and a number.
inline constexpr char objectsPath[] = "/Object";

inline constexpr char introspectableInterface[] = "org.freedesktop.DBus.Introspectable";
inline constexpr char propertiesInterface[] = "org.freedesktop.DBus.Properties";

// A node without members of its own.
std::string BranchNodeXml(const std::vector<std::string>& children);
std::string FactoryNodeXml();
std::string ObjectNodeXml(const ClassDescription& description);

}  // namespace platform
