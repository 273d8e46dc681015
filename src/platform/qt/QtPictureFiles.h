// Picture files of every format that Qt decodes.
#pragma once

#include "platform/desktop/PictureFiles.h"
#include "platform/runtime/Paths.h"

namespace platform {

class QtPictureFiles : public PictureFiles {
  public:
    // Finds files with the help of `spellings`.
    explicit QtPictureFiles(Spellings spellings) : spellings_(std::move(spellings)) {}
    Text Dir(TextView path) const override;
    forms::PictureRef LoadPicture(TextView path) const override;

  private:
    const Spellings spellings_;
};

}  // namespace platform
