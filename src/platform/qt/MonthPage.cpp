#include "platform/qt/MonthPage.h"

namespace platform::forms {

MonthPage::MonthPage(int year, int month, Qt::DayOfWeek firstDayOfWeek)
    : first_(year, month, 1), firstDayOfWeek_(firstDayOfWeek) {}

int MonthPage::ColumnOfFirst() const {
    return (first_.dayOfWeek() - firstDayOfWeek_ + columns) % columns;
}

PageCell MonthPage::CellOf(int day) const {
    const int place = ColumnOfFirst() + day - 1;
    return {place / columns, place % columns};
}

int MonthPage::WeekdayOf(int column) const {
    return (firstDayOfWeek_ - 1 + column) % columns + 1;
}

QLocale::FormatType WeekdayFormat(const QLocale& locale, const QFontMetrics& metrics, int columnWidth) {
    for (int day = 1; day <= MonthPage::columns; ++day)
        if (metrics.horizontalAdvance(locale.standaloneDayName(day, QLocale::ShortFormat)) > columnWidth)
            return QLocale::NarrowFormat;
    return QLocale::ShortFormat;
}

}  // namespace platform::forms
