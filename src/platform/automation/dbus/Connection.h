// The connection to the bus, driven by the process's event loop.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <list>
#include <string>
#include <vector>

#include "platform/automation/dbus/Handles.h"
#include "platform/runtime/EventLoop.h"

namespace platform {

// Handles each message before it takes the next, so that a reply received before a call also takes effect
// before it. Callbacks of the library only queue messages: handling one may wait for replies, which calls the
// library again, and the library forbids that inside its callbacks.
class Connection {
  public:
    // Raises 462 if the session bus can't be reached.
    explicit Connection(EventLoop& loop);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Set the handler of incoming calls, and what runs once when the connection is lost.
    void WhenCalled(std::function<void(const MessageRef&)> called) { called_ = std::move(called); }
    void WhenLost(std::function<void()> lost) { whenLost_ = std::move(lost); }

    bool IsLost() const { return lost_; }
    // The unique name on the bus.
    const std::string& Name() const { return name_; }
    // True for the unique name and for names that this connection owns.
    bool IsOwn(std::string_view name) const;

    // Raises 462 without a connection, 440 for what the library refuses.
    MessageRef NewCall(const std::string& destination, const std::string& path, const char* interface,
                       const char* member);
    // Sends a reply, or a call that wants none. Raises as NewCall.
    void Send(sd_bus_message* message);
    // Sends a call, without a timeout. `answered` runs later, in its own step, with the reply, or with null
    // if the connection was lost. Raises as NewCall.
    void SendCall(sd_bus_message* call, std::function<void(const MessageRef&)> answered);

    // Acquires a name on the bus. Raises 429 if it is taken, instead of queueing for it.
    void OwnName(const std::string& name);

    // Releases all owned names. The bus learns of this before it gets any later message.
    void GiveNamesBack();

    // Releases the names, refuses as busy all calls that still arrive, and sends the queued messages. Waits
    // at most a second for the release, and another for the sending.
    void Leave();

    // Passes messages that match `rule` to `handler`, which may only queue them. Raises as NewCall.
    SlotRef AddMatch(const std::string& rule, sd_bus_message_handler_t handler, void* context);

    // Runs `call` later, in its own step, after the messages received so far.
    void Defer(std::function<void()> call);

    // Serves the loop until `done` returns true, holding back the operator's input.
    void WaitUntil(const std::function<bool()>& done);

    // Sends the messages that the library has queued. Takes at most a second.
    void Flush();

    // Drops all pending calls and disconnects.
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
    static int OnReply(sd_bus_message* message, void* context, sd_bus_error*) noexcept;

    void Pump();
    bool Step();
    bool Receive();
    bool AnswerIsIn() const;
    void AwaitHandOver();
    void Continue();
    bool IsHolding() const;
    bool AwaitBus() const;
    bool PollBus(std::chrono::steady_clock::duration limit) const;
    void ContinueIfHolding();
    void ReceiveUntil(const std::function<bool()>& done);
    bool HasUnsent() const;
    void FollowWriteQueue();
    void Lose();
    void Reply(OutgoingCall& outgoing, const MessageRef& reply);
    void RequireSent(int result);

    EventLoop& loop_;
    BusRef bus_;
    SlotRef filter_;
    std::string name_;
    std::vector<std::string> owned_;
    std::list<SlotRef> releases_;  // of names, not yet confirmed by the bus
    std::function<void(const MessageRef&)> called_;
    std::function<void()> whenLost_;
    std::list<OutgoingCall> outgoing_;
    std::chrono::steady_clock::time_point turn_;  // when the loop last had its turn during a wait
    std::deque<std::function<void()>> due_;
    HandleRef readable_, writable_, continuation_;
    Wait* innermost_ = nullptr;
    bool lost_ = false;
    bool leaving_ = false;
};

}  // namespace platform
