// Reports when other processes leave the bus.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/automation/dbus/Connection.h"

namespace platform {

class Peers {
  public:
    explicit Peers(Connection& connection) : connection_(connection) {}

    // Calls `left` once when the owner of the name leaves the bus, or if it has left already. Dropping the
    // result ends the watch.
    std::shared_ptr<void> Watch(const std::string& name, std::function<void()> left);

    // Treats all watched peers as having left.
    void LoseAll();

  private:
    struct Peer;
    struct Subscription;

    std::shared_ptr<Peer> PeerOf(const std::string& name);
    void Subscribe(const std::string& name, const std::shared_ptr<Peer>& peer);
    void Left(const std::string& name);

    static int OnNameChange(sd_bus_message* message, void* self, sd_bus_error*) noexcept;

    Connection& connection_;
    std::map<std::string, std::weak_ptr<Peer>> peers_;
};

}  // namespace platform
