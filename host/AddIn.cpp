#include "host/AddIn.h"

namespace switchdesk {

using platform::Text;
using platform::ToUtf8;

namespace {

constexpr platform::TextView className = u"Horalink10013.cOLELayer";
// How long to wait for the add-in's end. With other clients, it doesn't end after our release.
constexpr platform::Milliseconds longestFarewell{3000};

Text ErrorText(const platform::RuntimeError& error) {
    return u" (error " + platform::DecimalText(error.Number()) + u").";
}

}  // namespace

AddIn::AddIn(platform::Automation& automation, platform::EventLoop& loop, HostView& view, CallLog& log)
    : automation_(automation), loop_(loop), view_(view), log_(log) {}

void AddIn::Open(const Text& exchange, const platform::ObjectRef& host) {
    view_.ShowState(u"Opening the clock add-in\u2026", layer_ != nullptr, exchange);
    try {
        Show(exchange, host);
    } catch (const platform::RuntimeError& error) {
        log_.Note("add-in raised error " + std::to_string(error.Number()));
        const Text what = layer_ ? u"The clock add-in failed" : u"The clock add-in can't be started";
        layer_ = nullptr;
        view_.ShowMessage(error.Description());
        view_.ShowState(what + ErrorText(error), false, {});
    }
}

void AddIn::Show(const Text& exchange, const platform::ObjectRef& host) {
    if (!layer_) {
        log_.Note("creates " + ToUtf8(className));
        layer_ = automation_.CreateObject(className);
        watch_ = layer_->WhenOwnerGone([this] { OwnerGone(); });
    }
    const platform::ObjectRef layer = layer_;
    exchange_ = exchange;
    ++childId_;
    const bool failed = platform::Call(layer, "RegisterPBX", exchange, host, childId_).ToBoolean();
    log_.Note("RegisterPBX(" + LogText(exchange) + ") returned " + LogText(failed));
    DressAddIn(layer);
    platform::Put(layer, "Visible", true);
    log_.Note("Visible is written");
    if (layer != layer_) return;
    view_.ShowState(failed ? u"The clock add-in is open, but its dialog could not be set up completely."
                           : u"The clock add-in is open for " + exchange + u".",
                    true, exchange);
}

void AddIn::SetBackground(std::int16_t set) {
    background_ = set;
    const platform::ObjectRef layer = layer_;
    if (!layer) return;
    try {
        DressAddIn(layer);
    } catch (const platform::RuntimeError& error) {
        view_.ShowMessage(u"The background can't be changed: " + error.Description());
    }
}

void AddIn::DressAddIn(const platform::ObjectRef& layer) {
    platform::Call(layer, "SetBackGround", background_);
    log_.Note("SetBackGround(" + LogText(background_) + ") returned");
}

void AddIn::Close() {
    if (!layer_) return;
    layer_ = nullptr;
    log_.Note("lets go of the add-in");
    view_.ShowState(u"The clock add-in is closed.", false, {});
}

void AddIn::ChildUnloaded(std::int16_t id) {
    if (id != childId_) return;
    // Not inside the add-in's call.
    release_ = loop_.After(platform::Milliseconds(0), [this] { Close(); });
}

void AddIn::OwnerGone() {
    watch_ = nullptr;
    log_.Note("add-in has left");
    if (layer_) {
        layer_ = nullptr;
        view_.ShowState(u"The clock add-in has ended unexpectedly.", false, {});
    }
    if (left_) left_();
}

void AddIn::WhenLeft(std::function<void()> left) {
    left_ = std::move(left);
    const platform::Milliseconds limit = watch_ ? longestFarewell : platform::Milliseconds(0);
    limit_ = loop_.After(limit, [this] { left_(); });
}

}  // namespace switchdesk
