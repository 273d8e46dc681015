#include "platform/automation/Patience.h"

#include <algorithm>
#include <utility>

namespace platform {

using std::chrono::steady_clock;

Milliseconds LimitOf(std::int32_t milliseconds) {
    return Milliseconds(std::max(milliseconds, 0));
}

void Patience::SpanCalls(std::function<void()> givenUp) {
    spansCalls_ = true;
    givenUp_ = std::move(givenUp);
    CloseBox();
    StartPendingLimit();
}

void Patience::GiveUp() {
    if (std::exchange(isGivenUp_, true)) return;
    pendingLimit_.reset();
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
    const auto now = steady_clock::now();
    if (!refusedSince_) refusedSince_ = now;
    if (now - *refusedSince_ >= LimitOf(settings_.busyTimeout)) Ask(settings_.busyTitle, settings_.busyText);
}

void Patience::CallEnded() {
    callIsOut_ = false;
    if (spansCalls_) return;
    pendingLimit_.reset();
    refusedSince_.reset();
    CloseBox();
}

void Patience::StartPendingLimit() {
    if (isGivenUp_) return;
    pendingLimit_ = scheduler_.After(LimitOf(settings_.pendingTimeout),
                                     [this] { Ask(settings_.pendingTitle, settings_.pendingText); });
}

// One question at a time; an open one offers the same choice.
void Patience::Ask(TextView title, TextView text) {
    if (std::exchange(boxIsOpen_, true)) return;
    auto box = boxes_.Open(title, text, [patience = weak_from_this()](bool giveUp) {
        if (const auto self = patience.lock()) self->Decided(giveUp);
    });
    if (boxIsOpen_) box_ = std::move(box);
}

void Patience::Decided(bool giveUp) {
    if (!std::exchange(boxIsOpen_, false)) return;
    if (giveUp) return GiveUp();
    refusedSince_.reset();
    if (spansCalls_ || callIsOut_) StartPendingLimit();
}

void Patience::CloseBox() {
    boxIsOpen_ = false;
    box_.reset();
}

}  // namespace platform
