// A proxy for an object of another process.
#pragma once

#include <memory>

#include "platform/automation/dbus/Wire.h"
#include "platform/runtime/Object.h"

namespace platform {

class Patience;
class Session;

// Starts as borrowed. Releases the reference, if it owns one, on destruction.
class RemoteObject : public Object {
  public:
    RemoteObject(std::weak_ptr<Session> session, Address address)
        : session_(std::move(session)), address_(std::move(address)) {}
    ~RemoteObject() override;

    const Address& Where() const { return address_; }
    bool IsReachedBy(const Session& session) const { return session_.lock().get() == &session; }

    // Takes over a reference that the object's process has already counted.
    void Own() { owns_ = true; }
    // Asks the object's process to count a reference, and owns it.
    void Retain();

    // A proxy for the same object, whose calls belong to the operation of `patience`.
    std::shared_ptr<RemoteObject> Within(std::shared_ptr<Patience> patience);
    // Calls a member without waiting, see Automation.
    void Post(std::string_view member, InvokeKind kind, const Arguments& arguments,
              std::function<void(const Value&)> answered);

    // Lists no members: only the object's process knows them.
    const ClassDescription& Class() const override;
    // Raises 462 if the object's process has left or the connection is lost, and what the call raises there.
    Value Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) override;
    std::shared_ptr<void> WhenOwnerGone(std::function<void()> left) override;

  private:
    void Notify(const char* method) noexcept;

    std::weak_ptr<Session> session_;
    Address address_;
    bool owns_ = false;
    std::shared_ptr<Patience> patience_;      // null if each call gets its own
    std::shared_ptr<RemoteObject> original_;  // owns the reference that this proxy uses
};

}  // namespace platform
