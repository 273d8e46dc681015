#include "platform/automation/dbus/IncomingCall.h"

#include "platform/automation/Names.h"

namespace platform {

namespace {

std::string_view OrEmpty(const char* text) {
    return text ? text : std::string_view();
}

}  // namespace

IncomingCall::IncomingCall(std::shared_ptr<Session> session, MessageRef message)
    : session_(std::move(session)),
      message_(std::move(message)),
      path_(OrEmpty(sd_bus_message_get_path(message_.get()))),
      interface_(OrEmpty(sd_bus_message_get_interface(message_.get()))),
      member_(OrEmpty(sd_bus_message_get_member(message_.get()))),
      sender_(OrEmpty(sd_bus_message_get_sender(message_.get()))),
      given_(session_->Own()) {}

std::string_view IncomingCall::Destination() const {
    return OrEmpty(sd_bus_message_get_destination(message_.get()));
}

void IncomingCall::RequireSignature(const std::string& signature) const {
    if (sd_bus_message_has_signature(message_.get(), signature.c_str()) <= 0)
        throw InvalidArguments("wanted are arguments of signature \"" + signature + "\"");
}

ObjectRef IncomingCall::Borrowed(const Address& address) {
    if (address.IsNothing()) return nullptr;
    if (session_->Bus().IsOwn(address.owner)) {
        ObjectRef object = session_->OwnObject(address);
        // The object keeps its path until the reply is sent, which may contain the path again.
        given_.PathOf(object);
        return object;
    }
    borrowed_.push_back(std::make_shared<RemoteObject>(session_, address));
    return borrowed_.back();
}

Value IncomingCall::Variant() {
    return ReadVariant(message_.get(), [this](const Address& address) { return Borrowed(address); });
}

Value IncomingCall::Typed(ValueType type) {
    return ReadTyped(message_.get(), type, [this](const Address& address) { return Borrowed(address); });
}

Arguments IncomingCall::Variants() {
    Arguments values;
    ReadVariants(message_.get(), [&] { values.push_back(Variant()); });
    return values;
}

sd_bus_message* IncomingCall::Reply() {
    if (!reply_) {
        sd_bus_message* reply = nullptr;
        RequireSuccess(sd_bus_message_new_method_return(message_.get(), &reply));
        reply_ = Adopted(reply);
        returned_ = std::make_unique<Loan>(session_->Own());
    }
    return reply_.get();
}

void IncomingCall::ReturnVariant(const Value& value) {
    AppendVariant(Reply(), value,
                  [this](const ObjectRef& object) { return session_->AddressOf(object, *returned_); });
}

void IncomingCall::ReturnTyped(const Value& value, ValueType type) {
    AppendTyped(Reply(), value, type,
                [this](const ObjectRef& object) { return session_->AddressOf(object, *returned_); });
}

void IncomingCall::ReturnCreated(const ObjectRef& object) {
    isCreation_ = true;
    if (isRefused_) returned_ = std::make_unique<Loan>(session_->Own());
    const Address address = session_->AddressOf(object, *returned_);
    if (isRefused_) throw BusyError();
    AppendAddress(Reply(), address);
}

void IncomingCall::ReturnGiven(const Value& value) {
    AppendVariant(Reply(), value,
                  [this](const ObjectRef& object) { return session_->AddressOf(object, given_); });
}

void IncomingCall::Serve(const std::function<void(IncomingCall&)>& serve) {
    try {
        serve(*this);
        Reply();
    } catch (const BusError& error) {
        Fail(error.Name(), error);
    } catch (const BusyError& error) {
        Fail(bus::busyErrorName, error);
    } catch (const RuntimeError& error) {
        Fail(bus::errorName, error);
    } catch (const std::exception& error) {
        Fail(bus::errorName, RuntimeError(ErrorNumber::AutomationError, error.what()));
    }
    RetainBorrowed();
    SendAnswer();
}

void IncomingCall::RefuseAsBusy() {
    Fail(bus::busyErrorName, BusyError());
    SendAnswer();
    isRefused_ = true;
}

void IncomingCall::Fail(const char* name, const RuntimeError& error) {
    if (returned_ && isCreation_) returned_->Forfeit();
    returned_.reset();
    reply_ = ErrorAnswer(message_.get(), name, error);
}

// By now all arguments have been destroyed, so any other reference to a borrowed object means that somebody
// keeps it.
void IncomingCall::RetainBorrowed() {
    for (const auto& object : borrowed_)
        if (object.use_count() > 1) object->Retain();
}

void IncomingCall::SendAnswer() {
    if (!WantsReply() || isRefused_) return;
    Connection& connection = session_->Bus();
    try {
        connection.Send(reply_.get());
    } catch (const RuntimeError& error) {
        // A caller that can still be reached would otherwise wait for ever.
        if (!connection.IsLost()) {
            Fail(bus::errorName, error);
            connection.Send(reply_.get());
        }
    }
    // If the caller has left meanwhile, these references are released with all others that it held.
    if (returned_) returned_->GrantTo(sender_);
}

}  // namespace platform
