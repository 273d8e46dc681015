// A command button.
#pragma once

#include <QPushButton>

#include "platform/qt/ControlView.h"
#include "platform/qt/Drawing.h"

namespace platform::forms {

// Shows its picture, or its caption if it has none.
class PushWidget : public QPushButton, public TypedView<CommandButton> {
  public:
    PushWidget(CommandButton& control, QWidget& parent);
    QWidget& Widget() override { return *this; }

  protected:
    void SyncOwn() override;
    QString Caption() const override;
    bool ShowsCaption() const override;
    void paintEvent(QPaintEvent* event) override;

  private:
    Drawing& Shown();
    void PaintFace(QPainter& painter);

    Drawing picture_, disabledPicture_;
    QString caption_;  // not the widget's text, where "&" would mark a letter
    PictureRef shown_, shownDisabled_;
};

}  // namespace platform::forms
