#include "model/Judge.h"

#include <algorithm>
#include <utility>

#include "common/FatalNotice.h"
#include "request/cListRequest.h"

namespace model {

using namespace platform;

void Require(bool holds, const std::string& what) {
    if (!holds) throw Broken(what);
}

struct Work {
    // The call that has to come next.
    enum class Next {
        AskExchange,
        Login,
        ReportLogin,
        ReportFailure,
        AskExchangeToSend,
        Send,
        ReportSend,
        AskExchangeToLogOut,
        LogOut,
        Reading,
        ShowResults,
        ShowMessage,
        ShowCode,
        Nothing
    };
    Next next = Next::AskExchange;
    bool isOut = false;  // inside that call

    // A request.
    std::set<int> buttons;  // one of which was pressed for it
    bool sendFails = false, isAnswered = false;
    ShownClock shown;
    Text login, name, sendResult;
    // An answer, that may be nothing at all.
    bool isAnswer = false, isRead = false, isCutShort = false, wasWaiting = false;
    std::shared_ptr<Answer> answer;
    Text tagBefore;
    std::optional<bool> isOfGivenUp;  // its login was given up before
    std::optional<Text> lastLogin;    // of all requests, when its own had to be read

    Text Tag() const { return answer && answer->takenTag ? *answer->takenTag : tagBefore; }
};

namespace {

using Next = Work::Next;

constexpr const char* memberOf[] = {"oPBX",        "Login",
                                    "ShowMessage", "ShowMessage",
                                    "oPBX",        "SendRequest",
                                    "ShowMessage", "oPBX",
                                    "LogOut",      "",
                                    "ShowResults", "ShowMessage",
                                    "ShowCode",    ""};

std::string_view MemberOf(Next next) {
    return memberOf[static_cast<std::size_t>(next)];
}

bool IsAccepted(const Text& result) {
    return !result.empty() && result != u"BUSY" && result != u"ERROR";
}

MessageBox Expected(const Shown& shown) {
    static constexpr std::int32_t question = 32, exclamation = 48, information = 64, critical = 16;
    switch (shown.box) {
        case 0:
            return {u"clock\r" + shown.values, information, u"clock title", {}, 0};
        case 1:
            return {u"set", question, u"set title", {}, 0};
        case 2:
            return {u"not set\r" + shown.values, exclamation, u"not set title", {}, 0};
        default:
            return {u"not read", critical, {}, u"C:\\VELMORA32\\10001\\ADDINS\\read.hlp", 73};
    }
}
const MessageBox loginFailed{u"login failed", 48, u"login title", {}, 0};
const MessageBox yearNotice{u"year", 0, u"year title", u"C:\\VELMORA32\\10001\\ADDINS\\year.hlp", 74};

bool Same(const MessageBox& one, const MessageBox& other) {
    return one.prompt == other.prompt && one.buttons == other.buttons && one.title == other.title &&
           one.helpFile == other.helpFile && one.helpContext == other.helpContext;
}

}  // namespace

// --- what others do -----------------------------------------------------------------------------------

void Judge::Registered(const void* host, const Text& name) {
    host_ = host;
    name_ = name;
}

// While an answer is read, giving up ends the call that the reading is inside of, and a host that goes ends
// it too.
bool Judge::IsReadingForWait() const {
    return std::any_of(works_.begin(), works_.end(),
                       [](const WorkRef& work) { return work->isAnswer && work->wasWaiting; });
}

bool Judge::KnowsWhatIsGivenUp() const {
    const bool isBefore = std::any_of(works_.begin(), works_.end(), [](const WorkRef& work) {
        return work->isAnswer && !work->wasWaiting;
    });
    const bool isOther = std::find(out_.begin(), out_.end(), nullptr) != out_.end();
    return phase_ != Phase::Waiting || !(isBefore || isOther);
}

void Judge::OperatorGaveUp() {
    if (phase_ != Phase::Waiting || IsReadingForWait()) return;
    GiveUp(login_, asked_);
    Rest();
}

void Judge::HostDied(const void* host) {
    dead_.insert(host);
    std::erase_if(posted_, [&](const Posted& each) { return each.place.host == host; });
    for (const WorkRef& work : works_) {
        if (!work->isAnswer || work->next == Next::AskExchangeToLogOut || work->next == Next::LogOut)
            continue;
        work->isCutShort = work->isCutShort || !work->isRead;
        work->next = Next::Nothing;
        work->login = work->lastLogin.value_or(loginResult_);
        work->isOfGivenUp = givenUp_.contains(work->login);
    }
    if (phase_ != Phase::Waiting || IsReadingForWait() || host != sentTo_) return;
    GiveUp(login_, asked_);
    Rest();
}

void Judge::GiveUp(const Text& login, const Place& place) {
    givenUp_.insert(login);
    lastGivenUp_ = login;
    Post(login, place);
}

// What is sent to a dead host arrives nowhere.
void Judge::Post(const Text& login, const Place& place) {
    if (!dead_.contains(place.host)) posted_.push_back({place, login});
}

// --- what the add-in does -----------------------------------------------------------------------------

void Judge::Called(const void* host, std::string_view member, const Arguments& arguments, bool isPosted,
                   const ShownClock& shown) {
    if (isPosted) {
        out_.push_back(nullptr);
        return TakePosted(host, member, arguments);
    }
    WorkRef work = Innermost();
    if (!work || work->isOut || MemberOf(work->next) != member) {
        // Not what is due: something else begins.
        const bool canBegin = member == "oPBX" && !presses_.empty() && (!work || work->isOut);
        work = canBegin ? BeginRequest(shown) : nullptr;
    }
    out_.push_back(work);
    if (!work) return TakeOther(member, arguments);
    CheckArguments(*work, member, arguments);
    work->isOut = true;
}

Judge::WorkRef Judge::Innermost() {
    const auto hasEnded = [](const Work& work) { return !work.isAnswer && work.next == Next::Nothing; };
    while (!works_.empty() && hasEnded(*works_.back())) works_.pop_back();
    return works_.empty() ? nullptr : works_.back();
}

Judge::WorkRef Judge::BeginRequest(const ShownClock& shown) {
    Require(phase_ == Phase::Idle, "a request begins while another is under way");
    // Clicks that had to wait are taken after others that came later.
    const bool isUnsure =
        std::any_of(presses_.begin(), presses_.end(), [](const Press& each) { return each.waits; });
    auto work = std::make_shared<Work>();
    for (const Press& press : presses_)
        if (isUnsure || &press == &presses_.back()) work->buttons.insert(press.button);
    work->shown = shown;
    std::erase_if(presses_, [](const Press& each) { return !each.waits; });  // the others may be taken yet
    phase_ = Phase::Asking;
    works_.push_back(work);
    return work;
}

void Judge::CheckArguments(Work& work, std::string_view member, const Arguments& arguments) {
    const auto text = [&](std::size_t i) { return arguments.at(i).ToTextOrEmpty(); };
    const auto reports = [&](const Text& result) {
        Require(text(0) == u"progress: " + result, "ShowMessage says \"" + ToUtf8(text(0)) + "\"");
    };
    switch (work.next) {
        case Next::AskExchangeToSend:
            work.name = name_;
            break;
        case Next::Login:
            Require(text(0) == name_ && arguments.size() == 2 && arguments[1].IsObject(),
                    "Login's arguments");
            asked_ = Now();
            break;
        case Next::ReportLogin:
        case Next::ReportFailure:
            reports(loginResult_);
            break;
        case Next::Send:
            CheckRecord(work, arguments.at(0).ToObject());
            break;
        case Next::ReportSend:
            reports(work.sendResult);
            break;
        case Next::LogOut:
            Require(text(0) == name_ && text(1) == work.login, "LogOut of \"" + ToUtf8(text(1)) + "\"");
            break;
        case Next::ShowResults:
            work.isRead = true;
            Require(text(0) == u"caption (" + name_ + u")" && arguments.at(1).ToObject() == work.answer,
                    "ShowResults' arguments");
            break;
        case Next::ShowMessage:
            Require(text(0) == work.answer->MessageToShow(), "ShowMessage says \"" + ToUtf8(text(0)) + "\"");
            break;
        case Next::ShowCode:
            Require(arguments.at(0) == work.answer->ErrCode(), "ShowCode");
            break;
        default:
            Require(arguments.empty(), std::string(member) + " has arguments");
    }
}

void Judge::CheckRecord(const Work& work, const ObjectRef& record) const {
    const auto request = std::dynamic_pointer_cast<horalink::cListRequest>(record);
    using enum horalink::cListRequest::List;
    Require(request && request->Count() == 3, "the record has three items");
    const bool isUpdate = request->Tag == u"UPDATE_CLOCK";
    Require(isUpdate || request->Tag == u"LOOKUP_CLOCK", "the Tag of the record");
    Require(work.buttons.contains(isUpdate ? 1 : 2), "a request is sent that nobody clicked for");
    for (std::int16_t i = 0; i < 3; ++i) {
        const Text value = isUpdate ? work.shown.at(std::size_t(i)) : Text();
        Require(request->Item(CMD, i) == u"02" && request->Item(FirstData, i) == DecimalText(i) &&
                    request->Item(SecondData, i) == value && request->Item(ExtraData, i).empty(),
                "item " + std::to_string(i) + " is \"" + ToUtf8(request->Item(SecondData, i)) +
                    "\", shown is \"" + ToUtf8(value) + "\"");
    }
    Require(request->LoginID == work.login && request->PBXName == work.name, "whose record it is");
    Require(request->ObjectID() == u"1" && request->CommandType == 20 && request->ShowBusy &&
                request->WaitFlag && !request->CompIndication,
            "the record's other fields");
}

void Judge::TakePosted(const void* host, std::string_view member, const Arguments& arguments) {
    if (member == "oPBX") {
        Require(exchangesAsked_++ < posted_.size(), "oPBX is sent unasked");
        asksToLogOut_ = true;
        return;
    }
    const auto due = std::find_if(posted_.begin(), posted_.end(), [&](const Posted& each) {
        return each.place == Place{host, arguments.at(0).ToText()} && arguments.at(1).ToText() == each.login;
    });
    Require(member == "LogOut" && due != posted_.end() && exchangesAsked_ > 0,
            std::string(member) + " is sent unasked");
    --exchangesAsked_;
    posted_.erase(due);
}

void Judge::TakeOther(std::string_view member, const Arguments& arguments) {
    const auto take = [&](int& wanted) {
        Require(wanted > 0, std::string(member) + " is called unasked");
        --wanted;
    };
    if (member == "UnloadChild") {
        take(unloads_);
        Require(arguments.at(0) == Value(std::int16_t{42}), "UnloadChild's ID");
    } else if (member == "DisplayHelp") {
        take(helps_);
        Require(arguments.at(0).ToText() == u"Horalink.hlp", "DisplayHelp's file");
    } else if (member == "GetComData" || member == "REGComData") {
        take(places_);
        Require(arguments.at(0).ToText() == u"Horalink" && arguments.at(1).ToText() == u"MOVE",
                std::string(member) + "'s arguments");
    } else {
        Require(member == "TurnOnFlow" || member == "TurnOffFlow",
                std::string(member) + " comes out of order");
    }
}

void Judge::CallEnds(End end, const Text& result) {
    const WorkRef work = out_.back();
    out_.pop_back();
    // A host that doesn't give its exchange object to log out at has only itself to blame.
    if (std::exchange(asksToLogOut_, false) && end != End::Answered) ++notLoggedOut_;
    if (!work) return;
    work->isOut = false;
    work->isAnswer ? AnswerGoesOn(*work, end) : RequestGoesOn(*work, end, result);
    if (!IsHostDead() || work->next == Next::Nothing) return;
    // What would come next doesn't arrive anywhere.
    work->next = Next::Nothing;
    if (!work->isAnswer && phase_ == Phase::Asking) Rest();
}

void Judge::LoginFails(Work& work, End end) {
    Rest();
    ++failures_;
    work.next = end == End::GivenUp ? Next::Nothing : Next::ReportFailure;
}

void Judge::RequestGoesOn(Work& work, End end, const Text& result) {
    const bool isGivenUp = end == End::GivenUp;
    const auto over = [&] {
        if (phase_ == Phase::Asking) Rest();
        work.next = Next::Nothing;
    };
    switch (work.next) {
        case Next::AskExchange:
            return end == End::Answered ? void(work.next = Next::Login) : LoginFails(work, end);
        case Next::Login:
            if (isGivenUp && IsAccepted(result)) GiveUp(result, asked_);
            if (end != End::Answered) return LoginFails(work, end);
            loginResult_ = result;
            if (IsAccepted(result)) login_ = work.login = result;
            work.next = Next::ReportLogin;
            return;
        case Next::ReportLogin:
            if (!IsAccepted(loginResult_)) return over();
            givenUp_.erase(work.login);
            work.sendFails = end != End::Answered;
            work.next = Next::AskExchangeToSend;
            break;
        case Next::AskExchangeToSend:
            work.next = end == End::Answered ? Next::Send : Next::ReportSend;
            break;
        case Next::Send:
            if (end == End::Answered && !work.sendFails) work.sendResult = result;
            if (IsAccepted(work.sendResult) && !work.isAnswered) phase_ = Phase::Waiting;
            sentTo_ = host_;
            work.next = Next::ReportSend;
            break;
        case Next::ReportSend:
            if (IsAccepted(work.sendResult)) return void(work.next = Next::Nothing);
            work.next = Next::AskExchangeToLogOut;
            break;
        case Next::AskExchangeToLogOut:
            if (isGivenUp) Post(work.login, Now());
            if (end != End::Answered) return over();
            work.next = Next::LogOut;
            return;
        default:
            return over();
    }
    if (!isGivenUp) return;
    GiveUp(work.login, Now());
    over();
}

void Judge::AnswerBegins(const std::shared_ptr<Answer>& answer) {
    auto work = std::make_shared<Work>();
    work->isAnswer = true;
    work->answer = answer;
    work->wasWaiting = phase_ == Phase::Waiting;
    work->next = IsHostDead() ? Next::Nothing : Next::ShowResults;
    work->login = !answer || answer->IsMissing("LoginID") ? loginResult_ : answer->Login();
    work->tagBefore = lastAnswer_ ? lastAnswer_->Tag() : Text();
    works_.push_back(lastAnswer_ = work);
}

// Whoever can't be asked for its login is taken for the last one.
void Judge::AnswerGivenUp(Work& work) {
    work.next = Next::Nothing;
    work.login = work.lastLogin.value_or(loginResult_);
    work.isOfGivenUp = givenUp_.contains(work.login);
    if (!*work.isOfGivenUp) GiveUp(work.login, Now());
}

void Judge::AnswerGoesOn(Work& work, End end) {
    if (end == End::GivenUp && work.next != Next::LogOut && work.next != Next::AskExchangeToLogOut)
        return AnswerGivenUp(work);
    const auto readable = [&](const char* member) { return work.answer && !work.answer->IsMissing(member); };
    const auto afterCode = [&] {
        work.lastLogin = loginResult_;
        if (!readable("LoginID")) work.login = loginResult_;
        work.isOfGivenUp = givenUp_.contains(work.login);
        return *work.isOfGivenUp ? Next::Nothing : Next::AskExchangeToLogOut;
    };
    const auto afterMessage = [&] { return readable("ErrCode") ? Next::ShowCode : afterCode(); };
    switch (work.next) {
        case Next::ShowResults:
            work.next = readable("Message") ? Next::ShowMessage : afterMessage();
            return;
        case Next::ShowMessage:
            work.next = afterMessage();
            return;
        case Next::ShowCode:
            work.next = afterCode();
            return;
        case Next::AskExchangeToLogOut:
            if (end == End::GivenUp) Post(work.login, Now());
            work.next = end == End::Answered ? Next::LogOut : Next::Nothing;
            return;
        default:
            work.next = Next::Nothing;
    }
}

void Judge::ReadingIsOut(std::string_view member, bool isOut) {
    Work& work = *Innermost();
    work.isOut = isOut;
    if (member != "LoginID") return;
    Require(IsHostDead() || work.next == Next::Nothing || work.next == Next::AskExchangeToLogOut,
            "the host does not hear of " + std::string(MemberOf(work.next)));
    // All else has been read by then. More may have been given up by the time that it is there.
    work.isRead = true;
    work.isOfGivenUp = givenUp_.contains(work.login);
    work.next = *work.isOfGivenUp || IsHostDead() ? Next::Nothing : Next::AskExchangeToLogOut;
}

void Judge::ReadingGivenUp() {
    Work& work = *Innermost();
    work.isCutShort = !work.isRead;
    AnswerGivenUp(work);
}

void Judge::AnswerEnds(bool isLoaded) {
    const WorkRef work = Innermost();
    works_.pop_back();
    Require(work->next == Next::Nothing || IsHostDead(),
            "the host does not hear of " + std::string(MemberOf(work->next)));
    // One under a login that was given up ends nothing and is not shown.
    if (work->isOfGivenUp ? *work->isOfGivenUp : givenUp_.contains(work->login)) return;
    if (work->answer && work->answer->IsGood() && !work->isCutShort)
        toShow_ = isLoaded ? ShownFor(work->answer->taken, work->Tag()) : std::nullopt;
    if (phase_ == Phase::Waiting) return Rest();
    const auto sending = std::find_if(works_.begin(), works_.end(), [&](const WorkRef& each) {
        return !each->isAnswer && each->login == work->login && each->next >= Next::AskExchangeToSend &&
               each->next <= Next::LogOut;
    });
    if (sending == works_.end()) return;
    // It was faster than the end of `SendRequest`.
    (*sending)->isAnswered = true;
    Rest();
}

void Judge::Unloaded() {
    presses_.clear();
    toShow_.reset();
    Rest();
}

bool Judge::TakesHide() {
    const bool isAsked =
        std::any_of(presses_.begin(), presses_.end(), [](const Press& each) { return each.button == 0; });
    presses_.clear();
    return isAsked;
}

void Judge::BoxOpens(const MessageBox& box) {
    if (toShow_ && Same(box, Expected(*toShow_))) {
        Require(!std::exchange(isAnswerShown_, true), "two answers are shown at once");
        return toShow_.reset();
    }
    if (yearNotices_ > 0 && Same(box, yearNotice)) return void(--yearNotices_);
    if (Same(box, loginFailed) && (failures_ > 0 || (IsHostDead() && !presses_.empty()))) {
        failures_ > 0 ? void(--failures_) : presses_.clear();
        return;
    }
    Require(notices_ > 0 && box.title == Text(horalink::noticeTitle),
            "a box says \"" + ToUtf8(box.prompt) + "\"");
    --notices_;
    isUnsure_ = true;
}

void Judge::BoxCloses(const MessageBox& box) {
    if (!Same(box, loginFailed) && !Same(box, yearNotice) && box.title != Text(horalink::noticeTitle))
        isAnswerShown_ = false;
}

// --- what must hold -----------------------------------------------------------------------------------

void Judge::CheckLook(bool isEnabled, bool hasHourglass) const {
    Require(isEnabled == (phase_ != Phase::Waiting),
            isEnabled ? "the dialog takes input" : "the dialog is disabled");
    Require(hasHourglass == (phase_ != Phase::Idle), hasHourglass ? "the hourglass" : "no hourglass");
}

void Judge::CheckRest(bool isArmed, bool hasDay, bool isVisible) {
    for (const WorkRef& work : works_)
        Require(work->next == Next::Nothing, "a request ends ahead of " + std::string(MemberOf(work->next)));
    works_.clear();
    Require(phase_ != Phase::Asking, "a request has ended and is still under way");
    // What a click asks for can have come about without it, and a date without a day is not sent.
    const auto isMoot = [&](const Press& each) {
        return each.waits || (each.button == 0 && !isVisible) || (each.button == 1 && !hasDay);
    };
    Require(isArmed || presses_.empty() || isMoot(presses_.back()), "a click is lost");
    if (!isArmed) presses_.clear();
}

void Judge::CheckEnd() const {
    Require(phase_ == Phase::Idle && presses_.empty(), "something is left under way");
    Require(!toShow_ || isUnsure_, "an answer is not shown");
    Require(failures_ == 0 && (yearNotices_ == 0 || isUnsure_), "a box is missing");
    Require(posted_.size() <= notLoggedOut_, "a login that was given up is not logged out");
}

}  // namespace model
