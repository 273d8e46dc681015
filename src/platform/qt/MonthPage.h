// Where the days of a month stand on a page of weeks.
#pragma once

#include <QDate>
#include <QFontMetrics>
#include <QLocale>

namespace platform::forms {

struct PageCell {
    int week = 0, column = 0;
    friend bool operator==(const PageCell&, const PageCell&) = default;
};

class MonthPage {
  public:
    static constexpr int columns = 7, weeks = 6;

    MonthPage(int year, int month, Qt::DayOfWeek firstDayOfWeek);

    int Days() const { return first_.daysInMonth(); }
    PageCell CellOf(int day) const;
    // The day of the week of a column, 1 for Monday up to 7.
    int WeekdayOf(int column) const;

  private:
    int ColumnOfFirst() const;

    QDate first_;
    Qt::DayOfWeek firstDayOfWeek_;
};

// How long the names of days may be, all alike: one that is too long for its column makes all of them narrow.
QLocale::FormatType WeekdayFormat(const QLocale& locale, const QFontMetrics& metrics, int columnWidth);

}  // namespace platform::forms
