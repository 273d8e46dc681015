#include "platform/qt/InputEvents.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace platform::forms {

namespace {

using MadeEvent = std::unique_ptr<QEvent>;

std::function<MadeEvent()> MakerOf(const QMouseEvent& mouse) {
    return [type = mouse.type(), position = mouse.position(), scene = mouse.scenePosition(),
            global = mouse.globalPosition(), button = mouse.button(), buttons = mouse.buttons(),
            modifiers = mouse.modifiers()]() -> MadeEvent {
        return std::make_unique<QMouseEvent>(type, position, scene, global, button, buttons, modifiers);
    };
}

std::function<MadeEvent()> MakerOf(const QWheelEvent& wheel) {
    return [position = wheel.position(), global = wheel.globalPosition(), pixels = wheel.pixelDelta(),
            angle = wheel.angleDelta(), buttons = wheel.buttons(), modifiers = wheel.modifiers(),
            phase = wheel.phase(), inverted = wheel.inverted()]() -> MadeEvent {
        return std::make_unique<QWheelEvent>(position, global, pixels, angle, buttons, modifiers, phase,
                                             inverted);
    };
}

bool IsRepeat(const QEvent& event) {
    return static_cast<const QKeyEvent&>(event).isAutoRepeat();
}

}  // namespace

InputKind KindOf(const QEvent& event) {
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            return InputKind::Press;
        case QEvent::MouseButtonRelease:
            return InputKind::Release;
        case QEvent::KeyPress:
            return IsRepeat(event) ? InputKind::Repeat : InputKind::Press;
        case QEvent::KeyRelease:
            return IsRepeat(event) ? InputKind::Repeat : InputKind::Release;
        case QEvent::Wheel:
            return InputKind::Wheel;
        case QEvent::MouseMove:
        case QEvent::ContextMenu:
        case QEvent::ShortcutOverride:
        case QEvent::NativeGesture:
        case QEvent::TabletPress:
        case QEvent::TabletMove:
        case QEvent::TabletRelease:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TouchCancel:
            return InputKind::Fleeting;
        default:
            return InputKind::None;
    }
}

// Keys count from 1, so buttons count downwards from −1.
int StrokeOf(const QEvent& event) {
    if (const auto* mouse = dynamic_cast<const QMouseEvent*>(&event))
        return -static_cast<int>(mouse->button());
    return static_cast<const QKeyEvent&>(event).key();
}

std::function<MadeEvent()> MakerOf(const QEvent& event) {
    if (const auto* mouse = dynamic_cast<const QMouseEvent*>(&event)) return MakerOf(*mouse);
    if (const auto* wheel = dynamic_cast<const QWheelEvent*>(&event)) return MakerOf(*wheel);
    return [copy = std::shared_ptr<const QEvent>(event.clone())] { return MadeEvent(copy->clone()); };
}

}  // namespace platform::forms
