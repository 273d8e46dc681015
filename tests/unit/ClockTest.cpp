#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "Fakes.h"
#include "Table.h"

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
    void Open(const char16_t* name = u"Main", bool tracks = true) {
        dialog->Window().Load();
        dialog->PutPBXName(name);
        if (!tracks) Track(false, false);
    }
    void Track(bool time, bool date) {
        controls.chkTrack->SetValue(time);
        controls.chkTrackDate->SetValue(date);
    }
    Text Time() const {
        Text time;
        for (const auto* box : controls.txtTime) time += box->Text() + u" ";
        return time;
    }
    std::array<int, 3> Shown() { return {calendar.Year(), calendar.Month(), calendar.Day()}; }
    bool UpdateIsOn() const { return controls.cmdButton[1]->Enabled; }
    void TickAt(const DateParts& parts) {
        computer.clock.now = MakeDate(parts);
        computer.scheduler.Pass(1000);
    }

    fakes::Computer computer;
    ModuleData data;
    std::shared_ptr<dlgAddin> dialog = std::make_shared<dlgAddin>(computer.services, data);
    const DialogControls& controls = dialog->Controls();
    forms::Calendar& calendar = *controls.Calendar;
    forms::UpDown& spin = *controls.updTime;
    const std::array<int, 3> today{2026, 11, 18};
};

TEST_F(ClockTest, TheDialogOpensWithThePCsDateAndTimeAndFollows) {
    Open();
    EXPECT_EQ(Time(), u"01 02 03 PM ");
    EXPECT_EQ(Shown(), today);
    const std::pair<DateParts, const char16_t*> moments[] = {{{2026, 11, 19, 0, 5, 0}, u"12 05 00 AM "},
                                                             {{2026, 11, 19, 12, 5, 9}, u"12 05 09 PM "},
                                                             {{2026, 11, 19, 11, 59, 59}, u"11 59 59 AM "},
                                                             {{2026, 11, 19, 23, 0, 0}, u"11 00 00 PM "}};
    for (const auto& [moment, text] : moments) {
        TickAt(moment);
        EXPECT_EQ(Time(), text);
    }
    EXPECT_EQ(Shown(), (std::array{2026, 11, 19}));
}

TEST_F(ClockTest, EachBoxTracksForItself) {
    Open();
    for (const auto& [time, date] : {std::pair(false, false), {false, true}, {true, false}, {true, true}}) {
        Track(true, true);
        TickAt({2026, 12, 31, 23, 59, 59});
        Track(time, date);
        TickAt({2027, 1, 1, 0, 0, 1});
        EXPECT_EQ(Time(), time ? u"12 00 01 AM " : u"11 59 59 PM ");
        EXPECT_EQ(calendar.Year(), date ? 2027 : 2026);
        EXPECT_EQ(spin.Enabled(), !time);
        EXPECT_EQ(calendar.showdateselectors(), date ? 2 : 1);
    }
}

TEST_F(ClockTest, SectionsAreSteppedOneAtATime) {
    Open(u"Main", false);
    const Table<std::size_t, Text, Text, Text> cases = {
        {0, u"09", u"10", u"08"}, {0, u"12", u"01", u"11"}, {0, u"01", u"02", u"12"},
        {1, u"04", u"05", u"03"}, {1, u"59", u"00", u"58"}, {2, u"00", u"01", u"59"},
        {3, u"AM", u"PM", u"PM"}, {3, u"PM", u"AM", u"AM"}, {3, u"??", u"PM", u"PM"}};
    for (const auto& [section, from, up, down] : cases)
        for (const bool isUp : {true, false}) {
            auto& box = *controls.txtTime[section];
            box.Text = from;
            const Text before = Time();
            box.GotFocus();
            EXPECT_EQ(Time(), before) << "the focus changes nothing";
            isUp ? spin.StepUp() : spin.StepDown();
            EXPECT_EQ(box.Text(), isUp ? up : down);
            EXPECT_EQ(box.SelLength(), 2) << "stays selected";
            box.Text = from;
            EXPECT_EQ(Time(), before) << "no other section is touched";
        }
    controls.txtTime[3]->LostFocus();
    const Text before = Time();
    spin.StepUp();
    EXPECT_EQ(Time(), before) << "no section is under edit";
}

