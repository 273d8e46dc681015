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

    // Prepares all that needs no window, and in a stand-alone run starts the dialog. Any failure ends the
    // process; what there is to say of it has been shown by the routine that failed.
    void Main();

    // Runs for each cOLELayer that is created: the version record, the wait limits, and the dialog, loaded
    // but not shown. A version that can't be recorded ends the process.
    void LoadAddIn();

    // Called once no further object can be granted: the dialog closes for good, or the last object goes.
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
