#include "platform/qt/Drawing.h"

#include <QPainter>

namespace platform::forms {

namespace {

// Judged by content: a picture doesn't keep its file name.
bool IsSvg(const QByteArray& content) {
    constexpr qsizetype searched = 1024;
    return content.left(searched).contains("<svg");
}

}  // namespace

void Drawing::Take(const PictureRef& picture) {
    if (picture == picture_) return;
    picture_ = picture;
    svg_.reset();
    image_ = {};
    pixels_ = {};
    if (!picture) return;
    const auto content = QByteArray::fromStdString(picture->Content());
    if (!IsSvg(content)) {
        image_ = QImage::fromData(content);
        return;
    }
    svg_ = std::make_unique<QSvgRenderer>(content);
    if (!svg_->isValid()) svg_.reset();
}

QSize Drawing::NaturalSize() const {
    return svg_ ? svg_->defaultSize() : image_.size();
}

const QPixmap& Drawing::At(QSize size, qreal devicePixelRatio) {
    const QSize devicePixels = (QSizeF(size) * devicePixelRatio).toSize();
    if (pixels_.size() != devicePixels) pixels_ = Rendered(devicePixels);
    pixels_.setDevicePixelRatio(devicePixelRatio);
    return pixels_;
}

QPixmap Drawing::Rendered(QSize devicePixels) const {
    if (!svg_)
        return QPixmap::fromImage(
            image_.scaled(devicePixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    QPixmap pixels(devicePixels);
    pixels.fill(Qt::transparent);
    QPainter painter(&pixels);
    svg_->render(&painter, QRectF(QPointF(), QSizeF(devicePixels)));
    return pixels;
}

QIcon WindowIcon(const PictureRef& picture) {
    Drawing drawing;
    drawing.Take(picture);
    QIcon icon;
    if (drawing.IsEmpty()) return icon;
    for (const int side : {16, 32, 64}) icon.addPixmap(drawing.At(QSize(side, side), 1));
    return icon;
}

}  // namespace platform::forms
