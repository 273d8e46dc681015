// What all parts of the add-in share: the services it stands on, and the data written during start-up.
#pragma once

#include <functional>
#include <vector>

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

// Short texts that the dialog joins with values, by their rank from 0. Reading one that isn't there raises 9.
class MessageTexts {
  public:
    const platform::Text& operator[](std::size_t index) const;
    std::vector<platform::Text> texts;
};

// Places of the texts that the add-in reads.
namespace message {
inline constexpr std::size_t loginFailed = 0, loginFailedTitle = 1, accessFailure = 2, progress = 3,
                             caption = 4, answerError = 6, firstButton = 7, lastButton = 16;
}

// Written by Main, read by everybody, alive as long as the process.
struct ModuleData {
    bool IsStandalone = false;
    platform::Text MarketCode;
    platform::Text BackgroundDirectory;
    platform::DatabaseRef AddInLanguageDb, CommonLanguageDb;
    MessageTexts MessageTable;
};

}  // namespace horalink
