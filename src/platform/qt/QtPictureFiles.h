// Picture files of every format that Qt decodes.
#pragma once

#include "platform/desktop/Desktop.h"
#include "platform/runtime/Layers.h"

namespace platform {

class QtPictureFiles : public PictureFiles {
  public:
    // Finds files in `layers`.
    explicit QtPictureFiles(Layers layers) : layers_(std::move(layers)) {}
    Text Dir(TextView path) const override;
    forms::PictureRef LoadPicture(TextView path) const override;

  private:
    const Layers layers_;
};

}  // namespace platform
