// A flat button with an arrow, and what it shares with a spin control: a step at the press, and further ones
// for as long as it is held.
#pragma once

#include <QAbstractButton>
#include <functional>

#include "platform/qt/Look.h"

namespace platform::forms {

// Steps stop for good where a box or another window comes in front, and pause where the mouse leaves.
class HeldButton : public QAbstractButton {
  public:
    // `step` returns whether to go on; it may take the button away.
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
