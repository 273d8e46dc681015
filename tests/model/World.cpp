#include "model/World.h"

#include <list>
#include <map>

#include "exchange/dlgAddin.h"
#include "harness/Cases.h"
#include "harness/Desk.h"
#include "model/Answer.h"
#include "model/Judge.h"
#include "platform/runtime/ScopeExit.h"
#include "shell/ServerLife.h"
#include "shell/cOLELayer.h"

namespace model {

using namespace platform;
using namespace horalink;

namespace {

constexpr std::int16_t childId = 42;

using Words = std::vector<std::string>;
const Words members = {"oPBX",        "Login",       "ShowMessage", "SendRequest", "LogOut",
                       "ShowResults", "ShowCode",    "Count",       "CMD",         "Tag",
                       "LoginID",     "UnloadChild", "DisplayHelp", "GetComData",  "REGComData"};
const Words replied(members.begin(), members.begin() + 7);  // those that a reply can go wrong for
const Words hung(members.begin(), members.begin() + 8);

// What the host's members reply with, the texts first.
const Words replies = {"BUSY", "ERROR",       "nothing",      "a blank",
                       "well", "by an error", "by an object", "busy just now"};
constexpr const char16_t* replyTexts[] = {u"BUSY", u"ERROR", u"", u" "};
constexpr std::size_t well = 4, byAnError = 5, byAnObject = 6, busyJustNow = 7;

// The login of an answer.
const Words logins = {"current login", "login given up", "nobody's login"};
constexpr std::size_t currentLogin = 0, goodAnswer = 0;

// An object of another process: hands its calls on.
class Remote : public Object {
  public:
    using Handler = std::function<Value(std::string_view, Arguments&)>;
    explicit Remote(Handler handler) : handler_(std::move(handler)) {}
    const ClassDescription& Class() const override {
        static const ClassDescription description{"Remote", {}};
        return description;
    }
    Value Invoke(std::string_view member, InvokeKind, Arguments& arguments) override {
        return handler_(member, arguments);
    }

  private:
    Handler handler_;
};

Text Digits(int number, std::size_t width) {
    const std::string digits = std::to_string(number);
    return FromUtf8(std::string(width - std::min(width, digits.size()), '0') + digits);
}

using Month = std::pair<std::int16_t, std::int16_t>;  // with its year first
constexpr Month months[] = {{2026, 12}, {2027, 1}, {1900, 5}, {2100, 5}, {1901, 2}, {2099, 12}};

struct Ended {};
struct Frame {
    bool isBox, isDone = false;
};
// What the dialog shows of date and time.
struct ShownTime {
    std::array<int, 3> date;
    std::array<Text, 4> time;
    friend bool operator==(const ShownTime&, const ShownTime&) = default;
    // The values of an update that sends this.
    ShownClock AsSent() const {
        const int hour = std::stoi(ToUtf8(time[0])) % 12 + (time[3] == u"PM" ? 12 : 0);
        const auto day = std::chrono::year(date[0]) / date[1] / date[2];
        const int weekday =
            date[2] == 0 ? 0 : int(std::chrono::weekday(std::chrono::sys_days(day)).c_encoding());
        return {Digits(date[0], 4), Digits(date[1], 2) + Digits(date[2], 2) + Digits(weekday, 2),
                Digits(hour, 2) + time[1] + time[2]};
    }
    std::string Words() const {
        return Joined(date[0], date[1], date[2], time[0], time[1], time[2], time[3]);
    }
};

// Another process: the host, or the second client.
struct Party {
    std::shared_ptr<headless::Peer> peer = std::make_shared<headless::Peer>();
    ObjectRef object, exchange;
    std::vector<ObjectRef> layers;
};

class World {
  public:
    const std::string& Log() const { return log_; }

    std::unique_ptr<Party> host, other;

