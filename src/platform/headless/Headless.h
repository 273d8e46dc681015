// All that the add-in stands on, but for databases, without a machine: time passes when its owner says so,
// and what is shown or asked for is kept for whoever looks at it.
#pragma once

#include "platform/desktop/Application.h"
#include "platform/headless/Automation.h"
#include "platform/headless/Desktop.h"
#include "platform/headless/Timers.h"
#include "platform/headless/Window.h"

namespace platform::headless {

struct Headless {
    Headless() {
        automation.wait = [this](int milliseconds) { timers.Pass(milliseconds); };
    }

    Application app;
    Timers<Scheduler> timers;
    Clock clock{timers};
    Locale locale;
    Settings settings;
    Boxes boxes;
    WaitBoxes waits;
    Screen screen;
    Toolkit toolkit{timers, [this] { return boxes.IsOpen() || waits.IsOpen(); }};
    Automation automation{timers, waits, app.waits, toolkit.gate};
    PictureFiles pictures;
};

}  // namespace platform::headless
