#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "Fakes.h"

using namespace horalink;
using namespace platform;

namespace {

// The dialog, loaded and with a name, whose PC clock the tests set.
struct ClockTest : testing::Test {
    ClockTest() {
        data.AddInLanguageDb = computer.language;
        data.MarketCode = u"10001";
        data.MessageTable.texts.assign(7, u"entry");
    }
    void Open(const char16_t* name = u"Main") {
        dialog->Window().Load();
        dialog->PutPBXName(name);
    }
    const DialogControls& controls() const { return dialog->Controls(); }
    forms::Calendar& calendar() { return *controls().Calendar; }
    forms::UpDown& spin() { return *controls().updTime; }
    Text Time() const {
        Text time;
        for (const auto* box : controls().txtTime) time += box->Text() + u" ";
        return time;
    }
    std::array<int, 3> Shown() { return {calendar().Year(), calendar().Month(), calendar().Day()}; }
    bool UpdateIsOn() const { return controls().cmdButton[1]->Enabled; }
    void Tick() { computer.scheduler.Pass(Milliseconds(1000)); }
    void SetPC(const DateParts& parts) { computer.clock.now = MakeDate(parts); }
    void Untrack() {
        controls().chkTrack->SetValue(0);
        controls().chkTrackDate->SetValue(0);
    }
    void Focus(std::size_t section) { controls().txtTime[section]->GotFocus(); }

