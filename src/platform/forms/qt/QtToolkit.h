// Views of forms as Qt windows.
#pragma once

#include "platform/desktop/qt/QtHelp.h"
#include "platform/forms/Form.h"

namespace platform::forms {

class QtToolkit : public Toolkit {
  public:
    explicit QtToolkit(const QtHelp& help);
    std::unique_ptr<View> MakeView(Form& form) override;

  private:
    const QtHelp& help_;
};

}  // namespace platform::forms
