// A month with its chosen day.
#pragma once

#include <QDate>
#include <QFontMetrics>
#include <QLocale>
#include <ctime>
#include <optional>

#include "platform/qt/CalendarSelectors.h"
#include "platform/qt/ControlView.h"

namespace platform::forms {

struct PageCell {
    int week = 0, column = 0;
    friend bool operator==(const PageCell&, const PageCell&) = default;
};

// Lays out the days of a month on a page of weeks.
class MonthPage {
  public:
    static constexpr int columns = 7, weeks = 6;

    MonthPage(int year, int month, Qt::DayOfWeek firstDayOfWeek);

    int Days() const { return first_.daysInMonth(); }
    PageCell CellOf(int day) const;
    // The weekday of a column, from 1 for Monday to 7.
    int WeekdayOf(int column) const;

  private:
    int ColumnOfFirst() const;

    QDate first_;
    Qt::DayOfWeek firstDayOfWeek_;
};

// The format of the weekday names: narrow for all if one short name doesn't fit its column.
QLocale::FormatType WeekdayFormat(const QLocale& locale, const QFontMetrics& metrics, int columnWidth);

// The mouse, the arrow keys, Home and End choose days; Page Up and Page Down turn the months, with Ctrl or
// Shift the years. If no day is chosen, the keys start from the first, which Enter and Space choose.
class CalendarWidget : public QWidget, public TypedView<Calendar> {
  public:
    CalendarWidget(Calendar& control, QWidget& parent);
    QWidget& Widget() override { return *this; }

    // The place of a day of the shown month.
    QRect DayRect(int day) const;

  protected:
    void SyncOwn() override;
    QString SpokenName() const override;
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    struct Shown {
        int day = 0, month = 1, year = 100;
        int today = 0;  // 0 if another month is shown, or no mark is wanted
        bool yearFirst = false, grid = false, selectors = false;
        QFont dayFont, gridFont, titleFont;
        friend bool operator==(const Shown&, const Shown&) = default;
    };

    int Today() const;
    Shown Wanted() const;
    void FollowToday();
    MonthPage Page() const { return {shown_.year, shown_.month, locale_.firstDayOfWeek()}; }
    int CursorDay() const;
    int DayAt(QPoint place) const;
    int DayUnderMouse() const;
    void PointAt(std::optional<QPoint> place);
    void Choose(const QDate& date);
    bool Turn(int months);

    QDate Month(int fromShown) const;
    QString NameOf(const QDate& month) const;
    bool IsYearAhead() const;
    bool SaysYear() const;
    QString YearText(int year) const;
    QString TitleOf(const QDate& month) const;
    QRect TitleRect() const;
    QRect GridRect() const;
    QRect CellRect(int row, int column) const;
    void PaintTitle(QPainter& painter) const;
    void PaintWeekdays(QPainter& painter) const;
    void PaintGrid(QPainter& painter) const;
    void PaintDay(QPainter& painter, int day) const;

    Shown shown_;
    std::optional<QPoint> mouse_;
    QLocale locale_ = QLocale::system();
    CalendarSelectors selectors_;
    QMetaObject::Connection beforeWaiting_;
    std::time_t lastLook_ = 0;  // when today's date was last checked
};

}  // namespace platform::forms