    World() {
        computer_.services.End = [this] {
            Require(isLeaving_ || databases_.HasFailed(), "the process ends under its clients");
            throw Ended();
        };
        harness::AddSmallTexts(databases_);
        computer_.app.path = u"C:\\VELMORA32\\10001\\ADDINS";
        computer_.app.startMode = startedByAutomation;
        computer_.automation.wait = [this](int milliseconds) { WaitForRetry(milliseconds); };
        computer_.boxes.whileOpen = [this] { WhileBoxIsOpen(); };
    }

    std::unique_ptr<Party> NewParty() {
        auto party = std::make_unique<Party>();
        const Remote::Handler handler = [this, &its = *party](std::string_view member, Arguments& arguments) {
            return Called(its, member, arguments);
        };
        party->object = std::make_shared<Remote>(handler);
        party->exchange = std::make_shared<Remote>(handler);
        return party;
    }

    void Start() {
        main_ = std::make_unique<AddInMain>(computer_.services);
        life_ = std::make_unique<ServerLife>(computer_.automation, computer_.timers,
                                             [this] { computer_.services.End(); });
        host = NewParty();
        other = NewParty();
        main_->Main();
        main_->Retire = [this] { life_->Retire(); };
        life_->Serve(cOLELayer::className, [this] { return cOLELayer::Create(*main_); });
        Create(*host);
        Register(*host, u"Main");
        Show(true);
    }

    void Run(const Steps& steps) {
        steps_ = &steps;
        try {
            Start();
            while (TakeNext()) {
            }
            Settle();
        } catch (const Ended&) {
            Note("the process ends");
            if (isLeaving_ && !IsDead(judge_.Host())) judge_.CheckPlaceIsStored();
        }
    }

    // --- the order of things ------------------------------------------------------------------------------

    bool TakeNext() {
        if (next_ == steps_->size()) return false;
        const std::string& step = (*steps_)[next_++];
        Note(step);
        Take(step);
        computer_.timers.Pass(0);
        Look();
        return true;
    }

    void StayInside(bool isBox) {
        frames_.push_back({isBox});
        Frame& frame = frames_.back();
        const ScopeExit leave([this] { frames_.pop_back(); });
        while (!frame.isDone && (isBox || !computer_.automation.IsCallGivenUp()) && TakeNext()) {
        }
    }

    void CloseFrame(bool isBox) {
        for (auto frame = frames_.rbegin(); frame != frames_.rend(); ++frame) {
            if (frame->isBox != isBox || frame->isDone) continue;
            frame->isDone = true;
            return;
        }
    }

    void WhileBoxIsOpen() {
        const MessageBox box = computer_.boxes.shown.back();
        Note("  box: " + ToUtf8(box.prompt));
        judge_.NoteFailures(databases_.TakeFailures());
        judge_.BoxOpens(box);
        StayInside(true);
        judge_.BoxCloses(box);
    }

    // Everything that is held goes on, what was given up is made good, and one more lookup has to succeed.
    void Settle() {
        Note("in the end");
        holds_.clear();
        replies_.clear();
        for (const auto& party : {host.get(), other.get()}) party->peer->SetStuck(false);
        databases_.FailAt(0, DataError::DiskError);
        computer_.automation.Deliver();
        for (int i = 0; i < 4; ++i) Pass(100);
        for (const bool isAnswered : {false, true}) {
            if (!judge_.IsWaiting()) break;
            Pass(20000);
            Require(computer_.waits.IsOpen(), "a wait has no way out");
            computer_.waits.Answer(false);
            if (isAnswered) Deliver(goodAnswer, currentLogin);
        }
        for (int i = 0; i < 4; ++i) Pass(100);
        Look();
        judge_.CheckEnd();
        LookUpOnce();
        for (const auto& party : {other.get(), host.get()})
            while (!party->layers.empty()) Release(*party);
        throw Broken("the process lives although nobody holds an object");
    }

