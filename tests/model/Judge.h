// What must hold, seen from outside: by the calls that reach a host, the boxes that the operator reads, and
// the looks of the dialog. Follows a request as the contract has it, and knows nothing of how the add-in does
// it.
#pragma once

#include <algorithm>
#include <coroutine>
#include <deque>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

#include "common/FatalNotice.h"
#include "model/Answer.h"
#include "platform/desktop/Desktop.h"
#include "request/cListRequest.h"

namespace model {

using namespace platform;

// Something came otherwise than it must.
struct Broken : std::runtime_error {
    using std::runtime_error::runtime_error;
};
inline void Require(bool holds, const std::string& what) {
    if (!holds) throw Broken(what);
}

// The three values of an update, as the dialog shows date and time.
using ShownClock = std::array<Text, 3>;

// How a call ends: with a result, by an error, or given up by the operator, in which case the result is what
// the host gives all the same.
enum class End { Answered, Failed, GivenUp };

using Check = std::function<void(const Arguments&)>;

// A request or an answer as a coroutine, which waits wherever a call has to come next.
struct Script {
    struct promise_type {
        Script get_return_object() { return {std::coroutine_handle<promise_type>::from_promise(*this)}; }
        std::suspend_never initial_suspend() { return {}; }
        std::suspend_always final_suspend() noexcept { return {}; }
        void return_void() {}
        void unhandled_exception() { throw; }
    };
    std::coroutine_handle<> handle;
};

// A request or an answer on its way through the add-in's calls.
struct Work {
    ~Work() {
        if (script) script.destroy();
    }
    // From within the script.
    std::suspend_always Until(std::string_view member, Check checked = nullptr) {
        next = member;
        check = std::move(checked);
        return {};
    }
    void GoOn(End how, const Text& with) {
        end = how;
        result = with;
        next = "";
        script.resume();
    }
    bool IsToLogOut() const { return next == "oPBX" || next == "LogOut"; }  // of an answer
    std::coroutine_handle<> script;
    std::string_view next;  // the call that has to come next, empty where none has
    Check check;            // of its arguments
    bool isOut = false;     // inside that call
    End end{};              // how the last one has ended, and with which result
    Text result, login;

    // A request.
    std::set<int> buttons;  // one of which was pressed for it
    bool isLoggedIn = false, isAnswered = false;
    ShownClock shown;
    Text name;
    // An answer, that may be nothing at all.
    bool isAnswer = false, isRead = false, isCutShort = false, isLeft = false, wasWaiting = false,
         isAtLogin = false;
    std::shared_ptr<Answer> answer;
    Text tagBefore;
    std::optional<bool> isOfGivenUp;  // its login was given up before
    std::optional<Text> lastLogin;    // of all requests, when its own had to be read

    Text Tag() const { return answer && answer->takenTag ? *answer->takenTag : tagBefore; }
    bool CanRead(const char* member) const { return answer && !answer->IsMissing(member); }
};

inline bool IsAccepted(const Text& result) {
    return !result.empty() && result != u"BUSY" && result != u"ERROR";
}

inline Text TextOf(const Arguments& arguments, std::size_t i) {
    return arguments.at(i).ToTextOrEmpty();
}

inline Check Says(const Text& text) {
    return [text](const Arguments& arguments) {
        Require(TextOf(arguments, 0) == text, "ShowMessage says \"" + ToUtf8(TextOf(arguments, 0)) + "\"");
    };
}

inline Check Reports(const Text& result) {
    return Says(u"progress: " + result);
}

// By the number of the box.
inline MessageBox Expected(const Shown& shown) {
    const MessageBox boxes[] = {{u"clock\r" + shown.values, 64, u"clock title", {}, 0},
                                {u"set", 32, u"set title", {}, 0},
                                {u"not set\r" + shown.values, 48, u"not set title", {}, 0},
                                {u"not read", 16, {}, u"C:\\VELMORA32\\10001\\ADDINS\\read.hlp", 73}};
    return boxes[shown.box];
}
inline const MessageBox loginFailed{u"login failed", 48, u"login title", {}, 0};
inline const MessageBox yearNotice{u"year", 0, u"year title", u"C:\\VELMORA32\\10001\\ADDINS\\year.hlp", 74};

inline bool Same(const MessageBox& one, const MessageBox& other) {
    return one.prompt == other.prompt && one.buttons == other.buttons && one.title == other.title &&
           one.helpFile == other.helpFile && one.helpContext == other.helpContext;
}

class Judge {
  public:
    // --- what others do -------------------------------------------------------------------------------
    // A click that the dialog takes, or that waits and may be taken later.
    void Pressed(int button, bool waits) { presses_.push_back({button, waits}); }
    // From now on calls go to this host, about this exchange.
    void Registered(const void* host, const Text& name) {
        host_ = host;
        name_ = name;
    }

