#include "platform/qt/ArrowButton.h"

#include <QEvent>
#include <QPainter>
#include <QPointer>

namespace platform::forms {

namespace {

constexpr int firstPause = 400, pause = 100;  // milliseconds

bool EndsHolding(const QEvent& event) {
    return event.type() == QEvent::Hide || event.type() == QEvent::WindowBlocked ||
           event.type() == QEvent::WindowDeactivate;
}

}  // namespace

HeldButton::HeldButton(QWidget& parent, const std::function<bool()>& step) : QAbstractButton(&parent) {
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setAutoRepeat(true);
    setAutoRepeatDelay(firstPause);
    setAutoRepeatInterval(pause);
    connect(this, &QAbstractButton::pressed, this, [this, step] {
        const QPointer<HeldButton> alive(this);
        if (!step() && alive) setDown(false);
    });
}

bool HeldButton::event(QEvent* event) {
    if (EndsHolding(*event)) setDown(false);
    return QAbstractButton::event(event);
}

ArrowButton::ArrowButton(Arrow arrow, const std::function<bool()>& step, QWidget& parent)
    : HeldButton(parent, step), arrow_(arrow) {
    setAttribute(Qt::WA_Hover);
}

void ArrowButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect face = rect().adjusted(1, 1, -1, -1);
    if (isDown())
        DrawBox(painter, face, look::facePressed, look::facePressed);
    else if (isEnabled() && underMouse())
        DrawBox(painter, face, QColor::fromRgba(look::tint), Qt::transparent);
    DrawArrow(painter, rect(), arrow_, isEnabled() ? look::ink : look::inkDisabled);
    if (hasFocus()) DrawFocus(painter, face);
}

}  // namespace platform::forms