    void LookUpOnce() {
        headless::Window* window = Operable();
        if (!window || !host->peer->IsAlive() || judge_.Host() != host.get() ||
            !Controls().cmdButton[2]->Enabled)
            return;
        Note("a last lookup");
        Take("click 2");
        Pass(100);
        Require(judge_.IsWaiting(), "the last request is not sent");
        Deliver(goodAnswer, currentLogin);
        Pass(100);
        judge_.CheckEnd();
    }

    void Take(const std::string& step);
    bool Always() const { return true; }

    // --- the operator -------------------------------------------------------------------------------------

    bool HasWindow() const { return Window() != nullptr; }
    bool CanBeSet() const { return Window() && !computer_.automation.IsCallOut(); }

    // The window where it takes input now, or as soon as the call that is out is over.
    headless::Window* Operable() const {
        const bool takes = Window() && main_->Dialog().Window().TakesInput() && !computer_.boxes.IsOpen() &&
                           !computer_.waits.IsOpen();
        return takes ? Window() : nullptr;
    }

    void Decide(bool givesUp) {
        if (!computer_.waits.IsOpen() || !judge_.KnowsWhatIsGivenUp()) return;
        computer_.waits.Answer(givesUp);
        if (!givesUp) return;
        Note("  gives up");
        judge_.OperatorGaveUp();
    }

    void Click(std::size_t index) {
        forms::CommandButton& button = *Controls().cmdButton[index];
        if (Operable() && button.Enabled) judge_.Pressed(int(index), computer_.automation.IsCallOut());
        Window()->Click(button);
    }

    void Close() {
        if (Operable()) judge_.Comes("UnloadChild");
        Window()->Close();
    }

    void PressF1() {
        if (Operable()) judge_.Comes("DisplayHelp");
        Window()->Key(112);
    }

    bool TracksTime() const { return Controls().chkTrack->Value() == 1; }
    bool TracksDate() const { return Controls().chkTrackDate->Value() == 1; }

    // What the operator does, against what the dialog must show where it takes it.
    template <class Act>
    void Change(const ShownTime& expected, Act act) {
        const ShownTime shown = Operable() ? expected : Shown();
        const std::size_t taken = next_;
        act(*Window());
        if (next_ != taken) return;  // more has happened meanwhile
        Require(Shown() == shown, "the dialog shows " + Shown().Words() + ", not " + shown.Words());
    }

    void Toggle(bool isDate) {
        forms::CheckBox& box = isDate ? *Controls().chkTrackDate : *Controls().chkTrack;
        const bool takes = Operable() != nullptr;
        const auto value = box.Value();
        ShownTime expected = Shown();
        if (isDate && !TracksDate()) expected.date = At(0).date;
        lastChange_ = computer_.timers.Now();
        Change(expected, [&](auto& window) { window.Toggle(box); });
        Require(!takes || box.Value() != value, "a tick box keeps its tick");
    }

    void ChooseDay(int day) {
        ShownTime expected = Shown();
        const DateParts chosen{expected.date[0], expected.date[1], day};
        if (!TracksDate()) expected.date[2] = day;
        Change(expected, [&](auto& window) { window.Choose(*Controls().Calendar, chosen); });
    }

    void TurnTo(const Month& to) {
        ShownTime expected = Shown();
        const auto [year, month] = to;
        const bool isThere = expected.date[0] == year && expected.date[1] == month;
        const std::size_t taken = next_;
        if (!TracksDate() && !isThere) {
            expected.date = {std::clamp<int>(year, 1901, 2099), month, 0};
            if (Operable() && expected.date[0] != year) judge_.YearIsOut();
        }
        Change(expected, [&](auto& window) { window.Turn(*Controls().Calendar, to.first, to.second); });
        const bool isWithoutDay = next_ == taken && Operable() && Shown().date[2] == 0 && !isThere;
        Require(!isWithoutDay || !Controls().cmdButton[1]->Enabled, "an update is offered without a day");
    }

    // --- the host and the second client -------------------------------------------------------------------

