// A picture of the model, decoded for painting.
#pragma once

#include <QIcon>
#include <QPixmap>
#include <QSvgRenderer>
#include <memory>

#include "platform/forms/Picture.h"

namespace platform::forms {

// Caches the pixels of the last size. A picture that can't be decoded is empty.
class Drawing {
  public:
    // Decodes a new picture; null empties the drawing.
    void Take(const PictureRef& picture);
    bool IsEmpty() const { return !svg_ && image_.isNull(); }
    // Logical pixels.
    QSize NaturalSize() const;
    // The picture stretched to `size`, in logical pixels, sharp on a screen of that ratio.
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
