#include "platform/qt/QtPictureFiles.h"

#include <iterator>

#include "platform/qt/Drawing.h"
#include "platform/runtime/Paths.h"

namespace platform {

Text QtPictureFiles::Dir(TextView path) const {
    return platform::Dir(path, [this](TextView each) { return layers_.Find(each); });
}

forms::PictureRef QtPictureFiles::LoadPicture(TextView path) const {
    const std::filesystem::path real = layers_.Find(path);
    const std::string name = "'" + real.native() + "'";
    std::ifstream file = OpenToRead(real);
    if (!file.is_open()) throw RuntimeError(ErrorNumber::FileNotFound, name);
    auto picture = std::make_shared<forms::Picture>(std::string(std::istreambuf_iterator<char>(file), {}));
    forms::Drawing drawing;
    drawing.Take(picture);
    if (drawing.IsEmpty()) throw RuntimeError(ErrorNumber::InvalidPicture, name);
    return picture;
}

}  // namespace platform