    bool HasLayer() const { return !host->layers.empty(); }
    bool OtherHasLayer() const { return !other->layers.empty(); }

    // A new host comes once all calls to the dead one are over.
    void CreateForHost() {
        if (!host->peer->IsAlive()) {
            if (computer_.automation.IsCallOut()) return;
            former_.push_back(std::exchange(host, NewParty()));
        }
        Create(*host);
    }

    void WakeHost() {
        host->peer->SetStuck(false);
        computer_.automation.Deliver();
    }

    // A process that is ending grants nothing, whenever it was asked.
    void Create(Party& party) {
        if (!computer_.automation.served.empty()) {
            party.layers.push_back(computer_.automation.Create());
            ++count_;
            return;
        }
        try {
            computer_.automation.grant();
        } catch (const BusyError&) {
            return;
        }
        throw Broken("an object is granted after the name was given back");
    }

    void Release(Party& party) {
        ObjectRef layer = party.layers.front();
        party.layers.erase(party.layers.begin());
        const bool isLast = isLeaving_ = --count_ <= 0;
        if (isLast) judge_.Unloaded();
        if (isLast && !IsDead(judge_.Host())) judge_.Comes("ComData");
        computer_.automation.Release(layer);
        Require(!isLast, "the process lives although nobody holds an object");
    }

    void Register(Party& party, const Text& name) {
        if (!judge_.Host()) judge_.Comes("ComData");
        const ObjectRef far = computer_.automation.Far(party.object, party.peer);
        judge_.Registered(&party, name);
        const Value failed = Call(party.layers[0], "RegisterPBX", name, far, childId);
        Require(!failed.ToBoolean(), "RegisterPBX fails");
    }

    void Show(bool visible) {
        isShown_ = visible;
        const bool isLoaded = Dialog().Window().IsLoaded();
        if (!isLoaded && visible && !IsDead(judge_.Host())) judge_.Comes("UnloadChild");
        // A dialog that is loaded again counts its objects anew.
        if (!isLoaded && visible) count_ = 0;
        try {
            Put(host->layers[0], "Visible", visible);
            Require(isLoaded || !visible, "a window is shown that was closed");
        } catch (const RuntimeError& error) {
            Require(!isLoaded && error.Number() == 364, error.what());
        }
    }

    void Die(bool isKept) {
        if (isKept && other->layers.empty()) Create(*other);
        judge_.HostDied(host.get());
        host->peer->Die();
        while (!host->layers.empty()) Release(*host);
    }

    bool IsDead(const void* party) const {
        const bool isFormer =
            std::ranges::any_of(former_, [&](const auto& each) { return each.get() == party; });
        return isFormer || (party == host.get() && !host->peer->IsAlive());
    }

    void Deliver(std::size_t kind, std::size_t login) {
        // What it has answered before arrives before.
        if (host->peer->IsStuck()) return;
        computer_.automation.Deliver();
        const ObjectRef client = client_.lock();
        const Text keys[] = {judge_.CurrentLogin(), judge_.LastGivenUp(), u"nobody"};
        const Text& key = keys[login];
        if (!client || key.empty()) return;
        const AnswerKind& its = AnswerKinds()[kind];
        const auto answer = &its == &AnswerKinds().back() ? nullptr : std::make_shared<Answer>(its, key);
        if (answer) answer->beforeRead = [&](std::string_view member) { ReadBegins(*answer, member); };
        judge_.AnswerBegins(answer);
        Arguments arguments{computer_.automation.Far(answer, host->peer)};
        client->Invoke("CallBack", InvokeKind::Method, arguments);
        Require(!arguments[0].ToObject(), "the host's variable is not emptied");
        judge_.AnswerEnds(!computer_.automation.served.empty());
        Require(answer.use_count() <= 2, "the answer is still referred to");
    }

