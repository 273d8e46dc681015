// The desktop over Qt: one object that opens the display, and owns all that needs it.
#pragma once

#include <memory>

#include "platform/automation/Automation.h"
#include "platform/data/Database.h"
#include "platform/desktop/Application.h"
#include "platform/desktop/Desktop.h"
#include "platform/forms/Form.h"
#include "platform/runtime/EventLoop.h"
#include "platform/runtime/Format.h"

namespace platform {

class QtDesktop {
  public:
    virtual ~QtDesktop() = default;
    virtual EventLoop& Loop() = 0;
    virtual MessageBoxes& Boxes() = 0;
    virtual WaitBoxes& Waits() = 0;
    virtual Screen& TheScreen() = 0;
    virtual const LocaleTexts& Locale() const = 0;
    virtual forms::Toolkit& Toolkit() = 0;
    virtual const PictureFiles& Pictures() const = 0;
};

// Opens the display that the environment names. Raises 440 if it names none; ends the process with one line
// on standard error if the display can't be reached, since Qt can't recover from that. `application` (title,
// words, layers) and `engine` (help files) must outlive the result.
std::unique_ptr<QtDesktop> OpenDesktop(int& argc, char** argv, const Application& application,
                                       DatabaseEngine& engine);

}  // namespace platform
