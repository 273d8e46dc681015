// A picture of the model, decoded for painting.
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QSvgRenderer>
#include <memory>

#include "platform/forms/Picture.h"

namespace platform::forms {

// Keeps the pixels of the last size that was asked for. A picture that can't be decoded draws nothing.
class Drawing {
  public:
    // Decodes where `picture` is another one than before; nothing gives an empty drawing.
    void Take(const PictureRef& picture);
    bool IsEmpty() const { return !svg_ && image_.isNull(); }
    // Logical pixels.
    QSize NaturalSize() const;
    // The picture over the whole of `size`, in logical pixels, sharp on a screen of that ratio.
    const QPixmap& At(QSize size, qreal devicePixelRatio);

  private:
    QPixmap Rendered(QSize devicePixels) const;

    PictureRef picture_;
    std::unique_ptr<QSvgRenderer> svg_;
    QImage image_;
    QPixmap pixels_;
};

// A window's icon in the sizes that desktops use.
QIcon WindowIcon(const PictureRef& picture);

}  // namespace platform::forms
