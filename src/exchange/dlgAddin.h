// The add-in's one dialog: its form, its members, its events.
#pragma once

#include <memory>

#include "clock/ContextHelp.h"
#include "clock/DatePicking.h"
#include "clock/Layout.h"
#include "clock/RunningClock.h"
#include "clock/TimeField.h"
#include "common/ModuleData.h"
#include "exchange/RoundTrip.h"

namespace horalink {

class dlgAddin : public platform::Object {
  public:
    // Both must outlive the dialog.
    dlgAddin(const Services& services, ModuleData& data);
    ~dlgAddin() override;

    // The members that the host reaches, in the order of their slots.
    const platform::ClassDescription& Class() const override;

    // RefCount counts the live cOLELayer objects; both raise 6 beyond 16 bits.
    void IncrementCount();
    std::int16_t DecrementCount();
    // A name enables the buttons (in a stand-alone run after the host has connected), "" disables them.
    void PutPBXName(const Text& name);
    // The first host: moves the dialog to the stored place, or centres it.
    void FrmMove(const platform::ObjectRef& parent);
    // Stores the dialog's place at the host.
    void FrmPositionSave();
    void PutParent(platform::ObjectRef parent) { far_.HostObject = std::move(parent); }
    void PutID(std::int16_t id) { ChildID = id; }
    // True if loading failed.
    bool CheckLoadError() const { return LoadError; }
    // Takes an answer from the host, and clears the variable.
    void CallBack(platform::ObjectRef& oResponse) { roundTrip_.CallBack(oResponse); }
    // Shows the pictures of a background set. Failures are shown to the operator.
    void BackGround(std::int16_t index);
    // Begins no more requests, and shows no more answers.
    void StopRequests() { roundTrip_.Stop(); }
    // Switches the host's flow on or off.
    void TurnFlow(bool value);

    platform::forms::Form& Window() { return *form_; }
    const DialogControls& Controls() const { return controls_; }
    // Called when the dialog is about to unload, before it closes the language databases.
    std::function<void()> Closing;

  private:
    DialogLinks MakeLinks();
    void WireEvents();
    void WireTimeAndDate();
    void WireHelp();
    void Form_KeyDown(std::int16_t keyCode);
    void Form_Load();
    void LoadSteps();
    void Form_Unload(bool& cancel);
    void EnableButtons(std::int16_t which, bool enabled);
    void ShowCaption();

    const Services& services_;
    ModuleData& data_;
    std::shared_ptr<platform::forms::Form> form_;
    DialogControls controls_;
    DialogLinks links_;
    RunningClock runningClock_;
    TimeField timeField_;
    DatePicking datePicking_;
    Tracking tracking_;
    ContextHelp contextHelp_;
    FarSide far_;
    RoundTrip roundTrip_;

    Text ConnectResult;
    std::int16_t ChildID = 0;
    std::int16_t RefCount = 0;
    bool LoadError = false;
};

}  // namespace horalink
