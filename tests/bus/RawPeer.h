// A stranger on the bus: messages by hand.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "PollLoop.h"
#include "platform/automation/dbus/Handles.h"

namespace platform::test {

// What a call was answered with.
struct Answer {
    MessageRef message;
    // Of an error answer, otherwise empty.
    std::string error;
    std::int32_t number = 0;
};

class RawPeer {
  public:
    explicit RawPeer(PollLoop& loop);
    ~RawPeer();
    RawPeer(const RawPeer&) = delete;
    RawPeer& operator=(const RawPeer&) = delete;

    const std::string& Name() const { return name_; }
    sd_bus* Bus() const { return bus_.get(); }

    // Calls and serves the loop until the answer is there. `types` and what follows as for the bus library.
    template <class... Parts>
    Answer Call(const std::string& destination, const std::string& path, const char* interface,
                const char* member, const char* types, Parts... parts) {
        const MessageRef call = NewCall(destination, path, interface, member);
        sd_bus_message_append(call.get(), types, parts...);
        return Await(call);
    }
    MessageRef NewCall(const std::string& destination, const std::string& path, const char* interface,
                       const char* member);
    Answer Await(const MessageRef& call);
    // Sends a call; the result gets its answer once the loop is served.
    struct Pending {
        SlotRef slot;
        MessageRef message;
    };
    std::unique_ptr<Pending> Send(const MessageRef& call);
    // Comes back when the daemon has handed on all that was sent before.
    void RoundTrip();
    // Sends a call that wants no answer.
    void Notify(const MessageRef& call);

    // What to do with every call but those of the bus's own interfaces; by default they are kept unanswered.
    std::function<void(const MessageRef&)> whenCalled;
    std::vector<MessageRef> calls;
    // How many calls of a member came.
    std::size_t CallsOf(std::string_view member) const;

    void ReturnNothing(const MessageRef& call);
    void ReturnError(const MessageRef& call, const char* name, const char* text);
    // Answers a late-bound call with a result and the arguments "av" without entries.
    template <class... Parts>
    void ReturnResult(const MessageRef& call, const char* type, Parts... parts) {
        const MessageRef answer = NewReturn(call);
        sd_bus_message_append(answer.get(), "v", type, parts...);
        sd_bus_message_append(answer.get(), "av", 0);
        sd_bus_send(bus_.get(), answer.get(), nullptr);
    }
    MessageRef NewReturn(const MessageRef& call);

    // Leaves the bus without giving anything back.
    void Leave();

  private:
    static int OnMessage(sd_bus_message* message, void* self, sd_bus_error*);
    void Process();

    PollLoop& loop_;
    BusRef bus_;
    std::string name_;
    HandleRef readable_;
};

}  // namespace platform::test
