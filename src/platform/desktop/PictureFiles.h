// Picture files by their paths.
#pragma once

#include "platform/forms/Picture.h"

namespace platform {

class PictureFiles {
  public:
    virtual ~PictureFiles() = default;
    // The name of the normal file at `path`, or an empty text where there is none.
    virtual Text Dir(TextView path) const = 0;
    // The picture in a file. Raises 53 where there is no file, 481 where it holds no picture.
    virtual forms::PictureRef LoadPicture(TextView path) const = 0;
};

}  // namespace platform
