#include <ctime>

#include "QtFixture.h"
#include "platform/qt/CalendarWidget.h"

namespace platform {
namespace {

using namespace forms;

class CalendarTest : public FormTest {
  protected:
    void SetUp() override {
        calendar.BeforeUpdate = [this](bool& cancel) { cancel = refuse; };
        Show();
        Widget().setFocus();
    }

    void Set(int year, int month, int day) {
        calendar.SetDay(static_cast<std::int16_t>(day));
        calendar.SetMonth(static_cast<std::int16_t>(month));
        calendar.SetYear(static_cast<std::int16_t>(year));
    }
    std::string Shown() const {
        return std::to_string(calendar.Year()) + "-" + std::to_string(calendar.Month()) + "-" +
               std::to_string(calendar.Day());
    }
    CalendarWidget& Widget() const { return WidgetOf<CalendarWidget>("Calendar"); }
    QPoint PlaceOfDay(int day) const { return Widget().mapTo(Window(), Widget().DayRect(day).center()); }
    // A corner of a day's cell, which its number doesn't reach.
    QImage Corner(int day) const {
        return Widget().grab(QRect(Widget().DayRect(day).topLeft(), QSize(12, 5))).toImage();
    }

    bool refuse = false;
};

TEST_F(CalendarTest, KeysMoveTheDayUnlessTheModelRefuses) {
    const Table<int, int, int, Qt::Key, Qt::KeyboardModifiers, const char*> cases = {
        {2003, 10, 1, Qt::Key_Left, {}, "2003-9-30"},
        {2004, 2, 28, Qt::Key_Right, Qt::KeypadModifier, "2004-2-29"},
        {2004, 3, 3, Qt::Key_Up, {}, "2004-2-25"},
        {2003, 2, 25, Qt::Key_Down, {}, "2003-3-4"},
        {2003, 10, 8, Qt::Key_Home, {}, "2003-10-1"},
        {2004, 2, 8, Qt::Key_End, {}, "2004-2-29"},
        {2003, 1, 8, Qt::Key_PageUp, {}, "2002-12-0"},
        {2003, 10, 8, Qt::Key_PageUp, Qt::ControlModifier, "2002-10-0"},
        {2003, 10, 8, Qt::Key_PageDown, Qt::ShiftModifier, "2004-10-0"},
        {2003, 10, 0, Qt::Key_Space, {}, "2003-10-1"},
        {2003, 11, 31, Qt::Key_Down, {}, "2003-11-8"},  // a day that the month lacks is none
        {9999, 12, 31, Qt::Key_Right, {}, "9999-12-31"},
        {100, 1, 1, Qt::Key_PageUp, {}, "100-1-1"}};
    for (const auto& [year, month, day, key, modifiers, result] : cases) {
        Set(year, month, day);
        const std::string before = Shown();
        for (const bool refuses : {true, false}) {
            refuse = refuses;
            Key(key, modifiers);
            EXPECT_EQ(Shown(), refuses ? before : result) << before << " " << key;
        }
    }
}

TEST_F(CalendarTest, AClickChoosesADayUnlessRefused) {
    const QPoint aWeek(0, Widget().DayRect(1).height());
    const Table<const char*, std::function<void()>> acts = {
        {"another button", [&] { Click(PlaceOfDay(20), Qt::RightButton); }},
        {"names of the days", [&] { Click(PlaceOfDay(1) - aWeek); }},
        {"empty week", [&] { Click(PlaceOfDay(31) + aWeek); }},
        {"refused", [&] { refuse = true, Click(PlaceOfDay(20)); }},
        {"refused arrow", [&] { Click("Next month"); }},
        {"disabled", [&] { refuse = false, calendar.Enabled = false, Click(PlaceOfDay(20)); }}};
    calendar.AfterUpdate = Note("chosen");
    for (const auto& [name, act] : acts) EXPECT_EQ(After(act) + Shown(), "2003-10-8") << name;
    calendar.Enabled = true;
    Click(PlaceOfDay(20));
    EXPECT_EQ(log + Shown(), "chosen 2003-10-20");
}

TEST_F(CalendarTest, SelectorsTurnByMouseAndKeyboardAndAreNoWayOutOfTheControl) {
    const std::pair<const char*, const char*> cases[] = {{"Next month", "2004-1-0"},
                                                         {"Previous month", "2003-11-0"},
                                                         {"Next year", "2004-12-0"},
                                                         {"Previous year", "2002-12-0"}};
    calendar.NewMonth = nullptr;
    calendar.LostFocus = Note("lost");
    for (const auto& [name, result] : cases) {
        Set(2003, 12, 8);
        Click(name);
        EXPECT_EQ(Shown(), result) << name;
    }
    const auto& first = WidgetOf("Previous month");
    EXPECT_EQ(first.accessibleName().toStdString(), "November 2002");
    Key(Qt::Key_Tab);
    Key(Qt::Key_Space);
    EXPECT_EQ(Shown(), "2002-11-0");
    EXPECT_TRUE(first.hasFocus());
    calendar.showdateselectors = 2;
    EXPECT_FALSE(first.isVisible());
    EXPECT_TRUE(Widget().hasFocus());
    EXPECT_EQ(log, "");
    WidgetOf("cmdButton").setFocus();
    EXPECT_EQ(log, "lost ");
}

TEST_F(CalendarTest, WhatADayIsIsSeenAndTodayFollowsTheDate) {
    const auto moveTo = [](const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    };
    moveTo("West12");
    const QDate today = QDate::currentDate();
    calendar.ShowOption = true;
    Set(today.year(), today.month(), today.day());
    const QImage both = Corner(today.day());
    Widget().clearFocus();
    calendar.SetDay(0);
    const QImage mark = Corner(today.day());
    moveTo("East-14");  // where the date is always another one
    EXPECT_TRUE(Until([&] { return Corner(today.day()) != mark; }));
    const QImage plain = Corner(today.day());
    moveTo("West12");
    EXPECT_TRUE(Until([&] { return Corner(today.day()) == mark; }));
    Set(today.year() - 1, today.month(), 0);
    EXPECT_EQ(Corner(today.day()), plain) << "the same day of another year";
    moveTo("UTC");
    Set(2003, 10, 0);
    Widget().setFocus();
    const QImage cursor = Corner(1);
    Set(2003, 10, 1);
    const QImage chosen = Corner(1);
    PointAt(PlaceOfDay(20));  // 17 November has the same place
    const QImage tint = Corner(20);
    const QImage seen[] = {both, mark, plain, cursor, chosen, tint};
    for (const QImage& one : seen)
        EXPECT_EQ(std::count(std::begin(seen), std::end(seen), one), 1) << &one - seen;
    calendar.SetMonth(11);
    EXPECT_TRUE(Corner(17) == tint && Corner(20) == plain) << "the tint is the mouse's, not the day's";
    PointAt(PlaceOf("Next month"));
    EXPECT_EQ(Corner(17), plain) << "the mouse is at an arrow now";
}

TEST(MonthPageTest, PlacesOfDays) {
    const Table<QDate, Qt::DayOfWeek, PageCell> cases = {{{2003, 10, 1}, Qt::Sunday, {0, 3}},
                                                         {{2003, 6, 30}, Qt::Monday, {5, 0}},
                                                         {{2003, 6, 1}, Qt::Sunday, {0, 0}}};
    for (const auto& [date, first, cell] : cases) {
        const MonthPage page(date.year(), date.month(), first);
        EXPECT_EQ(page.CellOf(date.day()), cell) << date.toString().toStdString();
        EXPECT_EQ(page.WeekdayOf(cell.column), date.dayOfWeek());
        EXPECT_EQ(page.WeekdayOf(0), first);
    }
}

}  // namespace
}  // namespace platform
