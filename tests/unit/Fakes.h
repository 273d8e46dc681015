// A computer of the tests' own: time passes when they say so, and what the add-in shows is written down.
#pragma once

#include <algorithm>
#include <map>

#include "FakeTime.h"
#include "FakeWaits.h"
#include "exchange/dlgAddin.h"
#include "platform/automation/Patience.h"
#include "platform/desktop/MessageBoxButtons.h"
#include "platform/runtime/ScopeExit.h"
#include "shell/AddInMain.h"

namespace fakes {

using namespace platform;

// Ends the way of a test where the process would end.
struct Ended {};

struct FakeBoxes : MessageBoxes {
    std::int16_t Show(const MessageBox& box) override {
        shown.push_back(box);
        if (whileOpen) whileOpen();
        return answer;
    }
    std::string LastPrompt() const { return shown.empty() ? "" : ToUtf8(shown.back().prompt); }
    std::vector<MessageBox> shown;
    std::int16_t answer = 1;
    std::function<void()> whileOpen;
};

struct FakeScreen : Screen {
    MousePointer Pointer() const override { return pointer; }
    void SetPointer(MousePointer shape) override { pointer = shape; }
    float Width() const override { return 15000; }
    float Height() const override { return 12000; }
    MousePointer pointer = MousePointer::Default;
};

struct FakeSettings : Settings {
    Text Get(TextView application, TextView section, TextView key, TextView fallback) const override {
        const auto found = values.find(Text(application) + u"/" + Text(section) + u"/" + Text(key));
        return found == values.end() ? Text(fallback) : found->second;
    }
    std::map<Text, Text> values;
};

struct FakeLocale : LocaleTexts {
    Text LongDate(Date) const override { return u"long date"; }
    Text LongTime(Date) const override { return u"long time"; }
    Text DayName(int weekday) const override { return u"day " + DecimalText(weekday); }
    Text ShortDayName(int weekday) const override { return u"d" + DecimalText(weekday); }
};

using Row = std::map<Text, Value>;
using Rows = std::vector<Row>;

class FakeRecordset : public Recordset {
  public:
    explicit FakeRecordset(Rows rows) : rows_(std::move(rows)) {}
    bool EndOfFile() const override { return current_ >= rows_.size(); }
    Value Field(TextView name) const override {
        if (EndOfFile()) throw MakeDataError(DataError::NoCurrentRow);
        const auto found = rows_[current_].find(Text(name));
        if (found == rows_[current_].end()) throw MakeDataError(DataError::NoSuchField, ToUtf8(name));
        return found->second;
    }
    void MoveNext() override { ++current_; }
    std::int32_t RecordCount() const override { return static_cast<std::int32_t>(rows_.size()); }
    void Edit() override {}
    void SetField(TextView, const Value&) override {}
    void Update() override {}
    void Close() override {}

  private:
    Rows rows_;
    std::size_t current_ = 0;
};

// Answers the queries that a test has put in, and no other.
struct FakeDatabase : Database {
    std::unique_ptr<Recordset> OpenRecordset(TextView query, RecordsetType) override {
        const auto found = answers.find(Text(query));
        if (found == answers.end()) throw MakeDataError(DataError::NoSuchTable, ToUtf8(query));
        return std::make_unique<FakeRecordset>(found->second);
    }
    void Close() override { closed = true; }
    std::map<Text, Rows> answers;
    bool closed = false;
};

struct FakeEngine : DatabaseEngine {
    DatabaseRef OpenDatabase(TextView path, bool) override {
        const auto found = files.find(Text(path.substr(path.rfind(u'\\') + 1)));
        if (found == files.end()) throw MakeDataError(DataError::FileNotFound, ToUtf8(path));
        return found->second;
    }
    std::map<Text, DatabaseRef> files;
};

// An object of a host far away: notes its calls in order, and answers by name.
class RecordedObject : public Object {
  public:
    using Answer = std::function<Value(Arguments&)>;
    explicit RecordedObject(std::vector<std::string>& calls) : calls_(calls) {}
    const ClassDescription& Class() const override {
        static const ClassDescription description{"recorded", {}};
        return description;
    }
    Value Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) override {
        const bool write = kind == InvokeKind::PropertyPut || kind == InvokeKind::PropertyPutObject;
        const std::string key = (write ? "=" : "") + std::string(member);
        calls_.push_back(key);
        const auto found = answers.find(key);
        if (found == answers.end()) throw RuntimeError(ErrorNumber::NoSuchMember, key);
        return found->second(arguments);
    }
    std::shared_ptr<void> WhenOwnerGone(std::function<void()> gone) override {
        auto watch = std::make_shared<std::function<void()>>(std::move(gone));
        ownerWatch_ = watch;
        return watch;
    }
    void LeaveBus() {
        if (const auto watch = ownerWatch_.lock()) (*watch)();
    }
    std::map<std::string, Answer> answers;

