// The ring around more than the widget that has the focus.
#pragma once

#include <QFocusFrame>
#include <QPainter>

#include "platform/qt/Look.h"

namespace platform::forms {

// A focus frame is nothing to the mouse and to assistive programs.
class FocusRing : public QFocusFrame {
  public:
    using QFocusFrame::QFocusFrame;

    void Surround(const QRect& inside) {
        constexpr int gap = 3;
        setGeometry(inside.adjusted(-gap, -gap, gap, gap));
        raise();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        DrawFocus(painter, rect());
    }
};

}  // namespace platform::forms
