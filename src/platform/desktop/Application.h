// The application object: what the process knows of itself.
#pragma once

#include <cstdint>

#include "platform/automation/Automation.h"
#include "platform/runtime/Layers.h"
#include "platform/runtime/Text.h"

namespace platform {

// The words on the buttons of boxes; English until those of the user's language are known.
struct ButtonTexts {
    Text ok = u"OK", cancel = u"Cancel", abort = u"Abort", retry = u"Retry", ignore = u"Ignore", yes = u"Yes",
         no = u"No", help = u"Help", keepWaiting = u"Keep waiting", giveUp = u"Give up";
};

struct Application {
    Text title;
    Text helpFile;
    Layers layers;               // in which its files are looked for
    Text path;                   // directory of the executable, with backslashes, without one at the end
    Text command;                // the command line behind the program's name
    std::int16_t startMode = 0;  // 1 where automation started the process
    std::int16_t major = 0, minor = 0, revision = 0;
    WaitSettings waits;
    ButtonTexts buttons;
};

}  // namespace platform