    void ReadBegins(const Answer& answer, std::string_view member) {
        judge_.ReadingIsOut(member, true);
        MayHold(member);
        judge_.ReadingIsOut(member, false);
        // Whoever closes the window doesn't wait for the next item.
        const bool nextIsItem = (member == "Count" || member == "ExtraData") && !answer.IsMissing(member);
        const bool isClosing = Dialog().Window().IsCloseWaiting() && nextIsItem && answer.taken.size() < 3;
        if (computer_.automation.IsCallGivenUp() || isClosing) judge_.ReadingGivenUp();
    }

    // --- calls of the add-in ------------------------------------------------------------------------------

    Value Called(Party& party, std::string_view member, Arguments& arguments) {
        const bool isPosted = computer_.automation.IsCallPosted();
        const bool isRetry = !refused_.empty() && refused_.back().depth == computer_.automation.CallDepth();
        if (isRetry)
            refused_.pop_back();
        else
            Arrive(party, member, arguments, isPosted);
        const std::size_t reply = TakeNextOf(replies_, member).value_or(well);
        if (reply == busyJustNow && !isPosted) {
            refused_.push_back({computer_.automation.CallDepth(), &party});
            throw BusyError();
        }
        if (!isPosted) MayHold(member);
        return Answered(party, member, arguments, reply);
    }

    void Arrive(const Party& party, std::string_view member, const Arguments& arguments, bool isPosted) {
        std::string note = "  " + std::string(member);
        for (const Value& argument : arguments)
            note += argument.IsObject() ? " object" : " \"" + ToUtf8(argument.ToTextOrEmpty()) + "\"";
        Note(note);
        Require(isPosted || &party == judge_.Host(), "a call goes to a former host");
        Require(member != "UnloadChild" || computer_.automation.served.empty(), "closed, and yet served");
        judge_.Called(&party, member, arguments, isPosted, Shown().AsSent());
        Look();
    }

    // A call that was refused as busy is tried again, unless it has become pointless meanwhile.
    void WaitForRetry(int milliseconds) {
        Pass(milliseconds);
        if (!computer_.automation.IsCallGivenUp() && refused_.back().party->peer->IsAlive()) return;
        refused_.pop_back();
        CallEnds(false);
    }

    Value Answered(Party& party, std::string_view member, const Arguments& arguments, std::size_t reply) {
        try {
            const Value result = ResultOf(party, member, arguments, reply);
            const bool isWanted = result.IsObject() == (member == "oPBX");
            CallEnds(party.peer->IsAlive() && isWanted, result.IsObject() ? Text() : result.ToTextOrEmpty());
            return result;
        } catch (const RuntimeError&) {
            CallEnds(false);
            throw;
        }
    }

    void CallEnds(bool isAnswered, const Text& result = {}) {
        const bool isGivenUp = computer_.automation.IsCallGivenUp();
        judge_.CallEnds(isGivenUp ? End::GivenUp : isAnswered ? End::Answered : End::Failed, result);
    }

    Value ResultOf(Party& party, std::string_view member, const Arguments& arguments, std::size_t reply) {
        if (member == "Login") client_ = arguments.at(1).ToObject();
        if (reply == byAnError) throw RuntimeError(1004, u"a fault of the host");
        const bool isAsked = member == "oPBX" || member == "Login" || member == "SendRequest";
        if (isAsked && reply < well) return replyTexts[reply];
        if (member == "oPBX") return reply == byAnObject ? Value(5.0) : Value(party.exchange);
        if (isAsked && reply == byAnObject) return party.object;
        if (member == "SendRequest") record_ = arguments.at(0).ToObject();
        if (member != "Login") return member == "SendRequest" ? Value(u"taken") : Value();
        return u"L" + DecimalText(++lastLogin_);
    }

