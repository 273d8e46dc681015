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

// Makes a step for the operator. Catches errors of the handlers.
void Step(UpDown& spin, Direction direction);

// The step of a key, if it is Up or Down without modifiers.
std::optional<Direction> StepOf(const QKeyEvent& event);

// Adds up small turns of a wheel to whole steps.
class WheelSteps {
  public:
    // The steps now complete; negative for down.
    int Take(const QWheelEvent& event);

  private:
    int turned_ = 0;
};

// A click doesn't take the focus from the box that is stepped.
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

    std::optional<Direction> held_, under_;  // the arrow that is held, and the one under the mouse
    WheelSteps wheel_;
};

}  // namespace platform::forms
