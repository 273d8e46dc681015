// A simulated exchange: a clock that command "02" reads and sets.
#pragma once

#include <vector>

#include "host/Answer.h"
#include "platform/runtime/Date.h"

namespace switchdesk {

class SimulatedExchange {
  public:
    // `pcClock` drives the exchange's clock, which starts `minutesAhead` minutes ahead. It must outlive
    // the exchange.
    SimulatedExchange(const platform::Clock& pcClock, double minutesAhead);

    platform::Date Now() const;

    // Performs the items of a request, and returns those of the answer in the same order. An item with an
    // empty value reads, any other writes. Sets the clock only if no item is refused.
    std::vector<Item> Perform(const std::vector<Item>& request);

  private:
    void SetTo(platform::Date date);

    const platform::Clock& pcClock_;
    double daysAhead_;
};

}  // namespace switchdesk
