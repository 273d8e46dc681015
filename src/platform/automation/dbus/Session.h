// What one connection is made of, and how references travel over it.
#pragma once

#include <memory>

#include "platform/automation/dbus/Caller.h"
#include "platform/automation/dbus/Connection.h"
#include "platform/automation/dbus/Exports.h"
#include "platform/automation/dbus/Peers.h"
#include "platform/automation/dbus/Wire.h"

namespace platform {

// Objects of other processes can outlive it; they answer 462 from then on.
class Session : public std::enable_shared_from_this<Session> {
  public:
    // Raises 462 where the session bus can't be reached.
    Session(EventLoop& loop, WaitBoxes& boxes, const WaitSettings& settings);
    ~Session();

    Connection& Bus() { return connection_; }
    Peers& Others() { return peers_; }
    Exports& Own() { return exports_; }
    Caller& Calls() { return caller_; }

    // Where others reach an object; one of this process is lent.
    Address AddressOf(const ObjectRef& object, Loan& loan);

    // An own object by its path. Raises 462 for a path that is in use no longer.
    ObjectRef OwnObject(const Address& address) const;

    // The object of a reference that came with an answer and is owned from now on.
    ObjectRef Received(const Address& address, const std::string& sender);

    // Sends what is waiting, then lets objects know whose last client has left.
    void Settle();

  private:
    Connection connection_;
    Peers peers_;
    Exports exports_;
    Caller caller_;
};

}  // namespace platform
