// Start-up of the process, and the dialog that it owns.
#pragma once

#include <memory>

#include "common/ModuleData.h"

namespace horalink {

class dlgAddin;

// The start mode of a process that automation started.
inline constexpr std::int16_t startedByAutomation = 1;

class AddInMain {
  public:
    explicit AddInMain(const Services& services);
    ~AddInMain();

    // Prepares everything but the window, and in a stand-alone run opens the dialog. A failure ends the
    // process, after the routine that failed has shown it.
    void Main();

    // Runs for each new cOLELayer: records the version, sets the wait limits, and loads the dialog without
    // showing it. Ends the process if the version can't be recorded.
    void LoadAddIn();

    // Called when no further objects can be granted: the dialog is closing, or the last object was released.
    std::function<void()> Retire = [] {};

    // The one dialog of the process, created on first use.
    dlgAddin& Dialog();
    void DropDialog() { dialog_.reset(); }

    platform::Application& App() { return services_.app; }
    const ModuleData& Data() const { return data_; }
    void End() { services_.End(); }

  private:
    void Prepare();
    bool OpenDatabases();
    bool StartStandalone();
    platform::Text Directory(platform::TextView keyword) const;

    const Services& services_;
    ModuleData data_;
    std::shared_ptr<dlgAddin> dialog_;
};

}  // namespace horalink