TEST_F(ClockTest, WhatIsTrackedRefusesTheOperator) {
    Open();
    controls.txtTime[1]->GotFocus();
    spin.StepUp();
    EXPECT_EQ(Time(), u"01 02 03 PM ");
    EXPECT_EQ(controls.txtTime[1]->SelLength(), 0);
    calendar.ChooseDate({2026, 11, 1});
    calendar.TurnTo(2026, 12);
    EXPECT_EQ(Shown(), today);
    EXPECT_TRUE(UpdateIsOn());
}

TEST_F(ClockTest, WithoutAChosenDayOrANameTheUpdateButtonIsOff) {
    for (const char16_t* name : {u"Main", u""}) {
        const bool named = *name != 0;
        Open(name, false);
        calendar.TurnTo(2026, 12);
        EXPECT_EQ(Shown(), (std::array{2026, 12, 0}));
        EXPECT_FALSE(UpdateIsOn());
        EXPECT_EQ(controls.cmdButton[2]->Enabled(), named);
        calendar.ChooseDate({2026, 12, 24});
        EXPECT_EQ(UpdateIsOn(), named);
        calendar.TurnTo(2027, 12);
        EXPECT_FALSE(UpdateIsOn());
        controls.chkTrackDate->SetValue(1);
        EXPECT_EQ(UpdateIsOn(), named);
        EXPECT_EQ(Shown(), today) << "the date follows all the same";
    }
}

TEST_F(ClockTest, TheYearStaysBetween1901And2099) {
    Open(u"Main", false);
    for (const auto& [from, to, result] : std::vector<std::array<std::int16_t, 3>>{
             {1901, 1900, 1901}, {2099, 2100, 2099}, {1901, 1902, 1902}, {2099, 2098, 2098}}) {
        calendar.ChooseDate({from, 5, 5});
        computer.boxes.shown.clear();
        calendar.TurnTo(to, 5);
        EXPECT_EQ(Shown(), (std::array{int(result), 5, 0}));
        EXPECT_EQ(computer.boxes.LastPrompt(), to == result ? "" : "box 4 ");
        EXPECT_FALSE(UpdateIsOn());
    }
    calendar.ChooseDate({2099, 12, 31});
    calendar.ChooseDate({2100, 1, 1});
    EXPECT_EQ(Shown(), (std::array{2099, 1, 1}));
    EXPECT_EQ(computer.boxes.LastPrompt(), "box 4 ");
}

TEST_F(ClockTest, TheMarketChoosesTheStyleOfTheCalendar) {
    for (const auto& [market, style] : {std::pair(u"90001", 2), {u"10001", 1}, {u"", 1}}) {
        data.MarketCode = market;
        dlgAddin other(computer.services, data);
        other.Window().Load();
        EXPECT_EQ(other.Controls().Calendar->MarketStyle(), style);
    }
}

// From any date to any other the three settings end on the date asked for, through days that don't exist,
// and the update button stays as it was.
TEST_F(ClockTest, TheThreeSettingsAlwaysEndOnTheRightDate) {
    using namespace std::chrono;
    Open();
    const sys_days first(1901y / January / 1);
    const auto last = (sys_days(2099y / December / 31) - first).count();
    std::mt19937 random(20261118);
    std::uniform_int_distribution<days::rep> any(0, last);
    for (days::rep i = 0; i <= last + 20000; ++i) {
        const year_month_day day(first + days(i <= last ? i : any(random)));
        const std::array parts{int(day.year()), int(unsigned(day.month())), int(unsigned(day.day()))};
        TickAt({parts[0], parts[1], parts[2]});
        ASSERT_EQ(Shown(), parts) << i;
        ASSERT_EQ(calendar.CalendarValue(), computer.clock.now) << i;
        ASSERT_TRUE(UpdateIsOn()) << i;
    }
    EXPECT_TRUE(computer.boxes.shown.empty());
}

TEST_F(ClockTest, HelpIsOfferedOnTheRightControlsOnly) {
    const std::pair<const forms::Control*, int> topics[] = {
        {controls.lblBevel[0], 2},  {controls.lblBevel[1], 3},  {controls.lblColon[0], 3},
        {controls.lblTime, 3},      {controls.txtTime[3], 3},   {controls.updTime, 3},
        {controls.lblTrack, 4},     {controls.chkTrackDate, 5}, {controls.lblBevel[2], 0},
        {controls.cmdButton[0], 0}, {controls.Calendar, 0},     {controls.imgBack, 0}};
    for (const auto& [control, topic] : topics) {
        EXPECT_EQ(bool(control->MouseUp), topic != 0) << ToUtf8(control->Name());
        EXPECT_TRUE(topic == 0 || control->WhatsThisHelpID == topic) << ToUtf8(control->Name());
    }
}

}  // namespace
