// The connection to the bus, served by the process's loop.
#pragma once

#include <deque>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include "platform/automation/dbus/Handles.h"
#include "platform/runtime/EventLoop.h"

namespace platform {

// Takes messages one at a time and acts on each before it takes the next, so that an answer ahead of a call
// also takes effect ahead of it. The library only notes what came: acting on it can wait for answers, and
// the library doesn't allow to be entered again from its own callbacks.
class Connection {
  public:
    // Raises 462 where the session bus can't be reached.
    explicit Connection(EventLoop& loop);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Where incoming calls go, and what runs once when the connection is lost.
    void WhenCalled(std::function<void(const MessageRef&)> called) { called_ = std::move(called); }
    void WhenLost(std::function<void()> lost) { whenLost_ = std::move(lost); }

    bool IsLost() const { return lost_; }
    // The unique name on the bus.
    const std::string& Name() const { return name_; }
    // True for the unique name and for those that it owns.
    bool IsOwn(std::string_view name) const;

    // Raises 462 without a connection, 440 for what the library refuses.
    MessageRef NewCall(const std::string& destination, const std::string& path, const char* interface,
                       const char* member);
    // Sends a message that wants no answer, or is one. Raises as NewCall.
    void Send(sd_bus_message* message);
    // Sends a call. `answered` runs in a step of its own, with the answer, or with null when the connection
    // was lost. There is no limit of time. Raises as NewCall.
    void SendCall(sd_bus_message* call, std::function<void(const MessageRef&)> answered);

    // Owns a name on the bus, without waiting in a queue. Raises 429 where it is taken.
    void OwnName(const std::string& name);

    // Gives the names that it owns back. The bus knows of it ahead of all that is sent later.
    void GiveNamesBack();

    // Gives the names back, refuses as busy the calls that came before that, and sends what is
    // held. Takes a second at most for the names, and for the sending.
    void Leave();

    // Has messages by a match rule given to `handler`, which may only note them. Raises as NewCall.
    SlotRef AddMatch(const std::string& rule, sd_bus_message_handler_t handler, void* context);

    // Runs `call` in a step of its own, after what was received before.
    void Defer(std::function<void()> call);

    // Serves the loop until `done` is true, with the operator's input held back.
    void WaitUntil(const std::function<bool()>& done);

    // Sends what the library still holds, for a second at most.
    void Flush();

    // Forgets all calls that are out and leaves the bus.
    void Close();

  private:
    struct OutgoingCall {
        Connection* connection;
        SlotRef slot;
        std::function<void(const MessageRef&)> answered;
    };
    struct Wait {
        const std::function<bool()>& done;
        Wait* outer;
        HandleRef handOverLimit;
        bool overtaken = false;
    };

    static int OnMessage(sd_bus_message* message, void* self, sd_bus_error*) noexcept;
    static int OnNameReleased(sd_bus_message*, void* self, sd_bus_error*) noexcept;
    static int OnAnswer(sd_bus_message* message, void* context, sd_bus_error*) noexcept;

    void Pump();
    bool Step();
    bool Receive();
    bool AnswerIsIn() const;
    void AwaitHandOver();
    void Continue();
    void ContinueIfHolding();
    void ReceiveUntil(const std::function<bool()>& done);
    bool HasUnsent() const;
    void FollowWriteQueue();
    void Lose();
    void Answer(OutgoingCall& outgoing, const MessageRef& answer);
    void RequireSent(int result);

    EventLoop& loop_;
    BusRef bus_;
    SlotRef filter_;
    std::string name_;
    std::vector<std::string> owned_;
    std::list<SlotRef> releases_;  // of names, that the bus has not answered yet
    std::function<void(const MessageRef&)> called_;
    std::function<void()> whenLost_;
    std::list<OutgoingCall> outgoing_;
    std::deque<std::function<void()>> due_;
    HandleRef readable_, writable_, continuation_;
    Wait* innermost_ = nullptr;
    bool lost_ = false;
    bool leaving_ = false;
};

}  // namespace platform
