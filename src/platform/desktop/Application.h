// The application object: what the program knows about itself.
#pragma once

#include <cstdint>

#include "platform/automation/Automation.h"
#include "platform/runtime/Layers.h"
#include "platform/runtime/Text.h"

namespace platform {

// The button texts of boxes, English until the user's language is loaded.
struct ButtonTexts {
    Text ok = u"OK", cancel = u"Cancel", abort = u"Abort", retry = u"Retry", ignore = u"Ignore", yes = u"Yes",
         no = u"No", help = u"Help", keepWaiting = u"Keep waiting", giveUp = u"Give up";
};

struct Application {
    Text title;
    Text helpFile;
    Layers layers;               // where the application's files are found
    Text path;                   // directory of the executable, with backslashes, but no trailing one
    Text command;                // the command line after the program's name
    std::int16_t startMode = 0;  // 1 if automation started the process
    std::int16_t major = 0, minor = 0, revision = 0;
    WaitSettings waits;
    ButtonTexts buttons;
};

}  // namespace platform
