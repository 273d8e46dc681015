// A label.
#pragma once

#include "platform/qt/ControlView.h"
#include "platform/qt/Drawing.h"

namespace platform::forms {

class LabelWidget : public QWidget, public TypedView<Label> {
  public:
    LabelWidget(Label& control, QWidget& parent) : QWidget(&parent), TypedView(control) {}
    QWidget& Widget() override { return *this; }
    // True without a caption: it encloses other controls.
    bool IsFrame() const { return shown_.caption.isEmpty(); }

  protected:
    void SyncOwn() override;
    QString Caption() const override;
    void paintEvent(QPaintEvent* event) override;

  private:
    struct Shown {
        QString caption;
        QFont font;
        bool border = false, opaque = false;
        Alignment align = Alignment::Left;
        Color backColor = 0, foreColor = 0;
        friend bool operator==(const Shown&, const Shown&) = default;
    };
    QColor Fill() const;

    Shown shown_;
};

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
