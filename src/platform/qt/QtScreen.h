// The screen and the mouse pointer.
#pragma once

#include "platform/desktop/Desktop.h"

namespace platform {

class QtScreen : public Screen {
  public:
    MousePointer Pointer() const override { return pointer_; }
    void SetPointer(MousePointer pointer) override;
    float Width() const override;
    float Height() const override;

  private:
    MousePointer pointer_ = MousePointer::Default;
};

}  // namespace platform
