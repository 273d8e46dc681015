#include <QAbstractButton>
#include <cstdlib>
#include <ctime>

#include "QtFixture.h"
#include "platform/forms/qt/CalendarWidget.h"
#include "platform/forms/qt/Look.h"

namespace platform {
namespace {

using forms::CalendarWidget;
using forms::MonthPage;
using forms::PageCell;

std::string DateOf(const forms::Calendar& calendar) {
    return std::to_string(calendar.Year()) + "-" + std::to_string(calendar.Month()) + "-" +
           std::to_string(calendar.Day());
}

class CalendarTest : public ::testing::Test {
  protected:
    CalendarTest() {
        sample.calendar.BeforeUpdate = [this](bool& cancel) { cancel = refuse; };
        sample.calendar.AfterUpdate = [this] { ++chosen; };
        sample.form.Show();
        EXPECT_TRUE(Until([this] { return sample.Window()->isActiveWindow(); }));
        Widget().setFocus();
    }
    ~CalendarTest() override {
        sample.form.Unload();
        Settle();
    }

    void Set(int year, int month, int day) {
        sample.calendar.SetDay(static_cast<std::int16_t>(day));
        sample.calendar.SetMonth(static_cast<std::int16_t>(month));
        sample.calendar.SetYear(static_cast<std::int16_t>(year));
    }
    CalendarWidget& Widget() const { return static_cast<CalendarWidget&>(sample.WidgetOf("Calendar")); }
    QWindow* Handle() const { return sample.Window()->windowHandle(); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(Handle(), key, modifiers); }
    void ClickAt(QPoint place, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(Handle(), button, {}, Widget().mapTo(sample.Window(), place));
    }
    void ClickDay(int day, Qt::MouseButton button = Qt::LeftButton) {
        ClickAt(Widget().DayRect(day).center(), button);
    }
    QAbstractButton& Arrow(const char* name) const {
        return *Widget().findChild<QAbstractButton*>(QLatin1String(name));
    }
    QImage Grab() const { return Widget().grab().toImage(); }
    int PixelsOf(QRgb color, const QRect& rect) const {
        const QImage image = Grab().copy(rect);
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == color;
        return count;
    }

