// Picture files by their paths.
#pragma once

#include "platform/forms/Picture.h"

namespace platform {

class PictureFiles {
  public:
    virtual ~PictureFiles() = default;
    // The name of the regular file at `path`, or an empty text if there is none.
    virtual Text Dir(TextView path) const = 0;
    // Raises 53 if the file can't be opened, 481 if it isn't a picture.
    virtual forms::PictureRef LoadPicture(TextView path) const = 0;
};

}  // namespace platform