    // The next call of a member stays out, or does so until the operator gives up, or is answered only after
    // `CallBack` to its request.
    using Holding = void (World::*)();
    void Hold(std::size_t member, Holding how) { holds_.push_back({members[member], how}); }
    void ReplyTo(std::size_t member, std::size_t reply) { replies_.push_back({members[member], reply}); }
    void StayOut() { StayInside(false); }
    void Hang() {
        Pass(20000);
        Decide(true);
    }
    void AnswerEarly() { Deliver(goodAnswer, currentLogin); }

    void MayHold(std::string_view member) {
        if (const auto hold = TakeNextOf(holds_, member)) (this->**hold)();
    }

    template <class What>
    static std::optional<What> TakeNextOf(std::vector<std::pair<std::string, What>>& all,
                                          std::string_view member) {
        const auto next = std::ranges::find_if(all, [&](const auto& each) { return each.first == member; });
        if (next == all.end()) return {};
        const What taken = next->second;
        all.erase(next);
        return taken;
    }

    // --- time, and the machine ----------------------------------------------------------------------------

    void FailDatabase(int call) { databases_.FailAt(call, DataError::DiskError); }
    void SetClock(const DateParts& now) {
        lastChange_ = computer_.timers.Now();
        computer_.clock.Set(now);
    }

    void Pass(int milliseconds) {
        const bool isRest = frames_.empty() && !computer_.automation.IsCallOut();
        computer_.timers.Pass(milliseconds);
        const bool hasTicked = computer_.timers.Now() - lastChange_ >= Milliseconds(1000);
        if (isRest && hasTicked && Dialog().Window().IsLoaded()) CheckTracking();
    }

    // The display is at most a second behind the PC's clock.
    void CheckTracking() {
        const ShownTime shown = Shown(), now = At(0), before = At(1);
        Require(!TracksDate() || shown.date == now.date || shown.date == before.date,
                "the date shown is " + shown.Words());
        Require(!TracksTime() || shown.time == now.time || shown.time == before.time,
                "the time shown is " + shown.Words());
    }

    // --- what is seen -------------------------------------------------------------------------------------

    void Note(const std::string& line) { log_ += std::string(2 * frames_.size(), ' ') + line + "\n"; }

    void Look() {
        judge_.NoteFailures(databases_.TakeFailures());
        forms::Form& form = Dialog().Window();
        const bool isServed = !computer_.automation.served.empty();
        if (std::exchange(wasServed_, isServed) && !isServed) judge_.Unloaded();
        if (std::exchange(wasVisible_, form.Visible()) && !form.Visible() && form.IsLoaded())
            Require(!isShown_ || judge_.TakesHide(), "the dialog hides unasked");
        if (!isLeaving_) judge_.CheckLook(form.Enabled, computer_.screen.pointer == MousePointer::Hourglass);
        const bool isOver = !form.IsLoaded() || isLeaving_;
        Require(!isServed || !isOver, "a dialog is served that is closed for good");
        Require(computer_.automation.clients > 0 || isLeaving_, "nobody holds an object");
        if (!frames_.empty() || computer_.automation.IsCallOut()) return;
        judge_.CheckRest(Controls().tmrEvent->Enabled, Shown().date[2] != 0, form.Visible());
        Require(isServed || isOver, "the dialog is not served");
        if (form.IsLoaded()) CheckControls();
        Require(record_.expired(), "a record is still referred to");
    }

    void CheckControls() {
        Require((Controls().Calendar->showdateselectors() == selectors::hidden) == TracksDate(),
                "the arrows of the calendar");
        const auto& buttons = Controls().cmdButton;
        const bool hasName = !judge_.Name().empty();
        Require(buttons[0]->Enabled && buttons[2]->Enabled == hasName, "the buttons to hide and to look up");
        const bool canUpdate = hasName && Shown().date[2] != 0;
        Require(canUpdate ? buttons[1]->Enabled() : hasName || !buttons[1]->Enabled, "the button to update");
    }