    void OperatorGaveUp() {
        if (phase_ != Phase::Waiting || IsReadingForWait()) return;
        GiveUp(login_, asked_);
        Rest();
    }

    void HostDied(const void* host) {
        dead_.insert(host);
        std::erase_if(posted_, [&](const Posted& each) { return each.place.first == host; });
        for (const WorkRef& work : works_) {
            if (!work->isAnswer || (work->IsToLogOut() && !work->isAtLogin)) continue;
            work->isCutShort = work->isCutShort || !work->isRead;
            EndReading(*work);
            work->isOfGivenUp.reset();  // more may have been given up by its end
        }
        if (phase_ != Phase::Waiting || IsReadingForWait() || host != sentTo_) return;
        GiveUp(login_, asked_);
        Rest();
    }

    // A call of the host comes that has nothing to do with requests; "ComData" for either of them.
    void Comes(const char* member) { due_.insert(member); }
    void YearIsOut() { ++yearNotices_; }

    // Calls to databases have failed: as many notices may come.
    void NoteFailures(int count) { notices_ += count; }

    // --- what the add-in does -------------------------------------------------------------------------
    // A call reaches a host; `isPosted` for one that nobody waits for.
    void Called(const void* host, std::string_view member, const Arguments& arguments, bool isPosted,
                const ShownClock& shown) {
        if (isPosted) {
            out_.push_back(nullptr);
            return TakePosted(host, member, arguments);
        }
        WorkRef work = Innermost();
        if (!work || work->isOut || work->next != member) {
            // Not what is due: something else begins.
            const bool canBegin = member == "oPBX" && !presses_.empty() && (!work || work->isOut);
            work = canBegin ? BeginRequest(shown) : nullptr;
        }
        out_.push_back(work);
        if (!work) return TakeOther(member, arguments);
        work->check ? work->check(arguments)
                    : Require(arguments.empty(), std::string(member) + " has arguments");
        work->isOut = true;
    }

    // The innermost call ends.
    void CallEnds(End end, const Text& result) {
        const WorkRef work = out_.back();
        out_.pop_back();
        // A host that doesn't give its exchange object to log out at has only itself to blame.
        if (std::exchange(asksToLogOut_, false) && end != End::Answered) ++notLoggedOut_;
        if (!work) return;
        work->isOut = false;
        work->isLeft = work->isLeft || end == End::GivenUp;
        if (work->next.empty()) return;
        if (work->isAnswer && end == End::GivenUp && !work->IsToLogOut())
            AnswerGivenUp(*work);
        else
            work->GoOn(end, result);
        // What would come next doesn't arrive anywhere.
        if (IsHostDead()) work->next = "";
        if (work->next.empty() && !work->isAnswer && phase_ == Phase::Asking) Rest();
    }

    // `CallBack` begins, is inside a read, is given up there, ends.
    void AnswerBegins(const std::shared_ptr<Answer>& answer) {
        auto work = std::make_shared<Work>();
        work->isAnswer = true;
        work->answer = answer;
        work->wasWaiting = phase_ == Phase::Waiting;
        work->login = work->CanRead("LoginID") ? answer->Login() : loginResult_;
        work->tagBefore = lastAnswer_ ? lastAnswer_->Tag() : Text();
        work->script = Reading(*work).handle;
        if (IsHostDead()) work->next = "";
        works_.push_back(lastAnswer_ = work);
    }

    void ReadingIsOut(std::string_view member, bool isOut) {
        Work& work = *Innermost();
        work.isOut = isOut;
        if (member != "LoginID") return;
        work.isAtLogin = isOut;
        Require(IsHostDead() || work.next.empty() || work.next == "oPBX",
                "the host does not hear of " + std::string(work.next));
        // All else has been read by then. More may have been given up by the time that it is there.
        work.isRead = true;
        work.isOfGivenUp = givenUp_.contains(work.login);
        work.next = *work.isOfGivenUp || IsHostDead() ? "" : "oPBX";
    }

