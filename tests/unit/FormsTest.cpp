#include <gtest/gtest.h>

#include "ErrorOf.h"
#include "Table.h"
#include "platform/headless/Headless.h"

using namespace platform;
using namespace platform::forms;

namespace {

struct FormTest : testing::Test {
    template <class Type>
    std::shared_ptr<Object> Added() {
        return form.Add<Type>(u"c", 7).shared_from_this();
    }
    headless::Headless computer;
    const std::shared_ptr<Form> shared = std::make_shared<Form>(u"form", computer.timers, computer.toolkit);
    Form& form = *shared;
    int count = 0;
    std::string log;
};

TEST_F(FormTest, EveryPropertyIsReachedByItsName) {
    const std::string common =
        "Name=c Index=7 Left=1 Top=2 Width=3 Height=4 Visible=False Enabled=False ToolTipText=t ";
    const Table<std::shared_ptr<Object>, std::string> cases = {
        {shared, "Name=form Caption=u Left=1 Top=2 Width=3 Height=4 Enabled=False Font=* "},
        {form.Font, "Name=F Size=9 Bold=True Charset=204 "},
        {std::make_shared<Picture>(""), ""},
        {Added<CommandButton>(), common + "Font=* Caption=u Picture=* DisabledPicture=* "},
        {Added<TextBox>(), common + "Font=* Text=u Locked=True "},
        {Added<Label>(), common + "Font=* Caption=u BackColor=5 ForeColor=6 "},
        {Added<CheckBox>(), common + "Font=* Caption=u BackColor=5 Value=1 "},
        {Added<UpDown>(), common + "Min=5 Max=8 Value=6 "},
        {Added<Calendar>(),
         common + "day=28 month=2 year=2101 CalendarValue=02/28/2101 showdateselectors=2 MarketStyle=3 "
                  "gridcelleffect=4 ShowOption=True dayfont=* gridfont=* titlefont=* "},
        {Added<Timer>(), "Interval=5 Enabled=False "},
        {Added<Image>(), common + "Picture=* Stretch=True "},
        {Added<Menu>(), "Caption=u Visible=False Enabled=False "}};
    for (const auto& [object, properties] : cases) {
        std::string read;
        for (const Member& member : object->Class().members) {
            const std::string name(member.name);
            const auto at = (" " + properties).find(" " + name + "=");
            if (member.kind != InvokeKind::PropertyPut || at == std::string::npos) continue;
            const std::string given = properties.substr(at + name.size() + 1);
            const Value text(FromUtf8(given.substr(0, given.find(' '))));
            Put(object, name, given[0] == '*' ? Value(std::make_shared<Picture>("")) : text);
        }
        for (const Member& member : object->Class().members) {
            if (member.kind != InvokeKind::PropertyGet) continue;
            const Value value = Get(object, member.name);
            read += std::string(member.name) + "=" +
                    (value.IsObject() && value.ToObject() ? "*" : ToUtf8(value.ToText())) + " ";
        }
        EXPECT_EQ(read, properties) << object->Class().name;
    }
    const auto label = Added<Label>();
    Call(label, "Move", 1, 2, 3, 4);
    Put(label, "FontName", u"F");
    Put(label, "FontSize", 9);
    const auto& dressed = static_cast<Label&>(*label);
    EXPECT_EQ((std::array{dressed.Left(), dressed.Top(), dressed.Width(), dressed.Height()}),
              (std::array{1.0F, 2.0F, 3.0F, 4.0F}));
    EXPECT_EQ(dressed.Font->Name() + Value(dressed.Font->Size()).ToText(), u"F9");
    EXPECT_EQ(FaultOf([&] { Put(label, "FontSize", 0); }), "380 Invalid property value: Size");
    Put(label, "FontSize", 2160);
    EXPECT_EQ(ErrorOf([&] { Put(label, "FontSize", 2161); }), 380);
}

TEST_F(FormTest, LoadsOnceAndUnloadsOnceUnlessRefusedOrUnloadedWhileLoading) {
    bool refuses = true;
    form.Loading = [&] { log += "load "; };
    form.Unloading = [&](bool& cancel) { cancel = refuses, log += "unload "; };
    form.Unloaded = [&] { log += "gone "; };
    form.Unload();
    form.Load();
    EXPECT_EQ(computer.toolkit.Open(), nullptr) << "no widget before it is shown";
    form.SetFocus();
    form.Show();
    form.Unload();
    EXPECT_TRUE(form.Visible() && form.IsLoaded() && computer.toolkit.Open());
    refuses = false;
    form.Unload();
    form.Unload();
    EXPECT_EQ(log, "load unload unload gone ");
    form.Loading = [&] { form.Unload(); };
    EXPECT_EQ(FaultOf([&] { form.Show(); }), "364 The object was unloaded: form");
    EXPECT_FALSE(form.IsLoaded() || form.Visible() || computer.toolkit.Open());
    form.Loading = nullptr;
    form.Unloading = [&](bool&) { form.Unloading = nullptr, form.Unload(); };
    form.Load();
    log.clear();
    form.Unload();
    EXPECT_EQ(log, "gone ") << "unloaded from inside its own unloading";
}

// A view that notes what it is asked for.
struct NotedView : View, Toolkit {
    explicit NotedView(std::string& toWrite) : log(toWrite) {}
    std::unique_ptr<View> MakeView(Form&) override { return std::make_unique<NotedView>(log); }
    void FormChanged() override { log += "form "; }
    void ControlChanged(Control& control) override { log += ToUtf8(control.Name()) + " "; }
    void SetFocus() override { log += "focus "; }
    void PopupMenu(Menu&) override { log += "menu "; }
    void ShowWhatsThis(Control&) override { log += "help "; }
    std::string& log;
};

TEST_F(FormTest, AViewHearsOfEveryChangeAndAWindowIsNeededForTheRest) {
    NotedView toolkit(log);
    Form noted(u"form", computer.timers, toolkit);
    auto& label = noted.Add<Label>(u"label");
    auto& menu = noted.Add<Menu>(u"item");
    const auto ask = [&] {
        noted.SetFocus(), noted.PopupMenu(menu), noted.ShowWhatsThis(label), noted.Refresh();
        label.Caption = label.Caption() + u"x";
        noted.Move(noted.Left + 1, 2);
        noted.MovedByOperator(5, 6);
        noted.Show();
    };
    noted.Load();
    ask();
    EXPECT_EQ(std::exchange(log, ""), "form ") << "only shown";
    ask();
    EXPECT_EQ(std::exchange(log, ""), "focus menu help form label form form ");
    EXPECT_EQ(noted.Left + noted.Top, 11);
    noted.Hide();
    noted.Hide();
    ask();
    EXPECT_EQ(std::exchange(log, ""), "form form label form form form ") << "shown again";
    EXPECT_TRUE(noted.TakesInput());
    noted.Enabled = false;
    EXPECT_FALSE(noted.TakesInput());
}

TEST_F(FormTest, ControlsAreFoundByNameAndIndex) {
    form.Add<TextBox>(u"box", 0);
    form.Add<TextBox>(u"box", 1);
    auto& alone = form.Add<Label>(u"alone");
    EXPECT_EQ(form.Item(u"BOX", 1)->Index(), 1);
    EXPECT_EQ(form.Item(u"alone").get(), &alone);
    EXPECT_EQ(FaultOf([&] { form.Item(u"box", 2); }), "340 Control array element 'box(2)' doesn't exist");
    EXPECT_EQ(FaultOf([&] { form.Item(u"box"); }), "340 Control array element 'box(-1)' doesn't exist");
    EXPECT_EQ(FaultOf([&] { form.Item(u"none"); }), "730 Control 'none' not found");
}

TEST_F(FormTest, TimersRunOnlyWhileEnabledAndLoaded) {
    auto& timer = form.Add<Timer>(u"timer");
    timer.Tick = [&] { timer.Enabled = ++count < 2; };
    timer.Interval = 100;
    computer.timers.Pass(500);
    EXPECT_EQ(count, 0) << "not loaded";
    form.Load();
    computer.timers.Pass(1000);
    EXPECT_EQ(count, 2) << "switches itself off inside its tick";
    timer.Enabled = true;
    computer.timers.Pass(99);
    timer.Interval = 50;
    computer.timers.Pass(49);
    EXPECT_EQ(count, 2) << "starts anew";
    timer.Interval = 0;
    computer.timers.Pass(1);
    timer.Interval = 1;
    timer.Tick = nullptr;
    computer.timers.Pass(1);
    timer.Tick = [&] { ++count; };
    form.Unload();
    computer.timers.Pass(500);
    EXPECT_EQ(count, 2);
}

TEST_F(FormTest, ASelectionLiesInItsText) {
    auto& box = form.Add<TextBox>(u"box");
    box.Text = u"12345";
    for (const auto& [start, length, taken] : {std::tuple(1, 2, std::pair(1, 2)),
                                               {1, 4, {1, 4}},
                                               {1, 5, {1, 4}},
                                               {5, 1, {5, 0}},
                                               {6, 1, {5, 0}}}) {
        box.SetSelStart(start);
        EXPECT_EQ(box.SelLength(), 0);
        box.SetSelLength(length);
        EXPECT_EQ(std::pair(box.SelStart(), box.SelLength()), taken);
    }
    EXPECT_EQ(FaultOf([&] { box.SetSelStart(-1); }), "380 Invalid property value: SelStart");
    EXPECT_EQ(FaultOf([&] { box.SetSelLength(-1); }), "380 Invalid property value: SelLength");
    EXPECT_EQ(std::pair(box.SelStart(), box.SelLength()), std::pair(5, 0));
}

TEST_F(FormTest, ABoxRaisesItsClickForEachChange) {
    auto& box = form.Add<CheckBox>(u"box");
    box.SetValue(1);
    box.Click = [&] { log += std::to_string(box.Value()) + " "; };
    for (const bool isOn : {true, false, false, true}) box.SetValue(isOn);
    for (const int value : {2, -1})
        EXPECT_EQ(FaultOf([&] { Put(box.shared_from_this(), "Value", value); }), "380 Invalid property value: Value");
    EXPECT_EQ(log, "0 1 ");
}

TEST_F(FormTest, ArrowsStepThroughTheirRangeFromEndToEnd) {
    auto& arrows = form.Add<UpDown>(u"arrows");
    arrows.StepUp();
    arrows.StepDown();
    arrows.Change = [&] { log += std::to_string(arrows.Value()) + " "; };
    arrows.UpClick = [&] { log += "up "; };
    arrows.DownClick = [&] { log += "down "; };
    const Table<std::function<void()>, const char*> cases = {
        {[&] { arrows.SetMin(3); }, "3 "},       {[&] { arrows.SetMax(4); }, ""},
        {[&] { arrows.StepUp(); }, "4 up "},     {[&] { arrows.StepUp(); }, "3 up "},
        {[&] { arrows.StepDown(); }, "4 down "}, {[&] { arrows.StepDown(); }, "3 down "},
        {[&] { arrows.SetValue(4); }, "4 "},     {[&] { arrows.SetMin(4); }, ""},
        {[&] { arrows.StepUp(); }, "up "},       {[&] { arrows.StepDown(); }, "down "},
        {[&] { arrows.SetMax(5); }, ""},         {[&] { arrows.SetValue(5); }, "5 "},
        {[&] { arrows.SetMin(-9); }, ""},        {[&] { arrows.SetMax(-8); }, "-8 "}};
    for (const auto& [act, expected] : cases) {
        act();
        EXPECT_EQ(std::exchange(log, ""), expected);
    }
    for (const int value : {-10, -7})
        EXPECT_EQ(FaultOf([&] { arrows.SetValue(value); }), "380 Invalid property value: Value");
}

TEST_F(FormTest, ACalendarTakesWholeDatesAndTurnsWithoutOne) {
    auto& calendar = form.Add<Calendar>(u"calendar");
    bool refuses = false;
    const auto note = [&](const char* event) {
        log += event + std::to_string(calendar.Year()) + "/" + std::to_string(calendar.Month()) + "/" +
               std::to_string(calendar.Day()) + " ";
    };
    calendar.ChooseDate({2026, 11, 17});
    calendar.TurnTo(2026, 10);
    calendar.ChooseDate({2026, 11, 18});
    calendar.BeforeUpdate = [&](bool& cancel) { cancel = refuses, note("ask "); };
    calendar.AfterUpdate = [&] { note("chosen "); };
    calendar.NewYear = [&] { note("year "); };
    calendar.NewMonth = [&] { note("month "); };
    const Table<std::function<void()>, const char*> cases = {
        {[&] { calendar.ChooseDate({2026, 11, 31}); }, ""},
        {[&] { calendar.ChooseDate({2026, 11, 30}); }, "ask 2026/11/18 chosen 2026/11/30 "},
        {[&] { calendar.ChooseDate({2027, 1, 5}); },
         "ask 2026/11/30 year 2027/1/5 month 2027/1/5 chosen 2027/1/5 "},
        {[&] { calendar.TurnTo(2027, 1); }, ""},
        {[&] { calendar.TurnTo(2027, 2); }, "ask 2027/1/5 month 2027/2/0 "},
        {[&] { calendar.TurnTo(2028, 2); }, "ask 2027/2/0 year 2028/2/0 "},
        {[&] { calendar.TurnTo(2028, 0), calendar.TurnTo(2028, 13); }, ""},
        {[&] { calendar.TurnTo(99, 2), calendar.TurnTo(10000, 2); }, ""},
        {[&] { calendar.TurnTo(100, 1); }, "ask 2028/2/0 year 100/1/0 month 100/1/0 "},
        {[&] { calendar.TurnTo(9999, 12); }, "ask 100/1/0 year 9999/12/0 month 9999/12/0 "},
        {[&] { calendar.SetDay(31), calendar.SetMonth(1), calendar.SetYear(100); },
         "month 9999/1/31 year 100/1/31 "},
        {[&] { calendar.SetYear(9999), calendar.SetMonth(12), calendar.SetDay(0); },
         "year 9999/1/31 month 9999/12/31 "},
        {[&] { refuses = true, calendar.ChooseDate({2026, 1, 1}), calendar.TurnTo(2026, 1); },
         "ask 9999/12/0 ask 9999/12/0 "}};
    for (const auto& [act, expected] : cases) {
        act();
        EXPECT_EQ(std::exchange(log, ""), expected);
    }
    const Table<std::function<void()>, const char*> refused = {
        {[&] { calendar.SetDay(-1); }, "380 Invalid property value: day"},
        {[&] { calendar.SetDay(32); }, "380 Invalid property value: day"},
        {[&] { calendar.SetMonth(0); }, "380 Invalid property value: month"},
        {[&] { calendar.SetMonth(13); }, "380 Invalid property value: month"},
        {[&] { calendar.SetYear(99); }, "380 Invalid property value: year"},
        {[&] { calendar.SetYear(10000); }, "380 Invalid property value: year"},
        {[&] { calendar.CalendarValue(); }, "13 Type mismatch: no day is chosen"}};
    for (const auto& [act, fault] : refused) EXPECT_EQ(FaultOf(act), fault);
    calendar.SetDay(31);
    EXPECT_EQ(calendar.CalendarValue(), MakeDate({9999, 12, 31}));
    EXPECT_EQ(calendar.titlefont->Size() + calendar.dayfont->Size() + calendar.gridfont->Size(), 28.5F);
    EXPECT_TRUE(calendar.titlefont->Bold() && !calendar.dayfont->Bold() && !calendar.gridfont->Bold());
}

}  // namespace
