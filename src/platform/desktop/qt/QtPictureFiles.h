// Picture files of every format that Qt decodes.
#pragma once

#include "platform/desktop/PictureFiles.h"

namespace platform {

class QtPictureFiles : public PictureFiles {
  public:
    Text Dir(TextView path) const override;
    forms::PictureRef LoadPicture(TextView path) const override;
};

}  // namespace platform
