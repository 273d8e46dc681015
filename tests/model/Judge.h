// What must hold, seen from outside: by the calls that reach a host, the boxes that the operator reads, and
// the looks of the dialog. Follows a request as the contract has it, and knows nothing of how the add-in does
// it.
#pragma once

#include <deque>
#include <set>
#include <stdexcept>

#include "model/Answer.h"
#include "platform/desktop/Desktop.h"

namespace model {

// Something came otherwise than it must.
struct Broken : std::runtime_error {
    using std::runtime_error::runtime_error;
};
void Require(bool holds, const std::string& what);

// The three values of an update, as the dialog shows date and time.
using ShownClock = std::array<Text, 3>;

// A request or an answer on its way through the add-in's calls.
struct Work;
struct Script;

class Judge {
  public:
    // --- what others do -------------------------------------------------------------------------------
    // A click that the dialog takes, or that waits and may be taken later.
    void Pressed(int button, bool waits) { presses_.push_back({button, waits}); }
    // From now on calls go to this host, about this exchange.
    void Registered(const void* host, const Text& name);
    void OperatorGaveUp();
    void HostDied(const void* host);
    // The window closes, or is asked for after it was closed: the host hears of an unload.
    void UnloadComes() { ++unloads_; }
    void HelpComes() { ++helps_; }
    void PlaceIsAskedFor() { ++places_; }
    void YearIsOut() { ++yearNotices_; }
    // Calls to databases have failed: as many notices may come.
    void NoteFailures(int count) { notices_ += count; }

    // --- what the add-in does -------------------------------------------------------------------------
    // A call reaches a host; `isPosted` for one that nobody waits for.
    void Called(const void* host, std::string_view member, const platform::Arguments& arguments,
                bool isPosted, const ShownClock& shown);
    // The innermost call ends: with a result, by an error, or given up by the operator, in which case the
    // result is what the host gives all the same.
    enum class End { Answered, Failed, GivenUp };
    void CallEnds(End end, const Text& result);
    // `CallBack` begins, is inside a read, is given up there, ends.
    void AnswerBegins(const std::shared_ptr<Answer>& answer);
    void ReadingIsOut(std::string_view member, bool isOut);
    void ReadingGivenUp();
    void AnswerEnds(bool isLoaded);
    void BoxOpens(const platform::MessageBox& box);
    void BoxCloses(const platform::MessageBox& box);
    void Unloaded();
    // True where a click asked for it.
    bool TakesHide();

    // --- what must hold -------------------------------------------------------------------------------
    void CheckLook(bool isEnabled, bool hasHourglass) const;
    // With no call out and no box open; `isArmed` where a click or an answer waits for its tick.
    void CheckRest(bool isArmed, bool hasDay, bool isVisible);
    // With nothing left to come.
    void CheckEnd() const;

    // False while a wait and another call can be given up, which look alike.
    bool KnowsWhatIsGivenUp() const;
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
    struct Place {
        const void* host = nullptr;
        Text name;
        friend bool operator==(const Place&, const Place&) = default;
    };
    struct Posted {
        Place place;
        Text login;
    };
    using WorkRef = std::shared_ptr<Work>;

    WorkRef Innermost();
    bool IsHostDead() const { return dead_.contains(host_); }
    WorkRef BeginRequest(const ShownClock& shown);
    // What has to come, call by call.
    Script Request(Work& work);
    Script Reading(Work& work);
    std::function<void(const platform::Arguments&)> LogsOut(const Text& login) const;
    void CheckRecord(const Work& work, const platform::ObjectRef& record) const;
    void TakePosted(const void* host, std::string_view member, const platform::Arguments& arguments);
    void TakeOther(std::string_view member, const platform::Arguments& arguments);
    void EndReading(Work& work);
    void AnswerGivenUp(Work& work);
    bool IsReadingForWait() const;
    void GiveUp(const Text& login, const Place& place);
    void Post(const Text& login, const Place& place);
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
    int failures_ = 0, unloads_ = 0, helps_ = 0, places_ = 0, yearNotices_ = 0, notices_ = 0;
    bool asksToLogOut_ = false;  // inside the posted call for the exchange object
    bool isUnsure_ = false;      // what a failed database kept from being shown
};

}  // namespace model
