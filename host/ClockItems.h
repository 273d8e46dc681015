// The items of the clock's command "02": checks them, and answers them for a clock.
#pragma once

#include <optional>
#include <vector>

#include "host/Answer.h"
#include "platform/runtime/Date.h"

namespace switchdesk {

// An item with an empty value reads, any other writes.
bool Writes(const std::vector<Item>& items);

struct AnsweredItems {
    std::vector<Item> items;  // in the order of the request
    bool good = true;         // no item was refused
    std::optional<platform::DateParts>
        change;  // what to set the clock to, if any item writes and all are good
};

// Answers the items for a clock that shows `now`. What a change doesn't name stays as it is now.
AnsweredItems AnswerItems(std::vector<Item> items, platform::Date now);

// Answers all items with one answer text.
std::vector<Item> RefuseItems(std::vector<Item> items, platform::TextView answer);
// Refuses what names the date, or the time of day, of a change.
std::vector<Item> RefuseDate(std::vector<Item> items);
std::vector<Item> RefuseTime(std::vector<Item> items);

}  // namespace switchdesk
