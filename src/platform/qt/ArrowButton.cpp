#include "platform/qt/ArrowButton.h"

#include <QMouseEvent>
#include <QPainter>

namespace platform::forms {

// The base class answers the keyboard; its own repeating goes on under a box, so the mouse is answered here.
ArrowButton::ArrowButton(Arrow arrow, const std::function<bool()>& step, QWidget& parent)
    : QAbstractButton(&parent), arrow_(arrow), repeater_([this, step] { return !isDown() || step(); }) {
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setMouseTracking(true);
    connect(this, &QAbstractButton::clicked, this, [step] { step(); });
}

void ArrowButton::LetGo() {
    repeater_.Stop();
    setDown(false);
}

bool ArrowButton::event(QEvent* event) {
    if (EndsHolding(*event)) LetGo();
    return QAbstractButton::event(event);
}

void ArrowButton::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    setDown(true);
    repeater_.Start();
}

void ArrowButton::mouseMoveEvent(QMouseEvent* event) {
    if (!repeater_.IsRunning()) return event->ignore();  // for the calendar, which the mouse has left
    setDown(rect().contains(event->position().toPoint()));
}

void ArrowButton::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) LetGo();
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