    SampleForm sample;
    bool refuse = false;
    int chosen = 0;
};

struct KeyCase {
    int year, month, day;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* result;
};

const KeyCase keyCases[] = {
    {2003, 10, 8, Qt::Key_Left, {}, "2003-10-7"},
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
    {2003, 10, 0, Qt::Key_Enter, {}, "2003-10-1"},
    {2003, 10, 0, Qt::Key_Right, {}, "2003-10-2"},
    {2003, 11, 31, Qt::Key_Down, {}, "2003-11-8"},  // a day that the month lacks is none
    {2003, 10, 8, Qt::Key_Delete, {}, "2003-10-8"},
    {9999, 12, 31, Qt::Key_Right, {}, "9999-12-31"},
    {100, 1, 1, Qt::Key_PageUp, {}, "100-1-1"},
};

TEST_F(CalendarTest, Keys) {
    for (const KeyCase& c : keyCases) {
        Set(c.year, c.month, c.day);
        Key(c.key, c.modifiers);
        EXPECT_EQ(DateOf(sample.calendar), c.result)
            << c.year << "-" << c.month << "-" << c.day << " " << c.key;
    }
}

TEST_F(CalendarTest, ModelHasTheLastWord) {
    refuse = true;
    for (const KeyCase& c : keyCases) {
        Set(2003, 10, 8);
        Key(c.key, c.modifiers);
        EXPECT_EQ(DateOf(sample.calendar), "2003-10-8") << c.key;
    }
    ClickDay(20);
    Arrow("Next month").click();
    EXPECT_EQ(DateOf(sample.calendar), "2003-10-8");
    refuse = false;
    sample.calendar.Enabled = false;
    ClickDay(20);
    EXPECT_EQ(DateOf(sample.calendar), "2003-10-8");
    EXPECT_EQ(chosen, 0);
}

TEST_F(CalendarTest, EachDayIsChosenWhereItStands) {
    for (int month = 1; month <= 12; ++month) {
        const int days = QDate(2004, month, 1).daysInMonth();
        for (const int day : {1, 2, 15, days - 1, days}) {
            Set(2004, month, 0);
            ClickDay(day);
            EXPECT_EQ(DateOf(sample.calendar), "2004-" + std::to_string(month) + "-" + std::to_string(day));
        }
    }
    EXPECT_EQ(chosen, 60);
}

TEST_F(CalendarTest, ClicksElsewhereChooseNothing) {
    ClickDay(20, Qt::RightButton);
    ClickAt({Widget().width() / 2, 40});  // the names of the days
    ClickAt(Widget().DayRect(31).center() + QPoint(0, Widget().DayRect(31).height()));  // an empty week
    EXPECT_EQ(DateOf(sample.calendar), "2003-10-8");
    EXPECT_EQ(chosen, 0);
}

TEST_F(CalendarTest, SelectorsTurnByMouseAndKeyboard) {
    const struct {
        const char* arrow;
        const char* result;
    } cases[] = {{"Next month", "2004-1-0"},
                 {"Previous month", "2003-11-0"},
                 {"Next year", "2004-12-0"},
                 {"Previous year", "2002-12-0"}};
    for (const auto& [name, result] : cases) {
        QAbstractButton& arrow = Arrow(name);
        Set(2003, 12, 8);
        ClickAt(arrow.geometry().center());
        EXPECT_EQ(DateOf(sample.calendar), result) << name;
        EXPECT_TRUE(Widget().hasFocus()) << name;
        Set(2003, 12, 8);
        arrow.setFocus();
        Key(Qt::Key_Space);
        EXPECT_EQ(DateOf(sample.calendar), result) << name;
        Widget().setFocus();
    }
    Key(Qt::Key_Tab);
    EXPECT_TRUE(Arrow("Previous month").hasFocus());
}

TEST_F(CalendarTest, SelectorsAreTakenAwayAndComeBack) {
    Arrow("Next year").setFocus();
    sample.calendar.showdateselectors = 2;
    for (const QAbstractButton* arrow : Widget().findChildren<QAbstractButton*>())
        EXPECT_FALSE(arrow->isVisible()) << arrow->objectName().toStdString();
    EXPECT_TRUE(Widget().hasFocus());
    sample.calendar.showdateselectors = 1;
    EXPECT_TRUE(Arrow("Next year").isVisible());
}

TEST_F(CalendarTest, ArrowsAreNoWayOutOfTheControl) {
    std::string log;
    sample.calendar.GotFocus = [&] { log += "+"; };
    sample.calendar.LostFocus = [&] { log += "-"; };
    Key(Qt::Key_Tab);
    EXPECT_EQ(log, "");
    sample.WidgetOf("cmdButton").setFocus();
    EXPECT_EQ(log, "-");
}

TEST_F(CalendarTest, HeldArrowTurnsUntilABoxComesUp) {
    HandleRef press;
    sample.calendar.NewYear = [&] {
        if (sample.calendar.Year() != 1900) return;
        press = WhenBoxOpens([&](QWidget& box) {
            EXPECT_EQ(sample.calendar.Year(), 1900);
            QTest::keyClick(box.windowHandle(), Qt::Key_Return);
        });
        TheDesktop().Boxes().Show({u"Year", 0, {}, {}, 0});
        sample.calendar.SetYear(1901);
    };
    Set(1903, 5, 1);
    const QPoint place = Widget().mapTo(sample.Window(), Arrow("Previous year").geometry().center());
    QTest::mousePress(Handle(), Qt::LeftButton, {}, place);
    EXPECT_TRUE(Until([&] { return sample.calendar.Year() == 1901 && press; }));
    bool over = false;
    const HandleRef end = TheDesktop().Loop().After(Milliseconds(600), [&] { over = true; });
    Until([&] { return over; });
    EXPECT_EQ(DateOf(sample.calendar), "1901-5-0");
    QTest::mouseRelease(Handle(), Qt::LeftButton, {}, place);
}

TEST_F(CalendarTest, EventsMayTakeTheFormAway) {
    const std::function<void()> acts[] = {[this] { ClickDay(20); }, [this] { Key(Qt::Key_Right); },
                                          [this] { ClickAt(Arrow("Next month").geometry().center()); }};
    for (const auto& act : acts) {
        sample.form.Show();
        Until([this] { return sample.Window()->isActiveWindow(); });
        Widget().setFocus();
        Set(2003, 10, 8);
        sample.calendar.AfterUpdate = sample.calendar.NewMonth = [this] {
            sample.form.Unload();
            Settle();
        };
        act();
        EXPECT_FALSE(sample.form.IsLoaded());
        sample.calendar.AfterUpdate = sample.calendar.NewMonth = nullptr;
        Settle();
    }
}

TEST_F(CalendarTest, MarketStyleOrdersMonthAndYear) {
    const auto spoken = [this] { return Widget().accessibleName().toStdString(); };
    Set(2003, 10, 0);
    EXPECT_EQ(spoken(), "October 2003");
    EXPECT_LT(Arrow("Next month").x(), Arrow("Previous year").x());
    sample.calendar.MarketStyle = 2;
    EXPECT_EQ(spoken(), "2003 October");
    EXPECT_LT(Arrow("Next year").x(), Arrow("Previous month").x());
    Set(2003, 10, 9);
    EXPECT_EQ(spoken(), "Thursday, 9 October 2003");
}

TEST_F(CalendarTest, GridIsDrawnWhereItIsWanted) {
    const auto lines = [this] { return PixelsOf(forms::look::grid, Widget().rect()); };
    sample.calendar.gridcelleffect = 0;
    const int without = lines();
    sample.calendar.gridcelleffect = 2;
    EXPECT_GT(lines(), without + 1000);
}

TEST_F(CalendarTest, EachFontHasItsOwnPart) {
    const int names = Widget().DayRect(1).top() - Widget().DayRect(1).height(),
              days = Widget().DayRect(1).top();
    const struct {
        const char* name;
        forms::Font& font;
        int top, bottom;
    } cases[] = {{"title", *sample.calendar.titlefont, 0, names},
                 {"names", *sample.calendar.dayfont, names - 1, days},
                 {"days", *sample.calendar.gridfont, days, Widget().height()}};
    for (const auto& [name, font, top, bottom] : cases) {
        const QImage before = Grab();
        font.SetSize(10);
        font.Bold = false;
        const QImage after = Grab();
        for (int y = 0; y < before.height(); ++y)
            for (int x = 0; x < before.width(); ++x)
                if (before.pixel(x, y) != after.pixel(x, y)) {
                    ASSERT_GE(y, top) << name;
                    ASSERT_LT(y, bottom) << name;
                }
        EXPECT_NE(before, after) << name;
    }
}

// Two time zones whose dates always differ.
class TimeZone {
  public:
    explicit TimeZone(const char* zone) : before_(qEnvironmentVariable("TZ")) { Set(zone); }
    ~TimeZone() { Set(before_.isEmpty() ? nullptr : before_.toUtf8().constData()); }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;
    static void Set(const char* zone) {
        zone ? setenv("TZ", zone, 1) : unsetenv("TZ");
        tzset();
    }

  private:
    QString before_;
};
constexpr const char *farWest = "West12", *farEast = "East-14";

TEST_F(CalendarTest, MarkOfTodayFollowsTheDateByItself) {
    const TimeZone zone(farWest);
    const QDate today = QDate::currentDate();
    Set(today.year(), today.month(), 0);
    Widget().clearFocus();
    const auto mark = [&] { return PixelsOf(forms::look::accent, Widget().DayRect(today.day())); };
    EXPECT_EQ(mark(), 0) << "not wanted";
    sample.calendar.ShowOption = true;
    EXPECT_GT(mark(), 10);
    TimeZone::Set(farEast);
    EXPECT_TRUE(Until([&] { return mark() == 0; }));
    TimeZone::Set(farWest);
    EXPECT_TRUE(Until([&] { return mark() > 10; }));
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