  private:
    std::vector<std::string>& calls_;
    std::weak_ptr<std::function<void()>> ownerWatch_;
};

// An object as it is reached within the operator's patience: beyond that, each call fails at once.
class Patient : public Object {
  public:
    Patient(ObjectRef object, std::shared_ptr<Patience> patience)
        : object_(std::move(object)), patience_(std::move(patience)) {}
    const ClassDescription& Class() const override { return object_->Class(); }
    Value Invoke(std::string_view member, InvokeKind kind, Arguments& arguments) override {
        patience_->RequireOngoing();
        patience_->CallSent();
        const ScopeExit over([this] { patience_->CallEnded(); });
        Value result = object_->Invoke(member, kind, arguments);
        ErrorState dropped;
        if (patience_->IsGivenUp() && patience_->Late)
            Skip(dropped, "late", [&] { patience_->Late(result); });
        patience_->RequireOngoing();
        return result;
    }
    std::shared_ptr<void> WhenOwnerGone(std::function<void()> gone) override {
        return object_->WhenOwnerGone(std::move(gone));
    }

  private:
    ObjectRef object_;
    std::shared_ptr<Patience> patience_;
};

struct FakeAutomation : Automation {
    FakeAutomation(Scheduler& theScheduler, WaitBoxes& theBoxes, const WaitSettings& theSettings)
        : scheduler(theScheduler), waitBoxes(theBoxes), settings(theSettings) {}
    ObjectRef CreateObject(TextView className) override {
        created.push_back(Text(className));
        if (!exchange) throw RuntimeError(ErrorNumber::CannotCreateObject, ToUtf8(className));
        return exchange;
    }
    std::shared_ptr<Patience> NewPatience() override {
        return std::make_shared<Patience>(scheduler, waitBoxes, settings);
    }
    ObjectRef Within(const ObjectRef& object, const std::shared_ptr<Patience>& patience) override {
        return object ? std::make_shared<Patient>(object, patience) : nullptr;
    }
    // Carried out when the test says so: a host that hangs answers late or never.
    void Post(const ObjectRef& object, std::string_view member, InvokeKind kind, Arguments arguments,
              std::function<void(const Value&)> answered) override {
        posted.push_back([=, name = std::string(member)]() mutable {
            const Value result = object->Invoke(name, kind, arguments);
            if (answered) answered(result);
        });
    }
    void AnswerPosted() {
        while (!posted.empty())
            for (const auto& call : std::exchange(posted, {})) call();
    }
    void ServeClass(std::string_view className, std::function<ObjectRef()> create) override {
        served = className;
        grant = std::move(create);
    }
    void StopServing() override { served.clear(); }
    void Leave() override {}
    void WhenInUse(std::function<void(bool)> changed) override { useChanged = std::move(changed); }
    Scheduler& scheduler;
    WaitBoxes& waitBoxes;
    const WaitSettings& settings;
    std::vector<Text> created;
    ObjectRef exchange;
    std::vector<std::function<void()>> posted;
    std::string served;
    std::function<ObjectRef()> grant;
    std::function<void(bool)> useChanged;
};

struct FakeToolkit : forms::Toolkit {
    std::unique_ptr<forms::View> MakeView(forms::Form&) override { return std::make_unique<View>(*this); }
    int views = 0;

