#include <gtest/gtest.h>

#include "harness/Cases.h"
#include "platform/headless/Headless.h"

using namespace platform;
using namespace platform::forms;

namespace {

// A view that notes what it is asked for, and its toolkit.
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

struct FormTest : testing::Test {
    template <class Type>
    ObjectRef Added() {
        return form.Add<Type>(u"c", 7).shared_from_this();
    }
    std::string Log() { return std::exchange(log, ""); }
    // The log of a step.
    std::string After(const std::function<void()>& step) { return step(), Log(); }

    headless::Headless computer;
    std::string log;
    NotedView toolkit{log};
    const std::shared_ptr<Form> shared = std::make_shared<Form>(u"form", computer.timers, toolkit);
    Form& form = *shared;
    int count = 0;
};

TEST_F(FormTest, EveryPropertyIsReachedByItsName) {
    const std::string common = " Width=0 Height=0 Visible=False ToolTipText=t ";
    const std::pair<ObjectRef, std::string> cases[] = {
        {shared, "Form Caption=u Width=0 Height=0 Font=* "},
        {form.Font, "Font Name=F Size=9 Charset=204 "},
        {std::make_shared<Picture>(""), "Picture "},
        {Added<CommandButton>(), "CommandButton" + common + "Font=* Caption=u Picture=* "},
        {Added<TextBox>(), "TextBox" + common + "Font=* "},
        {Added<Label>(), "Label" + common + "Font=* Caption=u "},
        {Added<CheckBox>(), "CheckBox" + common + "Font=* Caption=u "},
        {Added<UpDown>(), "UpDown" + common},
        {Added<Calendar>(), "Calendar" + common},
        {Added<Timer>(), "Timer "},
        {Added<Image>(), "Image" + common + "Picture=* "},
        {Added<Menu>(), "Menu Caption=u Visible=False "}};
    for (const auto& [object, properties] : cases) {
        std::string read = std::string(object->Class().name) + " ";
        for (const Member& member : object->Class().members) {
            const auto at = properties.find(" " + std::string(member.name) + "=");
            if (member.kind != InvokeKind::PropertyPut || at == std::string::npos) continue;
            const std::string given = properties.substr(at + member.name.size() + 2);
            const Value text(FromUtf8(given.substr(0, given.find(' '))));
            Put(object, member.name, given[0] == '*' ? Value(std::make_shared<Picture>("")) : text);
        }
        for (const Member& member : object->Class().members) {
            if (member.kind != InvokeKind::PropertyGet) continue;
            const Value value = Get(object, member.name);
            const bool isObject = value.IsObject() && value.ToObject();
            read += std::string(member.name) + "=" + (isObject ? "*" : ToUtf8(value.ToText())) + " ";
        }
        EXPECT_EQ(read, properties);
    }
    auto& label = form.Add<Label>(u"label");
    const ObjectRef late = label.shared_from_this();
    Call(late, "Move", 1, 2, 3, 4), Put(late, "FontName", u"F"), Put(late, "FontSize", 2160);
    EXPECT_EQ(Joined(label.Left(), label.Top(), label.Width(), label.Height(), label.Font->Name(),
                     label.Font->Size()),
              "1|2|3|4|F|2160|");
    for (const double size : {0.0, 2161.0})
        EXPECT_EQ(FaultOf([&] { Put(late, "FontSize", size); }), "380 Invalid property value: Size");
    Put(late, "FontSize", 0.5);
}

TEST_F(FormTest, LoadsOnceAndUnloadsOnceUnlessRefusedOrUnloadedWhileLoading) {
    bool refuses = true;
    form.Loading = [&] { log += "load "; };
    form.Unloading = [&](bool& cancel) { cancel = refuses, log += "unload "; };
    form.Unloaded = [&] { log += "gone "; };
    EXPECT_EQ(After([&] { form.Unload(), form.Load(), form.SetFocus(), form.Show(), form.Unload(); }),
              "load form unload ");
    EXPECT_TRUE(form.Visible() && form.IsLoaded());
    refuses = false;
    EXPECT_EQ(After([&] { form.Unload(), form.Unload(), form.Refresh(); }), "unload gone ")
        << "the view as well";
    form.Loading = [&] { form.Unload(); };
    EXPECT_EQ(FaultOf([&] { form.Show(); }), "364 The object was unloaded: form");
    EXPECT_FALSE(form.IsLoaded() || form.Visible());
    form.Loading = nullptr;
    form.Unloading = [&](bool&) { form.Unloading = nullptr, form.Unload(); };
    Log();
    EXPECT_EQ(After([&] { form.Load(), form.Unload(); }), "gone ")
        << "unloaded from inside its own unloading";
}

TEST_F(FormTest, AViewHearsOfEveryChangeAndAWindowIsNeededForTheRest) {
    auto& label = form.Add<Label>(u"label");
    auto& menu = form.Add<Menu>(u"item");
    const auto ask = [&] {
        form.SetFocus(), form.PopupMenu(menu), form.ShowWhatsThis(label), form.Refresh();
        label.Caption = label.Caption() + u"x";
        form.Move(form.Left + 1, 2), form.MovedByOperator(5, 6), form.Show();
    };
    form.Load();
    EXPECT_EQ(After(ask), "form ") << "only shown";
    EXPECT_EQ(After(ask), "focus menu help form label form form ");
    EXPECT_EQ(form.Left + form.Top, 11);
    EXPECT_EQ(After([&] { form.Hide(), form.Hide(), ask(); }), "form form label form form form ")
        << "shown again";
    EXPECT_TRUE(form.TakesInput());
    form.Enabled = false;
    EXPECT_FALSE(form.TakesInput());
}

TEST_F(FormTest, ControlsAreFoundByNameAndIndex) {
    form.Add<TextBox>(u"box", 0);
    form.Add<TextBox>(u"box", 1);
    auto& alone = form.Add<Label>(u"alone");
    EXPECT_EQ(form.Item(u"BOX", 1)->Index(), 1);
    EXPECT_EQ(form.Item(u"alone").get(), &alone);
    EXPECT_EQ(
        Faults([&] { form.Item(u"box", 2); }, [&] { form.Item(u"box"); }, [&] { form.Item(u"none"); }),
        "340 Control array element 'box(2)' doesn't exist|340 Control array element 'box(-1)' doesn't exist|"
        "730 Control 'none' not found|");
}

TEST_F(FormTest, TimersRunOnlyWhileEnabledAndLoaded) {
    auto& timer = form.Add<Timer>(u"timer");
    // Switches itself off inside its second tick.
    timer.Tick = [&] { log += "tick ", timer.Enabled = ++count != 2; };
    timer.Interval = 100;
    const auto pass = [&](int milliseconds) { return computer.timers.Pass(milliseconds), Log(); };
    EXPECT_EQ(pass(500), "") << "not loaded";
    form.Load();
    EXPECT_EQ(pass(1000), "tick tick ");
    timer.Enabled = true;
    EXPECT_EQ(pass(99), "");
    timer.Interval = 50;
    EXPECT_EQ(pass(49), "") << "starts anew";
    timer.Interval = 0;
    EXPECT_EQ(pass(500), "");
    timer.Interval = 1;
    EXPECT_EQ(pass(2), "tick tick ");
    form.Unload();
    EXPECT_EQ(pass(500), "");
}

TEST_F(FormTest, ASelectionLiesInItsText) {
    auto& box = form.Add<TextBox>(u"box");
    box.Text = u"12345";
    const auto select = [&](int start, int length) {
        box.SetSelStart(start);
        const std::int32_t before = box.SelLength();
        box.SetSelLength(length);
        return Joined(box.SelStart(), before, box.SelLength());
    };
    EXPECT_EQ(select(1, 2) + select(1, 4) + select(1, 5) + select(5, 1) + select(6, 1),
              "1|0|2|1|0|4|1|0|4|5|0|0|5|0|0|");
    EXPECT_EQ(Faults([&] { box.SetSelStart(-1); }, [&] { box.SetSelLength(-1); }),
              "380 Invalid property value: SelStart|380 Invalid property value: SelLength|");
}

TEST_F(FormTest, ABoxRaisesItsClickForEachChange) {
    auto& box = form.Add<CheckBox>(u"box");
    const auto set = [&](std::int16_t value) { return [&box, value] { box.SetValue(value); }; };
    set(1)();
    box.Click = [&] { log += std::to_string(box.Value()) + " "; };
    for (const bool isOn : {true, false, false, true}) set(isOn)();
    EXPECT_EQ(Log(), "0 1 ");
    EXPECT_EQ(Faults(set(2), set(-1)),
              "380 Invalid property value: Value|380 Invalid property value: Value|");
}

TEST_F(FormTest, ArrowsStepThroughTheirRangeFromEndToEnd) {
    auto& arrows = form.Add<UpDown>(u"arrows");
    arrows.StepUp(), arrows.StepDown();
    arrows.Change = [&] { log += std::to_string(arrows.Value()) + " "; };
    arrows.UpClick = [&] { log += "up "; };
    arrows.DownClick = [&] { log += "down "; };
    const auto set = [&](int value) { return [&arrows, value] { arrows.SetValue(value); }; };
    EXPECT_EQ(After([&] { arrows.SetMin(3), arrows.SetMax(4); }), "3 ");
    EXPECT_EQ(After([&] { arrows.StepUp(), arrows.StepUp(); }), "4 up 3 up ");
    EXPECT_EQ(After([&] { arrows.StepDown(), arrows.StepDown(); }), "4 down 3 down ");
    EXPECT_EQ(After([&] { set(4)(), arrows.SetMin(4), arrows.StepUp(), arrows.StepDown(); }), "4 up down ");
    EXPECT_EQ(After([&] { arrows.SetMax(5), set(5)(), arrows.SetMin(-9), arrows.SetMax(-8); }), "5 -8 ");
    EXPECT_EQ(Faults(set(-10), set(-7)),
              "380 Invalid property value: Value|380 Invalid property value: Value|");
}

TEST_F(FormTest, ACalendarTakesWholeDatesAndTurnsWithoutOne) {
    auto& calendar = form.Add<Calendar>(u"calendar");
    calendar.ChooseDate({2026, 11, 17}), calendar.TurnTo(2026, 10), calendar.ChooseDate({2026, 11, 18});
    bool refuses = false;
    const auto note = [&](const char* event) {
        log += event + std::to_string(calendar.Year()) + "/" + std::to_string(calendar.Month()) + "/" +
               std::to_string(calendar.Day()) + " ";
    };
    calendar.BeforeUpdate = [&](bool& cancel) { cancel = refuses, note("ask "); };
    calendar.AfterUpdate = [&] { note("chosen "); };
    calendar.NewYear = [&] { note("year "); };
    calendar.NewMonth = [&] { note("month "); };
    const auto choose = [&](const DateParts& date) { return After([&] { calendar.ChooseDate(date); }); };
    const auto turn = [&](std::int16_t year, std::int16_t month) {
        return After([&] { calendar.TurnTo(year, month); });
    };
    EXPECT_EQ(choose({2026, 11, 31}), "");
    EXPECT_EQ(choose({2026, 11, 30}), "ask 2026/11/18 chosen 2026/11/30 ");
    EXPECT_EQ(choose({2027, 1, 5}), "ask 2026/11/30 year 2027/1/5 month 2027/1/5 chosen 2027/1/5 ");
    EXPECT_EQ(turn(2027, 1), "");
    EXPECT_EQ(turn(2027, 2), "ask 2027/1/5 month 2027/2/0 ");
    EXPECT_EQ(turn(2028, 2), "ask 2027/2/0 year 2028/2/0 ");
    EXPECT_EQ(turn(2028, 0) + turn(2028, 13) + turn(99, 2) + turn(10000, 2), "");
    EXPECT_EQ(turn(100, 1), "ask 2028/2/0 year 100/1/0 month 100/1/0 ");
    EXPECT_EQ(turn(9999, 12), "ask 100/1/0 year 9999/12/0 month 9999/12/0 ");
    EXPECT_EQ(After([&] { calendar.SetDay(31), calendar.SetMonth(1), calendar.SetYear(100); }),
              "month 9999/1/31 year 100/1/31 ");
    EXPECT_EQ(After([&] { calendar.SetYear(9999), calendar.SetMonth(12), calendar.SetDay(0); }),
              "year 9999/1/31 month 9999/12/31 ");
    refuses = true;
    EXPECT_EQ(choose({2026, 1, 1}) + turn(2026, 1), "ask 9999/12/0 ask 9999/12/0 ");
    const std::string day = "380 Invalid property value: day|", month = "380 Invalid property value: month|",
                      year = "380 Invalid property value: year|";
    EXPECT_EQ(
        Faults([&] { calendar.SetDay(-1); }, [&] { calendar.SetDay(32); }, [&] { calendar.SetMonth(0); },
               [&] { calendar.SetMonth(13); }, [&] { calendar.SetYear(99); },
               [&] { calendar.SetYear(10000); }, [&] { calendar.CalendarValue(); }),
        day + day + month + month + year + year + "13 Type mismatch: no day is chosen|");
    calendar.SetDay(31);
    EXPECT_EQ(Joined(calendar.CalendarValue(), calendar.titlefont->Size(), calendar.titlefont->Bold(),
                     calendar.dayfont->Size(), calendar.dayfont->Bold()),
              "12/31/9999|12|True|8.25|False|");
}

}  // namespace
