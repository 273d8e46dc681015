#include "RawPeer.h"

#include <algorithm>
#include <stdexcept>

namespace platform::test {

RawPeer::RawPeer(PollLoop& loop) : loop_(loop) {
    sd_bus* bus = nullptr;
    if (sd_bus_open_user(&bus) < 0) throw std::runtime_error("no bus");
    bus_.reset(bus);
    const char* name = nullptr;
    sd_bus_get_unique_name(bus, &name);
    name_ = name;
    sd_bus_add_filter(bus, nullptr, OnMessage, this);
    readable_ = loop.WhenReadable(sd_bus_get_fd(bus), [this] { Process(); });
}

RawPeer::~RawPeer() {
    Leave();
}

void RawPeer::Leave() {
    readable_.reset();
    sd_bus_close(bus_.get());
}

void RawPeer::Process() {
    while (sd_bus_process(bus_.get(), nullptr) > 0) continue;
    if (sd_bus_is_open(bus_.get()) <= 0) readable_.reset();
}

int RawPeer::OnMessage(sd_bus_message* message, void* context, sd_bus_error*) {
    if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) return 0;
    auto* self = static_cast<RawPeer*>(context);
    self->calls.push_back(Shared(message));
    if (self->whenCalled) self->whenCalled(self->calls.back());
    return 1;
}

MessageRef RawPeer::NewCall(const std::string& destination, const std::string& path, const char* interface,
                            const char* member) {
    sd_bus_message* call = nullptr;
    if (sd_bus_message_new_method_call(bus_.get(), &call, destination.c_str(), path.c_str(), interface,
                                       member) < 0)
        throw std::runtime_error("no call");
    return Adopted(call);
}

MessageRef RawPeer::NewReturn(const MessageRef& call) {
    sd_bus_message* answer = nullptr;
    if (sd_bus_message_new_method_return(call.get(), &answer) < 0) throw std::runtime_error("no answer");
    return Adopted(answer);
}

std::unique_ptr<RawPeer::Pending> RawPeer::Send(const MessageRef& call) {
    auto pending = std::make_unique<Pending>();
    const auto keep = [](sd_bus_message* message, void* place, sd_bus_error*) {
        static_cast<Pending*>(place)->message = Shared(message);
        return 1;
    };
    sd_bus_slot* slot = nullptr;
    if (sd_bus_call_async(bus_.get(), &slot, call.get(), keep, pending.get(), UINT64_MAX) < 0)
        throw std::runtime_error("the call could not be sent");
    pending->slot.reset(slot);
    return pending;
}

void RawPeer::RoundTrip() {
    // The daemon answers ahead of handing on what its queues of the same round hold: the second answer is
    // behind that.
    for (int i = 0; i < 2; ++i) {
        sd_bus_message* answer = nullptr;
        sd_bus_call_method(bus_.get(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId", nullptr,
                           &answer, "");
        const MessageRef owned = Adopted(answer);
    }
}

Answer RawPeer::Await(const MessageRef& call) {
    const auto pending = Send(call);
    const bool answered = loop_.ServeUntil([&] {
        Process();
        return pending->message != nullptr;
    });
    if (!answered) throw std::runtime_error("no answer");
    const MessageRef answer = pending->message;
    Answer result{answer, {}, 0};
    if (const sd_bus_error* error = sd_bus_message_get_error(answer.get())) {
        result.error = error->name;
        sd_bus_message_rewind(answer.get(), true);
        sd_bus_message_read(answer.get(), "si", nullptr, &result.number);
    }
    return result;
}

void RawPeer::Notify(const MessageRef& call) {
    sd_bus_message_set_expect_reply(call.get(), 0);
    sd_bus_send(bus_.get(), call.get(), nullptr);
}

std::size_t RawPeer::CallsOf(std::string_view member) const {
    return static_cast<std::size_t>(std::count_if(calls.begin(), calls.end(), [&](const MessageRef& call) {
        return sd_bus_message_get_member(call.get()) == member;
    }));
}

void RawPeer::ReturnNothing(const MessageRef& call) {
    sd_bus_send(bus_.get(), NewReturn(call).get(), nullptr);
}

void RawPeer::ReturnError(const MessageRef& call, const char* name, const char* text) {
    sd_bus_reply_method_errorf(call.get(), name, "%s", text);
}

}  // namespace platform::test
