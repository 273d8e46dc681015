#include <QAbstractButton>
#include <cstdlib>
#include <ctime>

#include "QtFixture.h"
#include "platform/forms/qt/CalendarWidget.h"

namespace platform {
namespace {

using forms::CalendarWidget;
using forms::MonthPage;
using forms::PageCell;

std::string DateOf(const forms::Calendar& calendar) {
    return std::to_string(calendar.Year()) + "-" + std::to_string(calendar.Month()) + "-" +
           std::to_string(calendar.Day());
}

class CalendarTest : public FormTest {
  protected:
    void SetUp() override {
        calendar.BeforeUpdate = [this](bool& cancel) { cancel = refuse; };
        calendar.AfterUpdate = [this] { ++chosen; };
        Show();
        Widget().setFocus();
    }

    void Set(int year, int month, int day) {
        calendar.SetDay(static_cast<std::int16_t>(day));
        calendar.SetMonth(static_cast<std::int16_t>(month));
        calendar.SetYear(static_cast<std::int16_t>(year));
    }
    CalendarWidget& Widget() const { return static_cast<CalendarWidget&>(WidgetOf("Calendar")); }
    void ClickAt(QPoint place, Qt::MouseButton pressed = Qt::LeftButton) {
        QTest::mouseClick(Handle(), pressed, {}, Widget().mapTo(Window(), place));
    }
    void ClickDay(Qt::MouseButton pressed = Qt::LeftButton) {
        ClickAt(Widget().DayRect(20).center(), pressed);
    }
    QAbstractButton& Arrow(const char* name) const {
        return *Widget().findChild<QAbstractButton*>(QLatin1String(name));
    }

