#include "platform/desktop/qt/QtPictureFiles.h"

#include <iterator>

#include "platform/desktop/Paths.h"
#include "platform/forms/qt/Drawing.h"

namespace platform {

Text QtPictureFiles::Dir(TextView path) const {
    return platform::Dir(path);
}

forms::PictureRef QtPictureFiles::LoadPicture(TextView path) const {
    std::ifstream file = OpenToRead(RealPath(path));
    if (!file.is_open()) throw RuntimeError(ErrorNumber::FileNotFound, ToUtf8(path));
    auto picture = std::make_shared<forms::Picture>(std::string(std::istreambuf_iterator<char>(file), {}));
    forms::Drawing drawing;
    drawing.Take(picture);
    if (drawing.IsEmpty()) throw RuntimeError(ErrorNumber::InvalidPicture, ToUtf8(path));
    return picture;
}

}  // namespace platform
