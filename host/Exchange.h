// An exchange, whose clock can be read and set.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

#include "host/Answer.h"
#include "platform/runtime/EventLoop.h"

namespace switchdesk {

class Exchange {
  public:
    virtual ~Exchange() = default;

    // How an exchange's clock compares with this PC's.
    struct Reading {
        std::chrono::microseconds ahead{};   // negative if the exchange's clock is slow
        std::chrono::microseconds within{};  // `ahead` is exact to this: half the round trip
    };
    struct Outcome {
        std::vector<Item> items;  // of the request, in its order, answered
        platform::Text message;   // a sentence for the operator, without the exchange's name; may be empty
        bool failed = false;      // an item was refused
        std::optional<Reading> clock;  // if the clock was read or set
    };
    struct Listener {
        // The current step in words, e.g. "connecting".
        std::function<void(const platform::Text& step)> underWay;
        std::function<void(Outcome outcome)> done;
    };

    // Performs the items of a request: one with an empty value reads, any other writes. Sets the clock only
    // if no item is refused. Calls `done` once, never before this returns. Dropping the handle cancels, and
    // `done` isn't called; but a write that was sent already can't be taken back, so its outcome is still
    // reported. The listener must stay callable until the exchange is destroyed.
    virtual platform::HandleRef Perform(std::vector<Item> request, Listener listener) = 0;
};

}  // namespace switchdesk
