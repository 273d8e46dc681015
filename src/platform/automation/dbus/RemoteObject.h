// An object of another process.
#pragma once

#include <memory>

#include "platform/automation/dbus/Wire.h"
#include "platform/runtime/Object.h"

namespace platform {

class Patience;
class Session;

// Borrowed at first. Gives back its reference, where it owns one, when it goes.
class RemoteObject : public Object {
  public:
    RemoteObject(std::weak_ptr<Session> session, Address address)
        : session_(std::move(session)), address_(std::move(address)) {}
    ~RemoteObject() override;

    const Address& Where() const { return address_; }
    bool IsReachedBy(const Session& session) const { return session_.lock().get() == &session; }

    // Owns a reference that its owner has counted already.
    void Own() { owns_ = true; }
    // Has its owner count a reference.
    void Retain();

    // The same object, for calls that try `patience`.
    std::shared_ptr<RemoteObject> Within(std::shared_ptr<Patience> patience);
    // Calls a member without waiting, see Automation.
    void Post(std::string_view member, InvokeKind kind, const Arguments& arguments,
              std::function<void(const Value&)> answered);

    // It has no members of its own; all are its owner's.
    const ClassDescription& Class() const override;
    // Raises 462 if the owner has left or the connection is lost, and what the call raises there.
    Value Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) override;
    std::shared_ptr<void> WhenOwnerGone(std::function<void()> left) override;

  private:
    void Notify(const char* method) noexcept;

    std::weak_ptr<Session> session_;
    Address address_;
    bool owns_ = false;
    std::shared_ptr<Patience> patience_;      // for each call one of its own, where there is none
    std::shared_ptr<RemoteObject> original_;  // which owns the reference that this one uses
};

}  // namespace platform