    bool refuse = false;
    int chosen = 0;
};

TEST_F(CalendarTest, KeysMoveTheDayUnlessTheModelRefuses) {
    const struct {
        int year, month, day;
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        const char* result;
    } cases[] = {
        {2003, 10, 1, Qt::Key_Left, {}, "2003-9-30"},
        {2003, 12, 31, Qt::Key_Right, {}, "2004-1-1"},
        {2004, 2, 28, Qt::Key_Right, Qt::KeypadModifier, "2004-2-29"},
        {2004, 3, 3, Qt::Key_Up, {}, "2004-2-25"},
        {2003, 2, 25, Qt::Key_Down, {}, "2003-3-4"},
        {2003, 10, 8, Qt::Key_Home, {}, "2003-10-1"},
        {2004, 2, 8, Qt::Key_End, {}, "2004-2-29"},
        {2003, 10, 8, Qt::Key_Return, {}, "2003-10-8"},
        {2003, 1, 8, Qt::Key_PageUp, {}, "2002-12-0"},
        {2003, 12, 8, Qt::Key_PageDown, {}, "2004-1-0"},
        {2003, 10, 8, Qt::Key_PageUp, Qt::ControlModifier, "2002-10-0"},
        {2003, 10, 8, Qt::Key_PageDown, Qt::ShiftModifier, "2004-10-0"},
        {2003, 10, 0, Qt::Key_Space, {}, "2003-10-1"},
        {2003, 10, 0, Qt::Key_Right, {}, "2003-10-2"},
        {2003, 11, 31, Qt::Key_Down, {}, "2003-11-8"},  // a day that the month lacks is none
        {9999, 12, 31, Qt::Key_Right, {}, "9999-12-31"},
        {100, 1, 1, Qt::Key_PageUp, {}, "100-1-1"},
    };
    for (const auto& c : cases) {
        Set(c.year, c.month, c.day);
        const std::string before = DateOf(calendar);
        for (const bool refuses : {true, false}) {
            refuse = refuses;
            Key(c.key, c.modifiers);
            EXPECT_EQ(DateOf(calendar), refuses ? before : c.result) << before << " " << c.key;
        }
    }
}

// By another button, on names of days, in an empty week, where the model refuses, and where all is off.
TEST_F(CalendarTest, ClicksThatChooseNothing) {
    const std::function<void()> acts[] = {
        [this] { ClickDay(Qt::RightButton); },
        [this] { ClickAt(QPoint(Widget().width() / 2, 40)); },
        [this] { ClickAt(Widget().DayRect(31).center() + QPoint(0, Widget().DayRect(31).height())); },
        [this] { refuse = true, ClickDay(); },
        [this] { Arrow("Next month").click(); },
        [this] { refuse = false, calendar.Enabled = false, ClickDay(); }};
    for (std::size_t i = 0; i < std::size(acts); ++i) {
        acts[i]();
        EXPECT_EQ(DateOf(calendar), "2003-10-8") << i;
    }
    EXPECT_EQ(chosen, 0);
}

TEST_F(CalendarTest, SelectorsTurnByMouseAndKeyboardAndAreNoWayOutOfTheControl) {
    const std::pair<const char*, const char*> cases[] = {{"Next month", "2004-1-0"},
                                                         {"Previous month", "2003-11-0"},
                                                         {"Next year", "2004-12-0"},
                                                         {"Previous year", "2002-12-0"}};
    calendar.LostFocus = [this] { log += "lost"; };
    for (const auto& [name, result] : cases) {
        Set(2003, 12, 8);
        ClickAt(Arrow(name).geometry().center());
        EXPECT_EQ(DateOf(calendar), result) << name;
    }
    Key(Qt::Key_Tab);
    EXPECT_TRUE(Arrow("Previous month").hasFocus());
    Key(Qt::Key_Space);
    EXPECT_EQ(DateOf(calendar), "2002-11-0");
    calendar.showdateselectors = 2;
    EXPECT_FALSE(Arrow("Previous month").isVisible());
    EXPECT_TRUE(Widget().hasFocus());
    EXPECT_EQ(log, "");
    WidgetOf("cmdButton").setFocus();
    EXPECT_EQ(log, "lost");
}

TEST_F(CalendarTest, HeldArrowTurnsUntilABoxComesUp) {
    int boxes = 0;
    calendar.NewYear = [&] {
        if (calendar.Year() != 1900) return;
        ++boxes;
        ShowBox(PressReturn);
        calendar.SetYear(1901);
    };
    Set(1903, 5, 1);
    const QPoint place = Widget().mapTo(Window(), Arrow("Previous year").geometry().center());
    QTest::mousePress(Handle(), Qt::LeftButton, {}, place);
    EXPECT_TRUE(Until([&] { return calendar.Year() == 1901 && boxes == 1; }));
    WaitLongerThanAStep();
    EXPECT_EQ(DateOf(calendar), "1901-5-0");
    EXPECT_EQ(boxes, 1);
    QTest::mouseRelease(Handle(), Qt::LeftButton, {}, place);
}

TEST_F(CalendarTest, MarkOfTodayFollowsTheDateByItself) {
    const auto moveTo = [](const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    };
    moveTo("West12");
    const QDate today = QDate::currentDate();
    Set(today.year(), today.month(), 0);
    Widget().clearFocus();
    const auto shown = [&] { return Widget().grab(Widget().DayRect(today.day())).toImage(); };
    const QImage plain = shown();
    calendar.ShowOption = true;
    EXPECT_NE(shown(), plain);
    moveTo("East-14");  // where the date is always another one
    EXPECT_TRUE(Until([&] { return shown() == plain; }));
    moveTo("West12");
    EXPECT_TRUE(Until([&] { return shown() != plain; }));
    moveTo("UTC");
}

TEST_F(CalendarTest, TintFollowsTheMouseAndNotTheNumberOfTheDay) {
    const auto shown = [this](QPoint place) { return Widget().grab(QRect(place, QSize(3, 3))).toImage(); };
    Set(2003, 10, 1);
    const QPoint corner = Widget().DayRect(20).topLeft() + QPoint(3, 3);  // 17 November has the same place
    QTest::mouseMove(Handle(), Widget().mapTo(Window(), corner));
    const QImage tinted = shown(corner);
    calendar.SetMonth(11);
    EXPECT_EQ(shown(corner), tinted);
    EXPECT_NE(shown(Widget().DayRect(20).topLeft() + QPoint(3, 3)), tinted);
    QTest::mouseMove(Handle(), Widget().mapTo(Window(), Arrow("Next month").geometry().center()));
    EXPECT_NE(shown(corner), tinted) << "the mouse is at an arrow now";
}

TEST_F(CalendarTest, CursorDiffersFromTheMarkOfToday) {
    const QDate today = QDate::currentDate();
    Set(today.year(), today.month(), 0);
    const QRect first = Widget().DayRect(1), marked = Widget().DayRect(today.day());
    const auto shown = [this](const QRect& day) {
        return Widget().grab(day.adjusted(0, 0, -1, -1)).toImage();
    };
    calendar.ShowOption = true;
    const QImage both = shown(first);
    Widget().clearFocus();
    if (today.day() == 1) {
        EXPECT_NE(shown(first), both) << "the cursor is to be seen beside the mark";
        return;
    }
    const QImage mark = shown(marked);
    EXPECT_NE(shown(first), both);
    const QPoint edge(mark.width() / 2, 1);
    EXPECT_NE(both.pixelColor(edge), mark.pixelColor(edge));
}

TEST(MonthPageTest, OneLongNameMakesAllNarrow) {
    const QLocale locale = QLocale::c();
    const QFontMetrics metrics{QFont()};
    const int wed = metrics.horizontalAdvance(QStringLiteral("Wed"));
    ASSERT_LT(metrics.horizontalAdvance(QStringLiteral("Fri")), wed - 1);
    EXPECT_EQ(forms::WeekdayFormat(locale, metrics, wed - 1), QLocale::NarrowFormat);
    EXPECT_EQ(forms::WeekdayFormat(locale, metrics, 2 * wed), QLocale::ShortFormat);
}

TEST(MonthPageTest, PlacesOfDays) {
    const struct {
        int year, month, day;
        Qt::DayOfWeek first;
        PageCell cell;
    } cases[] = {
        {2003, 10, 1, Qt::Monday, {0, 2}},  {2003, 10, 1, Qt::Sunday, {0, 3}},
        {2003, 6, 1, Qt::Monday, {0, 6}},   {2003, 6, 30, Qt::Monday, {5, 0}},
        {2003, 6, 1, Qt::Sunday, {0, 0}},   {2004, 2, 29, Qt::Saturday, {4, 1}},
        {1901, 12, 31, Qt::Monday, {5, 1}}, {2099, 1, 31, Qt::Sunday, {4, 6}},
    };
    for (const auto& c : cases) {
        const MonthPage page(c.year, c.month, c.first);
        EXPECT_EQ(page.CellOf(c.day), c.cell) << c.year << "-" << c.month << "-" << c.day;
        EXPECT_EQ(page.WeekdayOf(c.cell.column), QDate(c.year, c.month, c.day).dayOfWeek());
        EXPECT_EQ(page.WeekdayOf(0), c.first);
    }
}

}  // namespace
}  // namespace platform
