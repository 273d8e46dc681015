#include "model/World.h"

#include <list>
#include <sstream>

#include "exchange/dlgAddin.h"
#include "harness/Desk.h"
#include "model/Answer.h"
#include "model/Judge.h"
#include "model/Step.h"
#include "platform/runtime/ScopeExit.h"
#include "shell/ServerLife.h"
#include "shell/cOLELayer.h"

namespace model {

using namespace platform;
using namespace horalink;

namespace {

constexpr std::int16_t childId = 42;

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

struct Ended {};
struct Frame {
    bool isBox = false, isDone = false;
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
        std::string words;
        for (const int part : date) words += std::to_string(part) + " ";
        for (const Text& part : time) words += ToUtf8(part) + " ";
        return words;
    }
    void Step(int section, bool up) {
        Text& text = time.at(static_cast<std::size_t>(section));
        if (section == 3) {
            text = text == u"PM" ? u"AM" : u"PM";
            return;
        }
        const int first = section == 0 ? 1 : 0, count = section == 0 ? 12 : 60;
        const int stepped = std::stoi(ToUtf8(text)) - first + (up ? 1 : count - 1);
        text = Digits(stepped % count + first, 2);
    }
};

// Another process: the host, or the second client.
struct Party {
    using Called = std::function<Value(Party&, std::string_view, Arguments&)>;
    explicit Party(const Called& called) {
        const auto handler = [called, this](std::string_view member, Arguments& arguments) {
            return called(*this, member, arguments);
        };
        object = std::make_shared<Remote>(handler);
        exchange = std::make_shared<Remote>(handler);
    }
    std::shared_ptr<headless::Peer> peer = std::make_shared<headless::Peer>();
    std::shared_ptr<Remote> object, exchange;
    std::vector<ObjectRef> layers;
};

class World {
  public:
    const std::string& Log() const { return log_; }

    World() {
        computer_.services.End = [this] {
            Require(isLeaving_ || databases_.HasFailed(), "the process ends under its clients");
            throw Ended();
        };
        harness::AddSmallTexts(databases_);
        computer_.app.path = u"C:\\VELMORA32\\10001\\ADDINS";
        computer_.app.startMode = startedByAutomation;
        computer_.app.major = 13;
        computer_.pictures.hasAll = true;
        computer_.automation.wait = [this](int milliseconds) { WaitForRetry(milliseconds); };
        computer_.boxes.whileOpen = [this] { WhileBoxIsOpen(); };
    }

    std::unique_ptr<Party> NewParty() {
        return std::make_unique<Party>([this](Party& party, std::string_view member, Arguments& arguments) {
            return Called(party, member, arguments);
        });
    }

    void Start() {
        main_ = std::make_unique<AddInMain>(computer_.services);
        life_ = std::make_unique<ServerLife>(computer_.automation, computer_.timers,
                                             [this] { computer_.services.End(); });
        host_ = NewParty();
        other_ = NewParty();
        main_->Main();
        main_->Retire = [this] { life_->Retire(); };
        life_->Serve(cOLELayer::className, [this] { return cOLELayer::Create(*main_); });
        Create(*host_);
        Register(*host_, exchanges[0]);
        Show(true);
    }

    void Run(const std::vector<Step>& steps) {
        steps_ = &steps;
        try {
            Start();
            while (TakeNext()) {
            }
            Settle();
        } catch (const Ended&) {
            Note("the process ends");
        }
    }

    // --- the order of things ------------------------------------------------------------------------------

    bool TakeNext() {
        if (next_ == steps_->size()) return false;
        const Step& step = (*steps_)[next_++];
        std::ostringstream words;
        words << step;
        Note(words.str());
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
        for (const auto& party : {host_.get(), other_.get()}) party->peer->SetStuck(false);
        databases_.FailAt(0, DataError::DiskError);
        computer_.automation.Deliver();
        for (int i = 0; i < 4; ++i) Pass(100);
        for (const bool isAnswered : {false, true}) {
            if (!judge_.IsWaiting()) break;
            Pass(20000);
            Require(computer_.waits.IsOpen(), "a wait has no way out");
            computer_.waits.Answer(false);
            if (isAnswered) Deliver(AnswerKind::Read, LoginKind::Current);
        }
        for (int i = 0; i < 4; ++i) Pass(100);
        Look();
        judge_.CheckEnd();
        LookUpOnce();
        while (!other_->layers.empty()) Release(*other_, 0);
        while (!host_->layers.empty()) Release(*host_, 0);
        throw Broken("the process lives although nobody holds an object");
    }

