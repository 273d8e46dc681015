#include "host/TimedateLink.h"

#include <poll.h>

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "platform/qt/QtText.h"

namespace switchdesk {

using platform::FromQt;
using platform::MessageRef;
using platform::Milliseconds;
using platform::TextView;

namespace {

constexpr char service[] = "org.freedesktop.timedate1", path[] = "/org/freedesktop/timedate1",
               properties[] = "org.freedesktop.DBus.Properties";
constexpr TextView notAllowed = u"CODE NOT ALLOWED", systemError = u"LNK_SYSERROR",
                   linkLost = u"LNK_CMD RERR";
constexpr std::uint64_t noLimit = UINT64_MAX;  // the caller has its own limit
constexpr int stepsPerRound = 64;              // then timers and painting get their turn

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

Failure FailureOf(const sd_bus_error& answer) {
    const std::string_view name = answer.name, last = name.substr(name.rfind('.') + 1);
    if (IsOneOf(last, {"AccessDenied", "InteractiveAuthorizationRequired", "NotAuthorized"}))
        return {notAllowed,
                FromQt(TimedateLink::tr("Its rules (polkit) don't let this user set the clock. Its "
                                        "administrator can allow it."))};
    if (last == "AutomaticTimeSyncEnabled")
        return {notAllowed,
                FromQt(TimedateLink::tr("It keeps its clock by NTP; switch that off there, or leave its "
                                        "clock alone."))};
    if (IsOneOf(last, {"NoReply", "Timeout", "Disconnected"}))
        return {linkLost, FromQt(TimedateLink::tr("Its clock service ended without an answer.")), true};
    if (name.find(".Spawn.") != name.npos ||
        IsOneOf(last,
                {"ServiceUnknown", "NameHasNoOwner", "UnknownObject", "UnknownInterface", "UnknownMethod"}))
        return {systemError, FromQt(TimedateLink::tr("It has no clock service (systemd-timedated)."))};
    const QString text = QString::fromUtf8(answer.message).simplified();
    return {last == "InvalidArgs" ? answer::dataError : answer::error,
            FromQt(TimedateLink::tr("Its clock service refused: %1").arg(text))};
}

Failure OddAnswer() {
    return {systemError, FromQt(TimedateLink::tr("Its clock service gave no time."))};
}

Failure ConnectionLost() {
    return {linkLost, FromQt(TimedateLink::tr("The connection was lost.")), true};
}

}  // namespace

TimedateLink::TimedateLink(platform::EventLoop& loop, QString address,
                           std::function<void(const Failure& why)> failed)
    : loop_(loop), address_(std::move(address)), failed_(std::move(failed)) {}

bool TimedateLink::Open() {
    if (bus_) return true;
    answered_ = false;
    sd_bus* bus = nullptr;
    const int result = address_.isEmpty() ? sd_bus_open_system(&bus) : OpenTunnel(bus);
    bus_.reset(bus);
    if (result >= 0) readable_ = loop_.WhenReadable(sd_bus_get_fd(bus), [this] { Serve(); });
    return result >= 0;
}

int TimedateLink::OpenTunnel(sd_bus*& bus) {
    tunnel_ = std::make_unique<SshTunnel>(
        address_, [this](const Failure& why) { Fail(answered_ ? ConnectionLost() : why); });
    const int socket = tunnel_->TakeSocket();
    sd_bus_new(&bus);
    sd_bus_set_bus_client(bus, true);
    sd_bus_set_fd(bus, socket, socket);
    return sd_bus_start(bus);
}

void TimedateLink::Send(const char* interface, const char* member,
                        const std::function<int(sd_bus_message*)>& fill, Then then) {
    then_ = std::move(then);
    sd_bus_message* call = nullptr;
    sd_bus_slot* slot = nullptr;
    const bool sent =
        Open() && sd_bus_message_new_method_call(bus_.get(), &call, service, path, interface, member) >= 0 &&
        fill(call) >= 0 && sd_bus_call_async(bus_.get(), &slot, call, OnAnswer, this, noLimit) >= 0;
    sd_bus_message_unref(call);
    slot_.reset(slot);
    // Later, so that neither `then` nor `failed_` runs inside the caller's call.
    soon_ = loop_.After(Milliseconds(0), [this, sent] { sent ? Serve() : EndOfBus(); });
}

void TimedateLink::Read(const char* property, Then then) {
    Send(
        properties, "Get",
        [&](sd_bus_message* call) { return sd_bus_message_append(call, "ss", service, property); },
        std::move(then));
}

void TimedateLink::ReadText(const char* property, std::function<void(std::string value)> then) {
    Read(property, [this, then = std::move(then)](sd_bus_message* answer) {
        const char* value = nullptr;
        if (sd_bus_message_read(answer, "v", "s", &value) < 0) return failed_(OddAnswer());
        then(value);
    });
}

void TimedateLink::ReadNumber(const char* property, std::function<void(std::uint64_t value)> then) {
    Read(property, [this, then = std::move(then)](sd_bus_message* answer) {
        std::uint64_t value = 0;
        if (sd_bus_message_read(answer, "v", "t", &value) < 0) return failed_(OddAnswer());
        then(value);
    });
}

void TimedateLink::SetTime(std::int64_t time, std::function<void()> then) {
    constexpr int relative = false, interactive = false;
    Send(
        service, "SetTime",
        [&](sd_bus_message* call) { return sd_bus_message_append(call, "xbb", time, relative, interactive); },
        [then = std::move(then)](sd_bus_message*) { then(); });
}

int TimedateLink::OnAnswer(sd_bus_message* answer, void* self, sd_bus_error*) noexcept {
    // Only queued: handling it may call the library again, which forbids that inside its callbacks.
    static_cast<TimedateLink*>(self)->answer_ = platform::Shared(answer);
    return 1;
}

void TimedateLink::Serve() {
    int result = 1;
    for (int steps = 0; result > 0 && steps < stepsPerRound; ++steps) {
        result = sd_bus_process(bus_.get(), nullptr);
        if (result < 0 || sd_bus_is_open(bus_.get()) <= 0) return EndOfBus();
        if (answer_) return Act(std::exchange(answer_, nullptr));
    }
    if (result > 0) soon_ = loop_.After(Milliseconds(0), [this] { Serve(); });
    if (!(sd_bus_get_events(bus_.get()) & POLLOUT))
        writable_.reset();
    else if (!writable_)
        writable_ = loop_.WhenWritable(sd_bus_get_fd(bus_.get()), [this] { Serve(); });
}

// Continues serving later, since more messages may be waiting even if the answer leads to no other call.
void TimedateLink::Act(const MessageRef& answer) {
    answered_ = true;
    slot_.reset();
    soon_ = loop_.After(Milliseconds(0), [this] { Serve(); });
    const Then then = std::exchange(then_, nullptr);
    const sd_bus_error* refusal = sd_bus_message_get_error(answer.get());
    refusal ? failed_(FailureOf(*refusal)) : then(answer.get());
}

// With a tunnel, ssh reports the reason when it ends.
void TimedateLink::EndOfBus() {
    soon_.reset();
    readable_.reset();
    writable_.reset();
    slot_.reset();
    bus_.reset();
    if (!tunnel_)
        Fail(answered_ ? ConnectionLost()
                       : Failure{systemError, FromQt(tr("Its system bus can't be reached."))});
}

void TimedateLink::Fail(const Failure& why) {
    const bool isAwaited = then_ != nullptr;
    Close();
    if (isAwaited) failed_(why);
}

void TimedateLink::Forget() {
    then_ = nullptr;
    slot_.reset();
    answer_.reset();
}

void TimedateLink::Close() {
    Forget();
    soon_.reset();
    readable_.reset();
    writable_.reset();
    bus_.reset();
    tunnel_.reset();
}

}  // namespace switchdesk
