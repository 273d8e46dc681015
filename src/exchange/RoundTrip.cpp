// The way of one request: from the tick that starts it to the answer that ends it.
#include "exchange/dlgAddin.h"
#include "platform/desktop/MessageBoxButtons.h"

namespace horalink {

using namespace platform;

namespace {

bool IsAccepted(const Text& result) {
    return !result.empty() && result != u"BUSY" && result != u"ERROR";
}

}  // namespace

void dlgAddin::tmrEvent_Timer() {
    ErrorState error;
    controls_.tmrEvent->Enabled = false;
    Skip(error, [&] { RunPendingAction(); });
}

void dlgAddin::RunPendingAction() {
    switch (PendingAction) {
        case button::hide:
            data_.IsStandalone ? form_->Unload() : form_->Hide();
            break;
        case button::update:
            SendUpdateClock();
            break;
        case button::lookup:
            SendLookupClock();
            break;
        case showAnswer:
            RunAnswerRoutine();
            break;
        default:
            break;
    }
}

// One box at a time, whatever a host sends: the last of the answers that come meanwhile is shown behind it.
void dlgAddin::RunAnswerRoutine() {
    if (std::exchange(isShowing_, true)) {
        cameMeanwhile_ = true;
        return;
    }
    const auto keptForTheBox = shared_from_this();
    ErrorState error;
    const Text tag = LastAnswer().Tag;
    if (tag == updateTag) Skip(error, [&] { ShowUpdateAnswer(); });
    if (tag == lookupTag) Skip(error, [&] { ShowLookupAnswer(); });
    isShowing_ = false;
    if (std::exchange(cameMeanwhile_, false)) controls_.tmrEvent->Enabled = true;
}

cListRequest& dlgAddin::LastAnswer() {
    if (!LastResponse) LastResponse = std::make_shared<cListRequest>();
    return *LastResponse;
}

ObjectRef dlgAddin::ExchangeObject() const {
    return data_.IsStandalone ? DirectHost : Get(HostObject, "oPBX").ToObject();
}

void dlgAddin::ReportProgress(const Text& result) {
    if (!data_.IsStandalone)
        Call(HostObject, "ShowMessage", data_.MessageTable[message::progress] + u": " + result);
}

bool dlgAddin::SubmitRequest(std::shared_ptr<cListRequest>& request) {
    if (!LogIn()) return false;
    ErrorState error;
    Skip(error, [&] { ReportProgress(LoginResult); });
    if (!IsAccepted(LoginResult)) {
        services_.screen.SetPointer(MousePointer::Default);
        return false;
    }
    Skip(error, [&] { Put(request, "LoginID", LoginResult); });
    Skip(error, [&] { Put(request, "PBXName", PBXName); });
    ObjectRef exchange;
    Skip(error, [&] {
        exchange = ExchangeObject();
        SendResult = Call(exchange, "SendRequest", ByRef(request)).ToText();
    });
    // A host that could not be told of the login counts as one that did not take the request.
    if (error.IsSet()) SendResult.clear();
    error.Clear();
    isAnswered_ = false;
    Skip(error, [&] { ReportProgress(SendResult); });
    if (IsAccepted(SendResult)) {
        // The host may answer while it is told that its word has come; then there is nothing to wait for.
        if (!isAnswered_) StartWaiting(exchange);
        return true;
    }
    CloseLogin(LoginResult);
    request = nullptr;
    return false;
}

bool dlgAddin::LogIn() {
    try {
        services_.screen.SetPointer(MousePointer::Hourglass);
        LoginResult = Call(ExchangeObject(), "Login", ByRef(PBXName), shared_from_this()).ToText();
        return true;
    } catch (const RuntimeError&) {
        ReportLoginFailure();
        return false;
    }
}

void dlgAddin::ReportLoginFailure() {
    services_.screen.SetPointer(MousePointer::Default);
    form_->Enabled = true;
    // A host that can't take the message must not keep the operator from hearing of the failure.
    ErrorState error;
    Skip(error, [&] { ReportProgress(LoginResult); });
    services_.boxes.Show({data_.MessageTable[message::loginFailed],
                          buttons::exclamation,
                          data_.MessageTable[message::loginFailedTitle],
                          {},
                          0});
}

// A LogOut that fails is passed over: the dialog must not stay disabled on its account.
void dlgAddin::CloseLogin(Text loginId) {
    waiting_.reset();
    ErrorState error;
    Skip(error, [&] { Call(ExchangeObject(), "LogOut", ByRef(PBXName), ByRef(loginId)); });
    form_->Enabled = true;
    services_.screen.SetPointer(MousePointer::Default);
}

void dlgAddin::CallBack(ObjectRef& oResponse) {
    ErrorState error;
    bool show = false;
    waiting_.reset();
    Skip(error, [&] { CopyResponse(oResponse); });
    JudgeOutcome(oResponse, show);
    if (!data_.IsStandalone) TellHost(oResponse);
    // The key of the answer's own login; the last one where the answer doesn't tell.
    Text loginId = LoginResult;
    Skip(error, [&] { loginId = Get(oResponse, "LoginID").ToText(); });
    if (loginId == LoginResult) isAnswered_ = true;
    CloseLogin(loginId);
    oResponse = nullptr;
    if (show) controls_.tmrEvent->Enabled = true;
}

// An answer whose ErrCode can't be read counts as no success.
void dlgAddin::JudgeOutcome(const ObjectRef& oResponse, bool& show) {
    ErrorState error;
    std::int32_t errCode = outcome::messageStands;
    Skip(error, [&] { errCode = Get(oResponse, "ErrCode").ToLong(); });
    if (errCode == outcome::success) {
        PendingAction = showAnswer;
        show = true;
        Skip(error, [&] {
            if (Get(oResponse, "Message").ToText().empty()) Put(oResponse, "Message", u"OK");
        });
    } else if (errCode != outcome::messageStands) {
        Skip(error, [&] {
            Put(oResponse, "Message",
                data_.MessageTable[message::answerError] + u" : <" + Get(oResponse, "ErrCode").ToText() +
                    u">");
        });
    }
}

void dlgAddin::TellHost(const ObjectRef& oResponse) {
    ErrorState error;
    ObjectRef shown = oResponse;
    Skip(error, [&] { Call(HostObject, "ShowResults", form_->Caption(), ByRef(shown)); });
    Skip(error, [&] { Call(HostObject, "ShowMessage", Get(oResponse, "Message")); });
    Skip(error, [&] { Call(HostObject, "ShowCode", Get(oResponse, "ErrCode")); });
}

void dlgAddin::CopyResponse(const ObjectRef& oResponse) {
    cListRequest& copy = LastAnswer();
    copy.Clear();
    const std::int16_t count = Get(oResponse, "Count").ToInteger();
    const auto read = [&](std::string_view list, std::int16_t i) {
        return Get(oResponse, list, ByRef(i)).ToText();
    };
    for (std::int16_t i = 0; i < count; ++i) {
        const Text cmd = read("CMD", i), fd = read("FirstData", i), sd = read("SecondData", i);
        copy.AddToList(cmd, fd, sd);
        copy.SetItem(cListRequest::ExtraData, i, read("ExtraData", i));
    }
    copy.ErrCode = Get(oResponse, "ErrCode").ToLong();
    copy.Tag = Get(oResponse, "Tag").ToText();
}

// An answer that never comes must not hold the operator: after the pending limit a box offers to give up,
// and a host that leaves ends the wait at once.
void dlgAddin::StartWaiting(const ObjectRef& exchange) {
    form_->Enabled = false;
    services_.screen.SetPointer(MousePointer::Hourglass);
    waiting_ = std::make_unique<Waiting>();
    ArmWaitLimit();
    if (exchange) waiting_->ownerWatch = exchange->WhenOwnerGone([this] { AbandonRequest(); });
}

void dlgAddin::ArmWaitLimit() {
    waiting_->limit = services_.scheduler.After(Milliseconds(services_.app.waits.pendingTimeout),
                                                [this] { OpenWaitBox(); });
}

void dlgAddin::OpenWaitBox() {
    const WaitSettings& texts = services_.app.waits;
    waiting_->box = services_.waits.Open(texts.pendingTitle, texts.pendingText, [this](bool giveUp) {
        if (giveUp)
            AbandonRequest();
        else
            ArmWaitLimit();
    });
}

void dlgAddin::AbandonRequest() {
    CloseLogin(LoginResult);
}

}  // namespace horalink