    void LookUpOnce() {
        headless::Window* window = Operable();
        if (!window || !host_->peer->IsAlive() || judge_.Host() != host_.get() ||
            !Dialog().Controls().cmdButton[2]->Enabled)
            return;
        Note("a last lookup");
        Take({Act::Click, 2});
        Pass(100);
        Require(judge_.IsWaiting(), "the last request is not sent");
        Deliver(AnswerKind::Read, LoginKind::Current);
        Pass(100);
        judge_.CheckEnd();
    }

    void Take(const Step& step) {
        if (step.act <= Act::KeepWaiting)
            Operate(step);
        else if (step.act <= Act::Wake)
            ActAsHost(step);
        else
            ChangeMachine(step);
    }

    // --- the operator -------------------------------------------------------------------------------------

    // The window where it takes input now, or as soon as the call that is out is over.
    headless::Window* Operable() const {
        const bool takes = Window() && main_->Dialog().Window().TakesInput() && !computer_.boxes.IsOpen() &&
                           !computer_.waits.IsOpen();
        return takes ? Window() : nullptr;
    }

    void Operate(const Step& step) {
        const auto n = static_cast<std::size_t>(step.n);
        if (step.act == Act::CloseBox) return CloseFrame(true);
        if (step.act == Act::GiveUp || step.act == Act::KeepWaiting) {
            if (!computer_.waits.IsOpen() || !judge_.KnowsWhatIsGivenUp()) return;
            computer_.waits.Answer(step.act == Act::GiveUp);
            if (step.act == Act::KeepWaiting) return;
            Note("  gives up");
            return judge_.OperatorGaveUp();
        }
        if (!Window()) return;
        headless::Window& window = *Window();
        const bool takes = Operable() != nullptr, waits = computer_.automation.IsCallOut();
        const DialogControls& controls = Dialog().Controls();
        switch (step.act) {
            case Act::Click:
                if (takes && controls.cmdButton[n]->Enabled) judge_.Pressed(step.n, waits);
                return window.Click(*controls.cmdButton[n]);
            case Act::Close:
                if (takes) judge_.UnloadComes();
                return window.Close();
            case Act::PressF1:
                if (takes) judge_.HelpComes();
                return window.Key(112);
            default:
                if (!waits) ChangeClock(step, takes);
        }
    }

    // What the operator sets, against what it must come to.
    void ChangeClock(const Step& step, bool takes) {
        headless::Window& window = *Window();
        const DialogControls& controls = Dialog().Controls();
        const bool tracksTime = controls.chkTrack->Value() == 1,
                   tracksDate = controls.chkTrackDate->Value() == 1;
        const std::size_t taken = next_;
        const ShownTime before = Shown();
        ShownTime expected = before;
        switch (step.act) {
            case Act::Toggle: {
                forms::CheckBox& box = step.n == 0 ? *controls.chkTrack : *controls.chkTrackDate;
                if (takes && step.n == 1 && !tracksDate) expected.date = Today(0);
                const auto value = box.Value();
                lastChange_ = computer_.timers.Now();
                window.Toggle(box);
                Require(!takes || box.Value() != value, "a tick box keeps its tick");
                break;
            }
            case Act::Enter:
                window.Enter(*controls.txtTime[static_cast<std::size_t>(step.n)]);
                if (takes) section_ = tracksTime ? -1 : step.n;
                break;
            case Act::StepTime:
                if (takes && !tracksTime && section_ >= 0) expected.Step(section_, step.n == 0);
                window.Step(*controls.updTime, step.n == 0);
                break;
            case Act::ChooseDay:
                if (takes && !tracksDate) expected.date[2] = step.n + 1;
                window.Choose(*controls.Calendar, {before.date[0], before.date[1], step.n + 1});
                break;
            case Act::TurnTo: {
                const Month& month = months[step.n];
                const bool isOut = month.year == 1900 || month.year == 2100;
                const bool isThere = before.date[0] == month.year && before.date[1] == month.month;
                if (takes && !tracksDate && !isThere) {
                    expected.date = {std::clamp<int>(month.year, 1901, 2099), month.month, 0};
                    if (isOut) judge_.YearIsOut();
                }
                window.Turn(*controls.Calendar, month.year, month.month);
                break;
            }
            default:
                AskForTopic(takes);
        }
        if (next_ != taken) return;  // more has happened meanwhile
        Require(Shown() == expected, "the dialog shows " + Shown().Words() + ", not " + expected.Words());
    }

