// Pictures of controls.
#pragma once

#include <memory>
#include <string>

#include "platform/runtime/Object.h"

namespace platform::forms {

// The bytes of a picture file in any format that the view can decode.
class Picture : public Object {
  public:
    explicit Picture(std::string content) : content_(std::move(content)) {}
    const ClassDescription& Class() const override;
    const std::string& Content() const { return content_; }

  private:
    std::string content_;
};
using PictureRef = std::shared_ptr<Picture>;

}  // namespace platform::forms
