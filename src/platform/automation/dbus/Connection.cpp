#include "platform/automation/dbus/Connection.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include "platform/automation/Automation.h"
#include "platform/automation/Names.h"
#include "platform/automation/dbus/BusErrors.h"
#include "platform/runtime/ScopeExit.h"

namespace platform {

namespace {

using std::chrono::steady_clock;

// After this many steps in a row, timers and painting get their turn.
constexpr int stepsPerRound = 64;
constexpr Milliseconds flushLimit{1000};
// The longest that a wait on the bus alone holds up timers, painting and input: too short to notice.
constexpr Milliseconds turnInterval{5};
// How long an answered wait may hold back all other messages. A wait that hasn't continued by then can't: a
// nested loop, such as that of an open message box, is running and needs those messages.
constexpr Milliseconds handOverLimit{20};

constexpr char peerInterface[] = "org.freedesktop.DBus.Peer";

BusRef OpenSessionBus() {
    sd_bus* bus = nullptr;
    const int result = sd_bus_open_user(&bus);
    if (result < 0) throw RuntimeError(ErrorNumber::ServerGone, std::strerror(-result));
    return BusRef(bus);
}

std::string UniqueName(sd_bus* bus) {
    const char* name = nullptr;
    const int result = sd_bus_get_unique_name(bus, &name);
    if (result < 0) throw RuntimeError(ErrorNumber::ServerGone, std::strerror(-result));
    return name;
}

int IgnoreAnswer(sd_bus_message*, void*, sd_bus_error*) {
    return 1;
}

}  // namespace

Connection::Connection(EventLoop& loop) : loop_(loop), bus_(OpenSessionBus()), name_(UniqueName(bus_.get())) {
    sd_bus_slot* filter = nullptr;
    RequireSuccess(sd_bus_add_filter(bus_.get(), &filter, OnMessage, this));
    filter_.reset(filter);
    readable_ = loop_.WhenReadable(sd_bus_get_fd(bus_.get()), [this] { Pump(); });
    ContinueIfHolding();
}

Connection::~Connection() {
    Close();
}

void Connection::Close() {
    lost_ = true;
    readable_.reset();
    writable_.reset();
    continuation_.reset();
    due_.clear();
    outgoing_.clear();
    releases_.clear();
    sd_bus_close(bus_.get());
}

MessageRef Connection::NewCall(const std::string& destination, const std::string& path, const char* interface,
                               const char* member) {
    sd_bus_message* call = nullptr;
    RequireSuccess(sd_bus_message_new_method_call(bus_.get(), &call, destination.c_str(), path.c_str(),
                                                  interface, member));
    return Adopted(call);
}

void Connection::Send(sd_bus_message* message) {
    RequireSent(sd_bus_send(bus_.get(), message, nullptr));
}

void Connection::SendCall(sd_bus_message* call, std::function<void(const MessageRef&)> answered) {
    outgoing_.push_back({this, nullptr, std::move(answered)});
    OutgoingCall& outgoing = outgoing_.back();
    sd_bus_slot* slot = nullptr;
    const int result = sd_bus_call_async(bus_.get(), &slot, call, OnReply, &outgoing, UINT64_MAX);
    outgoing.slot.reset(slot);
    if (result < 0) outgoing_.pop_back();
    RequireSent(result);
}

void Connection::RequireSent(int result) {
    if (sd_bus_is_open(bus_.get()) <= 0)
        Lose();
    else
        FollowWriteQueue();
    RequireSuccess(result);
}

void Connection::OwnName(const std::string& name) {
    const int result = sd_bus_request_name(bus_.get(), name.c_str(), 0);
    ContinueIfHolding();
    if (result < 0) throw RuntimeError(ErrorNumber::CannotCreateObject, name + ": " + std::strerror(-result));
    owned_.push_back(name);
}

SlotRef Connection::AddMatch(const std::string& rule, sd_bus_message_handler_t handler, void* context) {
    sd_bus_slot* slot = nullptr;
    RequireSent(sd_bus_add_match_async(bus_.get(), &slot, rule.c_str(), handler, IgnoreAnswer, context));
    return SlotRef(slot);
}

void Connection::Defer(std::function<void()> call) {
    due_.push_back(std::move(call));
    Continue();
}

int Connection::OnMessage(sd_bus_message* message, void* self, sd_bus_error*) noexcept {
    // The library itself handles replies, signals and calls of the Peer interface.
    if (sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0 ||
        sd_bus_message_is_method_call(message, peerInterface, nullptr) > 0)
        return 0;
    auto* connection = static_cast<Connection*>(self);
    if (connection->leaving_)
        return sd_bus_reply_method_errorf(message, bus::busyErrorName, "%s", BusyError().what());
    connection->due_.push_back([connection, call = Shared(message)] { connection->called_(call); });
    return 1;
}

int Connection::OnReply(sd_bus_message* message, void* context, sd_bus_error*) noexcept {
    auto* outgoing = static_cast<OutgoingCall*>(context);
    Connection* connection = outgoing->connection;
    // By this Lose sees that the call has its reply.
    outgoing->slot.reset();
    connection->due_.push_back(
        [connection, outgoing, reply = Shared(message)] { connection->Reply(*outgoing, reply); });
    return 1;
}

void Connection::Reply(OutgoingCall& outgoing, const MessageRef& reply) {
    const auto answered = std::move(outgoing.answered);
    outgoing_.remove_if([&](const OutgoingCall& call) { return &call == &outgoing; });
    answered(reply);
}

void Connection::Pump() {
    if (AnswerIsIn()) return AwaitHandOver();
    for (int steps = 0; steps < stepsPerRound && !AnswerIsIn(); ++steps)
        if (!Step()) return;
    ContinueIfHolding();
}

bool Connection::Step() {
    const bool progressed = due_.empty() && !lost_ && Receive();
    if (due_.empty()) return progressed;
    const auto call = std::move(due_.front());
    due_.pop_front();
    call();
    return true;
}

// Lets the library handle one message, which adds at most one function to `due_`.
bool Connection::Receive() {
    const int result = sd_bus_process(bus_.get(), nullptr);
    if (result < 0 || sd_bus_is_open(bus_.get()) <= 0) {
        Lose();
        return true;
    }
    FollowWriteQueue();
    return result > 0;
}

// True if the innermost wait has to continue before any other message is handled.
bool Connection::AnswerIsIn() const {
    return innermost_ && innermost_->done() && !innermost_->overtaken;
}

void Connection::AwaitHandOver() {
    if (innermost_->handOverLimit) return;
    innermost_->handOverLimit = loop_.After(handOverLimit, [this, wait = innermost_] {
        wait->overtaken = true;
        Continue();
    });
}

void Connection::Continue() {
    if (continuation_) return;
    continuation_ = loop_.After(Milliseconds(0), [this] {
        const HandleRef served = std::move(continuation_);
        Pump();
    });
}

// True if there is work that doesn't make the descriptor readable, such as messages that the library has
// read.
bool Connection::IsHolding() const {
    std::uint64_t held = 0;
    if (!lost_) sd_bus_get_n_queued_read(bus_.get(), &held);
    return held > 0 || !due_.empty();
}

void Connection::ContinueIfHolding() {
    if (IsHolding()) Continue();
}

void Connection::FollowWriteQueue() {
    if (!HasUnsent())
        writable_.reset();
    else if (!writable_)
        writable_ = loop_.WhenWritable(sd_bus_get_fd(bus_.get()), [this] { Pump(); });
}

void Connection::WaitUntil(const std::function<bool()>& done) {
    const HandleRef hold = loop_.HoldInput();
    Wait wait{done, innermost_, nullptr};
    innermost_ = &wait;
    const ScopeExit restore([&] { innermost_ = wait.outer; });
    if (IsHolding()) Pump();
    while (!done()) {
        if (!AwaitBus()) {
            loop_.ServeOnce();
            turn_ = steady_clock::now();
        }
        if (!done()) Pump();
    }
    ContinueIfHolding();
}

// Waits for the bus alone. Returns false once the loop's next turn is due. Most replies arrive sooner, and a
// turn of the loop takes almost as long as a call.
bool Connection::AwaitBus() const {
    if (lost_ || IsHolding()) return false;
    const auto left = turn_ + turnInterval - steady_clock::now();
    return left > left.zero() && PollBus(left);
}

// Waits until the bus can be read, or written where that is needed; false after the limit.
bool Connection::PollBus(steady_clock::duration limit) const {
    pollfd descriptor{sd_bus_get_fd(bus_.get()), static_cast<short>(sd_bus_get_events(bus_.get())), 0};
    return poll(&descriptor, 1, static_cast<int>(std::chrono::ceil<Milliseconds>(limit).count())) > 0;
}

void Connection::Flush() {
    ReceiveUntil([this] { return !HasUnsent(); });
    // Messages received meanwhile were only queued.
    ContinueIfHolding();
}

bool Connection::IsOwn(std::string_view name) const {
    return name == name_ || std::find(owned_.begin(), owned_.end(), name) != owned_.end();
}

void Connection::GiveNamesBack() {
    for (const std::string& name : std::exchange(owned_, {})) {
        sd_bus_slot* slot = nullptr;
        if (sd_bus_release_name_async(bus_.get(), &slot, name.c_str(), OnNameReleased, this) >= 0)
            releases_.emplace_back(slot);
    }
    FollowWriteQueue();
}

// The bus replies in the order of the requests.
int Connection::OnNameReleased(sd_bus_message*, void* self, sd_bus_error*) noexcept {
    static_cast<Connection*>(self)->releases_.pop_front();
    return 1;
}

// Calls that were sent to a name while it was owned arrive before the reply to its release.
void Connection::Leave() {
    leaving_ = true;
    GiveNamesBack();
    ReceiveUntil([this] { return releases_.empty(); });
    Flush();
}

// Receives messages and sends queued ones. Takes at most a second.
void Connection::ReceiveUntil(const std::function<bool()>& done) {
    const auto limit = steady_clock::now() + flushLimit;
    while (!done() && !lost_) {
        const auto left = limit - steady_clock::now();
        if (left <= left.zero()) break;
        if (!Receive()) PollBus(left);
    }
}

bool Connection::HasUnsent() const {
    std::uint64_t held = 0;
    return !lost_ && sd_bus_get_n_queued_write(bus_.get(), &held) >= 0 && held > 0;
}

void Connection::Lose() {
    if (lost_) return;
    lost_ = true;
    // The watches must end before the library closes their descriptor.
    readable_.reset();
    writable_.reset();
    for (OutgoingCall& outgoing : outgoing_)
        if (outgoing.slot) due_.push_back([this, &outgoing] { Reply(outgoing, nullptr); });
    if (whenLost_) due_.push_back(whenLost_);
    sd_bus_close(bus_.get());
    Continue();
}

}  // namespace platform