  private:
    struct View : forms::View {
        explicit View(FakeToolkit& owner) : toolkit(owner) { ++toolkit.views; }
        ~View() override { --toolkit.views; }
        void FormChanged() override {}
        void ControlChanged(forms::Control&) override {}
        void SetFocus() override {}
        void PopupMenu(forms::Menu&) override {}
        void ShowWhatsThis(forms::Control&) override {}
        FakeToolkit& toolkit;
    };
};

struct FakePictureFiles : PictureFiles {
    Text Dir(TextView path) const override { return files.contains(Text(path)) ? Text(path) : Text(); }
    forms::PictureRef LoadPicture(TextView path) const override {
        const auto found = files.find(Text(path));
        if (found == files.end()) throw RuntimeError(ErrorNumber::FileNotFound);
        if (found->second.empty()) throw RuntimeError(ErrorNumber::InvalidPicture);
        return std::make_shared<forms::Picture>(found->second);
    }
    std::map<Text, std::string> files;  // content by path; an empty one is no picture
};

// All of it together, with language databases that hold what the add-in reads.
struct Computer {
    Computer() {
        engine.files = {{u"Common.LNG", common}, {u"Horalink.lng", language}, {u"Register.mdb", registry}};
        registry->answers[u"SELECT * FROM Registry WHERE AppName = \"Horalink.mra\""] = {
            {{u"Version", u"0.0.0"}}};
        app.path = u"C:\\VELMORA32\\10001\\ADDINS";
        auto& messages = language->answers[messagesQuery] = {{{u"ID", -1}, {u"Caption", 7}}};
        for (int i = 0; i < 7; ++i)
            messages.push_back({{u"ID", i}, {u"Caption", u"entry " + DecimalText(i)}});
        language->answers[projectQuery] = {{{u"Title", u"Horalink"},
                                            {u"OleServerBusyMsgTitle", u"busy title"},
                                            {u"OleServerBusyMsgText", u"busy text"},
                                            {u"OleRequestPendingMsgTitle", u"pending title"},
                                            {u"OleRequestPendingMsgText", Null{}}}};
        language->answers[formsQuery] = language->answers[controlsQuery] = {};
        for (std::int16_t i = 0; i < 5; ++i)
            language->answers[BoxQuery(i)] = {{{u"Prompt", u"box " + DecimalText(i) + u" & %SP & %ST"},
                                               {u"Buttons", u"vbInformation"},
                                               {u"Title", u"-1"},
                                               {u"HelpFile", Null{}},
                                               {u"Context", u"-1"}}};
    }
    static Text BoxQuery(std::int16_t number) {
        return u"select Prompt, Buttons, Title, HelpFile, Context from tMsgBox where MsgNo = " +
               DecimalText(number);
    }
    static constexpr const char16_t
        *messagesQuery = u"SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID",
        *projectQuery = u"select * from tProject where EXEName = 'Horalink'",
        *formsQuery = u"select Caption,FontName,FontSize from tForms where ObjectName = 'dlgAddin'",
        *controlsQuery =
            u"select ObjectName,Index,Caption,FontName,FontSize,ToolTipText from tControls "
            u"where FormName = 'dlgAddin'";

    Application app;
    FakeClock clock;
    FakeLocale locale;
    FakeSettings settings;
    FakeEngine engine;
    FakeTime<Scheduler> scheduler;
    FakeBoxes boxes;
    FakeWaits waits;
    FakeAutomation automation{scheduler, waits, app.waits};
    FakeScreen screen;
    FakeToolkit toolkit;
    FakePictureFiles files;
    std::shared_ptr<FakeDatabase> common = std::make_shared<FakeDatabase>(),
                                  language = std::make_shared<FakeDatabase>(),
                                  registry = std::make_shared<FakeDatabase>();
    horalink::Services services{app,       clock, locale, settings, engine, automation,
                                scheduler, boxes, screen, toolkit,  files,  [] { throw Ended(); }};
};

}  // namespace fakes
