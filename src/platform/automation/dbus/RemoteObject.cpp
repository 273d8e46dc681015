#include "platform/automation/dbus/RemoteObject.h"

#include "platform/automation/Names.h"
#include "platform/automation/dbus/BusErrors.h"
#include "platform/automation/dbus/Session.h"

namespace platform {

namespace {

std::shared_ptr<Session> Required(const std::weak_ptr<Session>& session) {
    if (auto open = session.lock()) return open;
    throw RuntimeError(ErrorNumber::ServerGone, "the connection to the bus is closed");
}

// What was sent with a call. Kept until the reply arrives, since the callee may use the objects among the
// arguments until then.
struct Sent {
    explicit Sent(Session& session) : loan(session.Own()) {}
    Loan loan;
    std::vector<Address> addresses;
    std::vector<ObjectRef> objects;
};

// Reads a reply, and compares its arguments with those that were sent.
class ReplyReader {
  public:
    ReplyReader(Session& session, sd_bus_message* reply, const Sent& sent)
        : session_(session), reply_(reply), sent_(sent), sender_(sd_bus_message_get_sender(reply)) {}

    Value Result() {
        return ReadVariant(reply_,
                           [this](const Address& address) { return session_.Received(address, sender_); });
    }

    // Leaves arguments unchanged that the reply omits or returns as they were sent.
    void TakeBack(Arguments& arguments) {
        Arguments taken = arguments;
        std::size_t i = 0;
        ReadVariants(reply_, [&] {
            if (i == taken.size())
                throw RuntimeError(ErrorNumber::TypeMismatch, "too many arguments came back");
            Value after = Entry(i);
            if (!(after == AsTravelled(taken[i]))) taken[i] = std::move(after);
            ++i;
        });
        arguments = std::move(taken);
    }

  private:
    // The callee counts a reference only if it has replaced the object.
    Value Entry(std::size_t i) {
        return ReadVariant(reply_, [this, i](const Address& address) {
            if (sent_.objects[i] && address == sent_.addresses[i]) return sent_.objects[i];
            return session_.Received(address, sender_);
        });
    }

    static Value AsTravelled(const Value& value) {
        const float* single = std::get_if<float>(&value.Stored());
        return single ? Value(static_cast<double>(*single)) : value;
    }

    Session& session_;
    sd_bus_message* reply_;
    const Sent& sent_;
    std::string sender_;
};

void AppendArguments(Session& session, sd_bus_message* call, const Arguments& arguments, Sent& sent) {
    sent.addresses.resize(arguments.size());
    sent.objects.resize(arguments.size());
    RequireSuccess(sd_bus_message_open_container(call, 'a', "v"));
    for (std::size_t i = 0; i < arguments.size(); ++i)
        AppendVariant(call, arguments[i], [&](const ObjectRef& object) {
            sent.objects[i] = object;
            return sent.addresses[i] = session.AddressOf(object, sent.loan);
        });
    RequireSuccess(sd_bus_message_close_container(call));
}

MessageRef InvokeMessage(Session& session, const Address& address, std::string_view member, InvokeKind kind,
                         const Arguments& arguments, Sent& sent) {
    MessageRef call = session.Bus().NewCall(address.owner, address.path, bus::objectInterface, "Invoke");
    AppendText(call.get(), FromUtf8(member));
    const auto kindOnWire = static_cast<std::uint16_t>(kind);
    RequireSuccess(sd_bus_message_append_basic(call.get(), 'q', &kindOnWire));
    AppendArguments(session, call.get(), arguments, sent);
    return call;
}

Value TakeReply(Session& session, sd_bus_message* reply, const Sent& sent, Arguments& arguments) {
    if (sd_bus_message_has_signature(reply, "vav") <= 0)
        throw RuntimeError(ErrorNumber::TypeMismatch, "the reply to a call has another signature");
    ReplyReader reader(session, reply, sent);
    Value result = reader.Result();
    reader.TakeBack(arguments);
    return result;
}

}  // namespace

RemoteObject::~RemoteObject() {
    if (owns_) Notify("Release");
}

void RemoteObject::Retain() {
    if (owns_) return;
    Notify("Retain");
    owns_ = true;
}

// Doesn't wait for a reply: if the object's process has left, there is nothing to count.
void RemoteObject::Notify(const char* method) noexcept {
    const auto session = session_.lock();
    if (!session) return;
    try {
        const MessageRef call =
            session->Bus().NewCall(address_.owner, address_.path, bus::objectInterface, method);
        session->Bus().Send(call.get());
    } catch (const std::exception&) {
        return;
    }
}

const ClassDescription& RemoteObject::Class() const {
    static const ClassDescription description{"RemoteObject", {}};
    return description;
}

Value RemoteObject::Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) {
    const auto session = Required(session_);
    const auto sent = std::make_shared<Sent>(*session);
    const MessageRef call = InvokeMessage(*session, address_, member, kind, arguments, *sent);
    const auto given = arguments.size();
    const MessageRef reply = session->Calls().Call(
        call, patience_, sent,
        [&bus = *session, &travelled = *sent, given, patience = patience_](sd_bus_message* late) {
            // References in the late reply are released as soon as nothing in this process holds them.
            Arguments dropped(given);
            const Value result = TakeReply(bus, late, travelled, dropped);
            if (patience && patience->Late) patience->Late(result);
        });
    return TakeReply(*session, reply.get(), *sent, arguments);
}

void RemoteObject::Post(std::string_view member, InvokeKind kind, const Arguments& arguments,
                        std::function<void(const Value&)> answered) {
    const auto session = Required(session_);
    const auto sent = std::make_shared<Sent>(*session);
    const MessageRef call = InvokeMessage(*session, address_, member, kind, arguments, *sent);
    session->Calls().Post(call, sent,
                          [&bus = *session, &travelled = *sent, arguments, answered](sd_bus_message* reply) {
                              Arguments after = arguments;
                              const Value result = TakeReply(bus, reply, travelled, after);
                              if (answered) answered(result);
                          });
}

std::shared_ptr<RemoteObject> RemoteObject::Within(std::shared_ptr<Patience> patience) {
    auto same = std::make_shared<RemoteObject>(session_, address_);
    same->patience_ = std::move(patience);
    same->original_ = std::static_pointer_cast<RemoteObject>(shared_from_this());
    return same;
}

std::shared_ptr<void> RemoteObject::WhenOwnerGone(std::function<void()> left) {
    const auto session = session_.lock();
    return session ? session->Others().Watch(address_.owner, std::move(left)) : nullptr;
}

}  // namespace platform
