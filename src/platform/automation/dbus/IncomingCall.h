// A call from another process, while it is being served.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/automation/dbus/BusErrors.h"
#include "platform/automation/dbus/RemoteObject.h"
#include "platform/automation/dbus/Session.h"

namespace platform {

// Objects among the arguments are borrowed: those that are still referenced when the call is answered are
// retained. Each object in the reply counts as a reference of the caller.
class IncomingCall {
  public:
    IncomingCall(std::shared_ptr<Session> session, MessageRef message);

    // Header fields, empty if the caller left them out.
    std::string_view Path() const { return path_; }
    std::string_view Interface() const { return interface_; }
    std::string_view Member() const { return member_; }
    std::string_view Destination() const;
    const std::string& Sender() const { return sender_; }
    bool WantsReply() const { return sd_bus_message_get_expect_reply(message_.get()) > 0; }

    // True if the call names this interface, or none.
    bool IsOf(std::string_view interface) const { return interface_.empty() || interface_ == interface; }

    // Read the arguments in order. Each raises 13 for an argument of another type.
    void RequireSignature(const std::string& signature) const;
    std::string_view String() { return ReadString(message_.get()); }
    std::uint16_t Word() { return ReadWord(message_.get()); }
    Value Variant();
    Value Typed(ValueType type);
    Arguments Variants();

    // Write the reply in order, directly to Reply() or by the members below. ReturnGiven returns an
    // argument that the callee left unchanged.
    sd_bus_message* Reply();
    void ReturnVariant(const Value& value);
    void ReturnTyped(const Value& value, ValueType type);
    // Returns an object that this call created. If it can't be sent to the caller, it is notified that its
    // last client has left.
    void ReturnCreated(const ObjectRef& object);
    void ReturnGiven(const Value& value);

    // Runs `serve` and sends the reply. A failure becomes an error reply.
    void Serve(const std::function<void(IncomingCall&)>& serve);

    // Answers the call while it is still being served. Serve then sends no second reply.
    void RefuseAsBusy();

  private:
    void Fail(const char* name, const RuntimeError& error);
    void RetainBorrowed();
    void SendAnswer();
    ObjectRef Borrowed(const Address& address);

    std::shared_ptr<Session> session_;
    MessageRef message_, reply_;
    std::string_view path_, interface_, member_;
    std::string sender_;
    Loan given_;
    std::unique_ptr<Loan> returned_;
    bool isCreation_ = false, isRefused_ = false;
    std::vector<std::shared_ptr<RemoteObject>> borrowed_;
};

}  // namespace platform
