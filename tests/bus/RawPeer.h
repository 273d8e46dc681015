// A stranger on the bus: messages by hand.
#pragma once

#include <list>
#include <string>

#include "PollLoop.h"
#include "Told.h"

namespace platform::test {

// Where an object is, as a stranger learns it.
struct Reference {
    std::string owner, path;
};

// The first reference in a message.
inline Reference ReferenceIn(const std::string& told) {
    const auto owner = told.find("(':") + 2, path = told.find("' ", owner), end = told.find(')', path);
    return {told.substr(owner, path - owner), told.substr(path + 2, end - path - 2)};
}

class RawPeer {
  public:
    explicit RawPeer(PollLoop& loop) : loop_(loop) {
        sd_bus* bus = nullptr;
        if (sd_bus_open_user(&bus) < 0) throw std::runtime_error("no bus");
        bus_.reset(bus);
        serving_ = loop.Every(Milliseconds(1), [this] { Process(); });
    }
    sd_bus* Bus() const { return bus_.get(); }

    // `types` and what follows as for the bus library.
    template <class... Parts>
    MessageRef NewCall(const Reference& to, const char* interface, const char* member, const char* types = "",
                       Parts... parts) {
        sd_bus_message* call = nullptr;
        sd_bus_message_new_method_call(Bus(), &call, to.owner.c_str(), to.path.c_str(), interface, member);
        sd_bus_message_append(call, types, parts...);
        return Adopted(call);
    }
    // A late-bound call with `count` arguments, each given with its type.
    template <class... Parts>
    MessageRef NewInvoke(const Reference& to, const char* member, int count = 0, Parts... parts) {
        return NewCall(to, objectInterface, "Invoke", "sqav", member, 1, count, parts...);
    }
    // What the answer says.
    template <class... Parts>
    std::string Call(Parts... parts) {
        return Await(NewCall(parts...));
    }
    template <class... Parts>
    std::string Invoke(Parts... parts) {
        return Await(NewInvoke(parts...));
    }

    // Sends a call; the result is the answer, once the loop has been served for so long.
    const MessageRef& Send(const MessageRef& call) {
        MessageRef& answer = answers_.emplace_back();
        const auto keep = [](sd_bus_message* message, void* place, sd_bus_error*) {
            *static_cast<MessageRef*>(place) = Shared(message);
            return 1;
        };
        sd_bus_call_async(Bus(), nullptr, call.get(), keep, &answer, UINT64_MAX);
        return answer;
    }
    std::string Await(const MessageRef& call) {
        const MessageRef& message = Send(call);
        return loop_.ServeUntil([&] { return message != nullptr; }) ? Told(message) : "no answer";
    }
    // Sends a call that wants no answer.
    void Notify(const MessageRef& call) {
        sd_bus_message_set_expect_reply(call.get(), 0);
        sd_bus_send(Bus(), call.get(), nullptr);
    }
    // Comes back when the daemon has handed on all that was sent before: it answers ahead of handing on what
    // its queues of the same round hold, but the second answer follows that.
    void RoundTrip() {
        for (int i = 0; i < 2; ++i)
            sd_bus_call_method(Bus(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId", nullptr,
                               nullptr, "");
    }
    // Takes in what has come, while nobody else is served.
    void Take() {
        RoundTrip();
        Process();
    }

    // What to do with every call but those of the bus's own interfaces; by default they are kept unanswered.
    std::function<void(const MessageRef&)> whenCalled;
    std::vector<MessageRef> calls;
    // The calls since the last time, in their order.
    std::string Heard() {
        std::string all;
        for (const MessageRef& call : std::exchange(calls, {})) all += (all.empty() ? "" : "; ") + Told(call);
        return all;
    }

    template <class... Parts>
    void Return(const MessageRef& call, const char* types, Parts... parts) {
        sd_bus_reply_method_return(call.get(), types, parts...);
    }
    // Answers a late-bound call, with no changed arguments.
    template <class... Parts>
    void ReturnResult(const MessageRef& call, const char* type, Parts... parts) {
        Return(call, "vav", type, parts..., 0);
    }
    void Refuse(const MessageRef& call) { sd_bus_reply_method_errorf(call.get(), busyErrorName, "later"); }

    // Leaves the bus without giving anything back.
    void Leave() { sd_bus_close(Bus()); }

  private:
    void Process() {
        for (sd_bus_message* message = nullptr; sd_bus_process(Bus(), &message) > 0;) {
            if (!message) continue;
            const MessageRef call = Adopted(message);
            if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0) continue;
            calls.push_back(call);
            if (whenCalled) whenCalled(call);
        }
    }

    PollLoop& loop_;
    std::list<MessageRef> answers_;
    BusRef bus_;
    HandleRef serving_;
};

}  // namespace platform::test
