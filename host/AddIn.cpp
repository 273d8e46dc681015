#include "host/AddIn.h"

#include "platform/qt/QtText.h"
#include "platform/runtime/ScopeExit.h"

namespace switchdesk {

using platform::FromQt;
using platform::Text;
using platform::ToUtf8;

namespace {

constexpr platform::TextView className = u"Horalink10013.cOLELayer";
// How long to wait for the add-in to end. If it has other clients, our release doesn't end it.
constexpr platform::Milliseconds longestFarewell{3000};

}  // namespace

AddIn::AddIn(platform::Automation& automation, platform::EventLoop& loop, HostView& view, CallLog& log)
    : automation_(automation), loop_(loop), view_(view), log_(log) {}

void AddIn::Open(const Text& exchange, const platform::ObjectRef& host) {
    if (isOpening_) return;
    isOpening_ = true;
    const platform::ScopeExit opened([this] { isOpening_ = false; });
    view_.ShowState(FromQt(tr("Opening the clock add-in\u2026")), HostView::AddInState::Opening, exchange);
    try {
        Show(exchange, host);
    } catch (const platform::RuntimeError& error) {
        log_.Note("add-in raised error " + std::to_string(error.Number()));
        const QString what = layer_ ? tr("The clock add-in failed (error %1).")
                                    : tr("The clock add-in can't be started (error %1).");
        layer_ = nullptr;
        view_.ShowMessage(error.Description());
        ShowClosed(what.arg(error.Number()));
    }
}

void AddIn::Show(const Text& exchange, const platform::ObjectRef& host) {
    patience_ = automation_.NewPatience();
    if (!layer_) {
        log_.Note("creates " + ToUtf8(className));
        layer_ = automation_.CreateObject(className, patience_);
        watch_ = layer_->WhenOwnerGone([this] { OwnerGone(); });
    }
    const platform::ObjectRef held = layer_, layer = Within();
    ++childId_;
    const bool failed = platform::Call(layer, "RegisterPBX", exchange, host, childId_).ToBoolean();
    log_.Note("RegisterPBX(" + LogText(exchange) + ") returned " + LogText(failed));
    DressAddIn(layer);
    platform::Put(layer, "Visible", true);
    log_.Note("Visible is written");
    if (held != layer_) return;
    const QString words = failed
                              ? tr("The clock add-in is open, but its dialog could not be set up completely.")
                              : tr("The clock add-in is open for %1.").arg(platform::ToQt(exchange));
    view_.ShowState(FromQt(words), HostView::AddInState::Open, exchange);
}

void AddIn::ShowClosed(const QString& words) {
    view_.ShowState(FromQt(words), HostView::AddInState::Closed, {});
}

void AddIn::SetBackground(std::int16_t set) {
    background_ = set;
    if (!layer_) return;
    try {
        DressAddIn(Within());
    } catch (const platform::RuntimeError& error) {
        view_.ShowMessage(FromQt(tr("The background can't be changed:")) + u" " + error.Description());
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
    ShowClosed(tr("The clock add-in is closed."));
}

void AddIn::ChildUnloaded(std::int16_t id) {
    if (id != childId_) return;
    // Later, since the add-in is waiting for its call to return.
    release_ = loop_.After(platform::Milliseconds(0), [this] { Close(); });
}

void AddIn::OwnerGone() {
    watch_ = nullptr;
    log_.Note("add-in has left");
    if (layer_) {
        layer_ = nullptr;
        ShowClosed(tr("The clock add-in has ended unexpectedly."));
    }
    if (left_) left_();
}

void AddIn::WhenLeft(std::function<void()> left) {
    left_ = std::move(left);
    if (patience_) patience_->GiveUp();
    const platform::Milliseconds limit = watch_ ? longestFarewell : platform::Milliseconds(0);
    limit_ = loop_.After(limit, [this] { left_(); });
}

}  // namespace switchdesk
