// A flat button with an arrow, which steps for as long as it is held.
#pragma once

#include <QAbstractButton>

#include "platform/qt/Look.h"
#include "platform/qt/Repeater.h"

namespace platform::forms {

class ArrowButton : public QAbstractButton {
  public:
    // `step` tells whether holding the button may go on.
    ArrowButton(Arrow arrow, const std::function<bool()>& step, QWidget& parent);

  protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void LetGo();

    Arrow arrow_;
    Repeater repeater_;
};

}  // namespace platform::forms
