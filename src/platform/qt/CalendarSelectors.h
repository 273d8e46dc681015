// The selectors of month and year in the title line of a calendar.
#pragma once

#include <QRect>
#include <functional>
#include <vector>

class QWidget;

namespace platform::forms {

class ArrowButton;

// Each of the two has its text between the arrows back and forth.
class CalendarSelectors {
  public:
    // `turn` goes by a number of months, and tells whether holding the arrow may go on.
    CalendarSelectors(QWidget& calendar, const std::function<bool(int months)>& turn);

    // Shows or takes away the arrows. Where one of them has the keyboard, the calendar takes it over.
    void Show(bool shown);
    void Place(const QRect& title, bool yearFirst);
    // Screen readers call each arrow what it leads to: `nameOf` names the month that is so many away.
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
