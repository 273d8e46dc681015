// One request, from the click to the box with its answer.
#pragma once

#include <memory>
#include <optional>
#include <set>

#include "clock/Layout.h"
#include "common/ModuleData.h"
#include "request/cListRequest.h"

namespace horalink {

// The far side: the host, and the name of the exchange that it works on.
struct FarSide {
    Text PBXName;
    platform::ObjectRef HostObject;  // null in a stand-alone run
    platform::ObjectRef DirectHost;  // the exchange object of a stand-alone run
};

// A state machine; entering a state sets form, pointer, timer and wait.
class RoundTrip {
  public:
    // `Armed`: a button was pressed, and the timer will act on it. `Waiting` becomes `Reading` during
    // `CallBack`.
    enum class State { Idle, Armed, LoggingIn, Sending, Waiting, Reading, Answered, Showing };

    // The host calls back `dialog`. All must outlive the round trip.
    RoundTrip(const Services& services, const ModuleData& data, platform::Object& dialog,
              platform::forms::Form& form, const DialogControls& controls, FarSide& far);

    void cmdButton_Click(std::int16_t index);
    void tmrEvent_Timer();
    // Takes an answer from the host, and clears the variable. Raises nothing.
    void CallBack(platform::ObjectRef& oResponse);
    // The dialog closes: ends the wait, and shows no more answers.
    void Stop();

  private:
    using PatienceRef = std::shared_ptr<platform::Patience>;

    void Enter(State state);
    void Rest();
    void RunPendingAction();
    void Show();

    bool SubmitRequest(std::shared_ptr<cListRequest>& request);
    bool LogIn(const PatienceRef& patience);
    void ReportLoginFailure(const PatienceRef& patience);
    void ReportProgress(const Text& result, const PatienceRef& patience);
    void Wait(const platform::ObjectRef& exchange);
    void EnterWaiting();
    void Abandon();
    void CloseLogin(Text loginId, const PatienceRef& patience);
    void EndLateLogin(const Text& loginId, const FarSide& asked);
    void PostLogOut(const Text& loginId, const FarSide& far);
    platform::ObjectRef ExchangeObject(const PatienceRef& patience) const;

    PatienceRef StartReading();
    std::shared_ptr<cListRequest> NextRecord() const;
    void CopyResponse(const platform::ObjectRef& oResponse, cListRequest& copy, platform::Patience& patience);
    bool JudgeOutcome(const platform::ObjectRef& oResponse);
    void TellHost(const platform::ObjectRef& oResponse, const PatienceRef& patience);
    void Finish(const Text& loginId);
    void ResumeWaiting();

    const Services& services_;
    const ModuleData& data_;
    platform::Object& dialog_;
    platform::forms::Form& form_;
    const DialogControls& controls_;
    FarSide& far_;

    State state_ = State::Idle;
    bool isStopped_ = false;
    std::optional<std::int16_t> PendingAction;  // the last pressed button, until the timer acts on it
    Text LoginResult, SendResult;
    FarSide asked_;  // where the login was asked for: another host may register meanwhile
    std::shared_ptr<cListRequest> LastResponse;
    std::shared_ptr<cListRequest> unshown_;  // the last good answer, until its box opens
    PatienceRef patience_;                   // limits the calls of the request under way
    std::shared_ptr<void> ownerWatch_;
    std::set<Text> givenUp_;  // logins whose requests the operator gave up
};

}  // namespace horalink
