#include <gtest/gtest.h>

#include "harness/Cases.h"
#include "platform/headless/Headless.h"

using namespace platform;
using namespace platform::forms;

namespace {

struct FormTest : testing::Test {
    std::string Log() { return std::exchange(log, ""); }
    std::string After(const std::function<void()>& step) { return step(), Log(); }

    headless::Headless computer;
    std::string log;
    const std::shared_ptr<Form> shared = std::make_shared<Form>(u"form", computer.timers, computer.toolkit);
    Form& form = *shared;
};

TEST_F(FormTest, LoadsOnceAndUnloadsOnceUnlessRefusedOrUnloadedWhileLoading) {
    bool refuses = true;
    form.Loading = [&] { log += "load "; };
    form.Unloading = [&](bool& cancel) { cancel = refuses, log += "unload "; };
    form.Unloaded = [&] { log += "gone "; };
    EXPECT_EQ(After([&] { form.Unload(), form.Load(), form.SetFocus(), form.Show(), form.Unload(); }),
              "load unload ");
    EXPECT_TRUE(form.Visible() && form.IsLoaded());
    refuses = false;
    EXPECT_EQ(After([&] { form.Unload(), form.Unload(); }), "unload gone ");
    form.Loading = [&] { form.Unload(); };
    EXPECT_EQ(FaultOf([&] { form.Show(); }), "364 The object was unloaded: form");
    EXPECT_FALSE(form.IsLoaded() || form.Visible());
    form.Loading = nullptr;
    form.Unloading = [&](bool&) { form.Unloading = nullptr, form.Unload(); };
    Log();
    EXPECT_EQ(After([&] { form.Load(), form.Unload(); }), "gone ")
        << "unloaded from inside its own unloading";
}

TEST_F(FormTest, ASelectionLiesInItsTextAndATickIsOneOrNone) {
    auto& box = form.Add<TextBox>(u"box");
    box.Text = u"12345";
    std::string selections;
    for (const auto& [start, length] : {std::pair(1, 2), {1, 5}, {6, 1}}) {
        box.SetSelStart(start);
        selections += Joined(box.SelStart(), box.SelLength());
        box.SetSelLength(length);
        selections += Joined(box.SelLength());
    }
    EXPECT_EQ(selections, "1|0|2|1|0|4|5|0|0|");
    auto& tick = form.Add<CheckBox>(u"tick");
    tick.SetValue(1);
    tick.Click = [&] { log += std::to_string(tick.Value()) + " "; };
    for (const bool isOn : {true, false, false, true}) tick.SetValue(isOn);
    EXPECT_EQ(Log(), "0 1 ");
    EXPECT_EQ(ErrorOf([&] { box.SetSelStart(-1); }), 380);
    EXPECT_EQ(ErrorOf([&] { box.SetSelLength(-1); }), 380);
    EXPECT_EQ(FaultOf([&] { tick.SetValue(2); }), "380 Invalid property value: Value");
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
    for (const DateParts& date : {DateParts{2026, 11, 31}, {2027, 1, 5}}) calendar.ChooseDate(date);
    EXPECT_EQ(Log(), "ask 2026/11/18 year 2027/1/5 month 2027/1/5 chosen 2027/1/5 ");
    for (const auto& [year, month] :
         {std::pair(2027, 1), {2027, 2}, {2027, 0}, {2027, 13}, {99, 2}, {10000, 2}, {100, 1}, {9999, 12}})
        calendar.TurnTo(static_cast<std::int16_t>(year), static_cast<std::int16_t>(month));
    EXPECT_EQ(Log(),
              "ask 2027/1/5 month 2027/2/0 ask 2027/2/0 year 100/1/0 month 100/1/0 ask 100/1/0 "
              "year 9999/12/0 month 9999/12/0 ");
    calendar.SetDay(31), calendar.SetMonth(1), calendar.SetYear(100), calendar.SetDay(0);
    refuses = true;
    calendar.ChooseDate({2026, 1, 1}), calendar.TurnTo(2026, 1);
    EXPECT_EQ(Log(), "month 9999/1/31 year 100/1/31 ask 100/1/0 ask 100/1/0 ");
    for (const int day : {-1, 32}) EXPECT_EQ(ErrorOf([&] { calendar.SetDay(std::int16_t(day)); }), 380);
    for (const int month : {0, 13}) EXPECT_EQ(ErrorOf([&] { calendar.SetMonth(std::int16_t(month)); }), 380);
    for (const int year : {99, 10000}) EXPECT_EQ(ErrorOf([&] { calendar.SetYear(std::int16_t(year)); }), 380);
    EXPECT_EQ(FaultOf([&] { calendar.CalendarValue(); }), "13 Type mismatch: no day is chosen");
}

}  // namespace
