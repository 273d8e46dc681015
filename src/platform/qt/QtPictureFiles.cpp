#include "platform/qt/QtPictureFiles.h"

#include "platform/qt/Drawing.h"
#include "platform/runtime/Paths.h"

namespace platform {

Text QtPictureFiles::Dir(TextView path) const {
    return platform::Dir(path, [this](TextView each) { return layers_.Find(each); });
}

forms::PictureRef QtPictureFiles::LoadPicture(TextView path) const {
    const std::filesystem::path real = layers_.Find(path);
    const std::string name = "'" + real.native() + "'";
    auto content = FileContent(real);
    if (!content) throw RuntimeError(ErrorNumber::FileNotFound, name);
    auto picture = std::make_shared<forms::Picture>(*std::move(content));
    forms::Drawing drawing;
    drawing.Take(picture);
    if (drawing.IsEmpty()) throw RuntimeError(ErrorNumber::InvalidPicture, name);
    return picture;
}

}  // namespace platform
