#include "exchange/RoundTrip.h"

#include <utility>

#include "exchange/Answers.h"
#include "exchange/ClockCommands.h"
#include "platform/automation/Patience.h"
#include "platform/desktop/Desktop.h"
#include "platform/runtime/RuntimeError.h"

namespace horalink {

using namespace platform;

namespace {

struct Look {
    bool formEnabled;
    MousePointer pointer;
    bool timerRuns;
};

// One row for each state, in order.
constexpr Look looks[] = {
    {true, MousePointer::Default, false},     // Idle
    {true, MousePointer::Default, true},      // Armed
    {true, MousePointer::Hourglass, false},   // LoggingIn
    {true, MousePointer::Hourglass, false},   // Sending
    {false, MousePointer::Hourglass, false},  // Waiting
    {false, MousePointer::Hourglass, false},  // Reading
    {true, MousePointer::Default, true},      // Answered
    {true, MousePointer::Default, false},     // Showing
};

bool IsAccepted(const Text& result) {
    return !result.empty() && result != u"BUSY" && result != u"ERROR";
}

}  // namespace

RoundTrip::RoundTrip(const Services& services, const ModuleData& data, Object& dialog, forms::Form& form,
                     const DialogControls& controls, FarSide& far)
    : services_(services), data_(data), dialog_(dialog), form_(form), controls_(controls), far_(far) {}

void RoundTrip::Enter(State state) {
    state_ = state;
    const bool isWaiting = state == State::Waiting || state == State::Reading;
    if (!isWaiting) ownerWatch_ = nullptr;
    if (!isWaiting && state != State::LoggingIn && state != State::Sending) {
        patience_ = nullptr;
        asked_ = {};
    }
    const Look& look = looks[static_cast<std::size_t>(state)];
    form_.Enabled = look.formEnabled;
    services_.screen.SetPointer(look.pointer);
    controls_.tmrEvent->Enabled = look.timerRuns;
}

// Chooses the state after a request: first an answer to show, then a pressed button.
void RoundTrip::Rest() {
    Enter(unshown_ ? State::Answered : PendingAction ? State::Armed : State::Idle);
}

void RoundTrip::Stop() {
    isStopped_ = true;
    PendingAction.reset();
    unshown_ = nullptr;
    Enter(State::Idle);
}

// In the other states the form refuses clicks; checked again, because there must never be two requests.
void RoundTrip::cmdButton_Click(std::int16_t index) {
    if (state_ != State::Idle && state_ != State::Armed && state_ != State::Answered) return;
    PendingAction = index;
    if (state_ == State::Idle) Enter(State::Armed);
}

void RoundTrip::tmrEvent_Timer() {
    const auto keptForTheCalls = dialog_.shared_from_this();
    if (state_ == State::Answered) return Show();
    ErrorState error;
    if (state_ == State::Armed) Skip(error, "the action of a button", [&] { RunPendingAction(); });
}

void RoundTrip::RunPendingAction() {
    const std::int16_t action = *std::exchange(PendingAction, std::nullopt);
    Enter(State::Idle);
    if (action == button::hide) return data_.IsStandalone ? form_.Unload() : form_.Hide();
    auto request =
        action == button::update ? UpdateClockRequest(controls_, services_.locale) : LookupClockRequest();
    SubmitRequest(request);
}

// One box at a time: of the answers that arrive meanwhile, the last good one is shown next.
void RoundTrip::Show() {
    const auto answer = std::exchange(unshown_, nullptr);
    Enter(State::Showing);
    ErrorState error;
    Skip(error, "showing the answer", [&] { ShowAnswer(services_, data_, *answer); });
    if (state_ == State::Showing) Rest();
}

ObjectRef RoundTrip::ExchangeObject(const PatienceRef& patience) const {
    if (data_.IsStandalone) return services_.automation.Within(far_.DirectHost, patience);
    const ObjectRef host = services_.automation.Within(far_.HostObject, patience);
    return services_.automation.Within(Get(host, "oPBX").ToObject(), patience);
}

void RoundTrip::ReportProgress(const Text& result, const PatienceRef& patience) {
    if (data_.IsStandalone) return;
    Call(services_.automation.Within(far_.HostObject, patience), "ShowMessage",
         data_.MessageTable[message::progress] + u": " + result);
}

bool RoundTrip::SubmitRequest(std::shared_ptr<cListRequest>& request) {
    const PatienceRef patience = patience_ = services_.automation.NewPatience();
    if (!LogIn(patience)) return false;
    ErrorState error;
    Skip(error, "ShowMessage of the login", [&] { ReportProgress(LoginResult, patience); });
    if (!IsAccepted(LoginResult)) {
        Trace("Login refused: \"" + ToUtf8(LoginResult) + "\"");
        Rest();
        return false;
    }
    Enter(State::Sending);
    givenUp_.erase(LoginResult);
    Skip(error, "LoginID of the request", [&] { Put(request, "LoginID", LoginResult); });
    Skip(error, "PBXName of the request", [&] { Put(request, "PBXName", far_.PBXName); });
    ObjectRef exchange;
    Skip(error, "SendRequest", [&] {
        exchange = ExchangeObject(patience);
        SendResult = Call(exchange, "SendRequest", ByRef(request)).ToText();
    });
    // If ShowMessage failed, the request counts as refused.
    if (error.IsSet()) SendResult.clear();
    error.Clear();
    const bool isAccepted = IsAccepted(SendResult);
    // Wait before ShowMessage: the host may answer from inside that call. It may also have answered already.
    if (isAccepted && state_ == State::Sending) Wait(exchange);
    Skip(error, "ShowMessage of the request", [&] { ReportProgress(SendResult, patience); });
    if (isAccepted) return true;
    Trace("SendRequest refused: \"" + ToUtf8(SendResult) + "\"");
    CloseLogin(LoginResult, patience);
    if (state_ == State::Sending) Rest();
    request = nullptr;
    return false;
}

bool RoundTrip::LogIn(const PatienceRef& patience) {
    try {
        Enter(State::LoggingIn);
        asked_ = far_;
        const ObjectRef exchange = ExchangeObject(patience);
        asked_.PBXName = far_.PBXName;
        patience->Late = [this, asked = asked_, dialog = dialog_.weak_from_this()](const Value& key) {
            if (const auto kept = dialog.lock()) EndLateLogin(key.ToText(), asked);
        };
        LoginResult = Call(exchange, "Login", ByRef(far_.PBXName), dialog_.shared_from_this()).ToText();
        patience->Late = nullptr;
        return true;
    } catch (const RuntimeError& error) {
        TraceSkipped("Login", error);
        ReportLoginFailure(patience);
        return false;
    }
}

void RoundTrip::ReportLoginFailure(const PatienceRef& patience) {
    Rest();
    // The operator must learn of the failure even if ShowMessage fails.
    ErrorState error;
    Skip(error, "ShowMessage of the failed login", [&] { ReportProgress(LoginResult, patience); });
    services_.boxes.Show({data_.MessageTable[message::loginFailed],
                          buttons::exclamation,
                          data_.MessageTable[message::loginFailedTitle],
                          {},
                          0});
}

// After the pending limit a box offers to give up; if the host leaves the bus, the wait ends at once.
void RoundTrip::Wait(const ObjectRef& exchange) {
    ownerWatch_ = exchange->WhenOwnerGone([this] {
        if (state_ == State::Waiting) Abandon();
    });
    EnterWaiting();
}

void RoundTrip::EnterWaiting() {
    Enter(State::Waiting);
    patience_->SpanCalls([this] { Abandon(); });
}

void RoundTrip::Abandon() {
    Trace("the wait for the answer was given up");
    givenUp_.insert(LoginResult);
    const FarSide asked = asked_;
    Rest();
    PostLogOut(LoginResult, asked);
}

// Ignores a failed LogOut, which must not leave the dialog disabled. Doesn't wait for a host that was given
// up.
void RoundTrip::CloseLogin(Text loginId, const PatienceRef& patience) {
    if (patience->IsGivenUp()) {
        givenUp_.insert(loginId);
        return PostLogOut(loginId, far_);
    }
    ErrorState error;
    ObjectRef exchange;
    Skip(error, "LogOut", [&] {
        exchange = ExchangeObject(patience);
        Call(exchange, "LogOut", ByRef(far_.PBXName), ByRef(loginId));
    });
    if (!exchange && patience->IsGivenUp()) PostLogOut(loginId, far_);
}

// A login granted after the operator gave up would keep the exchange busy.
void RoundTrip::EndLateLogin(const Text& loginId, const FarSide& asked) {
    if (!IsAccepted(loginId)) return;
    givenUp_.insert(loginId);
    PostLogOut(loginId, asked);
}

void RoundTrip::PostLogOut(const Text& loginId, const FarSide& far) {
    Automation& automation = services_.automation;
    const auto logOut = [&automation, pbx = far.PBXName, loginId](const ObjectRef& exchange) {
        automation.Post(exchange, "LogOut", InvokeKind::Method, {pbx, loginId}, nullptr);
    };
    ErrorState error;
    Skip(error, "LogOut", [&] {
        if (data_.IsStandalone) return logOut(far.DirectHost);
        automation.Post(far.HostObject, "oPBX", InvokeKind::PropertyGet, {},
                        [logOut](const Value& exchange) { logOut(exchange.ToObject()); });
    });
}

void RoundTrip::CallBack(ObjectRef& oResponse) {
    const auto keptForTheCalls = dialog_.shared_from_this();
    const bool wasWaiting = state_ == State::Waiting;
    const PatienceRef patience = StartReading();
    const ObjectRef response = services_.automation.Within(oResponse, patience);
    const auto answer = LastResponse = NextRecord();
    ErrorState error;
    Skip(error, "CopyResponse", [&] { CopyResponse(response, *answer, *patience); });
    const bool isGood = JudgeOutcome(response);
    if (!data_.IsStandalone) TellHost(response, patience);
    // The answer's login, or the last one if it can't be read.
    Text loginId = LoginResult;
    Skip(error, "LoginID of the answer", [&] { loginId = Get(response, "LoginID").ToText(); });
    if (givenUp_.contains(loginId)) {
        Trace("the answer's login \"" + ToUtf8(loginId) + "\" was given up: nothing is shown");
        if (wasWaiting) ResumeWaiting();
    } else {
        CloseLogin(loginId, patience);
        if (isGood && !isStopped_) unshown_ = answer;
        Finish(loginId);
    }
    oResponse = nullptr;
}

// One limit for the whole answer: with one for each item, a slow host could block the operator for minutes.
RoundTrip::PatienceRef RoundTrip::StartReading() {
    if (state_ == State::Reading) return patience_;
    const PatienceRef patience = state_ == State::Waiting ? patience_ : services_.automation.NewPatience();
    if (state_ == State::Waiting) Enter(State::Reading);
    patience->SpanCalls();
    return patience;
}

// Another answer may arrive while one is read, so each gets its own record. Code and tag start as the last
// answer left them.
std::shared_ptr<cListRequest> RoundTrip::NextRecord() const {
    auto next = std::make_shared<cListRequest>();
    if (LastResponse) {
        next->ErrCode = LastResponse->ErrCode;
        next->Tag = LastResponse->Tag;
    }
    return next;
}

void RoundTrip::CopyResponse(const ObjectRef& oResponse, cListRequest& copy, Patience& patience) {
    const std::int16_t count = Get(oResponse, "Count").ToInteger();
    const auto read = [&](std::string_view list, std::int16_t i) {
        return Get(oResponse, list, ByRef(i)).ToText();
    };
    for (std::int16_t i = 0; i < count; ++i) {
        // The operator has closed the window: the rest doesn't matter.
        if (form_.IsCloseWaiting()) patience.GiveUp();
        const Text cmd = read("CMD", i), fd = read("FirstData", i), sd = read("SecondData", i);
        copy.AddToList(cmd, fd, sd);
        copy.SetItem(cListRequest::ExtraData, i, read("ExtraData", i));
    }
    copy.ErrCode = Get(oResponse, "ErrCode").ToLong();
    copy.Tag = Get(oResponse, "Tag").ToText();
}

// True for success. An answer without a readable ErrCode is not one.
bool RoundTrip::JudgeOutcome(const ObjectRef& oResponse) {
    ErrorState error;
    Value errCode = Null{};
    Skip(error, "ErrCode of the answer", [&] { errCode = Get(oResponse, "ErrCode"); });
    const bool isGood = EqualsNumber(errCode, outcome::success);
    if (!isGood) Trace("the answer's ErrCode is not 0: nothing is shown");
    if (isGood)
        Skip(error, "Message of the answer", [&] {
            if (Get(oResponse, "Message").ToText().empty()) Put(oResponse, "Message", u"OK");
        });
    else if (!EqualsNumber(errCode, outcome::messageStands))
        Skip(error, "Message of the answer", [&] {
            Put(oResponse, "Message",
                data_.MessageTable[message::answerError] + u" : <" +
                    Get(oResponse, "ErrCode").ToTextOrEmpty() + u">");
        });
    return isGood;
}

void RoundTrip::TellHost(const ObjectRef& oResponse, const PatienceRef& patience) {
    const ObjectRef host = services_.automation.Within(far_.HostObject, patience);
    ObjectRef shown = oResponse;
    ErrorState error;
    Skip(error, "ShowResults", [&] { Call(host, "ShowResults", form_.Caption(), ByRef(shown)); });
    Skip(error, "ShowMessage of the answer", [&] { Call(host, "ShowMessage", Get(oResponse, "Message")); });
    Skip(error, "ShowCode", [&] { Call(host, "ShowCode", Get(oResponse, "ErrCode")); });
}

// An answer with another login, arriving while a request is sent, is shown after that request; one that
// arrives while a box is open, after that box.
void RoundTrip::Finish(const Text& loginId) {
    const bool isOnItsWay =
        state_ == State::LoggingIn || (state_ == State::Sending && loginId != LoginResult);
    if (!isOnItsWay && state_ != State::Showing) Rest();
}

// Continues to wait after an answer to an earlier request.
void RoundTrip::ResumeWaiting() {
    if (state_ != State::Reading) return;
    patience_->IsGivenUp() ? Abandon() : EnterWaiting();
}

}  // namespace horalink
