#include "platform/qt/SpinWidget.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <cstdlib>
#include <utility>

#include "platform/qt/Look.h"
#include "platform/runtime/RuntimeError.h"

namespace platform::forms {

SpinWidget::SpinWidget(UpDown& control, QWidget& parent)
    : HeldButton(parent, [this] { return StepIfOperable(*held_); }), TypedView(control) {}

QRect SpinWidget::RectOf(Direction direction) const {
    const int middle = height() / 2;
    return direction == Direction::Up ? QRect(0, 0, width(), middle)
                                      : QRect(0, middle + 1, width(), height() - middle - 1);
}

std::optional<Direction> SpinWidget::DirectionAt(QPoint place) const {
    for (const Direction direction : {Direction::Up, Direction::Down})
        if (RectOf(direction).contains(place)) return direction;
    return {};
}

void SpinWidget::PointAt(std::optional<Direction> direction) {
    if (std::exchange(under_, direction) != direction) update();
}

bool SpinWidget::StepIfOperable(Direction direction) {
    if (!IsOperable()) return false;
    const auto alive = KeepWindow();
    Step(Typed(), direction);
    return IsOperable();
}

bool SpinWidget::event(QEvent* event) {
    if (event->type() == QEvent::Leave) PointAt(std::nullopt);
    return HeldButton::event(event);
}

bool SpinWidget::hitButton(const QPoint& place) const {
    return held_ && held_ == DirectionAt(place);
}

void SpinWidget::mousePressEvent(QMouseEvent* event) {
    PointAt(DirectionAt(event->position().toPoint()));
    if (event->button() == Qt::LeftButton) held_ = under_;
    HeldButton::mousePressEvent(event);
}

void SpinWidget::mouseMoveEvent(QMouseEvent* event) {
    PointAt(DirectionAt(event->position().toPoint()));
    HeldButton::mouseMoveEvent(event);
}

void SpinWidget::keyPressEvent(QKeyEvent* event) {
    if (const auto direction = StepOf(*event))
        StepIfOperable(*direction);
    else
        QWidget::keyPressEvent(event);
}

void SpinWidget::wheelEvent(QWheelEvent* event) {
    const int steps = wheel_.Take(*event);
    const auto alive = KeepWindow();
    for (int i = 0; i < std::abs(steps); ++i) StepIfOperable(steps > 0 ? Direction::Up : Direction::Down);
}

void SpinWidget::PaintHalf(QPainter& painter, Direction direction) const {
    const QRect half = RectOf(direction);
    const bool pressed = isDown() && held_ == direction;
    if (isEnabled() && under_ == direction && (!isDown() || pressed))
        painter.fillRect(half.adjusted(1, 1, -1, -1), QColor(pressed ? look::facePressed : look::faceHover));
    DrawArrow(painter, half, direction == Direction::Up ? Arrow::Up : Arrow::Down,
              isEnabled() ? look::ink : look::inkDisabled);
}

void SpinWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor outline = isEnabled() ? look::line : look::lineSoft;
    DrawBox(painter, rect(), isEnabled() ? look::face : look::faceDisabled, outline);
    painter.fillRect(QRect(1, height() / 2, width() - 2, 1), outline);
    PaintHalf(painter, Direction::Up);
    PaintHalf(painter, Direction::Down);
    if (hasFocus()) DrawFocus(painter, rect());
}

void Step(UpDown& spin, Direction direction) {
    Guard([&] { direction == Direction::Up ? spin.StepUp() : spin.StepDown(); });
}

std::optional<Direction> StepOf(const QKeyEvent& event) {
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) return {};
    if (event.key() == Qt::Key_Up) return Direction::Up;
    if (event.key() == Qt::Key_Down) return Direction::Down;
    return {};
}

int WheelSteps::Take(const QWheelEvent& event) {
    turned_ += event.angleDelta().y();
    const int steps = turned_ / QWheelEvent::DefaultDeltasPerStep;
    turned_ -= steps * QWheelEvent::DefaultDeltasPerStep;
    return steps;
}

}  // namespace platform::forms
