// One call of another process while it is served.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/automation/dbus/BusErrors.h"
#include "platform/automation/dbus/RemoteObject.h"
#include "platform/automation/dbus/Session.h"

namespace platform {

// Objects among the arguments are borrowed: they are retained where something still refers to them when the
// call is answered. Objects that the answer hands out are counted for the caller.
class IncomingCall {
  public:
    IncomingCall(std::shared_ptr<Session> session, MessageRef message);

    // Parts of the header; what the caller left out is empty.
    std::string_view Path() const { return path_; }
    std::string_view Interface() const { return interface_; }
    std::string_view Member() const { return member_; }
    std::string_view Destination() const;
    const std::string& Sender() const { return sender_; }
    bool WantsAnswer() const { return sd_bus_message_get_expect_reply(message_.get()) > 0; }

    // True for a call of this interface, or without one.
    bool IsOf(std::string_view interface) const { return interface_.empty() || interface_ == interface; }

    // The arguments, read in turn. Each raises 13 for what doesn't fit.
    void RequireSignature(const std::string& signature) const;
    std::string_view String() { return ReadString(message_.get()); }
    std::uint16_t Word() { return ReadWord(message_.get()); }
    Value Variant();
    Value Typed(ValueType type);
    Arguments Variants();

    // The answer, written in turn: into Answer() itself, or by these. A given value is one that came as an
    // argument and goes back untouched.
    sd_bus_message* Answer();
    void ReturnVariant(const Value& value);
    void ReturnTyped(const Value& value, ValueType type);
    // An object that begins with the call. If it can't be sent to the caller, its last client has left.
    void ReturnCreated(const ObjectRef& object);
    void ReturnGiven(const Value& value);

    // Runs what serves the call and answers it. A failure becomes the answer.
    void Serve(const std::function<void(IncomingCall&)>& serve);

    // Answers the call while it is being served. Nothing more is sent when that is over.
    void RefuseAsBusy();

  private:
    void Fail(const char* name, const RuntimeError& error);
    void RetainBorrowed();
    void SendAnswer();
    ObjectRef Borrowed(const Address& address);

    std::shared_ptr<Session> session_;
    MessageRef message_, answer_;
    std::string_view path_, interface_, member_;
    std::string sender_;
    Loan given_;
    std::unique_ptr<Loan> returned_;
    bool isCreation_ = false, isRefused_ = false;
    std::vector<std::shared_ptr<RemoteObject>> borrowed_;
};

}  // namespace platform
