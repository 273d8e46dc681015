// What all parts of the add-in share: the platform's services, and the data set during start-up.
#pragma once

#include <functional>
#include <vector>

#include "platform/automation/Automation.h"
#include "platform/data/Database.h"
#include "platform/desktop/Application.h"
#include "platform/desktop/Desktop.h"
#include "platform/forms/Form.h"
#include "platform/runtime/EventLoop.h"
#include "platform/runtime/Format.h"

namespace horalink {

// The identity of the public classes.
inline constexpr platform::TypeLibrary typeLibrary{"Horalink10013", "{3213E8C5-0679-49E0-83FC-808506AA9FEB}",
                                                   "1.0"};

// The platform's services.
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
    // Ends the process at once; never returns.
    std::function<void()> End;
};

// Short texts that the dialog combines with values, by rank from 0. Raises 9 for an unknown rank.
class MessageTexts {
  public:
    const platform::Text& operator[](std::size_t index) const;
    std::vector<platform::Text> texts;
};

// Ranks of the texts that the add-in uses.
namespace message {
inline constexpr std::size_t loginFailed = 0, loginFailedTitle = 1, accessFailure = 2, progress = 3,
                             caption = 4, answerError = 6, firstButton = 7, lastButton = 16;
}

// Set by Main, and valid as long as the process runs.
struct ModuleData {
    bool IsStandalone = false;
    platform::Text MarketCode;
    platform::Text BackgroundDirectory;
    platform::DatabaseRef AddInLanguageDb, CommonLanguageDb;
    MessageTexts MessageTable;
};

}  // namespace horalink
