// An image.
#pragma once

#include "platform/qt/ControlView.h"
#include "platform/qt/Drawing.h"

namespace platform::forms {

// Stretched over its rectangle, or in its own size from the corner.
class ImageWidget : public QWidget, public TypedView<Image> {
  public:
    ImageWidget(Image& control, QWidget& parent) : QWidget(&parent), TypedView(control) {}
    QWidget& Widget() override { return *this; }

  protected:
    void SyncOwn() override;
    void paintEvent(QPaintEvent* event) override;

  private:
    PictureRef picture_;
    bool stretch_ = false;
    Drawing drawing_;
};

}  // namespace platform::forms
