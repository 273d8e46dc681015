#include "platform/qt/ImageWidget.h"

#include <QPainter>

namespace platform::forms {

void ImageWidget::SyncOwn() {
    const Image& control = Typed();
    if (picture_ == control.Picture() && stretch_ == control.Stretch()) return;
    picture_ = control.Picture;
    stretch_ = control.Stretch;
    drawing_.Take(picture_);
    update();
}

void ImageWidget::paintEvent(QPaintEvent*) {
    const QSize shown = stretch_ ? size() : drawing_.NaturalSize();
    if (drawing_.IsEmpty() || shown.isEmpty()) return;
    QPainter(this).drawPixmap(QPoint(), drawing_.At(shown, devicePixelRatio()));
}

}  // namespace platform::forms
