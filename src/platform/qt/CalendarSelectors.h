// The selectors of month and year in the title line of a calendar.
#pragma once

#include <QRect>
#include <functional>
#include <vector>

class QWidget;

namespace platform::forms {

class ArrowButton;

inline constexpr int monthsAYear = 12;

// Each of the two has an arrow back, its text and an arrow forth.
class CalendarSelectors {
  public:
    // `turn` turns by a number of months, and returns whether a held arrow may go on.
    CalendarSelectors(QWidget& calendar, const std::function<bool(int months)>& turn);

    // Shows or hides the arrows. If one of them has the focus, the calendar takes it over.
    void Show(bool shown);
    void Place(const QRect& title, bool yearFirst);
    // Names each arrow, for screen readers, after the month it leads to: `nameOf` gets the distance.
    void Name(const std::function<QString(int months)>& nameOf);
    // The room between the arrows.
    const QRect& MonthText() const { return monthText_; }
    const QRect& YearText() const { return yearText_; }

  private:
    QRect PlacePair(std::size_t first, const QRect& room);

    QWidget& calendar_;
    std::vector<ArrowButton*> arrows_;  // month back, month forth, year back, year forth
    QRect monthText_, yearText_;
    bool shown_ = false;
};

}  // namespace platform::forms
