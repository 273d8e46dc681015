// The add-in's one dialog: its form, its members, and what its events lead to.
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
    // A name turns the buttons on, in a stand-alone run once the host has connected; "" turns them off.
    void PutPBXName(const Text& name);
    // Places the dialog where the host's store has it, or in the middle; only while there is no host.
    void FrmMove(const platform::ObjectRef& parent);
    // Puts the dialog's place into the host's store.
    void FrmPositionSave();
    void PutParent(platform::ObjectRef parent) { far_.HostObject = std::move(parent); }
    void PutID(std::int16_t id) { ChildID = id; }
    // True where loading ended in a run-time error.
    bool CheckLoadError() const { return LoadError; }
    // The host's delivery of an answer; empties the variable.
    void CallBack(platform::ObjectRef& oResponse) { roundTrip_.CallBack(oResponse); }
    // Puts on the pictures of a background set; a failure is shown to the operator.
    void BackGround(std::int16_t index);
    // From now on no request begins and no answer is shown.
    void StopRequests() { roundTrip_.Stop(); }
    // Switches the host's flow on or off.
    void TurnFlow(bool value);

    platform::forms::Form& Window() { return *form_; }
    const DialogControls& Controls() const { return controls_; }
    // For the owner of the process: the dialog is about to unload, and its texts to be closed for good.
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
