// A computer of the tests' own: time passes when they say so, and what the add-in shows is written down.
#pragma once

#include <algorithm>
#include <map>

#include "exchange/dlgAddin.h"
#include "platform/desktop/MessageBoxButtons.h"
#include "shell/AddInMain.h"

namespace fakes {

using namespace platform;

// Ends the way of a test where the process would end.
struct Ended {};

class FakeScheduler : public Scheduler {
  public:
    HandleRef After(Milliseconds delay, std::function<void()> call) override {
        return Add(delay, false, call);
    }
    HandleRef Every(Milliseconds interval, std::function<void()> call) override {
        return Add(interval, true, call);
    }

    void Pass(Milliseconds span) {
        const Milliseconds end = now_ + span;
        while (const auto next = NextUntil(end)) Fire(next);
        now_ = end;
    }
    bool IsIdle() const { return !FirstDue(); }

  private:
    struct Entry {
        Milliseconds due, interval;
        bool repeats;
        std::function<void()> call;
    };
    using EntryRef = std::shared_ptr<Entry>;
    struct Kept : Handle {
        EntryRef entry;
    };

    HandleRef Add(Milliseconds span, bool repeats, const std::function<void()>& call) {
        auto entry = std::make_shared<Entry>(Entry{now_ + span, span, repeats, call});
        entries_.push_back(entry);
        auto handle = std::make_unique<Kept>();
        handle->entry = entry;
        return handle;
    }
    EntryRef FirstDue() const {
        EntryRef first;
        for (const auto& weak : entries_)
            if (auto entry = weak.lock(); entry && entry->call && (!first || entry->due < first->due))
                first = entry;
        return first;
    }
    EntryRef NextUntil(Milliseconds end) const {
        const auto first = FirstDue();
        return first && first->due <= end ? first : nullptr;
    }
    void Fire(const EntryRef& entry) {
        now_ = entry->due;
        const auto call = entry->call;
        entry->repeats ? entry->due += entry->interval : (entry->call = nullptr, Milliseconds());
        call();
    }

    Milliseconds now_{0};
    std::vector<std::weak_ptr<Entry>> entries_;
};

class FakeBoxes : public MessageBoxes {
  public:
    std::int16_t Show(const MessageBox& box) override {
        shown.push_back(box);
        if (onShow) onShow();
        return answer;
    }
    std::vector<MessageBox> shown;
    std::function<void()> onShow;
    std::int16_t answer = 1;
};

class FakeWaits : public WaitBoxes {
  public:
    std::unique_ptr<WaitBox> Open(TextView, TextView text, std::function<void(bool)> answered) override {
        texts.push_back(Text(text));
        answer = std::move(answered);
        auto box = std::make_unique<Box>();
        box->open = &open;
        ++open;
        return box;
    }
    std::vector<Text> texts;
    std::function<void(bool)> answer;
    int open = 0;

  private:
    struct Box : WaitBox {
        ~Box() override { --*open; }
        int* open = nullptr;
    };
};

class FakeScreen : public Screen {
  public:
    MousePointer Pointer() const override { return pointer; }
    void SetPointer(MousePointer shape) override { pointer = shape; }
    float Width() const override { return 15000; }
    float Height() const override { return 12000; }
    MousePointer pointer = MousePointer::Default;
};

class FakeSettings : public Settings {
  public:
    Text Get(TextView application, TextView section, TextView key, TextView fallback) const override {
        const auto found = values.find(Text(application) + u"/" + Text(section) + u"/" + Text(key));
        return found == values.end() ? Text(fallback) : found->second;
    }
    std::map<Text, Text> values;
};

class FakeLocale : public LocaleTexts {
  public:
    Text LongDate(Date) const override { return u"long date"; }
    Text LongTime(Date) const override { return u"long time"; }
    Text DayName(int weekday) const override { return u"day " + DecimalText(weekday); }
    Text ShortDayName(int weekday) const override { return u"d" + DecimalText(weekday); }
};

class FakeClock : public Clock {
  public:
    Date Now() const override { return now; }
    Date now = MakeDate({2026, 11, 18, 13, 2, 3});
};

using Row = std::map<Text, Value>;
using Rows = std::vector<Row>;

class FakeRecordset : public Recordset {
  public:
    FakeRecordset(Rows rows, Rows& updated) : rows_(std::move(rows)), updated_(updated) {}
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
    void SetField(TextView name, const Value& value) override { edited_[Text(name)] = value; }
    void Update() override { updated_.push_back(edited_); }
    void Close() override {}

