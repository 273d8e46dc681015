#include "platform/qt/Repeater.h"

#include <QGuiApplication>
#include <QPointer>

namespace platform::forms {

namespace {

constexpr int firstPause = 400, pause = 100;  // milliseconds

bool IsButtonHeld() {
    return QGuiApplication::mouseButtons().testFlag(Qt::LeftButton);
}

}  // namespace

Repeater::Repeater(std::function<bool()> step) : step_(std::move(step)) {
    timer_.setSingleShot(true);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
        // The release may have been held back, or gone to a window that is no more.
        if (IsButtonHeld())
            Step(pause);
        else
            Stop();
    });
}

void Repeater::Start() {
    running_ = true;
    Step(firstPause);
}

void Repeater::Stop() {
    running_ = false;
    timer_.stop();
}

void Repeater::Step(int wait) {
    const QPointer<QTimer> alive(&timer_);
    const bool goesOn = step_();
    if (!alive || !running_) return;
    if (goesOn)
        timer_.start(wait);
    else
        Stop();
}

bool EndsHolding(const QEvent& event) {
    switch (event.type()) {
        case QEvent::Hide:
        case QEvent::EnabledChange:
        case QEvent::WindowBlocked:
        case QEvent::WindowDeactivate:
            return true;
        default:
            return false;
    }
}

}  // namespace platform::forms
