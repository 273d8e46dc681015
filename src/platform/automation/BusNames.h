// Which names the session bus knows, for tools that look at an installation from outside.
#pragma once

#include <set>
#include <string>

namespace platform {

class BusNames {
  public:
    virtual ~BusNames() = default;

    // Names that a program owns now.
    virtual std::set<std::string> Running() = 0;
    // Names that the bus starts a program for.
    virtual std::set<std::string> Startable() = 0;
    // The process that owns a name, or 0.
    virtual int ProcessOf(const std::string& name) = 0;
    // Has the bus read its service files anew.
    virtual void Reload() = 0;
    // All of them raise 462 where there is no session bus, or it doesn't answer.
};

}  // namespace platform
