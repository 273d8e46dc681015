#include "QtFixture.h"
#include "platform/qt/CalendarWidget.h"

namespace platform {
namespace {

using namespace forms;

struct CalendarTest : FormTest {
    void Set(int year, int month, int day) {
        calendar.SetDay(static_cast<std::int16_t>(day));
        calendar.SetMonth(static_cast<std::int16_t>(month));
        calendar.SetYear(static_cast<std::int16_t>(year));
    }
    std::string Shown() const { return Joined(calendar.Year(), calendar.Month(), calendar.Day()); }
    CalendarWidget& Widget() const { return WidgetOf<CalendarWidget>("Calendar"); }
    QPoint PlaceOfDay(int day) const { return Widget().mapTo(Window(), Widget().DayRect(day).center()); }
};

TEST_F(CalendarTest, KeysMoveTheDay) {
    const Table<int, int, int, Qt::Key, Qt::KeyboardModifiers, const char*> cases = {
        {2003, 10, 1, Qt::Key_Left, {}, "2003|9|30|"},
        {2004, 2, 28, Qt::Key_Right, Qt::KeypadModifier, "2004|2|29|"},
        {2004, 3, 3, Qt::Key_Up, {}, "2004|2|25|"},
        {2003, 10, 8, Qt::Key_Home, {}, "2003|10|1|"},
        {2004, 2, 8, Qt::Key_End, {}, "2004|2|29|"},
        {2003, 1, 8, Qt::Key_PageUp, {}, "2002|12|0|"},
        {2003, 10, 8, Qt::Key_PageDown, Qt::ShiftModifier, "2004|10|0|"},
        {2003, 10, 0, Qt::Key_Space, {}, "2003|10|1|"},
        {2003, 11, 31, Qt::Key_Down, {}, "2003|11|8|"},  // a day that the month doesn't have counts as none
        {9999, 12, 31, Qt::Key_Right, {}, "9999|12|31|"}};
    Widget().setFocus();
    for (const auto& [year, month, day, key, modifiers, result] : cases) {
        Set(year, month, day);
        Key(key, modifiers);
        EXPECT_EQ(Shown(), result) << key;
    }
}

TEST_F(CalendarTest, AClickChoosesADayUnlessRefused) {
    EXPECT_EQ(MonthPage(2003, 10, Qt::Sunday).CellOf(1), (PageCell{0, 3})) << "a Wednesday";
    const QPoint aWeek(0, Widget().DayRect(1).height());
    calendar.AfterUpdate = Note("chosen");
    Click(PlaceOfDay(20), Qt::RightButton);
    Click(PlaceOfDay(1) - aWeek);   // names of the days
    Click(PlaceOfDay(31) + aWeek);  // an empty week
    calendar.Enabled = false;
    Click(PlaceOfDay(20));
    Click("Next month");
    EXPECT_EQ(log + Shown(), "2003|10|8|");
    calendar.Enabled = true;
    Click(PlaceOfDay(20));
    EXPECT_EQ(log + Shown(), "chosen 2003|10|20|");
}

TEST_F(CalendarTest, SelectorsTurnByMouseAndKeyboard) {
    const std::pair<const char*, const char*> cases[] = {{"Next month", "2004|1|0|"},
                                                         {"Previous month", "2003|11|0|"},
                                                         {"Next year", "2004|12|0|"},
                                                         {"Previous year", "2002|12|0|"}};
    for (const auto& [name, result] : cases) {
        Set(2003, 12, 8);
        Click(name);
        EXPECT_EQ(Shown(), result) << name;
    }
    const auto& first = WidgetOf("Previous month");
    EXPECT_EQ(first.accessibleName().toStdString(), "November 2002");
    Widget().setFocus();
    Key(Qt::Key_Tab);
    Key(Qt::Key_Space);
    EXPECT_EQ(Shown(), "2002|11|0|");
    calendar.showdateselectors = 2;
    EXPECT_FALSE(first.isVisible());
    EXPECT_TRUE(Widget().hasFocus());
}

}  // namespace
}  // namespace platform
