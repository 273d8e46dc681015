// The parts of one bus connection, and the counting of references that pass over it.
#pragma once

#include <memory>

#include "platform/automation/dbus/Caller.h"
#include "platform/automation/dbus/Connection.h"
#include "platform/automation/dbus/Exports.h"
#include "platform/automation/dbus/Peers.h"
#include "platform/automation/dbus/Wire.h"

namespace platform {

// Proxies can outlive the session; calls on them then raise 462.
class Session : public std::enable_shared_from_this<Session> {
  public:
    // Raises 462 if the session bus can't be reached.
    Session(EventLoop& loop, WaitBoxes& boxes, const WaitSettings& settings);
    ~Session();

    Connection& Bus() { return connection_; }
    Peers& Others() { return peers_; }
    Exports& Own() { return exports_; }
    Caller& Calls() { return caller_; }

    // The address at which other processes reach an object. An object of this process is added to `loan`.
    Address AddressOf(const ObjectRef& object, Loan& loan);

    // The object of this process at an address. Raises 462 if its path is no longer in use.
    ObjectRef OwnObject(const Address& address) const;

    // The object for a reference that a reply of `sender` contained; the result owns that reference.
    ObjectRef Received(const Address& address, const std::string& sender);

    // Sends queued messages, then notifies objects whose last client has left.
    void Settle();

  private:
    Connection connection_;
    Peers peers_;
    Exports exports_;
    Caller caller_;
};

}  // namespace platform
