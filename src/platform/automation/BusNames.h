// Names on the session bus, for tools that inspect an installation. All members raise 462 without a session
// bus, or if it doesn't reply.
#pragma once

#include <set>
#include <string>

namespace platform {

class BusNames {
  public:
    virtual ~BusNames() = default;

    // Names that have an owner.
    virtual std::set<std::string> Running() = 0;
    // Names for which the bus can start a program.
    virtual std::set<std::string> Startable() = 0;
    // The process that owns a name, or 0.
    virtual int ProcessOf(const std::string& name) = 0;
    // Makes the bus reread its service files.
    virtual void Reload() = 0;
};

}  // namespace platform
