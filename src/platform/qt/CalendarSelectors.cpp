#include "platform/qt/CalendarSelectors.h"

#include <algorithm>
#include <utility>

#include "platform/qt/ArrowButton.h"

namespace platform::forms {

namespace {

constexpr int arrowWidth = 20;
constexpr double monthsShare = 0.6;  // of the width; names are longer than numbers

struct Selector {
    const char* name;
    Arrow arrow;
    int months;
};

constexpr Selector selectors[] = {
    {"Previous month", Arrow::Left, -1},
    {"Next month", Arrow::Right, 1},
    {"Previous year", Arrow::Left, -monthsAYear},
    {"Next year", Arrow::Right, monthsAYear},
};

}  // namespace

CalendarSelectors::CalendarSelectors(QWidget& calendar, const std::function<bool(int months)>& turn)
    : calendar_(calendar) {
    for (const Selector& selector : selectors) {
        auto* arrow = new ArrowButton(
            selector.arrow, [turn, months = selector.months] { return turn(months); }, calendar);
        arrow->setObjectName(QLatin1String(selector.name));
        arrow->hide();
        arrows_.push_back(arrow);
    }
}

void CalendarSelectors::Show(bool shown) {
    if (shown == std::exchange(shown_, shown)) return;
    for (ArrowButton* arrow : arrows_) {
        if (arrow->hasFocus()) calendar_.setFocus();
        arrow->setVisible(shown);
    }
}

void CalendarSelectors::Name(const std::function<QString(int months)>& nameOf) {
    for (std::size_t i = 0; i < arrows_.size(); ++i)
        arrows_[i]->setAccessibleName(nameOf(selectors[i].months));
}

void CalendarSelectors::Place(const QRect& title, bool yearFirst) {
    const double share = yearFirst ? 1 - monthsShare : monthsShare;
    QRect left = title, right = title;
    left.setWidth(static_cast<int>(title.width() * share));
    right.setLeft(left.right() + 1);
    monthText_ = PlacePair(0, yearFirst ? right : left);
    yearText_ = PlacePair(2, yearFirst ? left : right);
}

QRect CalendarSelectors::PlacePair(std::size_t first, const QRect& room) {
    const int side = std::min(arrowWidth, room.height());
    const int top = room.top() + (room.height() - side) / 2;
    arrows_[first]->setGeometry(room.left(), top, side, side);
    arrows_[first + 1]->setGeometry(room.right() + 1 - side, top, side, side);
    return room.adjusted(side, 0, -side, 0);
}

}  // namespace platform::forms