    void ReadingGivenUp() {
        Work& work = *Innermost();
        work.isCutShort = !work.isRead;
        AnswerGivenUp(work);
    }

    void AnswerEnds(bool isLoaded) {
        const WorkRef work = Innermost();
        works_.pop_back();
        Require(work->next.empty() || IsHostDead(), "the host does not hear of " + std::string(work->next));
        // One under a login that was given up ends nothing and is not shown.
        if (work->isOfGivenUp ? *work->isOfGivenUp : givenUp_.contains(work->login)) return;
        if (work->isLeft && IsHostDead()) givenUp_.insert(work->login);
        if (work->answer && work->answer->IsGood() && !work->isCutShort)
            toShow_ = isLoaded ? ShownFor(work->answer->taken, work->Tag()) : std::nullopt;
        if (phase_ == Phase::Waiting) return Rest();
        const auto sending = std::ranges::find_if(works_, [&](const WorkRef& each) {
            return each->isLoggedIn && each->login == work->login && !each->next.empty();
        });
        if (sending == works_.end()) return;
        // It was faster than the end of `SendRequest`.
        (*sending)->isAnswered = true;
        Rest();
    }

    void BoxOpens(const MessageBox& box) {
        if (toShow_ && Same(box, Expected(*toShow_))) {
            Require(!std::exchange(isAnswerShown_, true), "two answers are shown at once");
            return toShow_.reset();
        }
        if (yearNotices_ > 0 && Same(box, yearNotice)) return void(--yearNotices_);
        if (Same(box, loginFailed) && (failures_ > 0 || (IsHostDead() && !presses_.empty()))) {
            if (failures_ > 0) return void(--failures_);
            std::erase_if(presses_, [](const Press& each) { return !each.waits; });
            return;
        }
        Require(notices_ > 0 && box.title == Text(horalink::noticeTitle),
                "a box says \"" + ToUtf8(box.prompt) + "\"");
        --notices_;
        isUnsure_ = true;
    }

    void BoxCloses(const MessageBox& box) {
        if (!Same(box, loginFailed) && !Same(box, yearNotice) && box.title != Text(horalink::noticeTitle))
            isAnswerShown_ = false;
    }

    void Unloaded() {
        presses_.clear();
        toShow_.reset();
        Rest();
    }

    // True where a click asked for it.
    bool TakesHide() {
        const auto presses = std::exchange(presses_, {});
        return std::ranges::find(presses, 0, &Press::button) != presses.end();
    }

    // --- what must hold -------------------------------------------------------------------------------
    void CheckLook(bool isEnabled, bool hasHourglass) const {
        Require(isEnabled == (phase_ != Phase::Waiting),
                isEnabled ? "the dialog takes input" : "the dialog is disabled");
        Require(hasHourglass == (phase_ != Phase::Idle), hasHourglass ? "the hourglass" : "no hourglass");
    }

    // With no call out and no box open; `isArmed` where a click or an answer waits for its tick.
    void CheckRest(bool isArmed, bool hasDay, bool isVisible) {
        for (const WorkRef& work : works_)
            Require(work->next.empty(), "a request ends ahead of " + std::string(work->next));
        works_.clear();
        Require(phase_ != Phase::Asking, "a request has ended and is still under way");
        // What a click asks for can have come about without it, and a date without a day is not sent.
        const auto isMoot = [&](const Press& each) {
            return each.waits || (each.button == 0 && !isVisible) || (each.button == 1 && !hasDay);
        };
        Require(isArmed || presses_.empty() || isMoot(presses_.back()), "a click is lost");
        if (!isArmed) presses_.clear();
    }

    // With nothing left to come.
    void CheckEnd() const {
        Require(phase_ == Phase::Idle && presses_.empty(), "something is left under way");
        Require(!toShow_ || isUnsure_, "an answer is not shown");
        Require(failures_ == 0 && (yearNotices_ == 0 || isUnsure_), "a box is missing");
        Require(posted_.size() <= notLoggedOut_, "a login that was given up is not logged out");
    }

    // At the end of the process.
    void CheckPlaceIsStored() const { Require(!due_.contains("ComData"), "the place is not stored"); }

    // False while a wait and another call can be given up, which look alike.
    bool KnowsWhatIsGivenUp() const {
        const bool isBefore = std::ranges::any_of(
            works_, [](const WorkRef& work) { return work->isAnswer && !work->wasWaiting; });
        const bool isOther = std::ranges::find(out_, nullptr) != out_.end();
        return phase_ != Phase::Waiting || !(isBefore || isOther);
    }

