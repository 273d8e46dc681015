// A flat button with an arrow, and its base, shared with the spin control: a button that steps when pressed,
// and again and again while held.
#pragma once

#include <QAbstractButton>
#include <functional>

#include "platform/qt/Look.h"

namespace platform::forms {

// Steps end when a box or another window comes in front, and pause while the mouse is outside.
class HeldButton : public QAbstractButton {
  public:
    // `step` returns whether to go on. It may destroy the button.
    HeldButton(QWidget& parent, const std::function<bool()>& step);

  protected:
    bool event(QEvent* event) override;
};

class ArrowButton : public HeldButton {
  public:
    ArrowButton(Arrow arrow, const std::function<bool()>& step, QWidget& parent);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    Arrow arrow_;
};

}  // namespace platform::forms
