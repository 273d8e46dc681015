#include "platform/automation/dbus/Caller.h"

#include <algorithm>
#include <chrono>
#include <optional>

#include "platform/automation/dbus/BusErrors.h"

namespace platform {

namespace {

using std::chrono::steady_clock;

constexpr Milliseconds retryInterval{200};

Milliseconds LimitOf(std::int32_t milliseconds) {
    return Milliseconds(std::max(milliseconds, 0));
}

}  // namespace

// One call on its way. The connection holds it too until the answer comes.
class Caller::Waiting : public std::enable_shared_from_this<Waiting> {
  public:
    Waiting(Caller& caller, MessageRef call, std::shared_ptr<void> kept,
            std::function<void(sd_bus_message*)> tooLate)
        : caller_(caller), call_(std::move(call)), kept_(std::move(kept)), tooLate_(std::move(tooLate)) {}

    void Send();
    const bool& IsOver() const { return isOver_; }
    // Raises 462 where there is none, and what the answer tells of.
    MessageRef Answer();
    // Ends everything but the wait for an answer that comes too late.
    void Stop();
    // As if the operator had given up.
    void Abandon();

  private:
    void Answered(const MessageRef& answer);
    void Drop(sd_bus_message* answer);
    void Refused();
    void Retry();
    void StartPendingLimit();
    void Ask(TextView title, TextView text);
    void Decided(bool giveUp);

    Caller& caller_;
    MessageRef call_, answer_;
    std::shared_ptr<void> kept_;
    std::function<void(sd_bus_message*)> tooLate_;
    HandleRef pendingLimit_, retry_;
    std::optional<steady_clock::time_point> refusedSince_;
    std::unique_ptr<WaitBox> box_;
    bool isOut_ = false, boxIsOpen_ = false, isOver_ = false, gaveUp_ = false;
};

void Caller::Waiting::Send() {
    caller_.connection_.SendCall(
        call_.get(), [self = shared_from_this()](const MessageRef& answer) { self->Answered(answer); });
    isOut_ = true;
    StartPendingLimit();
}

void Caller::Waiting::Answered(const MessageRef& answer) {
    isOut_ = false;
    const bool isError = answer && sd_bus_message_is_method_error(answer.get(), nullptr) > 0;
    if (gaveUp_) return answer && !isError ? Drop(answer.get()) : void();
    if (isError && IsBusy(answer.get())) return Refused();
    answer_ = answer;
    isOver_ = true;
    Stop();
}

void Caller::Waiting::Drop(sd_bus_message* answer) {
    try {
        tooLate_(answer);
    } catch (const RuntimeError&) {
        // Nobody is left who could be told that the answer made no sense.
        return;
    }
}

void Caller::Waiting::Refused() {
    pendingLimit_.reset();
    const auto now = steady_clock::now();
    if (!refusedSince_) refusedSince_ = now;
    const WaitSettings& settings = caller_.settings_;
    if (now - *refusedSince_ >= LimitOf(settings.busyTimeout)) Ask(settings.busyTitle, settings.busyText);
    retry_ = caller_.loop_.After(retryInterval, [this] { Retry(); });
}

void Caller::Waiting::Retry() {
    try {
        Send();
    } catch (const RuntimeError&) {
        // Without an answer the call fails like any whose connection was lost.
        isOver_ = true;
    }
}

void Caller::Waiting::StartPendingLimit() {
    pendingLimit_ = caller_.loop_.After(LimitOf(caller_.settings_.pendingTimeout), [this] {
        Ask(caller_.settings_.pendingTitle, caller_.settings_.pendingText);
    });
}

void Caller::Waiting::Ask(TextView title, TextView text) {
    // One question at a time; the open one offers the same choice.
    if (boxIsOpen_ || isOver_) return;
    boxIsOpen_ = true;
    auto box = caller_.boxes_.Open(title, text, [waiting = weak_from_this()](bool giveUp) {
        if (const auto self = waiting.lock()) self->Decided(giveUp);
    });
    box_ = std::move(box);
}

// The box has closed, but may still be running this: it is dropped later.
void Caller::Waiting::Decided(bool giveUp) {
    boxIsOpen_ = false;
    if (isOver_) return;
    gaveUp_ = isOver_ = giveUp;
    refusedSince_.reset();
    if (isOut_ && !giveUp) StartPendingLimit();
}

void Caller::Waiting::Stop() {
    pendingLimit_.reset();
    retry_.reset();
    box_.reset();
}

void Caller::Waiting::Abandon() {
    gaveUp_ = isOver_ = true;
    Stop();
}

MessageRef Caller::Waiting::Answer() {
    if (gaveUp_) throw RuntimeError(ErrorNumber::ServerGone, "the operator gave up waiting");
    if (!answer_) throw RuntimeError(ErrorNumber::ServerGone, "the connection to the bus was lost");
    if (sd_bus_message_is_method_error(answer_.get(), nullptr) > 0) throw ErrorOfAnswer(answer_.get());
    return answer_;
}

MessageRef Caller::Call(const MessageRef& call, std::shared_ptr<void> kept,
                        std::function<void(sd_bus_message*)> tooLate) {
    const auto waiting = std::make_shared<Waiting>(*this, call, std::move(kept), std::move(tooLate));
    waiting->Send();
    try {
        connection_.WaitUntil(waiting->IsOver());
    } catch (...) {
        // Thrown by what was served meanwhile; the routine that waits ends with it.
        waiting->Abandon();
        throw;
    }
    waiting->Stop();
    return waiting->Answer();
}

}  // namespace platform