    ShownTime Shown() {
        const forms::Calendar& calendar = *Controls().Calendar;
        ShownTime shown{{calendar.Year(), calendar.Month(), calendar.Day()}, {}};
        for (std::size_t i = 0; i < 4; ++i) shown.time[i] = Controls().txtTime[i]->Text;
        return shown;
    }

    // What the PC's clock shows.
    ShownTime At(int secondsAgo) const {
        const DateParts parts = PartsOf({computer_.clock.Now().days - secondsAgo / 86400.0});
        return {{parts.year, parts.month, parts.day},
                {Digits((parts.hour + 11) % 12 + 1, 2), Digits(parts.minute, 2), Digits(parts.second, 2),
                 parts.hour < 12 ? u"AM" : u"PM"}};
    }

  private:
    headless::Window* Window() const { return computer_.toolkit.Open(); }
    dlgAddin& Dialog() const { return main_->Dialog(); }
    const DialogControls& Controls() const { return Dialog().Controls(); }

    desk::Desk computer_;
    harness::MemoryDatabases& databases_ = computer_.databases;
    std::unique_ptr<AddInMain> main_;
    std::unique_ptr<ServerLife> life_;
    std::vector<std::unique_ptr<Party>> former_;  // hosts that have died
    std::weak_ptr<Object> client_;                // the dialog, as the host was given it
    Judge judge_;