    bool IsWaiting() const { return phase_ == Phase::Waiting; }
    const Text& CurrentLogin() const { return login_; }
    const Text& LastGivenUp() const { return lastGivenUp_; }
    const void* Host() const { return host_; }
    const Text& Name() const { return name_; }

  private:
    enum class Phase { Idle, Asking, Waiting };
    struct Press {
        int button;
        bool waits;
    };
    using Place = std::pair<const void*, Text>;  // a host, and the name of its exchange
    struct Posted {
        Place place;
        Text login;
    };
    using WorkRef = std::shared_ptr<Work>;

    WorkRef Innermost() {
        while (!works_.empty() && !works_.back()->isAnswer && works_.back()->next.empty()) works_.pop_back();
        return works_.empty() ? nullptr : works_.back();
    }

    bool IsHostDead() const { return dead_.contains(host_); }

    WorkRef BeginRequest(const ShownClock& shown) {
        Require(phase_ == Phase::Idle, "a request begins while another is under way");
        // Clicks that had to wait are taken after others that came later, and may be taken yet.
        const bool isUnsure = std::ranges::any_of(presses_, &Press::waits);
        auto work = std::make_shared<Work>();
        for (const Press& press : presses_)
            if (isUnsure || &press == &presses_.back()) work->buttons.insert(press.button);
        work->shown = shown;
        std::erase_if(presses_, [](const Press& each) { return !each.waits; });
        phase_ = Phase::Asking;
        works_.push_back(work);
        work->script = Request(*work).handle;
        return work;
    }

    // What has to come, call by call.
    Script Request(Work& work) {
        co_await work.Until("oPBX");
        if (work.end == End::Answered) {
            co_await work.Until("Login", [this](const Arguments& arguments) {
                const bool hasDialog = arguments.size() == 2 && arguments[1].IsObject();
                Require(TextOf(arguments, 0) == name_ && hasDialog, "Login's arguments");
                asked_ = Now();
            });
            if (work.end == End::GivenUp && IsAccepted(work.result)) GiveUp(work.result, asked_);
        }
        if (work.end != End::Answered) {
            Rest();
            ++failures_;
            if (work.end == End::Failed) co_await work.Until("ShowMessage", Reports(loginResult_));
            co_return;
        }
        loginResult_ = work.result;
        if (IsAccepted(loginResult_)) login_ = work.login = loginResult_;
        co_await work.Until("ShowMessage", Reports(loginResult_));
        if (!IsAccepted(loginResult_)) co_return;
        work.isLoggedIn = true;
        givenUp_.erase(work.login);
        if (work.end == End::GivenUp) co_return GiveUp(work.login, Now());
        const bool isReported = work.end == End::Answered;
        co_await work.Until("oPBX", [&](const Arguments&) { work.name = name_; });
        if (work.end == End::GivenUp) co_return GiveUp(work.login, Now());
        Text sendResult;
        if (work.end == End::Answered) {
            co_await work.Until("SendRequest", [&](const Arguments& arguments) {
                CheckRecord(work, arguments.at(0).ToObject());
            });
            if (work.end == End::Answered && isReported) sendResult = work.result;
            if (IsAccepted(sendResult) && !work.isAnswered) phase_ = Phase::Waiting;
            sentTo_ = host_;
            if (work.end == End::GivenUp) co_return GiveUp(work.login, Now());
        }
        co_await work.Until("ShowMessage", Reports(sendResult));
        if (IsAccepted(sendResult)) co_return;
        if (work.end == End::GivenUp) co_return GiveUp(work.login, Now());
        co_await work.Until("oPBX");
        if (work.end == End::GivenUp) Post(work.login, Now());
        if (work.end == End::Answered) co_await work.Until("LogOut", LogsOut(work.login));
    }

    Script Reading(Work& work) {
        co_await work.Until("ShowResults", [&](const Arguments& arguments) {
            work.isRead = true;
            const bool isSame = arguments.at(1).ToObject() == work.answer;
            Require(TextOf(arguments, 0) == u"caption (" + name_ + u")" && isSame, "ShowResults' arguments");
        });
        if (work.CanRead("Message")) co_await work.Until("ShowMessage", Says(work.answer->MessageToShow()));
        if (work.CanRead("ErrCode"))
            co_await work.Until("ShowCode", [&](const Arguments& arguments) {
                Require(arguments.at(0) == work.answer->ErrCode(), "ShowCode");
            });
        work.lastLogin = loginResult_;
        if (!work.CanRead("LoginID")) work.login = loginResult_;
        work.isOfGivenUp = givenUp_.contains(work.login);
        co_await work.Until(*work.isOfGivenUp ? "" : "oPBX");
        if (work.end == End::GivenUp) Post(work.login, Now());
        if (work.end == End::Answered) co_await work.Until("LogOut", LogsOut(work.login));
    }

