// The two arrows of a spin control.
#pragma once

#include <optional>

#include "platform/forms/Controls.h"
#include "platform/qt/ArrowButton.h"
#include "platform/qt/ControlView.h"

class QKeyEvent;
class QWheelEvent;

namespace platform::forms {

enum class Direction { Up, Down };

// Makes one of the operator's steps. Errors of the handlers end here.
void Step(UpDown& spin, Direction direction);

// The step that a key means, if any: Up and Down without modifiers.
std::optional<Direction> StepOf(const QKeyEvent& event);

// Adds up the turns of a wheel, whose small ones make a step together.
class WheelSteps {
  public:
    // The whole steps that are complete now; below 0 downwards.
    int Take(const QWheelEvent& event);

  private:
    int turned_ = 0;
};

// Takes no focus by the mouse: what it steps is the box that has it.
class SpinWidget : public HeldButton, public TypedView<UpDown> {
  public:
    SpinWidget(UpDown& control, QWidget& parent);
    QWidget& Widget() override { return *this; }

  protected:
    void SyncOwn() override {}
    bool event(QEvent* event) override;
    bool hitButton(const QPoint& place) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    QRect RectOf(Direction direction) const;
    std::optional<Direction> DirectionAt(QPoint place) const;
    void PointAt(std::optional<Direction> direction);
    bool StepIfOperable(Direction direction);
    void PaintHalf(QPainter& painter, Direction direction) const;

    std::optional<Direction> held_, under_;  // the arrow that the mouse holds, and the one it is over
    WheelSteps wheel_;
};

}  // namespace platform::forms