    fakes::Computer computer;
    ModuleData data;
    std::shared_ptr<dlgAddin> dialog = std::make_shared<dlgAddin>(computer.services, data);
};

TEST_F(ClockTest, TheDialogOpensWithThePCsDateAndTimeAndFollows) {
    Open();
    EXPECT_EQ(Time(), u"01 02 03 PM ");
    EXPECT_EQ(Shown(), (std::array{2026, 11, 18}));
    const std::vector<std::pair<DateParts, const char16_t*>> moments = {
        {{2026, 11, 19, 0, 5, 0}, u"12 05 00 AM "},
        {{2026, 11, 19, 12, 5, 9}, u"12 05 09 PM "},
        {{2026, 11, 19, 11, 59, 59}, u"11 59 59 AM "},
        {{2026, 11, 19, 23, 0, 0}, u"11 00 00 PM "},
    };
    for (const auto& [moment, text] : moments) {
        SetPC(moment);
        Tick();
        EXPECT_EQ(Time(), text);
    }
    EXPECT_EQ(Shown(), (std::array{2026, 11, 19}));
}

TEST_F(ClockTest, EachBoxTracksForItself) {
    Open();
    for (const bool time : {false, true}) {
        for (const bool date : {false, true}) {
            SetPC({2026, 12, 31, 23, 59, 59});
            controls().chkTrack->SetValue(1);
            controls().chkTrackDate->SetValue(1);
            Tick();
            controls().chkTrack->SetValue(time);
            controls().chkTrackDate->SetValue(date);
            SetPC({2027, 1, 1, 0, 0, 1});
            Tick();
            EXPECT_EQ(Time(), time ? u"12 00 01 AM " : u"11 59 59 PM ");
            EXPECT_EQ(calendar().Year(), date ? 2027 : 2026);
            EXPECT_EQ(spin().Enabled(), !time);
            EXPECT_EQ(calendar().showdateselectors(), date ? 2 : 1);
        }
    }
}

TEST_F(ClockTest, SectionsAreSteppedOneAtATime) {
    Open();
    Untrack();
    const struct {
        std::size_t section;
        const char16_t *before, *up, *down;
    } cases[] = {
        {0, u"09", u"10", u"08"}, {0, u"12", u"01", u"11"}, {0, u"01", u"02", u"12"},
        {1, u"04", u"05", u"03"}, {1, u"59", u"00", u"58"}, {2, u"00", u"01", u"59"},
        {3, u"AM", u"PM", u"PM"}, {3, u"PM", u"AM", u"AM"}, {3, u"??", u"PM", u"PM"},
    };
    for (const auto& c : cases) {
        auto& box = *controls().txtTime[c.section];
        const Text half = controls().txtTime[3]->Text;
        for (const bool up : {true, false}) {
            box.Text = c.before;
            Focus(c.section);
            EXPECT_EQ(box.Text(), c.before) << "the focus changes nothing";
            up ? spin().StepUp() : spin().StepDown();
            EXPECT_EQ(box.Text(), up ? c.up : c.down);
            EXPECT_EQ(box.SelLength(), 2) << "stays selected";
        }
        if (c.section != 3) {
            EXPECT_EQ(controls().txtTime[3]->Text(), half);
        }
    }
}

TEST_F(ClockTest, MovingBetweenSectionsLeavesTheirTexts) {
    Open();
    Untrack();
    controls().txtTime[0]->Text = u"07";
    controls().txtTime[1]->Text = u"00";
    for (const std::size_t section : {0, 1, 0, 2, 3, 1, 0}) {
        const Text before = Time();
        Focus(section);
        EXPECT_EQ(Time(), before);
    }
    controls().txtTime[0]->LostFocus();
    const Text before = Time();
    spin().StepUp();
    EXPECT_EQ(Time(), before) << "no section is under edit";
}

TEST_F(ClockTest, WhileTheTimeIsTrackedNothingCanBeStepped) {
    Open();
    Focus(1);
    spin().StepUp();
    EXPECT_EQ(Time(), u"01 02 03 PM ");
    EXPECT_EQ(controls().txtTime[1]->SelLength(), 0);
}

TEST_F(ClockTest, ATrackedDateRefusesTheOperator) {
    Open();
    calendar().ChooseDate({2026, 11, 1});
    calendar().TurnTo(2026, 12);
    EXPECT_EQ(Shown(), (std::array{2026, 11, 18}));
    EXPECT_TRUE(UpdateIsOn());
}

TEST_F(ClockTest, WithoutAChosenDayTheUpdateButtonIsOff) {
    Open();
    Untrack();
    calendar().TurnTo(2026, 12);
    EXPECT_EQ(Shown(), (std::array{2026, 12, 0}));
    EXPECT_FALSE(UpdateIsOn());
    EXPECT_TRUE(controls().cmdButton[2]->Enabled);
    calendar().ChooseDate({2026, 12, 24});
    EXPECT_TRUE(UpdateIsOn());
    calendar().TurnTo(2027, 12);
    EXPECT_FALSE(UpdateIsOn());
    controls().chkTrackDate->SetValue(1);
    EXPECT_TRUE(UpdateIsOn());
    EXPECT_EQ(Shown(), (std::array{2026, 11, 18}));
}

TEST_F(ClockTest, WithoutANameTheUpdateButtonStaysOff) {
    Open(u"");
    Untrack();
    calendar().ChooseDate({2026, 12, 24});
    EXPECT_FALSE(UpdateIsOn());
    controls().chkTrackDate->SetValue(1);
    EXPECT_FALSE(UpdateIsOn());
    EXPECT_EQ(Shown(), (std::array{2026, 11, 18})) << "the date follows all the same";
}

TEST_F(ClockTest, TheYearStaysBetween1901And2099) {
    Open();
    Untrack();
    const std::vector<std::array<std::int16_t, 3>> cases = {
        {1901, 1900, 1901}, {2099, 2100, 2099}, {1901, 1902, 1902}, {2099, 2098, 2098}};
    for (const auto& [from, to, result] : cases) {
        calendar().ChooseDate({from, 5, 5});
        computer.boxes.shown.clear();
        calendar().TurnTo(to, 5);
        EXPECT_EQ(Shown(), (std::array{int(result), 5, 0}));
        EXPECT_EQ(computer.boxes.shown.size(), to == result ? 0U : 1U);
        EXPECT_FALSE(UpdateIsOn());
    }
    ASSERT_FALSE(computer.boxes.shown.size());
    calendar().ChooseDate({2099, 12, 31});
    calendar().ChooseDate({2100, 1, 1});
    EXPECT_EQ(Shown(), (std::array{2099, 1, 1}));
    EXPECT_EQ(ToUtf8(computer.boxes.shown.back().prompt), "box 4 ");
}

TEST_F(ClockTest, TheMarketChoosesTheStyleOfTheCalendar) {
    for (const auto& [market, style] :
         std::vector<std::pair<Text, int>>{{u"90001", 2}, {u"10001", 1}, {u"", 1}}) {
        data.MarketCode = market;
        dlgAddin other(computer.services, data);
        other.Window().Font->SetSize(9.75F);
        other.Window().Load();
        const forms::Calendar& calendar = *other.Controls().Calendar;
        EXPECT_EQ(calendar.MarketStyle(), style);
        EXPECT_EQ(calendar.showdateselectors(), 2);
        EXPECT_EQ(calendar.titlefont->Size(), 10.0F);
        EXPECT_TRUE(calendar.titlefont->Bold());
        EXPECT_EQ(calendar.gridfont->Charset(), 128);
    }
}

// From any date to any other the three settings end on the date asked for, through days that don't exist,
// and the update button stays as it was.
TEST_F(ClockTest, TheThreeSettingsAlwaysEndOnTheRightDate) {
    using namespace std::chrono;
    Open();
    const auto go = [&](sys_days day) {
        const year_month_day ymd(day);
        SetPC({int(ymd.year()), int(unsigned(ymd.month())), int(unsigned(ymd.day()))});
        Tick();
        return Shown() == std::array{int(ymd.year()), int(unsigned(ymd.month())), int(unsigned(ymd.day()))} &&
               calendar().CalendarValue() == computer.clock.now && UpdateIsOn();
    };
    const sys_days first(1901y / January / 1), last(2099y / December / 31);
    for (sys_days day = first; day <= last; day += days(1))
        ASSERT_TRUE(go(day)) << day.time_since_epoch().count();
    std::mt19937 random(20261118);
    std::uniform_int_distribution<int> offset(0, static_cast<int>((last - first).count()));
    for (int i = 0; i < 20000; ++i) ASSERT_TRUE(go(first + days(offset(random)))) << i;
    EXPECT_TRUE(computer.boxes.shown.empty());
}

TEST_F(ClockTest, HelpIsOfferedOnTheRightControlsOnly) {
    const auto offers = [](const forms::Control* control) { return bool(control->MouseUp); };
    for (const forms::Control* control : std::initializer_list<const forms::Control*>{
             controls().lblBevel[0], controls().lblBevel[1], controls().lblColon[0], controls().lblTime,
             controls().lblTrack, controls().chkTrackDate, controls().txtTime[3], controls().updTime})
        EXPECT_TRUE(offers(control)) << ToUtf8(control->Name());
    for (const forms::Control* control : std::initializer_list<const forms::Control*>{
             controls().lblBevel[2], controls().cmdButton[0], controls().Calendar, controls().imgBack})
        EXPECT_FALSE(offers(control)) << ToUtf8(control->Name());
    EXPECT_EQ(controls().lblBevel[0]->WhatsThisHelpID, 2);
    EXPECT_EQ(controls().updTime->WhatsThisHelpID, 3);
    EXPECT_EQ(controls().lblTrack->WhatsThisHelpID, 4);
    EXPECT_EQ(controls().chkTrackDate->WhatsThisHelpID, 5);
}

TEST_F(ClockTest, OnlyF1AsksTheHostForHelp) {
    std::vector<std::string> calls;
    const auto host = std::make_shared<fakes::RecordedObject>(calls);
    Text file;
    host->answers["DisplayHelp"] = [&](Arguments& a) { return file = a[0].ToText(), Value(); };
    Open();
    dialog->PutParent(host);
    dialog->Window().KeyDown(113, 0);
    dialog->Window().KeyDown(112, 0);
    EXPECT_EQ(calls, (std::vector<std::string>{"DisplayHelp"}));
    EXPECT_EQ(file, u"Horalink.hlp");
    data.IsStandalone = true;
    dialog->Window().KeyDown(112, 0);
    EXPECT_EQ(calls.size(), 1U);
}

}  // namespace