    Check LogsOut(const Text& login) const {
        return [this, login](const Arguments& arguments) {
            const Text named = TextOf(arguments, 1);
            Require(TextOf(arguments, 0) == name_ && named == login, "LogOut of \"" + ToUtf8(named) + "\"");
        };
    }

    void CheckRecord(const Work& work, const ObjectRef& record) const {
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
    }

    void TakePosted(const void* host, std::string_view member, const Arguments& arguments) {
        if (member == "oPBX") {
            Require(exchangesAsked_++ < posted_.size(), "oPBX is sent unasked");
            asksToLogOut_ = true;
            return;
        }
        const auto due = std::ranges::find_if(posted_, [&](const Posted& each) {
            return each.place == Place{host, TextOf(arguments, 0)} && TextOf(arguments, 1) == each.login;
        });
        Require(member == "LogOut" && due != posted_.end() && exchangesAsked_ > 0,
                std::string(member) + " is sent unasked");
        --exchangesAsked_;
        posted_.erase(due);
    }

    // Its first arguments are always the same.
    void TakeOther(std::string_view member, const Arguments& arguments) {
        static const std::map<std::string_view, Arguments> others = {{"UnloadChild", {std::int16_t{42}}},
                                                                     {"DisplayHelp", {u"Horalink.hlp"}},
                                                                     {"GetComData", {u"Horalink", u"MOVE"}},
                                                                     {"REGComData", {u"Horalink", u"MOVE"}}};
        const auto due = due_.find(member.ends_with("ComData") ? "ComData" : member);
        Require(due != due_.end(), std::string(member) + " is called unasked");
        due_.erase(due);
        const Arguments& wanted = others.at(member);
        Require(std::equal(wanted.begin(), wanted.end(), arguments.begin()),
                std::string(member) + "'s arguments");
    }

    // Whoever can't be asked for its login is taken for the last one.
    void EndReading(Work& work) {
        work.next = "";
        work.login = work.lastLogin.value_or(loginResult_);
        work.isOfGivenUp = givenUp_.contains(work.login);
    }

    void AnswerGivenUp(Work& work) {
        EndReading(work);
        if (!*work.isOfGivenUp) GiveUp(work.login, Now());
    }

    // While an answer is read, giving up ends the call that the reading is inside of, and a host that goes
    // ends it too.
    bool IsReadingForWait() const {
        return std::ranges::any_of(works_,
                                   [](const WorkRef& work) { return work->isAnswer && work->wasWaiting; });
    }

    void GiveUp(const Text& login, const Place& place) {
        givenUp_.insert(login);
        lastGivenUp_ = login;
        Post(login, place);
    }

    // What is sent to a dead host arrives nowhere.
    void Post(const Text& login, const Place& place) {
        if (!dead_.contains(place.first)) posted_.push_back({place, login});
    }

    Place Now() const { return {host_, name_}; }
    void Rest() { phase_ = Phase::Idle; }

    Phase phase_ = Phase::Idle;
    std::vector<WorkRef> works_;  // the innermost last
    std::vector<WorkRef> out_;    // whose calls are out; null for others
    WorkRef lastAnswer_;
    std::vector<Press> presses_;
    const void *host_ = nullptr, *sentTo_ = nullptr;
    Place asked_;  // where the last login was asked for
    std::set<const void*> dead_;
    Text name_, login_, loginResult_, lastGivenUp_;
    std::set<Text> givenUp_;
    std::deque<Posted> posted_;  // logouts that nobody waits for, each after a posted oPBX
    std::size_t exchangesAsked_ = 0, notLoggedOut_ = 0;
    std::optional<Shown> toShow_;
    bool isAnswerShown_ = false;
    std::multiset<std::string, std::less<>> due_;
    int failures_ = 0, yearNotices_ = 0, notices_ = 0;
    bool asksToLogOut_ = false;  // inside the posted call for the exchange object
    bool isUnsure_ = false;      // what a failed database kept from being shown
};

}  // namespace model