    void AskForTopic(bool takes) {
        headless::Window& window = *Window();
        const DialogControls& controls = Dialog().Controls();
        window.RightClick(*controls.chkTrackDate);
        if (!takes) return;
        Require(window.popped == controls.mnuWhatsThis, "no menu is offered");
        window.ChooseFromMenu(0);
        Require(window.topic == controls.chkTrackDate->WhatsThisHelpID, "no topic is shown");
    }

    // --- the host and the second client -------------------------------------------------------------------

    void ActAsHost(const Step& step) {
        const auto n = static_cast<std::size_t>(step.n);
        switch (step.act) {
            case Act::Hold:
            case Act::Hang:
            case Act::AnswerEarly:
                return holds_.push_back({members[n], step.act});
            case Act::GoOn:
                return CloseFrame(false);
            case Act::Reply:
                return replies_.push_back({members[n / replies], static_cast<model::Reply>(n % replies)});
            case Act::GetStuck:
                return host_->peer->SetStuck(true);
            case Act::Wake:
                return WakeHost();
            case Act::CreateOther:
                return Create(*other_);
            case Act::RegisterOther:
                return Register(*other_, u"Other");
            case Act::ReleaseOther:
                return other_->layers.empty() ? void() : Release(*other_, 0);
            case Act::Create:
                return CreateForHost();
            default:
                if (!host_->layers.empty()) UseLayer(step);
        }
    }

    // A new host comes once all calls to the dead one are over.
    void CreateForHost() {
        if (!host_->peer->IsAlive()) {
            if (computer_.automation.IsCallOut()) return;
            Replace(host_);
        }
        Create(*host_);
    }

    void WakeHost() {
        host_->peer->SetStuck(false);
        computer_.automation.Deliver();
    }

