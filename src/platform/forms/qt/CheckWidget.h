// A check box.
#pragma once

#include <QCheckBox>

#include "platform/forms/qt/ControlView.h"

namespace platform::forms {

// Draws its indicator, and its caption where there is room for one.
class CheckWidget : public QCheckBox, public TypedView<CheckBox> {
  public:
    CheckWidget(CheckBox& control, QWidget& parent);
    QWidget& Widget() override { return *this; }

  protected:
    void SyncOwn() override;
    QString SpokenName() const override;
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;

  private:
    void PaintIndicator(QPainter& painter, const QRect& box) const;

    Color backColor_ = 0;
};

}  // namespace platform::forms