    const Steps* steps_ = nullptr;
    std::size_t next_ = 0;
    std::list<Frame> frames_;
    std::vector<std::pair<std::string, Holding>> holds_;
    std::vector<std::pair<std::string, std::size_t>> replies_;
    struct Refused {
        std::size_t depth;
        Party* party;
    };
    std::vector<Refused> refused_;  // calls that were refused as busy
    std::weak_ptr<Object> record_;
    Milliseconds lastChange_{0};  // of the clock, or of what follows it
    int count_ = 0, lastLogin_ = 0;
    bool isShown_ = false, wasVisible_ = false, wasServed_ = false, isLeaving_ = false;
    std::string log_;
};

// What can happen, with its values and how often each of them comes.
struct Kind {
    const char* name;
    Words values;
    std::size_t weight;
    bool (World::*can)() const;
    void (*happens)(World& world, std::size_t value);
};
constexpr auto always = &World::Always, onWindow = &World::HasWindow, atRest = &World::CanBeSet,
               byHost = &World::HasLayer, byOther = &World::OtherHasLayer;
const Words once = {""};

Words Numbers(int count) {
    Words all;
    for (int i = 0; i < count; ++i) all.push_back(std::to_string(i));
    return all;
}

Words Pairs(const Words& left, const std::string& between, const Words& right) {
    Words all;
    for (const std::string& one : left)
        for (const std::string& other : right) all.push_back(one + between + other);
    return all;
}

Words Answers() {
    Words names;
    for (const AnswerKind& kind : AnswerKinds()) names.push_back(kind.name);
    return Pairs(names, ", ", logins);
}

constexpr DateParts moments[] = {
    {2026, 11, 18, 23, 59, 59}, {2028, 2, 28, 23, 59, 59}, {2026, 1, 1, 0, 0, 0}, {2027, 3, 28, 11, 59, 59}};
constexpr const char16_t* exchanges[] = {u"Main", u"Second", u""};
constexpr int spans[] = {50, 100, 1000, 20000};

const Kind kinds[] = {
    // The operator.
    {"click", Numbers(3), 10, onWindow, [](World& w, auto n) { w.Click(n); }},
    {"close the window", once, 3, onWindow, [](World& w, auto) { w.Close(); }},
    {"press F1", once, 3, onWindow, [](World& w, auto) { w.PressF1(); }},
    {"toggle", Numbers(2), 4, atRest, [](World& w, auto n) { w.Toggle(n == 1); }},
    {"choose day", Numbers(28), 1, atRest, [](World& w, auto n) { w.ChooseDay(int(n) + 1); }},
    {"turn to month", Numbers(6), 1, atRest, [](World& w, auto n) { w.TurnTo(months[n]); }},
    {"close the box", once, 25, always, [](World& w, auto) { w.CloseFrame(true); }},
    {"give up", once, 15, always, [](World& w, auto) { w.Decide(true); }},
    {"keep waiting", once, 3, always, [](World& w, auto) { w.Decide(false); }},
    // The host.
    {"hold", members, 3, always, [](World& w, auto n) { w.Hold(n, &World::StayOut); }},
    {"hang in", hung, 6, always, [](World& w, auto n) { w.Hold(n, &World::Hang); }},
    {"answer inside", replied, 2, always, [](World& w, auto n) { w.Hold(n, &World::AnswerEarly); }},
    {"go on", once, 30, always, [](World& w, auto) { w.CloseFrame(false); }},
    {"reply to", Pairs(replied, " ", replies), 1, always, [](World& w, auto n) { w.ReplyTo(n / 8, n % 8); }},
    {"call back", Answers(), 2, byHost, [](World& w, auto n) { w.Deliver(n / 3, n % 3); }},
    {"register", Numbers(3), 2, byHost, [](World& w, auto n) { w.Register(*w.host, exchanges[n]); }},
    {"show", Numbers(2), 3, byHost, [](World& w, auto n) { w.Show(n == 1); }},
    {"create", once, 3, always, [](World& w, auto) { w.CreateForHost(); }},
    {"create for another", once, 6, always, [](World& w, auto) { w.Create(*w.other); }},
    {"register by another", once, 0, byOther, [](World& w, auto) { w.Register(*w.other, u"Other"); }},
    {"release the oldest", once, 4, byHost, [](World& w, auto) { w.Release(*w.host); }},
    {"release of another", once, 2, byOther, [](World& w, auto) { w.Release(*w.other); }},
    {"die", {"alone", "while another is there"}, 3, byHost, [](World& w, auto n) { w.Die(n == 1); }},
    {"get stuck", once, 2, always, [](World& w, auto) { w.host->peer->SetStuck(true); }},
    {"wake", once, 3, always, [](World& w, auto) { w.WakeHost(); }},
    // Time, and the machine.
    {"pass", {"50 ms", "100 ms", "1 s", "20 s"}, 20, always, [](World& w, auto n) { w.Pass(spans[n]); }},
    {"set the clock", Numbers(4), 1, always, [](World& w, auto n) { w.SetClock(moments[n]); }},
    {"fail the database", Numbers(6), 1, always, [](World& w, auto n) { w.FailDatabase(int(n) + 1); }},
};

std::string WordsOf(const Kind& kind, std::size_t value) {
    return kind.name + (kind.values[value].empty() ? "" : " " + kind.values[value]);
}

void World::Take(const std::string& step) {
    using Happening = std::pair<const Kind*, std::size_t>;
    static const std::map<std::string, Happening> all = [] {
        std::map<std::string, Happening> known;
        for (const Kind& kind : kinds)
            for (std::size_t i = 0; i < kind.values.size(); ++i) known[WordsOf(kind, i)] = {&kind, i};
        return known;
    }();
    const auto [kind, value] = all.at(step);
    if ((this->*kind->can)()) kind->happens(*this, value);
}

}  // namespace

const Steps& AllSteps() {
    static const Steps all = [] {
        Steps steps;
        for (const Kind& kind : kinds)
            for (std::size_t i = 0; i < kind.values.size(); ++i)
                steps.insert(steps.end(), kind.weight, WordsOf(kind, i));
        for (const char* answer : {"read", "set", "refused"})
            steps.insert(steps.end(), 10, "call back " + std::string(answer) + ", current login");
        return steps;
    }();
    return all;
}

Outcome Play(const Steps& steps) {
    World world;
    std::string trouble;
    try {
        world.Run(steps);
    } catch (const Broken& broken) {
        trouble = broken.what();
    }
    return {trouble, world.Log()};
}

}  // namespace model
