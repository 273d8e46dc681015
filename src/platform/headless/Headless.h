// The add-in's platform without a machine, except for databases: time passes only on request, and all that
// the add-in shows or asks for is recorded.
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