    void UseLayer(const Step& step) {
        switch (step.act) {
            case Act::CallBack:
                return Deliver(AnswerOf(step.n), LoginOf(step.n));
            case Act::Register:
                return Register(*host_, exchanges[step.n]);
            case Act::Show:
                return Show(step.n == 1);
            case Act::SetBackGround:
                // The texts are closed with the window, and the names of its pictures with them.
                if (computer_.automation.served.empty()) judge_.NoteFailures(1);
                Call(host_->layers[0], "SetBackGround", static_cast<std::int16_t>(step.n));
                return;
            case Act::TurnFlow:
                if (client_.lock() && !IsDead(judge_.Host())) Call(client_.lock(), "TurnFlow", step.n == 1);
                return;
            case Act::Release:
                return Release(*host_, step.n == 0 ? 0 : host_->layers.size() - 1);
            default:
                return Die(step.n == 1);
        }
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

    void Release(Party& party, std::size_t index) {
        ObjectRef layer = party.layers[index];
        party.layers.erase(party.layers.begin() + static_cast<std::ptrdiff_t>(index));
        const bool isLast = isLeaving_ = --count_ <= 0;
        if (isLast) judge_.Unloaded();
        if (isLast && !IsDead(judge_.Host())) judge_.PlaceIsAskedFor();
        computer_.automation.Release(layer);
        Require(!isLast, "the process lives although nobody holds an object");
    }

    void Register(Party& party, const Text& name) {
        if (!judge_.Host()) judge_.PlaceIsAskedFor();
        const ObjectRef far = computer_.automation.Far(party.object, party.peer);
        judge_.Registered(&party, name);
        const Value failed = Call(party.layers[0], "RegisterPBX", name, far, childId);
        Require(!failed.ToBoolean(), "RegisterPBX fails");
    }

    void Show(bool visible) {
        isShown_ = visible;
        const bool isLoaded = Dialog().Window().IsLoaded();
        if (!isLoaded && visible && !IsDead(judge_.Host())) judge_.UnloadComes();
        // A dialog that is loaded again counts its objects anew.
        if (!isLoaded && visible) count_ = 0;
        try {
            Put(host_->layers[0], "Visible", visible);
            Require(isLoaded || !visible, "a window is shown that was closed");
        } catch (const RuntimeError& error) {
            Require(!isLoaded && error.Number() == 364, error.what());
        }
    }

    void Die(bool isKept) {
        if (isKept && other_->layers.empty()) Create(*other_);
        judge_.HostDied(host_.get());
        host_->peer->Die();
        while (!host_->layers.empty()) Release(*host_, 0);
    }

    void Replace(std::unique_ptr<Party>& party) {
        former_.push_back(std::move(party));
        party = NewParty();
    }

    bool IsDead(const void* host) const {
        return std::any_of(former_.begin(), former_.end(),
                           [&](const auto& each) { return each.get() == host; }) ||
               (host == host_.get() && !host_->peer->IsAlive());
    }

    void Deliver(AnswerKind kind, LoginKind login) {
        // What it has answered before arrives before.
        if (host_->peer->IsStuck()) return;
        computer_.automation.Deliver();
        const ObjectRef client = client_.lock();
        const Text keys[] = {judge_.CurrentLogin(), judge_.LastGivenUp(), u"nobody"};
        const Text& key = keys[static_cast<std::size_t>(login)];
        if (!client || key.empty()) return;
        const auto answer = kind == AnswerKind::Nothing ? nullptr : std::make_shared<Answer>(kind, key);
        if (answer)
            answer->beforeRead = [this, &read = *answer](std::string_view member) {
                ReadBegins(read, member);
            };
        judge_.AnswerBegins(answer);
        {
            Arguments arguments{computer_.automation.Far(answer, host_->peer)};
            client->Invoke("CallBack", InvokeKind::Method, arguments);
            Require(!arguments[0].ToObject(), "the host's variable is not emptied");
        }
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
        const model::Reply reply = TakeReply(member);
        if (reply == model::Reply::RefusedAsBusy && !isPosted) {
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
        const bool isGivenUp = computer_.automation.IsCallGivenUp();
        if (!isGivenUp && refused_.back().party->peer->IsAlive()) return;
        refused_.pop_back();
        judge_.CallEnds(isGivenUp ? Judge::End::GivenUp : Judge::End::Failed, u"");
    }

    Value Answered(Party& party, std::string_view member, const Arguments& arguments, model::Reply reply) {
        Value result;
        bool fails = !party.peer->IsAlive();
        try {
            result = ResultOf(party, member, arguments, reply);
            const bool isText = member == "Login" || member == "SendRequest";
            fails = fails || (member == "oPBX" && !result.IsObject()) || (isText && result.IsObject());
        } catch (const RuntimeError&) {
            judge_.CallEnds(computer_.automation.IsCallGivenUp() ? Judge::End::GivenUp : Judge::End::Failed,
                            u"");
            throw;
        }
        const auto end = computer_.automation.IsCallGivenUp() ? Judge::End::GivenUp
                         : fails                              ? Judge::End::Failed
                                                              : Judge::End::Answered;
        judge_.CallEnds(end, result.IsObject() ? Text() : result.ToTextOrEmpty());
        return result;
    }

    Value ResultOf(Party& party, std::string_view member, const Arguments& arguments, model::Reply reply) {
        using enum model::Reply;
        if (member == "Login") client_ = arguments.at(1).ToObject();
        if (reply == Raises) throw RuntimeError(1004, u"a fault of the host");
        const bool isAsked = member == "oPBX" || member == "Login" || member == "SendRequest";
        if (isAsked && reply == Busy) return u"BUSY";
        if (isAsked && reply == Error) return u"ERROR";
        if (isAsked && reply == Empty) return u"";
        if (isAsked && reply == Blank) return u" ";
        if (isAsked && reply == model::Reply::Object && member != "oPBX") return ObjectRef(party.object);
        if (member == "oPBX")
            return reply == model::Reply::Object ? Value(5.0) : Value(ObjectRef(party.exchange));
        if (member == "SendRequest") record_ = arguments.at(0).ToObject();
        if (member != "Login") return member == "SendRequest" ? Value(u"taken") : Value();
        return u"L" + DecimalText(++lastLogin_);
    }

    void MayHold(std::string_view member) {
        const auto hold = std::find_if(holds_.begin(), holds_.end(),
                                       [&](const auto& each) { return each.first == member; });
        if (hold == holds_.end()) return;
        const Act act = hold->second;
        holds_.erase(hold);
        if (act == Act::AnswerEarly) return Deliver(AnswerKind::Read, LoginKind::Current);
        if (act == Act::Hold) return StayInside(false);
        Pass(20000);
        Operate({Act::GiveUp});
    }

    model::Reply TakeReply(std::string_view member) {
        const auto reply = std::find_if(replies_.begin(), replies_.end(),
                                        [&](const auto& each) { return each.first == member; });
        if (reply == replies_.end()) return model::Reply::Good;
        const model::Reply taken = reply->second;
        replies_.erase(reply);
        return taken;
    }

    // --- time, and the machine ----------------------------------------------------------------------------

    void ChangeMachine(const Step& step) {
        switch (step.act) {
            case Act::Pass:
                return Pass(spans[step.n]);
            case Act::SetClock: {
                lastChange_ = computer_.timers.Now();
                const Moment& m = moments[step.n];
                return computer_.clock.Set({m.year, m.month, m.day, m.hour, m.minute, m.second});
            }
            default:
                return databases_.FailAt(step.n + 1, DataError::DiskError);
        }
    }

    void Pass(int milliseconds) {
        const bool isRest = frames_.empty() && !computer_.automation.IsCallOut();
        computer_.timers.Pass(milliseconds);
        const bool hasTicked = computer_.timers.Now() - lastChange_ >= Milliseconds(1000);
        if (isRest && hasTicked && Dialog().Window().IsLoaded()) CheckTracking();
    }

    // The display is at most a second behind the PC's clock.
    void CheckTracking() {
        const DialogControls& controls = Dialog().Controls();
        const ShownTime shown = Shown();
        if (controls.chkTrackDate->Value() == 1)
            Require(shown.date == Today(0) || shown.date == Today(1), "the date shown is " + shown.Words());
        if (controls.chkTrack->Value() == 1)
            Require(shown.time == TimeOfDay(0) || shown.time == TimeOfDay(1),
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
        judge_.CheckRest(Dialog().Controls().tmrEvent->Enabled, Shown().date[2] != 0, form.Visible());
        Require(isServed || isOver, "the dialog is not served");
        if (form.IsLoaded()) CheckButtons();
        Require(record_.expired(), "a record is still referred to");
    }

    void CheckButtons() {
        const auto& buttons = Dialog().Controls().cmdButton;
        const bool hasName = !judge_.Name().empty();
        Require(buttons[0]->Enabled && buttons[2]->Enabled == hasName, "the buttons to hide and to look up");
        const bool canUpdate = hasName && Shown().date[2] != 0;
        Require(canUpdate ? buttons[1]->Enabled() : hasName || !buttons[1]->Enabled, "the button to update");
    }

    ShownTime Shown() {
        const DialogControls& controls = Dialog().Controls();
        ShownTime shown{{controls.Calendar->Year(), controls.Calendar->Month(), controls.Calendar->Day()},
                        {}};
        for (std::size_t i = 0; i < 4; ++i) shown.time[i] = controls.txtTime[i]->Text;
        return shown;
    }

    std::array<int, 3> Today(int secondsAgo) const {
        const DateParts parts = PartsOf({computer_.clock.Now().days - secondsAgo / 86400.0});
        return {parts.year, parts.month, parts.day};
    }

    std::array<Text, 4> TimeOfDay(int secondsAgo) const {
        const DateParts parts = PartsOf({computer_.clock.Now().days - secondsAgo / 86400.0});
        return {Digits((parts.hour + 11) % 12 + 1, 2), Digits(parts.minute, 2), Digits(parts.second, 2),
                parts.hour < 12 ? u"AM" : u"PM"};
    }

  private:
    headless::Window* Window() const { return computer_.toolkit.Open(); }
    dlgAddin& Dialog() const { return main_->Dialog(); }

    desk::Desk computer_;
    harness::MemoryDatabases& databases_ = computer_.databases;
    std::unique_ptr<AddInMain> main_;
    std::unique_ptr<ServerLife> life_;
    std::unique_ptr<Party> host_, other_;
    std::vector<std::unique_ptr<Party>> former_;  // hosts that have died
    std::weak_ptr<Object> client_;                // the dialog, as the host was given it
    Judge judge_;

    const std::vector<Step>* steps_ = nullptr;
    std::size_t next_ = 0;
    std::list<Frame> frames_;
    std::vector<std::pair<std::string, Act>> holds_;
    std::vector<std::pair<std::string, model::Reply>> replies_;
    struct Refused {
        std::size_t depth;
        Party* party;
    };
    std::vector<Refused> refused_;  // calls that were refused as busy
    std::weak_ptr<Object> record_;
    Milliseconds lastChange_{0};  // of the clock, or of what follows it
    int count_ = 0, lastLogin_ = 0, section_ = -1;
    bool isShown_ = false, wasVisible_ = false, wasServed_ = false, isLeaving_ = false;
    std::string log_;
};

}  // namespace

Outcome Play(const std::vector<Step>& steps) {
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
