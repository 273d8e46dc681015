// A check box.
#pragma once

#include <QCheckBox>
#include <QFocusFrame>
#include <QPainter>

#include "platform/qt/ControlView.h"
#include "platform/qt/Look.h"

namespace platform::forms {

// A focus frame, because the mouse and assistive programs ignore those.
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

// Draws its indicator, and its caption if there is room. The focus ring encloses a label that shows the text
// instead.
class CheckWidget : public QCheckBox, public TypedView<CheckBox> {
  public:
    CheckWidget(CheckBox& control, QWidget& parent);
    QWidget& Widget() override { return *this; }

  protected:
    void SyncOwn() override;
    QString Caption() const override;
    bool ShowsCaption() const override { return CaptionRect().width() > 0; }
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;

  private:
    QRect CaptionRect() const;
    void SyncRing();
    void PaintIndicator(QPainter& painter, const QRect& box) const;

    QString caption_;  // not the widget's text, where "&" would mark a letter
    Color backColor_ = 0;
    FocusRing* ring_ = nullptr;  // the window's; only if there is a label
};

}  // namespace platform::forms
