// What all parts of the add-in share: the services it stands on, and the data written during start-up.
#pragma once

#include <functional>

#include "language/MessageTable.h"
#include "platform/automation/Automation.h"
#include "platform/data/Database.h"
#include "platform/desktop/Application.h"
#include "platform/desktop/Desktop.h"
#include "platform/desktop/PictureFiles.h"
#include "platform/forms/Form.h"
#include "platform/runtime/EventLoop.h"
#include "platform/runtime/Format.h"

namespace horalink {

// The platform's services, handed in once by whoever starts the add-in.
struct Services {
    platform::Application& app;
    const platform::Clock& clock;
    const platform::LocaleTexts& locale;
    const platform::Settings& settings;
    platform::DatabaseEngine& engine;
    platform::Automation& automation;
    platform::Scheduler& scheduler;
    platform::MessageBoxes& boxes;
    platform::Screen& screen;
    platform::forms::Toolkit& toolkit;
    const platform::PictureFiles& files;
    // Ends the process at once; nothing behind the call runs.
    std::function<void()> End;
};

// Written by Main, read by everybody, alive as long as the process.
struct ModuleData {
    bool IsStandalone = false;
    platform::Text MarketCode;
    platform::Text BackgroundDirectory;
    platform::DatabaseRef AddInLanguageDb, CommonLanguageDb;
    MessageTexts MessageTable;
};

}  // namespace horalink
