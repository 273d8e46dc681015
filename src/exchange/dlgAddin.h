// The add-in's one dialog: its state, its members, the way of one request and the judging of answers.
#pragma once

#include <memory>

#include "clock/ContextHelp.h"
#include "clock/DatePicking.h"
#include "clock/Layout.h"
#include "clock/TimeField.h"
#include "clock/Tracking.h"
#include "request/cListRequest.h"
#include "shell/ModuleData.h"

namespace horalink {

// What tmrEvent does on its next tick, beside the indexes of the buttons.
inline constexpr std::int16_t showAnswer = 100;

// Outcomes of a request that the code tells apart in `ErrCode`.
namespace outcome {
inline constexpr std::int32_t success = 0, messageStands = 99;
}

// Tags by which an answer is recognised.
inline constexpr platform::TextView updateTag = u"UPDATE_CLOCK", lookupTag = u"LOOKUP_CLOCK";

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
    void PutParent(platform::ObjectRef parent) { HostObject = std::move(parent); }
    void PutID(std::int16_t id) { ChildID = id; }
    // True where loading ended in a run-time error.
    bool CheckLoadError() const { return LoadError; }
    // The host's delivery of an answer; empties the variable.
    void CallBack(platform::ObjectRef& oResponse);
    // Puts on the pictures of a background set; a failure is shown to the operator.
    void BackGround(std::int16_t index);
    // Switches the host's flow on or off.
    void TurnFlow(bool value);

    platform::forms::Form& Window() { return *form_; }
    const DialogControls& Controls() const { return controls_; }

  private:
    // What stands open until the answer to an accepted request comes.
    struct Waiting {
        platform::HandleRef limit;
        std::unique_ptr<platform::WaitBox> box;
        std::shared_ptr<void> ownerWatch;
    };

    DialogLinks MakeLinks();
    void WireEvents();
    void WireTimeAndDate();
    void WireHelp();
    void Form_KeyDown(std::int16_t keyCode);
    void Form_Load();
    void LoadSteps();
    void Form_Unload(bool& cancel);
    void cmdButton_Click(std::int16_t index);
    void tmrEvent_Timer();
    void EnableButtons(std::int16_t which, bool enabled);
    void ShowCaption();

    void RunPendingAction();
    void RunAnswerRoutine();
    bool SubmitRequest(std::shared_ptr<cListRequest>& request);
    bool LogIn();
    void ReportLoginFailure();
    void ReportProgress(const Text& result);
    void CloseLogin(Text loginId);
    void CopyResponse(const platform::ObjectRef& oResponse);
    void JudgeOutcome(const platform::ObjectRef& oResponse, bool& show);
    void TellHost(const platform::ObjectRef& oResponse);
    platform::ObjectRef ExchangeObject() const;
    cListRequest& LastAnswer();

    void StartWaiting(const platform::ObjectRef& exchange);
    void ArmWaitLimit();
    void OpenWaitBox();
    void AbandonRequest();

    void SendUpdateClock();
    void SendLookupClock();
    void ShowUpdateAnswer();
    void ShowLookupAnswer();

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
    std::unique_ptr<Waiting> waiting_;

    Text LoginResult, ConnectResult, SendResult;
    std::int16_t ChildID = 0;
    std::int16_t PendingAction = 0;
    bool isAnswered_ = false;     // the request under way, since the host has taken it
    bool isShowing_ = false;      // an answer's box is open
    bool cameMeanwhile_ = false;  // another answer, while it is
    Text PBXName;
    std::int16_t RefCount = 0;
    bool LoadError = false;
    std::shared_ptr<cListRequest> LastResponse;
    platform::ObjectRef HostObject, DirectHost;
};

}  // namespace horalink
