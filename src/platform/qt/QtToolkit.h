// Views of forms as Qt windows.
#pragma once

#include "platform/forms/Form.h"
#include "platform/forms/InputGate.h"
#include "platform/qt/QtHelp.h"

namespace platform::forms {

class QtToolkit : public Toolkit {
  public:
    QtToolkit(const QtHelp& help, InputGate& gate);
    std::unique_ptr<View> MakeView(Form& form) override;

  private:
    const QtHelp& help_;
    InputGate& gate_;
};

}  // namespace platform::forms
