// An exchange that there is no wire to: a clock that can be read and set by command "02".
#pragma once

#include <vector>

#include "host/Answer.h"
#include "platform/runtime/Date.h"

namespace switchdesk {

class SimulatedExchange {
  public:
    // `pcClock` drives the exchange's clock, which is ahead of it by `minutesAhead` at the start; it must
    // outlive the exchange.
    SimulatedExchange(const platform::Clock& pcClock, double minutesAhead);

    platform::Date Now() const;

    // Performs the items of a request and gives the items of the answer, in the same order. An item with
    // an empty value reads, any other writes. The clock is set only if no item was refused.
    std::vector<Item> Perform(const std::vector<Item>& request);

  private:
    void SetTo(platform::Date date);

    const platform::Clock& pcClock_;
    double daysAhead_;
};

}  // namespace switchdesk
