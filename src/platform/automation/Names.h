// The names that the contract on the bus defines.
#pragma once

namespace platform::bus {

inline constexpr char factoryPath[] = "/Factory";
inline constexpr char factoryInterface[] = "org.velmora.Automation1.Factory";
inline constexpr char objectInterface[] = "org.velmora.Automation1.Object";
inline constexpr char errorName[] = "org.velmora.Automation1.Error";
inline constexpr char busyErrorName[] = "org.velmora.Automation1.Error.Busy";
inline constexpr char annotationPrefix[] = "org.velmora.Automation1.";

// The names of the bus itself.
inline constexpr char daemonName[] = "org.freedesktop.DBus";  // also its interface
inline constexpr char daemonPath[] = "/org/freedesktop/DBus";

}  // namespace platform::bus
