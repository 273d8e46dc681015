// A text box.
#pragma once

#include <QLineEdit>

#include "platform/qt/ControlView.h"
#include "platform/qt/SpinWidget.h"

namespace platform::forms {

// Its text fills the box from edge to edge, since boxes of forms are no higher than their letters.
//
// A box with a spin control is one section of a field. The operator picks it as a whole, and only the program
// sets its selection: neither mouse nor keys move the cursor.
class EditWidget : public QLineEdit, public TypedView<TextBox> {
  public:
    EditWidget(TextBox& control, QWidget& parent);
    QWidget& Widget() override { return *this; }

  protected:
    void SyncOwn() override;
    void focusInEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void SyncSelection();
    void FollowOperator();
    void FollowText(const Text& changed);
    void FollowSelection();
    bool IsSection() const { return Model() && Typed().Spin; }
    bool LeavesSelection() const { return focusedByPress_ || IsSection(); }
    void StepIfOperable(Direction direction);
    void PaintBackground();

    bool syncing_ = false;
    bool focusedByPress_ = false;
    WheelSteps wheel_;
};

}  // namespace platform::forms
