#include "platform/automation/Patience.h"

#include <algorithm>
#include <utility>

namespace platform {

namespace {

Milliseconds LimitOf(std::int32_t milliseconds) {
    return Milliseconds(std::max(milliseconds, 0));
}

}  // namespace

bool BusyLimit::ReachedByRefusal() {
    if (!timer_) timer_ = scheduler_.After(LimitOf(settings_.busyTimeout), [this] { isReached_ = true; });
    return isReached_;
}

void BusyLimit::Reset() {
    timer_.reset();
    isReached_ = false;
}

void Patience::SpanCalls(std::function<void()> givenUp) {
    spansCalls_ = true;
    givenUp_ = std::move(givenUp);
    CloseBox();
    StartPendingLimit();
}

void Patience::GiveUp() {
    if (std::exchange(isGivenUp_, true)) return;
    CloseBox();
    const auto keptForTheCall = shared_from_this();
    if (const auto givenUp = std::exchange(givenUp_, nullptr)) givenUp();
}

void Patience::RequireOngoing() const {
    if (isGivenUp_) throw RuntimeError(ErrorNumber::ServerGone, "the operator gave up waiting");
}

void Patience::CallSent() {
    callIsOut_ = true;
    if (!spansCalls_) StartPendingLimit();
}

void Patience::CallRefused() {
    callIsOut_ = false;
    if (spansCalls_) return;
    pendingLimit_.reset();
    if (busyLimit_.ReachedByRefusal()) Ask(settings_.busyTitle, settings_.busyText);
}

void Patience::CallEnded() {
    callIsOut_ = false;
    if (spansCalls_) return;
    pendingLimit_.reset();
    busyLimit_.Reset();
    CloseBox();
}

void Patience::StartPendingLimit() {
    pendingLimit_ = scheduler_.After(LimitOf(settings_.pendingTimeout),
                                     [this] { Ask(settings_.pendingTitle, settings_.pendingText); });
}

// Asks one question at a time: an open box offers the same choice.
void Patience::Ask(TextView title, TextView text) {
    if (isGivenUp_ || std::exchange(boxIsOpen_, true)) return;
    auto box = boxes_.Open(title, text, [patience = weak_from_this()](bool giveUp) {
        if (const auto self = patience.lock()) self->Decided(giveUp);
    });
    if (boxIsOpen_) box_ = std::move(box);
}

void Patience::Decided(bool giveUp) {
    if (!std::exchange(boxIsOpen_, false)) return;
    if (giveUp) return GiveUp();
    busyLimit_.Reset();
    if (spansCalls_ || callIsOut_) StartPendingLimit();
}

void Patience::CloseBox() {
    boxIsOpen_ = false;
    box_.reset();
}

}  // namespace platform
