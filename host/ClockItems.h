// Checks the items of the clock command "02", and answers them for a given clock.
#pragma once

#include <optional>
#include <vector>

#include "host/Answer.h"
#include "platform/runtime/Date.h"

namespace switchdesk {

// True if any item writes. An item with an empty value reads, any other writes.
bool Writes(const std::vector<Item>& items);

struct AnsweredItems {
    std::vector<Item> items;  // in the order of the request
    bool good = true;         // no item was refused
    std::optional<platform::DateParts>
        change;  // what to set the clock to, if any item writes and all are good
};

// Answers the items for a clock that shows `now`. Parts of the time that no item changes stay as in `now`.
AnsweredItems AnswerItems(std::vector<Item> items, platform::Date now);

// Answers all items with one answer text.
std::vector<Item> RefuseItems(std::vector<Item> items, platform::TextView answer);
// Refuse the items that set the date, or those that set the time of day.
std::vector<Item> RefuseDate(std::vector<Item> items);
std::vector<Item> RefuseTime(std::vector<Item> items);

}  // namespace switchdesk