  private:
    Rows rows_;
    Rows& updated_;
    Row edited_;
    std::size_t current_ = 0;
};

// Answers the queries that a test has put in, and no other.
class FakeDatabase : public Database {
  public:
    std::unique_ptr<Recordset> OpenRecordset(TextView query, RecordsetType) override {
        const auto found = answers.find(Text(query));
        if (found == answers.end()) throw MakeDataError(DataError::NoSuchTable, ToUtf8(query));
        return std::make_unique<FakeRecordset>(found->second, updated);
    }
    void Close() override { closed = true; }
    std::map<Text, Rows> answers;
    Rows updated;
    bool closed = false;
};

class FakeEngine : public DatabaseEngine {
  public:
    DatabaseRef OpenDatabase(TextView path, bool) override {
        const Text name(path.substr(path.rfind(u'\\') + 1));
        opened.push_back(Text(path));
        const auto found = files.find(name);
        if (found == files.end()) throw MakeDataError(DataError::FileNotFound, ToUtf8(name));
        return found->second;
    }
    std::map<Text, DatabaseRef> files;
    std::vector<Text> opened;
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
        if (std::find(quiet.begin(), quiet.end(), key) == quiet.end()) calls_.push_back(key);
        const auto found = answers.find(key);
        if (found == answers.end()) throw RuntimeError(ErrorNumber::NoSuchMember, key);
        return found->second(arguments);
    }
    std::shared_ptr<void> WhenOwnerGone(std::function<void()> gone) override {
        auto watch = std::make_shared<std::function<void()>>(std::move(gone));
        ownerWatch = watch;
        return watch;
    }
    void LeaveBus() {
        if (const auto watch = ownerWatch.lock()) (*watch)();
    }
    std::map<std::string, Answer> answers;
    std::vector<std::string> quiet;
    std::weak_ptr<std::function<void()>> ownerWatch;

  private:
    std::vector<std::string>& calls_;
};

class FakeAutomation : public Automation {
  public:
    ObjectRef CreateObject(TextView className) override {
        created.push_back(Text(className));
        if (!exchange) throw RuntimeError(ErrorNumber::CannotCreateObject, ToUtf8(className));
        return exchange;
    }
    void ServeClass(std::string_view, std::function<ObjectRef()>) override {}
    void Flush() override {}
    void WhenInUse(std::function<void(bool)>) override {}
    std::vector<Text> created;
    ObjectRef exchange;
};

class NoToolkit : public forms::Toolkit {
  public:
    std::unique_ptr<forms::View> MakeView(forms::Form&) override { return std::make_unique<NoView>(); }

  private:
    struct NoView : forms::View {
        void FormChanged() override {}
        void ControlChanged(forms::Control&) override {}
        void SetFocus() override {}
        void PopupMenu(forms::Menu&) override {}
        void ShowWhatsThis(forms::Control&) override {}
    };
};

class FakePictureFiles : public PictureFiles {
  public:
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
        engine.files[u"Common.LNG"] = common;
        engine.files[u"Horalink.lng"] = language;
        engine.files[u"Register.mdb"] = registry;
        registry->answers[u"SELECT * FROM Registry WHERE AppName = \"Horalink.mra\""] = {
            {{u"Version", u"0.0.0"}}};
        app.path = u"C:\\VELMORA32\\10001\\ADDINS";
        Rows rows{{{u"ID", Value(-1)}, {u"Caption", Value(7)}}};
        for (int i = 0; i < 7; ++i)
            rows.push_back({{u"ID", Value(i)}, {u"Caption", Value(u"entry " + DecimalText(i))}});
        language->answers[messagesQuery] = rows;
        language->answers[projectQuery] = {{{u"Title", Value(u"Horalink")},
                                            {u"OleServerBusyMsgTitle", Value(u"busy title")},
                                            {u"OleServerBusyMsgText", Value(u"busy text")},
                                            {u"OleRequestPendingMsgTitle", Value(u"pending title")},
                                            {u"OleRequestPendingMsgText", Value(Null{})}}};
        language->answers[formsQuery] = {};
        language->answers[controlsQuery] = {};
        for (std::int16_t i = 0; i < 5; ++i)
            language->answers[BoxQuery(i)] = {{{u"Prompt", Value(u"box " + DecimalText(i) + u" & %SP & %ST")},
                                               {u"Buttons", Value(u"vbInformation")},
                                               {u"Title", Value(u"-1")},
                                               {u"HelpFile", Value(Null{})},
                                               {u"Context", Value(u"-1")}}};
    }
    static Text BoxQuery(std::int16_t number) {
        return u"select Prompt, Buttons, Title, HelpFile, Context from tMsgBox where MsgNo = " +
               DecimalText(number);
    }
    static constexpr const char16_t* messagesQuery =
        u"SELECT * FROM tMessages UNION SELECT -1, COUNT(*) FROM tMessages ORDER BY ID";
    static constexpr const char16_t* projectQuery = u"select * from tProject where EXEName = 'Horalink'";

    static constexpr const char16_t* formsQuery =
        u"select Caption,FontName,FontSize from tForms where ObjectName = 'dlgAddin'";
    static constexpr const char16_t* controlsQuery =
        u"select ObjectName,Index,Caption,FontName,FontSize,ToolTipText from tControls where FormName = "
        u"'dlgAddin'";

    Application app;
    FakeClock clock;
    FakeLocale locale;
    FakeSettings settings;
    FakeEngine engine;
    FakeAutomation automation;
    FakeScheduler scheduler;
    FakeBoxes boxes;
    FakeWaits waits;
    FakeScreen screen;
    NoToolkit toolkit;
    FakePictureFiles files;
    std::shared_ptr<FakeDatabase> common = std::make_shared<FakeDatabase>();
    std::shared_ptr<FakeDatabase> language = std::make_shared<FakeDatabase>();
    std::shared_ptr<FakeDatabase> registry = std::make_shared<FakeDatabase>();
    horalink::Services services{app,   clock, locale, settings, engine, automation,           scheduler,
                                boxes, waits, screen, toolkit,  files,  [] { throw Ended(); }};
};

}  // namespace fakes
